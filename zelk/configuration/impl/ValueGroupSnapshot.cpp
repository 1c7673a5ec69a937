#include "zelk/configuration/impl/ValueGroupSnapshot.h"

#include <cstring>

#include "zelk/configuration/impl/ValueItemState.h"
#include "zelk/util/CaseInsensitiveHash.h"

namespace zelk::configuration::impl {

ValueGroupSnapshot::ValueGroupSnapshot(const Items& items, uint64_t renameGeneration,
                                       uint64_t groupRenames)
    : mItems(items), mRenameGeneration(renameGeneration), mGroupRenames(groupRenames) {
  if (mItems.size() < INDEX_THRESHOLD) {
    return;
  }
  // At most half full, so that a probe meets a free slot soon.
  size_t capacity = 1;
  while (capacity < 2 * mItems.size()) {
    capacity <<= 1;
  }
  mSlots.assign(capacity, Slot{0, EMPTY, 0});
  const size_t mask = capacity - 1;
  for (size_t i = 0; i < mItems.size(); ++i) {
    const char* name = mItems[i]->getName();
    const size_t length = std::strlen(name);
    if (length >= UINT32_MAX) {
      mSlots.clear();  // such a name is not indexed: the snapshot scans
      return;
    }
    const uint64_t hash = caseInsensitiveHash(name, length);
    for (size_t s = hash & mask;; s = (s + 1) & mask) {
      Slot& slot = mSlots[s];
      if (slot.position == EMPTY) {
        slot = Slot{hash, static_cast<uint32_t>(i), static_cast<uint32_t>(length)};
        break;
      }
      // A later item of a name already indexed is never the first of that name.
      if (slot.hash == hash && slot.length == length &&
          caseInsensitiveEqual(mItems[slot.position]->getName(), name, length)) {
        break;
      }
    }
  }
}

const boost::shared_ptr<ValueItemState>* ValueGroupSnapshot::find(const char* name) const {
  if (mSlots.empty()) {
    for (const boost::shared_ptr<ValueItemState>& item : mItems) {
      if (ValueItemState::namesEqual(item->getName(), name)) {
        return &item;
      }
    }
    return nullptr;
  }
  const size_t length = std::strlen(name);
  const uint64_t hash = caseInsensitiveHash(name, length);
  const size_t mask = mSlots.size() - 1;
  for (size_t s = hash & mask;; s = (s + 1) & mask) {
    const Slot& slot = mSlots[s];
    if (slot.position == EMPTY) {
      return nullptr;
    }
    // Names that only share the hash are passed over. An indexed name keeps its length while
    // the snapshot is current: a change of name other than in case counts as a rename.
    if (slot.hash == hash && slot.length == length &&
        caseInsensitiveEqual(mItems[slot.position]->getName(), name, length)) {
      return &mItems[slot.position];
    }
  }
}

void ValueGroupSnapshot::destroy(const void* snapshot) {
  delete static_cast<const ValueGroupSnapshot*>(snapshot);
}

}  // namespace zelk::configuration::impl
