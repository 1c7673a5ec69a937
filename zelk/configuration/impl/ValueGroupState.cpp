#include "zelk/configuration/impl/ValueGroupState.h"

#include <algorithm>
#include <new>
#include <stdexcept>
#include <string>

#include "zelk/configuration/Container.h"
#include "zelk/configuration/ParameterRef.h"
#include "zelk/configuration/Value.h"
#include "zelk/configuration/ValueGroup.h"
#include "zelk/configuration/impl/ValueAccess.h"
#include "zelk/configuration/impl/ValueState.h"
#include "zelk/util/CaseInsensitiveHash.h"
#include "zelk/util/Contracts.h"

namespace zelk::configuration::impl {

namespace {

const size_t INDEX_THRESHOLD = ValueGroupSnapshot::INDEX_THRESHOLD;

// Locked look-ups by name, without a change between them, after which a group of count items
// publishes a snapshot: building one costs about a look-up per item, so waiting for a quarter of
// the item count keeps the building linear in the look-ups even when changes and look-ups
// alternate.
uint32_t lookUpsBeforeSnapshot(size_t count) {
  return static_cast<uint32_t>(std::min<size_t>(std::max<size_t>(4, count / 4), UINT32_MAX));
}

// Retires a withdrawn snapshot when it goes out of scope: declared before the lock guard, it
// runs after the lock is released, so that items the snapshot alone held die outside the lock.
class SnapshotRetirement {
public:
  SnapshotRetirement() = default;
  SnapshotRetirement(const SnapshotRetirement&) = delete;
  SnapshotRetirement& operator=(const SnapshotRetirement&) = delete;
  ~SnapshotRetirement() { ReadEpoch::retire(mSnapshot, &ValueGroupSnapshot::destroy); }
  void take(const ValueGroupSnapshot* snapshot) { mSnapshot = snapshot; }

private:
  const ValueGroupSnapshot* mSnapshot = nullptr;
};

}  // namespace

boost::shared_ptr<ValueGroupState> ValueGroupState::create(const char* name) {
  return boost::shared_ptr<ValueGroupState>(new ValueGroupState(name));
}

boost::shared_ptr<ValueGroupState> ValueGroupState::create(const Container* container) {
  return boost::shared_ptr<ValueGroupState>(new ValueGroupState(container));
}

ValueGroupState::ValueGroupState(const char* name) : ValueItemState(name), mComplete(false) {}

ValueGroupState::ValueGroupState(const Container* container)
    : ValueItemState(static_cast<const GroupItem*>(container)), mComplete(false) {}

ValueGroupState::ValueGroupState(const ValueGroupState& other)
    : ValueItemState(other),
      boost::enable_shared_from_this<ValueGroupState>(),
      mComplete(other.isComplete()) {}

// No reader can be inside this group's snapshot: each holds a handle on the group.
ValueGroupState::~ValueGroupState() { delete mSnapshot.load(); }

bool ValueGroupState::isUnbounded() const {
  // An unmatched group counts as unbounded by design.
  return mGroupItem == 0 || mGroupItem->isUnbounded();
}

boost::shared_ptr<ValueItemState> ValueGroupState::clone(int shallow) const {
  boost::shared_ptr<ValueGroupState> copy(new ValueGroupState(*this));
  if (shallow == 0) {
    // The children are copied from a snapshot, so that no lock of this group is held while the
    // children's own states are read.
    const Items items = getItems();
    copy->mItems.reserve(items.size());
    for (const boost::shared_ptr<ValueItemState>& item : items) {
      boost::shared_ptr<ValueItemState> child = item->clone(0);
      // Set directly: the copy is held by this new group alone, whatever its copied link said.
      child->mParent = copy;
      copy->mItems.push_back(child);
    }
    copy->rebuildIndex();
  }
  return copy;
}

void ValueGroupState::reset() {
  Items items;
  {
    SnapshotRetirement retirement;
    WriteGuard lock(mMutex);
    retirement.take(withdrawSnapshot());
    items.swap(mItems);
    rebuildIndex();
  }
  for (const boost::shared_ptr<ValueItemState>& item : items) {
    item->reset();
  }
  ValueItemState::reset();
}

const Container* ValueGroupState::getContainer() const {
  if (mGroupItem == 0 || mGroupItem->getItemType() != GroupItem::CONTAINER) {
    return 0;
  }
  return static_cast<const Container*>(mGroupItem);
}

size_t ValueGroupState::findIndex(const char* name, size_t start) const {
  const size_t count = mItems.size();
  if (name == 0 || !indexIsCurrent()) {
    for (size_t i = start; i < count; ++i) {
      if (namesEqual(mItems[i]->getName(), name)) {
        return i;
      }
    }
    return count;
  }
  const NameIndex::const_iterator found = mIndex.find(caseInsensitiveHash(name));
  if (found == mIndex.end()) {
    return count;
  }
  const std::vector<size_t>& positions = found->second;
  for (std::vector<size_t>::const_iterator it =
           std::lower_bound(positions.begin(), positions.end(), start);
       it != positions.end(); ++it) {
    // Names that only share the hash are skipped here.
    if (namesEqual(mItems[*it]->getName(), name)) {
      return *it;
    }
  }
  return count;
}

bool ValueGroupState::indexIsCurrent() const {
  return mIndexValid && mIndexRenames == mRenames.load(std::memory_order_acquire) &&
         mIndexGeneration == getRenameGeneration();
}

bool ValueGroupState::hasCurrentIndex() const {
  ReadGuard lock(mMutex);
  return indexIsCurrent();
}

void ValueGroupState::rebuildIndex() {
  mIndex.clear();
  mIndexValid = false;
  const size_t count = mItems.size();
  if (count < INDEX_THRESHOLD) {
    return;
  }
  // The counters are read first: a rename during the build makes the next check fail.
  mIndexGeneration = getRenameGeneration();
  mIndexRenames = mRenames.load(std::memory_order_acquire);
  mIndex.reserve(count);
  for (size_t i = 0; i < count; ++i) {
    mIndex[caseInsensitiveHash(mItems[i]->getName())].push_back(i);
  }
  mIndexValid = true;
}

void ValueGroupState::indexAppended(size_t position) {
  if (indexIsCurrent()) {
    mIndex[caseInsensitiveHash(mItems[position]->getName())].push_back(position);
  } else if (mItems.size() >= INDEX_THRESHOLD) {
    rebuildIndex();
  }
}

size_t ValueGroupState::getItemCount(const char* name) const {
  ReadGuard lock(mMutex);
  if (name == 0) {
    return mItems.size();
  }
  size_t count = 0;
  for (size_t i = findIndex(name); i < mItems.size(); i = findIndex(name, i + 1)) {
    ++count;
  }
  return count;
}

boost::shared_ptr<ValueItemState> ValueGroupState::getItem(size_t index) const {
  ReadGuard lock(mMutex);
  ZELK_CONTRACT_MESSAGE(index < mItems.size(), "Contract violation: \"index < getItemCount()\"");
  return mItems[index];
}

boost::shared_ptr<ValueItemState> ValueGroupState::tryGetItem(size_t index) const {
  ReadGuard lock(mMutex);
  if (index >= mItems.size()) {
    return boost::shared_ptr<ValueItemState>();
  }
  return mItems[index];
}

boost::shared_ptr<ValueItemState> ValueGroupState::findItem(const char* name) const {
  ZELK_CONTRACT(name != 0);
  {
    ReadEpoch::Section section;
    const ValueGroupSnapshot* snapshot = section.isActive() ? currentSnapshot() : nullptr;
    if (snapshot != nullptr) {
      const boost::shared_ptr<ValueItemState>* item = snapshot->find(name);
      return item != nullptr ? *item : boost::shared_ptr<ValueItemState>();
    }
  }
  return findItemLocked(name);
}

boost::shared_ptr<ValueItemState> ValueGroupState::findItemLocked(const char* name) const {
  ReadGuard lock(mMutex);
  const size_t index = findIndex(name);
  if (mLockedReads.fetch_add(1, std::memory_order_relaxed) + 1 >=
      lookUpsBeforeSnapshot(mItems.size())) {
    publishSnapshot();
  }
  if (index == mItems.size()) {
    return boost::shared_ptr<ValueItemState>();
  }
  return mItems[index];
}

const ValueGroupSnapshot* ValueGroupState::currentSnapshot() const {
  const ValueGroupSnapshot* snapshot = mSnapshot.load();
  if (snapshot == nullptr || snapshot->getRenameGeneration() != getRenameGeneration() ||
      snapshot->getGroupRenames() != mRenames.load(std::memory_order_acquire)) {
    return nullptr;
  }
  return snapshot;
}

bool ValueGroupState::hasCurrentSnapshot() const {
  ReadEpoch::Section section;
  return section.isActive() && currentSnapshot() != nullptr;
}

void ValueGroupState::publishSnapshot() const {
  if (mItems.size() >= UINT32_MAX) {
    return;  // positions are 32 bits; such a group stays with the lock
  }
  // The section keeps a stale snapshot that another reader replaces alive while it is looked at.
  ReadEpoch::Section section;
  if (!section.isActive() || currentSnapshot() != nullptr) {
    mLockedReads.store(0, std::memory_order_relaxed);
    return;  // a thread without a reader slot could not use it; or one is published already
  }
  // The counters are read before the copy: a rename during it makes the snapshot stale at once.
  const uint64_t generation = getRenameGeneration();
  const uint64_t renames = mRenames.load(std::memory_order_acquire);
  const ValueGroupSnapshot* fresh;
  try {
    fresh = new ValueGroupSnapshot(mItems, generation, renames);
  } catch (const std::bad_alloc&) {
    return;  // the look-ups keep the lock
  }
  mLockedReads.store(0, std::memory_order_relaxed);
  const ValueGroupSnapshot* previous = mSnapshot.load();
  if (mSnapshot.compare_exchange_strong(previous, fresh)) {
    ReadEpoch::retire(previous, &ValueGroupSnapshot::destroy);  // one made stale by a rename
  } else {
    delete fresh;  // another reader published first
  }
}

const ValueGroupSnapshot* ValueGroupState::withdrawSnapshot() {
  mLockedReads.store(0, std::memory_order_relaxed);
  return mSnapshot.exchange(nullptr);
}

const ValueState* ValueGroupState::valueWithIndex(const ValueItemState* item, size_t index) {
  if (item == nullptr || !item->isValue()) {
    return nullptr;
  }
  const ValueState* value = static_cast<const ValueState*>(item);
  // Deliberately count >= index: an index equal to the count passes here and fails in the read.
  if (index > 0 && value->getValueCount() < index) {
    throw std::out_of_range("Index " + std::to_string(index) + " is out of range");
  }
  return value;
}

boost::shared_ptr<ValueState> ValueGroupState::findValueState(const char* name,
                                                              size_t index) const {
  const boost::shared_ptr<ValueItemState> item = findItem(name);
  if (valueWithIndex(item.get(), index) == nullptr) {
    return boost::shared_ptr<ValueState>();
  }
  return boost::static_pointer_cast<ValueState>(item);
}

ValueGroupState::Items ValueGroupState::getItems() const {
  ReadGuard lock(mMutex);
  return mItems;
}

bool ValueGroupState::findNextGroup(size_t& position, const char* name) const {
  ReadGuard lock(mMutex);
  const size_t count = mItems.size();
  const bool anyName = name == 0 || *name == '\0';
  size_t i = anyName ? position : findIndex(name, std::min(position, count));
  while (i < count && !mItems[i]->isValueGroup()) {
    i = anyName ? i + 1 : findIndex(name, i + 1);
  }
  position = std::max(i, position);
  return i < count;
}

void ValueGroupState::add(const boost::shared_ptr<ValueItemState>& toAdd) {
  ZELK_CONTRACT(toAdd);
  if (toAdd->mParent.lock().get() != this) {
    toAdd->markShared();  // its renames would reach its parent only, not this group
  }
  boost::shared_ptr<ValueItemState> existing;
  {
    SnapshotRetirement retirement;
    WriteGuard lock(mMutex);
    if (toAdd->isValue()) {
      const size_t index = findIndex(toAdd->getName());
      if (index < mItems.size() && mItems[index]->isValue()) {
        existing = mItems[index];
      }
    }
    if (!existing) {
      retirement.take(withdrawSnapshot());
      mItems.push_back(toAdd);
      indexAppended(mItems.size() - 1);
      return;
    }
  }
  // Values are unique by name: the new texts join the existing value. The value's own lock
  // guards the append; this group's lock is not held meanwhile.
  static_cast<ValueState&>(*existing).append(static_cast<const ValueState&>(*toAdd));
}

boost::shared_ptr<ValueItemState> ValueGroupState::remove(const char* name) {
  ZELK_CONTRACT(name != 0 && *name != '\0');
  SnapshotRetirement retirement;
  UpgradeGuard lock(mMutex);
  const size_t index = findIndex(name);
  if (index == mItems.size()) {
    return boost::shared_ptr<ValueItemState>();
  }
  UpgradeGuard::Exclusive exclusive(lock);
  retirement.take(withdrawSnapshot());
  boost::shared_ptr<ValueItemState> removed = mItems[index];
  mItems.erase(mItems.begin() + static_cast<std::ptrdiff_t>(index));
  // Positions after the removed item moved; erasing was linear already, so is the rebuild.
  rebuildIndex();
  return removed;
}

boost::shared_ptr<ValueItemState> ValueGroupState::remove(size_t index) {
  SnapshotRetirement retirement;
  WriteGuard lock(mMutex);
  ZELK_CONTRACT(index < mItems.size());
  retirement.take(withdrawSnapshot());
  boost::shared_ptr<ValueItemState> removed = mItems[index];
  mItems.erase(mItems.begin() + static_cast<std::ptrdiff_t>(index));
  // Positions after the removed item moved; erasing was linear already, so is the rebuild.
  rebuildIndex();
  return removed;
}

void ValueGroupState::clear() {
  Items items;
  {
    SnapshotRetirement retirement;
    WriteGuard lock(mMutex);
    retirement.take(withdrawSnapshot());
    items.swap(mItems);
    rebuildIndex();
  }
  // The items die (when nobody else holds them) after the lock is released.
}

Value ValueGroupState::getDefaultValueFor(const char* name) const {
  const Container* container = getContainer();
  if (container == 0 || name == 0 || *name == '\0') {
    return Value::Null;
  }
  const ParameterRef* ref = container->findParameterRef(name);
  if (ref == 0 || ref->getOneOf() != 0) {
    return Value::Null;
  }
  const boost::shared_ptr<ValueState> fallback = ValueAccess::peekState(ref->getDefaultValue());
  if (!fallback) {
    return Value::Null;
  }
  // The registry keeps its defaults; the handle shares this group's ownership instead, so that
  // the group, and with it the registry generation it holds, lives as long as the handle.
  return Value(boost::shared_ptr<ValueState>(shared_from_this(), fallback.get()));
}

ValueGroup ValueGroupState::getDefaultValueGroup(const char* name) const {
  const Container* container = getContainer();
  if (container == 0 || name == 0 || *name == '\0') {
    return ValueGroup::Null;
  }
  const Container* nested = container->findContainer(name);
  if (nested == 0) {
    return ValueGroup::Null;
  }
  return ValueGroup(nested);
}

}  // namespace zelk::configuration::impl
