#include "zelk/configuration/impl/ListenerManager.h"

#include <vector>

#include <boost/thread/once.hpp>

#include "zelk/configuration/ConfigurationListener.h"
#include "zelk/configuration/Container.h"
#include "zelk/configuration/ParameterRef.h"
#include "zelk/configuration/ValueBase.h"
#include "zelk/configuration/ValueGroup.h"
#include "zelk/configuration/impl/ItemPlace.h"
#include "zelk/util/Contracts.h"

namespace zelk::configuration::impl {

namespace {
boost::once_flag gInstanceOnce = BOOST_ONCE_INIT;
}

ListenerManager* ListenerManager::smInstance = 0;

ListenerManager::ListenerManager() : mRegistrations(0), mLastSerial(0) {}

ListenerManager::~ListenerManager() {}

void ListenerManager::init() { smInstance = new ListenerManager(); }

ListenerManager* ListenerManager::getInstance() {
  // A throwing init() leaves the once region open, so that the next caller tries again.
  boost::call_once(gInstanceOnce, &ListenerManager::init);
  return smInstance;
}

bool ListenerManager::addListener(ConfigurationListener* listener, const GroupItem* groupItem) {
  ZELK_CONTRACT(groupItem != 0);
  ZELK_CONTRACT(listener != 0);
  return addListener(listener, ItemPlace(*groupItem));
}

bool ListenerManager::addListener(ConfigurationListener* listener, const ItemPlace& place) {
  ZELK_CONTRACT(listener != 0);
  boost::recursive_mutex::scoped_lock lock(mMutex);
  Place* at = &mRoot;
  for (const std::string& id : place.getIds()) {
    std::unique_ptr<Place>& below = at->below[id];
    if (!below) {
      below.reset(new Place);
      below->serial = ++mLastSerial;
    }
    at = below.get();
  }
  const bool inserted = at->listeners.insert(listener).second;
  if (inserted) {
    ++mRegistrations;
  }
  return inserted;
}

bool ListenerManager::removeListener(ConfigurationListener* listener,
                                     const GroupItem* groupItem) {
  ZELK_CONTRACT(groupItem != 0);
  ZELK_CONTRACT(listener != 0);
  return removeListener(listener, ItemPlace(*groupItem));
}

bool ListenerManager::removeListener(ConfigurationListener* listener, const ItemPlace& place) {
  ZELK_CONTRACT(listener != 0);
  boost::recursive_mutex::scoped_lock lock(mMutex);
  // The places from the top down to the one of the registration.
  std::vector<Place*> path(1, &mRoot);
  for (const std::string& id : place.getIds()) {
    const auto below = path.back()->below.find(id);
    if (below == path.back()->below.end()) {
      return false;
    }
    path.push_back(below->second.get());
  }
  if (path.back()->listeners.erase(listener) == 0) {
    return false;
  }
  --mRegistrations;
  // Places left with nothing at or below them go, from the bottom up.
  for (size_t i = path.size() - 1; i > 0; --i) {
    if (!path[i]->listeners.empty() || !path[i]->below.empty()) {
      break;
    }
    path[i - 1]->below.erase(place.getIds()[i - 1]);
  }
  return true;
}

void ListenerManager::reset() {
  boost::recursive_mutex::scoped_lock lock(mMutex);
  mRoot.below.clear();
  mRegistrations = 0;
}

void ListenerManager::waitForDelivery() const {
  boost::recursive_mutex::scoped_lock lock(mMutex);
}

const ListenerManager::Place* ListenerManager::descend(const GroupItem* groupItem,
                                                       const Place*& nearest) const {
  const GroupItem* container = groupItem->getContainer();
  const Place* above = container == 0 ? &mRoot : descend(container, nearest);
  if (above == 0) {
    return 0;
  }
  const auto below = above->below.find(groupItem->getId());
  if (below == above->below.end()) {
    return 0;
  }
  const Place* place = below->second.get();
  if (!place->listeners.empty()) {
    nearest = place;
  }
  return place;
}

const ListenerManager::Place* ListenerManager::findPlace(const GroupItem* groupItem) const {
  if (groupItem == 0 || mRoot.below.empty()) {
    return 0;
  }
  // Only the nearest watched place counts: listeners further up are not called.
  const Place* nearest = 0;
  descend(groupItem, nearest);
  return nearest;
}

const ListenerManager::ListenerSet* ListenerManager::findListeners(
    const GroupItem* groupItem) const {
  boost::recursive_mutex::scoped_lock lock(mMutex);
  const Place* place = findPlace(groupItem);
  return place != 0 ? &place->listeners : 0;
}

bool ListenerManager::hasListeners(const GroupItem* groupItem) const {
  return findListeners(groupItem) != 0;
}

size_t ListenerManager::getListenerCount(const GroupItem* groupItem) const {
  boost::recursive_mutex::scoped_lock lock(mMutex);
  const ListenerSet* listeners = findListeners(groupItem);
  return listeners != 0 ? listeners->size() : 0;
}

size_t ListenerManager::getListenerCount() const {
  boost::recursive_mutex::scoped_lock lock(mMutex);
  return mRegistrations;
}

template <typename Notify>
void ListenerManager::broadcast(const GroupItem* groupItem, Notify notify) {
  boost::recursive_mutex::scoped_lock lock(mMutex);
  const Place* watched = findPlace(groupItem);
  if (watched == 0) {
    return;
  }
  const uint64_t serial = watched->serial;
  // Listeners are called in ascending pointer order. A notification may start or stop watching
  // (its own place included), so each step looks the place up again and goes on only while the
  // same place is still the nearest watched one; the saved pointer is never followed.
  ListenerSet::const_iterator position = watched->listeners.begin();
  while (position != watched->listeners.end()) {
    ConfigurationListener* const listener = *position;
    notify(listener);
    watched = findPlace(groupItem);
    if (watched == 0 || watched->serial != serial) {
      return;
    }
    position = watched->listeners.upper_bound(listener);
  }
}
void ListenerManager::broadcastValueAdded(const ParameterRef* parameterRef,
                                          const ValueAddedArguments& args) {
  if (args.mValue == 0 || !args.mValue->isComplete()) {
    return;
  }
  broadcast(parameterRef, [&](ConfigurationListener* listener) {
    listener->onValueAdded(parameterRef, args);
  });
}

void ListenerManager::broadcastValueChanged(const ParameterRef* parameterRef,
                                            const ValueChangedArguments& args) {
  if (args.mValue == 0 || !args.mValue->isComplete()) {
    return;
  }
  broadcast(parameterRef, [&](ConfigurationListener* listener) {
    listener->onValueChanged(parameterRef, args);
  });
}

void ListenerManager::broadcastValueRemoved(const ParameterRef* parameterRef,
                                            const ValueRemovedArguments& args) {
  if (args.mValue == 0 || !args.mValue->isComplete()) {
    return;
  }
  broadcast(parameterRef, [&](ConfigurationListener* listener) {
    listener->onValueRemoved(parameterRef, args);
  });
}

void ListenerManager::broadcastValueGroupAdded(const Container* container,
                                               const ValueGroupAddedArguments& args) {
  if (args.mValueGroup == 0 || !args.mValueGroup->isComplete()) {
    return;
  }
  broadcast(container, [&](ConfigurationListener* listener) {
    listener->onValueGroupAdded(container, args);
  });
}

void ListenerManager::broadcastValueGroupRemoved(const Container* container,
                                                 const ValueGroupRemovedArguments& args) {
  if (args.mValueGroup == 0 || !args.mValueGroup->isComplete()) {
    return;
  }
  broadcast(container, [&](ConfigurationListener* listener) {
    listener->onValueGroupRemoved(container, args);
  });
}

}  // namespace zelk::configuration::impl
