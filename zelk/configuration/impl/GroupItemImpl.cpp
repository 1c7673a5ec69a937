#include "zelk/configuration/impl/GroupItemImpl.h"

#include "zelk/configuration/Constraint.h"
#include "zelk/configuration/Container.h"
#include "zelk/configuration/LogicalGroup.h"
#include "zelk/configuration/OneOf.h"
#include "zelk/configuration/impl/ContainerImpl.h"
#include "zelk/util/Contracts.h"

namespace zelk::configuration::impl {

GroupItemImpl::GroupItemImpl(GroupItem* self, int32_t characteristics)
    : mSelf(self), mCharacteristics(characteristics), mContainer(0), mConstraint(0) {
  ZELK_CONTRACT(mSelf != 0);
}

GroupItemImpl::~GroupItemImpl() {}

GroupItem* GroupItemImpl::getSelf() const {
  ZELK_CONTRACT(mSelf != 0);
  return mSelf;
}

bool GroupItemImpl::isOptional() const {
  if (getOneOf() != 0) {
    return true;
  }
  return (mCharacteristics & GroupItem::OPTIONAL) != 0;
}

bool GroupItemImpl::isUnbounded() const { return (mCharacteristics & GroupItem::UNBOUNDED) != 0; }

bool GroupItemImpl::isHidden() const { return (mCharacteristics & GroupItem::HIDDEN) != 0; }

void GroupItemImpl::copyToCollection(GroupItemCollection& collection) const {
  collection.addItem(clone(GroupItem::DEEP));
}

int32_t GroupItemImpl::getUnusedCharacteristics() const { return 0; }

void GroupItemImpl::setContainer(Container* container) {
  const bool changed = mContainer != container;
  mContainer = container;
  // The container's searches walk only items linked to it, so a new link changes what they find.
  if (changed && container != 0) {
    container->getContainerImpl()->invalidateSearchIndex();
  }
}

void GroupItemImpl::setConstraint(Constraint* constraint) { mConstraint = constraint; }

OneOf* GroupItemImpl::getOneOf() const {
  if (mConstraint != 0 && mConstraint->getItemType() == GroupItem::ONE_OF) {
    return static_cast<OneOf*>(mConstraint);
  }
  return 0;
}

LogicalGroup* GroupItemImpl::getLogicalGroup() const {
  if (mConstraint != 0 && mConstraint->getItemType() == GroupItem::LOGICAL_GROUP) {
    return static_cast<LogicalGroup*>(mConstraint);
  }
  return 0;
}

GroupItemCollection* GroupItemImpl::getCollection() const {
  if (mConstraint != 0) {
    return mConstraint;
  }
  return mContainer;
}

void GroupItemImpl::setCharacteristics(int32_t characteristics) {
  mCharacteristics = characteristics & ~getUnusedCharacteristics();
}

void GroupItemImpl::setOptional(bool optional) {
  setCharacteristics(optional ? (mCharacteristics | GroupItem::OPTIONAL)
                              : (mCharacteristics & ~GroupItem::OPTIONAL));
}

void GroupItemImpl::setHidden(bool hidden) {
  setCharacteristics(hidden ? (mCharacteristics | GroupItem::HIDDEN)
                            : (mCharacteristics & ~GroupItem::HIDDEN));
}

bool GroupItemImpl::isDescendantOf(const GroupItemCollection* collection) const {
  ZELK_CONTRACT(collection != 0);
  const GroupItemCollection* current = getCollection();
  while (current != 0) {
    // A collection that encloses itself would loop forever.
    if (current == mSelf) {
      return false;
    }
    if (current == collection) {
      return true;
    }
    current = current->getCollection();
  }
  return false;
}

bool GroupItemImpl::isDirectDescendantOf(const GroupItemCollection* collection) const {
  ZELK_CONTRACT(collection != 0);
  if (collection->getItemType() != GroupItem::CONTAINER) {
    return mConstraint == collection;
  }
  return mContainer == collection;
}

}  // namespace zelk::configuration::impl
