#include "zelk/configuration/ReferenceCounted.h"

#include <cassert>

namespace zelk::configuration {

ReferenceCounted::ReferenceCounted() : mRefCount(0) {}

ReferenceCounted::ReferenceCounted(const ReferenceCounted&) : mRefCount(0) {}

ReferenceCounted& ReferenceCounted::operator=(const ReferenceCounted&) {
  // The owners of this object stay its owners.
  return *this;
}

ReferenceCounted::~ReferenceCounted() { assert(mRefCount == 0); }

int32_t ReferenceCounted::addRef() const { return mRefCount.fetch_add(1) + 1; }

int32_t ReferenceCounted::release() const {
  const int32_t count = mRefCount.fetch_sub(1) - 1;
  if (count == 0) {
    finalRelease();
  }
  return count;
}

int32_t ReferenceCounted::getRefCount() const { return mRefCount.load(); }

bool ReferenceCounted::isShared() const { return mRefCount.load() > 1; }

void ReferenceCounted::finalRelease() const { delete this; }

}  // namespace zelk::configuration
