#include "zelk/configuration/impl/ConfigurationListenerImpl.h"

#include <vector>

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
  // The items are copied out, so that this listener's mutex is never held while the manager's is
  // taken: a notification on another thread (which holds the manager's mutex) may itself start or
  // stop watching items of this listener.
  std::vector<const GroupItem*> items;
  {
    boost::mutex::scoped_lock lock(mMutex);
    items.assign(mItems.begin(), mItems.end());
  }
  ListenerManager* manager = ListenerManager::getInstance();
  for (const GroupItem* item : items) {
    manager->removeListener(listener, item);
  }
}

void ConfigurationListenerImpl::forgetItems() {
  boost::mutex::scoped_lock lock(mMutex);
  mItems.clear();
}

}  // namespace zelk::configuration::impl
