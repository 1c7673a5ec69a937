#include "zelk/configuration/ValueGroupItem.h"

#include "zelk/configuration/ConfigurationException.h"
#include "zelk/configuration/ValueGroup.h"
#include "zelk/configuration/impl/ValueAccess.h"
#include "zelk/configuration/impl/ValueGroupState.h"
#include "zelk/configuration/impl/ValueItemState.h"

namespace zelk::configuration {

ValueGroupItem::ValueGroupItem() {}

ValueGroupItem::ValueGroupItem(const boost::shared_ptr<impl::ValueItemState>& state)
    : mState(state) {}

ValueGroupItem::ValueGroupItem(const ValueGroupItem& other) : mState(other.mState) {}

ValueGroupItem& ValueGroupItem::operator=(const ValueGroupItem& other) {
  mState = other.mState;
  return *this;
}

ValueGroupItem::~ValueGroupItem() {}

const boost::shared_ptr<impl::ValueItemState>& ValueGroupItem::getState() const {
  if (!mState) {
    throw ConfigurationException(
        "Cannot access a value or value group when isNull() returns true");
  }
  return mState;
}

const GroupItem* ValueGroupItem::getGroupItem() const { return getState()->getGroupItem(); }

bool ValueGroupItem::matches(const GroupItem& groupItem) const {
  return getState()->matches(groupItem);
}

bool ValueGroupItem::isMatched() const { return getGroupItem() != 0; }

const char* ValueGroupItem::getName() const { return getState()->getName(); }

void ValueGroupItem::setName(const char* name) { getState()->setName(name); }

void ValueGroupItem::setGroupItem(const GroupItem* groupItem) {
  getState()->setGroupItem(groupItem);
}

ValueGroup ValueGroupItem::getParent() const { return ValueGroup(getState()->getParent()); }

void ValueGroupItem::setParent(const ValueGroup& parent) {
  getState()->setParent(impl::ValueAccess::peekState(parent));
}

uint32_t ValueGroupItem::getInstanceId() const { return getState()->getInstanceId(); }

const char* ValueGroupItem::getItemTypeName() const {
  return impl::ValueItemState::getItemTypeName(getItemType());
}

}  // namespace zelk::configuration
