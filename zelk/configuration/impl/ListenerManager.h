// ListenerManager: the process-wide registry of ConfigurationListeners, and their notifier.
//
// Listeners are registered for the place of an item (see ItemPlace: the specification's id and the
// ids of the containers down to the item), not for the item object, so a registration keeps
// holding when the registry is loaded again and the same specification is made of new objects,
// and never reaches a new item that happens to sit where an old one was. The value model calls the
// broadcasts when values and groups of complete trees are added, changed or removed; the event goes
// to the listeners of the nearest watched place (the item's own, else that of its closest enclosing
// container that has listeners), in ascending pointer order, under the manager's recursive mutex.
//
//   impl::ListenerManager::getInstance()->broadcastValueAdded(ref, ValueAddedArguments(&value));
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <set>
#include <string>

#include <boost/thread/recursive_mutex.hpp>

#include "zelk/configuration/ListenerArguments.h"
#include "zelk/util/CaseInsensitiveLess.h"

namespace zelk::configuration {
class ConfigurationListener;
class Container;
class GroupItem;
class ParameterRef;
}  // namespace zelk::configuration

namespace zelk::configuration::impl {

class ItemPlace;

class ListenerManager {
public:
  typedef std::set<ConfigurationListener*> ListenerSet;

  // The instance, created on first use (once, thread-safely); never destroyed.
  static ListenerManager* getInstance();

  // Registers listener for the place of groupItem; false when it already was.
  bool addListener(ConfigurationListener* listener, const GroupItem* groupItem);
  bool addListener(ConfigurationListener* listener, const ItemPlace& place);
  // Unregisters listener from the place of groupItem; false when it was not registered.
  bool removeListener(ConfigurationListener* listener, const GroupItem* groupItem);
  bool removeListener(ConfigurationListener* listener, const ItemPlace& place);
  // Drops every registration.
  void reset();
  // Returns once no broadcast is running on another thread. Notifications are delivered under
  // this manager's mutex, so a listener that was unregistered before this call gets no
  // notification after it; on a thread that is itself delivering one it returns at once.
  void waitForDelivery() const;

  // Whether the place of groupItem or of one of its containers has listeners.
  bool hasListeners(const GroupItem* groupItem) const;
  // The number of listeners that groupItem's events reach.
  size_t getListenerCount(const GroupItem* groupItem) const;
  // The number of registrations.
  size_t getListenerCount() const;
  // The listeners of groupItem's place, else of the nearest place above it that has some; null
  // when none (and for a null item). The set is the manager's own: read it under no other lock
  // than the one the broadcasts hold.
  const ListenerSet* findListeners(const GroupItem* groupItem) const;

  void broadcastValueAdded(const ParameterRef* parameterRef, const ValueAddedArguments& args);
  void broadcastValueChanged(const ParameterRef* parameterRef, const ValueChangedArguments& args);
  void broadcastValueRemoved(const ParameterRef* parameterRef, const ValueRemovedArguments& args);
  void broadcastValueGroupAdded(const Container* container, const ValueGroupAddedArguments& args);
  void broadcastValueGroupRemoved(const Container* container,
                                  const ValueGroupRemovedArguments& args);

private:
  // The listeners of one place and the places directly below it, by id. A place exists only while
  // it or a place below it has listeners.
  struct Place {
    ListenerSet listeners;
    std::map<std::string, std::unique_ptr<Place>, zelk::CaseInsensitiveLess> below;
    // Tells this place from one made later at the same address.
    uint64_t serial = 0;
  };

  ListenerManager();
  ~ListenerManager();
  ListenerManager(const ListenerManager&) = delete;
  ListenerManager& operator=(const ListenerManager&) = delete;

  static void init();

  // The place of groupItem, or null when nothing at or below it is watched; nearest becomes the
  // deepest place on the way down that has listeners (it is left alone when there is none).
  const Place* descend(const GroupItem* groupItem, const Place*& nearest) const;
  // The nearest watched place of groupItem, or null. The caller holds mMutex.
  const Place* findPlace(const GroupItem* groupItem) const;

  // Calls notify(listener) for every listener of groupItem's nearest watched place.
  template <typename Notify>
  void broadcast(const GroupItem* groupItem, Notify notify);

  // The top containers' places are below it; it never has listeners itself.
  Place mRoot;
  size_t mRegistrations;
  uint64_t mLastSerial;
  mutable boost::recursive_mutex mMutex;
  static ListenerManager* smInstance;
};

}  // namespace zelk::configuration::impl
