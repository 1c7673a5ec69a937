// ConfigurationListenerImpl: the items one ConfigurationListener watches.
//
// Registration itself lives in the process-wide ListenerManager; this keeps the listener's own
// list so that its destructor can unregister everything.
#pragma once

#include <set>

#include <boost/thread/mutex.hpp>

namespace zelk::configuration {
class ConfigurationListener;
class GroupItem;
}  // namespace zelk::configuration

namespace zelk::configuration::impl {

class ConfigurationListenerImpl {
public:
  ConfigurationListenerImpl();
  ~ConfigurationListenerImpl();

  // Registers listener for item; false (and nothing changed) when it already was.
  bool startListeningTo(const GroupItem* item, ConfigurationListener* listener);
  // Unregisters listener from item; false when it was not registered.
  bool stopListeningTo(const GroupItem* item, ConfigurationListener* listener);
  // Unregisters listener from every item it watched (the list itself is kept).
  void stopListeningToAll(ConfigurationListener* listener);
  // Empties the list of watched items, after stopListeningToAll, so that the listener can start
  // watching them again.
  void forgetItems();

private:
  std::set<const GroupItem*> mItems;
  boost::mutex mMutex;
};

}  // namespace zelk::configuration::impl
