// ListenerManager: the process-wide registry of ConfigurationListeners, and their notifier.
//
// The value model calls the broadcasts when values and groups of complete trees are added,
// changed or removed; the event goes to the listeners of the nearest watched item (the item
// itself, else its closest enclosing container that has listeners), in ascending pointer order,
// under the manager's recursive mutex.
//
//   impl::ListenerManager::getInstance()->broadcastValueAdded(ref, ValueAddedArguments(&value));
#pragma once

#include <cstddef>
#include <map>
#include <set>

#include <boost/thread/recursive_mutex.hpp>

#include "zelk/configuration/ListenerArguments.h"

namespace zelk::configuration {
class ConfigurationListener;
class Container;
class GroupItem;
class ParameterRef;
}  // namespace zelk::configuration

namespace zelk::configuration::impl {

class ListenerManager {
public:
  typedef std::set<ConfigurationListener*> ListenerSet;
  typedef std::map<const GroupItem*, ListenerSet> ListenerMap;

  // The instance, created on first use (once, thread-safely); never destroyed.
  static ListenerManager* getInstance();

  // Registers listener for groupItem; false when it already was.
  bool addListener(ConfigurationListener* listener, const GroupItem* groupItem);
  // Unregisters listener from groupItem; false when it was not registered.
  bool removeListener(ConfigurationListener* listener, const GroupItem* groupItem);
  // Drops every registration.
  void reset();
  // Returns once no broadcast is running on another thread. Notifications are delivered under
  // this manager's mutex, so a listener that was unregistered before this call gets no
  // notification after it; on a thread that is itself delivering one it returns at once.
  void waitForDelivery() const;

  // Whether groupItem or one of its containers has listeners.
  bool hasListeners(const GroupItem* groupItem) const;
  // The number of listeners that groupItem's events reach.
  size_t getListenerCount(const GroupItem* groupItem) const;
  // The number of registrations.
  size_t getListenerCount() const;
  // The entry of groupItem, else of its nearest container that has one; end() when none.
  ListenerMap::const_iterator findListeners(const GroupItem* groupItem) const;

  void broadcastValueAdded(const ParameterRef* parameterRef, const ValueAddedArguments& args);
  void broadcastValueChanged(const ParameterRef* parameterRef, const ValueChangedArguments& args);
  void broadcastValueRemoved(const ParameterRef* parameterRef, const ValueRemovedArguments& args);
  void broadcastValueGroupAdded(const Container* container, const ValueGroupAddedArguments& args);
  void broadcastValueGroupRemoved(const Container* container,
                                  const ValueGroupRemovedArguments& args);

private:
  ListenerManager();
  ~ListenerManager();
  ListenerManager(const ListenerManager&) = delete;
  ListenerManager& operator=(const ListenerManager&) = delete;

  static void init();

  // Calls notify(listener) for every listener of groupItem's nearest watched item.
  template <typename Notify>
  void broadcast(const GroupItem* groupItem, Notify notify);

  ListenerMap mListeners;
  mutable boost::recursive_mutex mMutex;
  static ListenerManager* smInstance;
};

}  // namespace zelk::configuration::impl
