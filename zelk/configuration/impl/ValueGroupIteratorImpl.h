// ValueGroupIteratorImpl: the position of a ValueGroupIterator over the nested groups of a group.
#pragma once

#include <cstddef>
#include <string>

#include <boost/shared_ptr.hpp>

namespace zelk::configuration {
class ValueGroup;
}

namespace zelk::configuration::impl {

class ValueGroupState;
class ValueItemState;

class ValueGroupIteratorImpl {
public:
  ValueGroupIteratorImpl(const boost::shared_ptr<ValueGroupState>& group, const char* name);

  bool next();
  // Before the first group (the first next() moves to position 0).
  void reset();
  bool isNull() const { return !mGroup; }
  ValueGroup getCurrent() const;

private:
  boost::shared_ptr<ValueGroupState> mGroup;
  std::string mName;
  size_t mPosition;
  // The group found by the last next(): held, so that another thread removing items between
  // next() and getCurrent() cannot make the position point elsewhere.
  boost::shared_ptr<ValueItemState> mCurrent;
};

}  // namespace zelk::configuration::impl
