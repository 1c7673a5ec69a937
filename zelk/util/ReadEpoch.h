// ReadEpoch: lets readers use shared objects without a lock while writers replace them.
//
// A reader opens a Section, loads the object's pointer (with a sequentially consistent load) and
// uses the object until the Section closes. A writer that unlinks an object (stores another
// pointer in its place, sequentially consistent) hands the old one to retire(), which frees it
// once no Section that may have loaded it is still open. Sections never block and never wait for
// writers: entering costs one store with a full fence, leaving one plain store, and each thread
// writes only its own slot, so readers on several cores do not contend. The slots are a fixed
// number; a thread that finds none free gets an inactive Section and must take its locked path.
//
//   zelk::ReadEpoch::Section section;
//   if (section.isActive()) {
//     const Snapshot* current = published.load();   // std::atomic<const Snapshot*>
//     ... read *current ...
//   }
//   // a writer, holding its own lock:
//   const Snapshot* old = published.exchange(replacement);
//   zelk::ReadEpoch::retire(old, [](const void* p) { delete static_cast<const Snapshot*>(p); });
#pragma once

#include <cstdint>

namespace zelk {

class ReadEpoch {
public:
  // A read-side critical section; nests (only the outermost one of a thread counts).
  class Section {
  public:
    Section();
    ~Section();
    Section(const Section&) = delete;
    Section& operator=(const Section&) = delete;

    // False when this thread has no reader slot: objects read without a lock are not protected.
    bool isActive() const { return mActive; }

  private:
    bool mActive;
  };

  // Frees object with deleter once every Section open now has closed: at once when none is open,
  // else in a later retire (of any thread) that finds them closed; what is still pending when the
  // process ends is not freed. A null object is ignored. The deleter may itself retire objects.
  static void retire(const void* object, void (*deleter)(const void*));

  // The number of retired objects not yet freed (for tests).
  static uint64_t pendingCount();
};

}  // namespace zelk
