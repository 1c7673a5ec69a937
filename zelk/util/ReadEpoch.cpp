#include "zelk/util/ReadEpoch.h"

#include <atomic>
#include <cstddef>
#include <mutex>
#include <vector>

namespace zelk {

namespace {

// More threads than this reading at once take the locked paths.
const size_t SLOT_COUNT = 256;

// A thread's announcement: 0 while it reads nothing, else the epoch it saw on entering its
// outermost Section. One cache line each, so readers never share a line.
struct alignas(64) Slot {
  std::atomic<uint64_t> epoch{0};
  std::atomic<bool> taken{false};
};

Slot gSlots[SLOT_COUNT];
// One past the highest slot ever taken: scans stop there.
std::atomic<size_t> gSlotsInUse{0};
// Grows with every retirement. Starts at 1 so that 0 means "not reading".
std::atomic<uint64_t> gEpoch{1};

// The calling thread's slot and Section depth. Trivially destructible and in the initial-exec
// model, so that reaching it is one load off the thread pointer rather than a call to
// __tls_get_addr (the library is linked by programs, not opened by them at run time).
struct ThreadSlot {
  Slot* slot;
  uint32_t depth;
  bool unavailable;
};
thread_local ThreadSlot tSlot __attribute__((tls_model("initial-exec"))) = {nullptr, 0, false};

// Gives the thread's slot back when the thread ends.
struct SlotRelease {
  ~SlotRelease() {
    if (tSlot.slot != nullptr) {
      tSlot.slot->taken.store(false, std::memory_order_release);
      tSlot.slot = nullptr;
    }
  }
};
thread_local SlotRelease tRelease;

bool attachSlot() {
  for (size_t i = 0; i < SLOT_COUNT; ++i) {
    bool expected = false;
    if (!gSlots[i].taken.load(std::memory_order_relaxed) &&
        gSlots[i].taken.compare_exchange_strong(expected, true, std::memory_order_acq_rel)) {
      size_t inUse = gSlotsInUse.load();
      while (inUse < i + 1 && !gSlotsInUse.compare_exchange_weak(inUse, i + 1)) {
      }
      tSlot.slot = &gSlots[i];
      (void)&tRelease;  // constructs it, so that the slot is given back at thread exit
      return true;
    }
  }
  tSlot.unavailable = true;
  return false;
}

struct Retired {
  uint64_t epoch;
  const void* object;
  void (*deleter)(const void*);
};

// Never destroyed: objects may be retired by static destructors.
struct Retirement {
  std::mutex mutex;
  std::vector<Retired> pending;
};

Retirement& retirement() {
  static Retirement* instance = new Retirement;
  return *instance;
}

// The oldest epoch any open Section may have entered with, or UINT64_MAX when none is open.
uint64_t oldestReader() {
  uint64_t oldest = UINT64_MAX;
  const size_t inUse = gSlotsInUse.load();
  for (size_t i = 0; i < inUse; ++i) {
    const uint64_t epoch = gSlots[i].epoch.load();
    if (epoch != 0 && epoch < oldest) {
      oldest = epoch;
    }
  }
  return oldest;
}

}  // namespace

ReadEpoch::Section::Section() : mActive(false) {
  ThreadSlot& self = tSlot;
  if (self.depth > 0) {
    ++self.depth;
    mActive = true;
    return;
  }
  if (self.slot == nullptr && (self.unavailable || !attachSlot())) {
    return;
  }
  // Sequentially consistent: a writer that retires after this store sees it in its scan, and
  // one that retired before it unlinked the object before the reader's load.
  self.slot->epoch.store(gEpoch.load());
  self.depth = 1;
  mActive = true;
}

ReadEpoch::Section::~Section() {
  if (!mActive) {
    return;
  }
  ThreadSlot& self = tSlot;
  if (--self.depth == 0) {
    self.slot->epoch.store(0, std::memory_order_release);
  }
}

void ReadEpoch::retire(const void* object, void (*deleter)(const void*)) {
  if (object == nullptr) {
    return;
  }
  // Readers that entered at this epoch or before may hold object; later ones cannot reach it.
  const uint64_t epoch = gEpoch.fetch_add(1);
  std::vector<Retired> freeable;
  {
    Retirement& r = retirement();
    std::lock_guard<std::mutex> lock(r.mutex);
    r.pending.push_back(Retired{epoch, object, deleter});
    // Every retirement scans: with no Section open, everything goes at once, so a program that
    // reads on one thread sees objects freed exactly when they are retired. The slots scanned
    // are the threads that ever read, and the pending list holds only what open Sections keep.
    const uint64_t oldest = oldestReader();
    std::vector<Retired> kept;
    for (const Retired& entry : r.pending) {
      (entry.epoch < oldest ? freeable : kept).push_back(entry);
    }
    r.pending.swap(kept);
  }
  // Outside the lock: a deleter may retire further objects.
  for (const Retired& entry : freeable) {
    entry.deleter(entry.object);
  }
}

uint64_t ReadEpoch::pendingCount() {
  Retirement& r = retirement();
  std::lock_guard<std::mutex> lock(r.mutex);
  return r.pending.size();
}

}  // namespace zelk
