#include "zelk/configuration/GroupItem.h"

#include "zelk/configuration/impl/GroupItemImpl.h"
#include "zelk/util/Contracts.h"

namespace zelk::configuration {

GroupItem::GroupItem(impl::GroupItemImpl* impl) : mImpl(impl) { ZELK_CONTRACT(mImpl); }

GroupItem::~GroupItem() {}

const char* GroupItem::getId() const { return mImpl->getId(); }

bool GroupItem::isOptional() const { return mImpl->isOptional(); }

bool GroupItem::isUnbounded() const { return mImpl->isUnbounded(); }

bool GroupItem::isHidden() const { return mImpl->isHidden(); }

GroupItem::ItemType GroupItem::getItemType() const { return mImpl->getItemType(); }

const char* GroupItem::getItemTypeName() const { return mImpl->getItemTypeName(); }

bool GroupItem::accept(GroupItemVisitor& visitor) const { return mImpl->accept(visitor); }

GroupItem* GroupItem::clone(CopyType copyType) const { return mImpl->clone(copyType); }

void GroupItem::copyToCollection(GroupItemCollection& collection) const {
  mImpl->copyToCollection(collection);
}

Container* GroupItem::getContainer() const { return mImpl->getContainer(); }

void GroupItem::setContainer(Container* container) { mImpl->setContainer(container); }

Constraint* GroupItem::getConstraint() const { return mImpl->getConstraint(); }

void GroupItem::setConstraint(Constraint* constraint) { mImpl->setConstraint(constraint); }

OneOf* GroupItem::getOneOf() const { return mImpl->getOneOf(); }

LogicalGroup* GroupItem::getLogicalGroup() const { return mImpl->getLogicalGroup(); }

GroupItemCollection* GroupItem::getCollection() const { return mImpl->getCollection(); }

int32_t GroupItem::getCharacteristics() const { return mImpl->getCharacteristics(); }

void GroupItem::setCharacteristics(int32_t characteristics) {
  mImpl->setCharacteristics(characteristics);
}

void GroupItem::setOptional(bool optional) { mImpl->setOptional(optional); }

void GroupItem::setHidden(bool hidden) { mImpl->setHidden(hidden); }

bool GroupItem::isDescendantOf(const GroupItemCollection* collection) const {
  return mImpl->isDescendantOf(collection);
}

bool GroupItem::isDirectDescendantOf(const GroupItemCollection* collection) const {
  return mImpl->isDirectDescendantOf(collection);
}

impl::GroupItemImpl* GroupItem::getImpl() const { return mImpl.get(); }

}  // namespace zelk::configuration
