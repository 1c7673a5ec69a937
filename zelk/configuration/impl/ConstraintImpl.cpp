#include "zelk/configuration/impl/ConstraintImpl.h"

#include <string>

#include "zelk/configuration/Container.h"
#include "zelk/configuration/impl/ContainerImpl.h"
#include "zelk/util/Contracts.h"

namespace zelk::configuration::impl {

ConstraintImpl::ConstraintImpl(Constraint* self, int32_t characteristics)
    : GroupItemCollectionImpl(self, characteristics & ~UNUSED_CHARACTERISTICS) {}

ConstraintImpl::~ConstraintImpl() {}

Constraint* ConstraintImpl::getConstraintSelf() const {
  return static_cast<Constraint*>(getSelf());
}

GroupItem* ConstraintImpl::clone(GroupItem::CopyType copyType) const {
  // The copy starts unattached, with an empty id, like any new constraint.
  Constraint* copy = createEmpty();
  copy->getImpl()->setCharacteristics(mCharacteristics);
  if (copyType == GroupItem::DEEP) {
    copy->copyElementsFrom(*getConstraintSelf());
  }
  return copy;
}

void ConstraintImpl::computeId(const GroupItemCollection* parent) {
  // The id is fixed at the first attachment.
  if (!mId.empty() || parent == 0) {
    return;
  }
  const char* parentId = parent->getId();
  if (parentId != 0) {
    mId = parentId;
  }
  mId += "_";
  mId += getIdPrefix();
  mId += std::to_string(static_cast<unsigned long>(parent->getNumberOfItems() - 1));
}

void ConstraintImpl::setContainer(Container* container) {
  computeId(container);
  GroupItemImpl::setContainer(container);
  // Children share the constraint's container, also when they were added before the constraint
  // was attached (copies are filled that way).
  for (size_t i = 0; i < mItems.size(); ++i) {
    GroupItem* child = const_cast<GroupItem*>(mItems[i]);
    if (child->getContainer() != container) {
      child->setContainer(container);
    }
  }
}

void ConstraintImpl::setConstraint(Constraint* constraint) {
  computeId(constraint);
  GroupItemImpl::setConstraint(constraint);
}

void ConstraintImpl::addItem(const GroupItem* item) {
  GroupItemCollectionImpl::addItem(item);
  // The collection owns its children, so it may link them.
  GroupItem* child = const_cast<GroupItem*>(item);
  child->setConstraint(getConstraintSelf());
  child->setContainer(mContainer);
  if (isHidden()) {
    child->setHidden(true);
  }
  // The new child (and a nested constraint's new id) is visible to the container's searches.
  if (mContainer != 0) {
    mContainer->getContainerImpl()->invalidateSearchIndex();
  }
}

}  // namespace zelk::configuration::impl
