// ObjectMapEnumeratorAdapter: an IEnumerator over the live entries of one ObjectMap, in key order.
//
// The enumerator remembers the first entry at its creation as its start. Unregistering the
// current entry while it is open invalidates it.
//
//   IEnumerator<Specification*>* e = new ObjectMapEnumeratorAdapter<SpecificationMap>(map);
//   for (; e->hasNext(); e->moveNext()) use(e->getCurrent());
//   delete e;
#pragma once

#include "zelk/util/IEnumerator.h"

namespace zelk::configuration::impl {

template <typename Map>
class ObjectMapEnumeratorAdapter : public IEnumerator<typename Map::ObjectType*> {
public:
  typedef typename Map::ObjectType T;

  explicit ObjectMapEnumeratorAdapter(const Map& map)
      : mCurrent(map.begin()), mStart(map.begin()), mEnd(map.end()) {}

  void reset() override { mCurrent = mStart; }
  bool hasNext() const override { return mCurrent != mEnd; }
  void moveNext() override {
    if (mCurrent != mEnd) {
      ++mCurrent;
    }
  }
  // Null past the end.
  T* getCurrent() const override { return mCurrent != mEnd ? mCurrent->second : 0; }

private:
  typename Map::ConstIterator mCurrent;
  typename Map::ConstIterator mStart;
  typename Map::ConstIterator mEnd;
};

}  // namespace zelk::configuration::impl
