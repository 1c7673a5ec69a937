#include "zelk/configuration/impl/ConfigurationListenerImpl.h"

#include <vector>

#include "zelk/configuration/impl/ListenerManager.h"

namespace zelk::configuration::impl {

ConfigurationListenerImpl::ConfigurationListenerImpl() {}

ConfigurationListenerImpl::~ConfigurationListenerImpl() {}

bool ConfigurationListenerImpl::startListeningTo(const GroupItem* item,
                                                 ConfigurationListener* listener) {
  const ItemPlace place(*item);
  // The manager's lock is released before this listener's own lock is taken.
  if (!ListenerManager::getInstance()->addListener(listener, place)) {
    return false;
  }
  boost::mutex::scoped_lock lock(mMutex);
  return mItems.insert(place).second;
}

bool ConfigurationListenerImpl::stopListeningTo(const GroupItem* item,
                                                ConfigurationListener* listener) {
  const ItemPlace place(*item);
  if (!ListenerManager::getInstance()->removeListener(listener, place)) {
    return false;
  }
  boost::mutex::scoped_lock lock(mMutex);
  return mItems.erase(place) != 0;
}

void ConfigurationListenerImpl::stopListeningToAll(ConfigurationListener* listener) {
  // The places are copied out, so that this listener's mutex is never held while the manager's
  // is taken: a notification on another thread (which holds the manager's mutex) may itself
  // start or stop watching places of this listener.
  std::vector<ItemPlace> places;
  {
    boost::mutex::scoped_lock lock(mMutex);
    places.assign(mItems.begin(), mItems.end());
  }
  ListenerManager* manager = ListenerManager::getInstance();
  for (const ItemPlace& place : places) {
    manager->removeListener(listener, place);
  }
}

void ConfigurationListenerImpl::forgetItems() {
  boost::mutex::scoped_lock lock(mMutex);
  mItems.clear();
}

}  // namespace zelk::configuration::impl
