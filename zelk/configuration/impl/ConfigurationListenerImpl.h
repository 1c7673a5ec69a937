// ConfigurationListenerImpl: the places one ConfigurationListener watches.
//
// Registration itself lives in the process-wide ListenerManager; this keeps the listener's own
// list so that its destructor can unregister everything. Items are kept by place (see ItemPlace),
// so the list stays right when the items it was made from are gone.
#pragma once

#include <set>

#include <boost/thread/mutex.hpp>

#include "zelk/configuration/impl/ItemPlace.h"

namespace zelk::configuration {
class ConfigurationListener;
class GroupItem;
}  // namespace zelk::configuration

namespace zelk::configuration::impl {

class ConfigurationListenerImpl {
public:
  ConfigurationListenerImpl();
  ~ConfigurationListenerImpl();

  // Registers listener for the place of item; false (and nothing changed) when it already was.
  bool startListeningTo(const GroupItem* item, ConfigurationListener* listener);
  // Unregisters listener from the place of item; false when it was not registered.
  bool stopListeningTo(const GroupItem* item, ConfigurationListener* listener);
  // Unregisters listener from every place it watched (the list itself is kept).
  void stopListeningToAll(ConfigurationListener* listener);
  // Empties the list of watched places, after stopListeningToAll, so that the listener can start
  // watching them again.
  void forgetItems();

private:
  std::set<ItemPlace> mItems;
  boost::mutex mMutex;
};

}  // namespace zelk::configuration::impl
