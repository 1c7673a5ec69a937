#include "zelk/configuration/impl/DescendantIterator.h"

#include <cassert>

#include "zelk/configuration/Container.h"
#include "zelk/util/Contracts.h"

namespace zelk::configuration::impl {

DescendantIterator::DescendantIterator(const GroupItemCollection* commonAncestor,
                                       int32_t itemType)
    : mCommonAncestor(commonAncestor), mItemType(itemType), mHomeContainer(0) {
  ZELK_CONTRACT(mCommonAncestor != 0);
  if (mCommonAncestor->getItemType() == GroupItem::CONTAINER) {
    mHomeContainer = static_cast<const Container*>(mCommonAncestor);
  } else {
    mHomeContainer = mCommonAncestor->getContainer();
  }
  push(mCommonAncestor);
}

void DescendantIterator::push(const GroupItemCollection* collection) {
  Position position = {collection, -1, false};
  mStack.push_back(position);
}

bool DescendantIterator::next() {
  while (!mStack.empty()) {
    Position& top = mStack.back();
    if (top.expandPending) {
      top.expandPending = false;
      push(static_cast<const GroupItemCollection*>(top.collection->getItem(top.index)));
      continue;
    }
    ++top.index;
    if (static_cast<size_t>(top.index) >= top.collection->getNumberOfItems()) {
      mStack.pop_back();
      continue;
    }
    const GroupItem* item = top.collection->getItem(top.index);
    if (item->getContainer() != mHomeContainer) {
      mStack.pop_back();
      continue;
    }
    const GroupItem::ItemType itemType = item->getItemType();
    const bool isConstraint =
        itemType == GroupItem::ONE_OF || itemType == GroupItem::LOGICAL_GROUP;
    if (mItemType == ALL_ITEM_TYPES) {
      // Visit the constraint itself first, then descend on the next call.
      if (isConstraint) {
        top.expandPending = true;
      }
      return true;
    }
    if (isConstraint) {
      assert(itemType == GroupItem::ONE_OF || itemType == GroupItem::LOGICAL_GROUP);
      push(static_cast<const GroupItemCollection*>(item));
      continue;
    }
    if (itemType == mItemType) {
      return true;
    }
  }
  return false;
}

const GroupItem* DescendantIterator::getCurrent() const {
  if (mStack.empty()) {
    return 0;
  }
  const Position& top = mStack.back();
  if (top.index < 0 || static_cast<size_t>(top.index) >= top.collection->getNumberOfItems()) {
    return 0;
  }
  return top.collection->getItem(top.index);
}

}  // namespace zelk::configuration::impl
