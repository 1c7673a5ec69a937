// ValueGroupState: the shared state behind ValueGroup handles: the ordered list of items of one
// group and its complete flag.
//
// Made only through create() (children keep a weak pointer to their group, taken from
// shared_from_this). Readers take the group's mutex shared, writers exclusively; no lock is held
// while another group's state is called, except the source's lock in clone(). Look-ups by name
// (findItem, findValueState, readValue) take no lock at all once the group publishes a snapshot
// of its items (see ValueGroupSnapshot): after a run of locked look-ups in which it did not
// change. Every change of the items withdraws the snapshot under the exclusive lock.
//
//   boost::shared_ptr<impl::ValueGroupState> root = impl::ValueGroupState::create("root");
//   ValueGroup group(root);
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <unordered_map>
#include <vector>

#include <boost/enable_shared_from_this.hpp>
#include <boost/shared_ptr.hpp>

#include "zelk/configuration/impl/ValueGroupSnapshot.h"
#include "zelk/configuration/impl/ValueItemState.h"
#include "zelk/configuration/impl/ValueLocks.h"
#include "zelk/util/ReadEpoch.h"

namespace zelk::configuration {
class Container;
class Value;
class ValueGroup;
}  // namespace zelk::configuration

namespace zelk::configuration::impl {

class ValueState;

class ValueGroupState : public ValueItemState,
                        public boost::enable_shared_from_this<ValueGroupState> {
public:
  typedef std::vector<boost::shared_ptr<ValueItemState>> Items;

  // A new, empty group named name ("Must provide a name" for a null or empty name).
  static boost::shared_ptr<ValueGroupState> create(const char* name);
  // A new, empty group bound to container (contract "groupItem != 0").
  static boost::shared_ptr<ValueGroupState> create(const Container* container);
  ~ValueGroupState() override;

  bool isValue() const override { return false; }
  bool isValueGroup() const override { return true; }
  // True when unbound (an unmatched group counts as unbounded), else the container's.
  bool isUnbounded() const override;
  // Deep (0): every item cloned into the copy; else an empty copy. Name, binding, parent and
  // complete flag are kept; the copy has a new instance id.
  boost::shared_ptr<ValueItemState> clone(int shallow) const override;
  // Resets and removes every item, then drops the group's own binding and parent.
  void reset() override;

  // The bound container, or null.
  const Container* getContainer() const;

  // The number of items, or of items named name.
  size_t getItemCount(const char* name = 0) const;
  // The item at index; contract "index < getItemCount()".
  boost::shared_ptr<ValueItemState> getItem(size_t index) const;
  // The first item named name (case-insensitively), or empty; contract "name != 0".
  boost::shared_ptr<ValueItemState> findItem(const char* name) const;
  // The value named name if it holds at least index texts; std::out_of_range "Index <i> is out of
  // range" when it holds fewer; empty when there is no value of that name.
  boost::shared_ptr<ValueState> findValueState(const char* name, size_t index) const;
  // Calls read(value) with the value that findValueState(name, index) would find and returns
  // true, or returns false when there is none (throwing as findValueState). The value stays alive
  // until read returns, without a reference count taken while the snapshot answers.
  template <typename Read>
  bool readValue(const char* name, size_t index, Read&& read) const {
    {
      ReadEpoch::Section section;
      const ValueGroupSnapshot* snapshot = section.isActive() ? currentSnapshot() : nullptr;
      if (snapshot != nullptr) {
        const boost::shared_ptr<ValueItemState>* item = snapshot->find(name);
        const ValueState* value = valueWithIndex(item != nullptr ? item->get() : nullptr, index);
        if (value == nullptr) {
          return false;
        }
        read(*value);
        return true;
      }
    }
    const boost::shared_ptr<ValueState> value = findValueState(name, index);
    if (!value) {
      return false;
    }
    read(*value);
    return true;
  }
  // A snapshot of the items, in order.
  Items getItems() const;
  // The item at index, or empty when index is not below the item count.
  boost::shared_ptr<ValueItemState> tryGetItem(size_t index) const;
  // Moves position (taken as the first candidate) to the first group at or after it named name
  // (any group for a null or empty name) and returns true; when there is none, moves it to at
  // least the item count and returns false.
  bool findNextGroup(size_t& position, const char* name) const;

  // Appends toAdd; a value whose name a value of this group already has is appended to that value
  // instead (ValueState::append). Contract "toAdd".
  void add(const boost::shared_ptr<ValueItemState>& toAdd);
  // Removes the first item named name and returns it, or returns empty.
  boost::shared_ptr<ValueItemState> remove(const char* name);
  // Removes the item at index and returns it; contract "index < mItems.size()".
  boost::shared_ptr<ValueItemState> remove(size_t index);
  // Removes every item.
  void clear();

  bool isComplete() const { return mComplete.load(std::memory_order_acquire); }
  void setComplete(bool complete) { mComplete.store(complete, std::memory_order_release); }

  // Whether look-ups by name answer from the name index: the group is large enough to have one,
  // and no item it may hold was renamed since it was built.
  bool hasCurrentIndex() const;
  // Whether look-ups by name answer without the lock: a snapshot is published and no item was
  // renamed since it was built.
  bool hasCurrentSnapshot() const;
  // Called by an item of this group whose name changed: look-ups scan until the next change of
  // the group rebuilds the index. Takes no lock.
  void noteItemRenamed() { mRenames.fetch_add(1, std::memory_order_acq_rel); }

  // The default value of the container's parameter reference name, when it is not a member of a
  // one-of; else Value::Null. Unbound groups have no defaults.
  Value getDefaultValueFor(const char* name) const;
  // A new empty group bound to the container's nested container name, or ValueGroup::Null.
  ValueGroup getDefaultValueGroup(const char* name) const;

private:
  explicit ValueGroupState(const char* name);
  explicit ValueGroupState(const Container* container);
  ValueGroupState(const ValueGroupState& other);

  // The single place where items are looked up by name; the caller holds mMutex. Returns the
  // position of the first item at or after start whose effective name equals name, or
  // mItems.size(). Effective names follow the binding: ValueItemState::setName and setGroupItem
  // rename an item that may already sit in a group.
  size_t findIndex(const char* name, size_t start = 0) const;
  // Keeps the name index in step with an item just appended at position; the caller holds mMutex
  // exclusively.
  void indexAppended(size_t position);
  // Rebuilds the name index from the items (or drops it for a small group); the caller holds
  // mMutex exclusively.
  void rebuildIndex();
  // Whether the name index may answer look-ups: built, and no item renamed since.
  bool indexIsCurrent() const;
  // findItem under the shared lock; publishes a snapshot after enough such look-ups.
  boost::shared_ptr<ValueItemState> findItemLocked(const char* name) const;
  // The published snapshot when no item was renamed since it was built, else null; the caller
  // is inside a ReadEpoch::Section.
  const ValueGroupSnapshot* currentSnapshot() const;
  // Builds and publishes a snapshot of the items; the caller holds mMutex shared or exclusive.
  void publishSnapshot() const;
  // Withdraws the published snapshot; the caller holds mMutex exclusively and retires the result
  // (see SnapshotRetirement in the source) once it has released the lock.
  const ValueGroupSnapshot* withdrawSnapshot();
  // item as a value holding at least index texts (std::out_of_range otherwise), or null when it
  // is no value.
  static const ValueState* valueWithIndex(const ValueItemState* item, size_t index);

  mutable StateMutex mMutex;
  Items mItems;
  std::atomic<bool> mComplete;

  // Name index of large groups: case-insensitive name hash -> ascending positions. It changes
  // only under the exclusive lock, so readers under the shared lock use it as it is. While an
  // item of this group, or an item that several groups may hold, was renamed since it was built,
  // look-ups scan instead, and the next change of the group rebuilds it.
  typedef std::unordered_map<uint64_t, std::vector<size_t>> NameIndex;
  NameIndex mIndex;
  bool mIndexValid = false;
  uint64_t mIndexGeneration = 0;
  uint64_t mIndexRenames = 0;
  std::atomic<uint64_t> mRenames{0};

  // What readers search without the lock, or null (see ValueGroupSnapshot). Published under the
  // shared lock (compare-and-swap among readers), withdrawn under the exclusive lock; an old one
  // is retired through ReadEpoch.
  mutable std::atomic<const ValueGroupSnapshot*> mSnapshot{nullptr};
  // Locked look-ups by name since the items last changed or a snapshot was published.
  mutable std::atomic<uint32_t> mLockedReads{0};
};

}  // namespace zelk::configuration::impl
