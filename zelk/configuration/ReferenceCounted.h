// ReferenceCounted: a small base for objects shared by count between owners and threads.
//
// The count starts at 0. Each owner calls addRef() when it takes the object and release() when it
// lets go; the release that brings the count to 0 calls finalRelease(), which deletes the object
// unless a subclass overrides it. The count is changed atomically.
//
//   class Shared : public zelk::configuration::ReferenceCounted { ... };
//   Shared* s = new Shared;
//   s->addRef();      // 1
//   s->release();     // 0: s is deleted
#pragma once

#include <atomic>
#include <cstdint>

namespace zelk::configuration {

class ReferenceCounted {
public:
  ReferenceCounted();
  // A copy is a new object: its count starts at 0.
  ReferenceCounted(const ReferenceCounted& other);
  ReferenceCounted& operator=(const ReferenceCounted& other);
  // Asserts that no owner is left (the count is 0).
  virtual ~ReferenceCounted();

  // Increments the count; returns the new count.
  int32_t addRef() const;
  // Decrements the count and calls finalRelease() when it reaches 0; returns the new count.
  int32_t release() const;
  int32_t getRefCount() const;
  // True when more than one owner holds the object.
  bool isShared() const;

protected:
  // Called when the last owner lets go. The default deletes the object.
  virtual void finalRelease() const;

private:
  mutable std::atomic<int32_t> mRefCount;
};

}  // namespace zelk::configuration
