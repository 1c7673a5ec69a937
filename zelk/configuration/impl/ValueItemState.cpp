#include "zelk/configuration/impl/ValueItemState.h"

#include <atomic>

#include "zelk/configuration/GroupItem.h"
#include "zelk/configuration/impl/InstanceIds.h"
#include "zelk/configuration/impl/ValueGroupState.h"
#include "zelk/util/CaseInsensitiveHash.h"
#include "zelk/util/Contracts.h"

namespace zelk::configuration::impl {

namespace {

const char* const ITEM_TYPE_NAMES[] = {"bounded value", "unbounded value", "bounded value group"};

std::atomic<uint64_t> gRenameGeneration(0);

}  // namespace

ValueItemState::ValueItemState(const char* name)
    : mInstanceId(getNextInstanceId()), mGroupItem(0) {
  ZELK_CONTRACT_MESSAGE(name != 0 && *name != '\0', "Must provide a name");
  mName = name;
}

ValueItemState::ValueItemState(const GroupItem* groupItem)
    : mInstanceId(getNextInstanceId()),
      mGroupItem(groupItem),
      mGeneration(RegistryGeneration::of(groupItem)) {
  ZELK_CONTRACT(groupItem != 0);
}

// The copy is in no group yet; the parent link is copied as it stands (see ValueGroupState::clone).
ValueItemState::ValueItemState(const ValueItemState& other)
    : mInstanceId(getNextInstanceId()),
      mName(other.mName),
      mGroupItem(other.mGroupItem),
      mParent(other.mParent),
      mGeneration(other.mGeneration) {}

ValueItemState::~ValueItemState() {}

const GroupItem* ValueItemState::getGroupItem() const { return mGroupItem; }

bool ValueItemState::matches(const GroupItem& groupItem) const {
  if (mGroupItem != 0) {
    return mGroupItem == &groupItem;
  }
  return namesEqual(mName.c_str(), groupItem.getId());
}

// Dropping the binding renames the item back to its stored name.
void ValueItemState::reset() {
  // Only the binding changes, so the previous name's storage stays valid. The registry
  // generation stays held until the state is bound again or goes: a value's default parameter
  // still points into it.
  const char* before = getName();
  mGroupItem = 0;
  noteRename(before);
  bindingChanged();
  // The parent may still hold the item, but would no longer hear of its renames.
  if (!mParent.expired()) {
    markShared();
  }
  mParent.reset();
}

const char* ValueItemState::getName() const {
  return mGroupItem != 0 ? mGroupItem->getId() : mName.c_str();
}

// Renames the item: a group holding it finds it under the new name (see
// ValueGroupState::findIndex).
void ValueItemState::setName(const char* name) {
  ZELK_CONTRACT_MESSAGE(name != 0 && *name != '\0', "Must provide a name");
  const std::string before = getName();
  mName = name;
  noteRename(before.c_str());
}

boost::shared_ptr<ValueGroupState> ValueItemState::getParent() const { return mParent.lock(); }

void ValueItemState::setParent(const boost::shared_ptr<ValueGroupState>& parent) {
  const boost::shared_ptr<ValueGroupState> previous = mParent.lock();
  if (previous && previous != parent) {
    markShared();  // the previous parent may still hold the item
  }
  mParent = parent;
}

// Binding renames the item to the group item's id, also for the group that already holds it.
void ValueItemState::setGroupItem(const GroupItem* groupItem) {
  ZELK_CONTRACT(groupItem != 0);
  ZELK_CONTRACT(mGroupItem == 0 || mGroupItem == groupItem);
  const char* before = getName();
  mGroupItem = groupItem;
  mGeneration = RegistryGeneration::of(groupItem);
  noteRename(before);
  bindingChanged();
}

const char* ValueItemState::getItemTypeName(ValueGroupItem::ItemType type) {
  ZELK_CONTRACT(type >= ValueGroupItem::VALUE && type <= ValueGroupItem::VALUE_GROUP);
  return ITEM_TYPE_NAMES[type];
}

uint64_t ValueItemState::getRenameGeneration() {
  return gRenameGeneration.load(std::memory_order_acquire);
}

void ValueItemState::noteRename(const char* before) const {
  if (namesEqual(before, getName())) {
    return;
  }
  if (mShared.load(std::memory_order_acquire)) {
    gRenameGeneration.fetch_add(1, std::memory_order_acq_rel);
  } else if (const boost::shared_ptr<ValueGroupState> parent = mParent.lock()) {
    parent->noteItemRenamed();
  }
  // An item that is neither shared nor parented sits in no group: no index knows its name.
}

bool ValueItemState::namesEqual(const char* a, const char* b) {
  return caseInsensitiveEqual(a, b);
}

}  // namespace zelk::configuration::impl
