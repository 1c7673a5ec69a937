#include "zelk/configuration/impl/ListenerManager.h"

#include <boost/thread/once.hpp>

#include "zelk/configuration/ConfigurationListener.h"
#include "zelk/configuration/Container.h"
#include "zelk/configuration/ParameterRef.h"
#include "zelk/configuration/ValueBase.h"
#include "zelk/configuration/ValueGroup.h"
#include "zelk/util/Contracts.h"

namespace zelk::configuration::impl {

namespace {
boost::once_flag gInstanceOnce = BOOST_ONCE_INIT;
}

ListenerManager* ListenerManager::smInstance = 0;

ListenerManager::ListenerManager() {}

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
  boost::recursive_mutex::scoped_lock lock(mMutex);
  return mListeners[groupItem].insert(listener).second;
}

bool ListenerManager::removeListener(ConfigurationListener* listener,
                                     const GroupItem* groupItem) {
  ZELK_CONTRACT(groupItem != 0);
  ZELK_CONTRACT(listener != 0);
  boost::recursive_mutex::scoped_lock lock(mMutex);
  const ListenerMap::iterator entry = mListeners.find(groupItem);
  if (entry == mListeners.end()) {
    return false;
  }
  const bool erased = entry->second.erase(listener) != 0;
  if (entry->second.empty()) {
    mListeners.erase(entry);
  }
  return erased;
}

void ListenerManager::reset() {
  boost::recursive_mutex::scoped_lock lock(mMutex);
  mListeners.clear();
}

void ListenerManager::waitForDelivery() const {
  boost::recursive_mutex::scoped_lock lock(mMutex);
}

ListenerManager::ListenerMap::const_iterator ListenerManager::findListeners(
    const GroupItem* groupItem) const {
  if (groupItem == 0) {
    return mListeners.end();
  }
  boost::recursive_mutex::scoped_lock lock(mMutex);
  // Only the nearest watched item counts: listeners further up are not called.
  for (const GroupItem* item = groupItem; item != 0; item = item->getContainer()) {
    const ListenerMap::const_iterator entry = mListeners.find(item);
    if (entry != mListeners.end()) {
      return entry;
    }
  }
  return mListeners.end();
}

bool ListenerManager::hasListeners(const GroupItem* groupItem) const {
  boost::recursive_mutex::scoped_lock lock(mMutex);
  return findListeners(groupItem) != mListeners.end();
}

size_t ListenerManager::getListenerCount(const GroupItem* groupItem) const {
  boost::recursive_mutex::scoped_lock lock(mMutex);
  const ListenerMap::const_iterator entry = findListeners(groupItem);
  return entry == mListeners.end() ? 0 : entry->second.size();
}

size_t ListenerManager::getListenerCount() const {
  boost::recursive_mutex::scoped_lock lock(mMutex);
  size_t count = 0;
  for (const ListenerMap::value_type& entry : mListeners) {
    count += entry.second.size();
  }
  return count;
}

template <typename Notify>
void ListenerManager::broadcast(const GroupItem* groupItem, Notify notify) {
  boost::recursive_mutex::scoped_lock lock(mMutex);
  ListenerMap::const_iterator entry = findListeners(groupItem);
  if (entry == mListeners.end()) {
    return;
  }
  const GroupItem* const watched = entry->first;
  // Listeners are called in ascending pointer order. Each step looks the set up again, so that
  // a listener that stops listening from inside its notification does not break the walk.
  ListenerSet::const_iterator position = entry->second.begin();
  while (position != entry->second.end()) {
    ConfigurationListener* const listener = *position;
    notify(listener);
    entry = mListeners.find(watched);
    if (entry == mListeners.end()) {
      return;
    }
    position = entry->second.upper_bound(listener);
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
