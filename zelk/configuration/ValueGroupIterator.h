// ValueGroupIterator: walks the nested groups of a value group, in item order.
//
// Get one from ValueGroup::getValueGroupIterator(name); with a non-empty name only groups of that
// name (compared case-insensitively) are visited. Call next() before each getCurrent().
//
//   for (zelk::configuration::ValueGroupIterator it = values.getValueGroupIterator("target");
//        it.next();)
//     use(it.getCurrent());
#pragma once

#include <boost/scoped_ptr.hpp>

namespace zelk::configuration {

class ValueGroup;

namespace impl {
class ValueGroupIteratorImpl;
}

class ValueGroupIterator {
public:
  // A null iterator.
  ValueGroupIterator();
  // Iterates the groups in group named name (all groups for a null or empty name); a null
  // iterator for a null group.
  ValueGroupIterator(const ValueGroup& group, const char* name);
  // Copies position and filter.
  ValueGroupIterator(const ValueGroupIterator& other);
  ValueGroupIterator& operator=(const ValueGroupIterator& other);
  ~ValueGroupIterator();

  // Moves to the next matching group; false when there is none (or the iterator is null).
  bool next();
  // Back to before the first group.
  void reset();
  bool isNull() const;
  // The current group. Throws ConfigurationException "Dereferencing iterator after isNull()
  // returns true" or "Dereferencing iterator after next() returns false".
  ValueGroup getCurrent() const;

private:
  boost::scoped_ptr<impl::ValueGroupIteratorImpl> mImpl;
};

}  // namespace zelk::configuration
