#include "zelk/configuration/impl/ConfigurationListenerImpl.h"

#include "zelk/configuration/impl/ListenerManager.h"

namespace zelk::configuration::impl {

ConfigurationListenerImpl::ConfigurationListenerImpl() {}

ConfigurationListenerImpl::~ConfigurationListenerImpl() {}

bool ConfigurationListenerImpl::startListeningTo(const GroupItem* item,
                                                 ConfigurationListener* listener) {
  // The manager's lock is released before this listener's own lock is taken.
  if (!ListenerManager::getInstance()->addListener(listener, item)) {
    return false;
  }
  boost::mutex::scoped_lock lock(mMutex);
  return mItems.insert(item).second;
}

bool ConfigurationListenerImpl::stopListeningTo(const GroupItem* item,
                                                ConfigurationListener* listener) {
  if (!ListenerManager::getInstance()->removeListener(listener, item)) {
    return false;
  }
  boost::mutex::scoped_lock lock(mMutex);
  return mItems.erase(item) != 0;
}

void ConfigurationListenerImpl::stopListeningToAll(ConfigurationListener* listener) {
  // Lock order: this listener's mutex, then the manager's.
  boost::mutex::scoped_lock lock(mMutex);
  ListenerManager* manager = ListenerManager::getInstance();
  for (const GroupItem* item : mItems) {
    manager->removeListener(listener, item);
  }
}

}  // namespace zelk::configuration::impl
