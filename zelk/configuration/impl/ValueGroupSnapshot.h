// ValueGroupSnapshot: an immutable copy of a group's items with a case-insensitive name index,
// which readers search without the group's lock.
//
// ValueGroupState publishes one after a run of look-ups by name in which the group did not
// change, drops it on every change of its items, and retires it through zelk::ReadEpoch, so a
// reader inside a ReadEpoch::Section may use the snapshot and the items it holds. The snapshot
// records the rename counters it was built under; once either moved it no longer answers.
//
//   const ValueGroupSnapshot* snapshot = new ValueGroupSnapshot(items, generation, renames);
//   const boost::shared_ptr<ValueItemState>* item = snapshot->find("port");
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include <boost/shared_ptr.hpp>

namespace zelk::configuration::impl {

class ValueItemState;

class ValueGroupSnapshot {
public:
  typedef std::vector<boost::shared_ptr<ValueItemState>> Items;

  // Groups smaller than this are scanned, also by the group's own name index: comparing a few
  // names costs less than hashing one.
  static const size_t INDEX_THRESHOLD = 16;

  // Holds items (in their order) and indexes their names when there are enough of them to make
  // hashing pay; renameGeneration and groupRenames are the counters read before the copy.
  ValueGroupSnapshot(const Items& items, uint64_t renameGeneration, uint64_t groupRenames);

  // The first item named name (case-insensitively), or null.
  const boost::shared_ptr<ValueItemState>* find(const char* name) const;
  uint64_t getRenameGeneration() const { return mRenameGeneration; }
  uint64_t getGroupRenames() const { return mGroupRenames; }
  size_t getItemCount() const { return mItems.size(); }

  // For ReadEpoch::retire.
  static void destroy(const void* snapshot);

private:
  // One slot of the open-addressing table: a name's hash and length and the position of the
  // first item of that name; EMPTY positions mark free slots.
  struct Slot {
    uint64_t hash;
    uint32_t position;
    uint32_t length;
  };
  static const uint32_t EMPTY = UINT32_MAX;

  Items mItems;
  std::vector<Slot> mSlots;  // empty for small groups, which are scanned
  uint64_t mRenameGeneration;
  uint64_t mGroupRenames;
};

}  // namespace zelk::configuration::impl
