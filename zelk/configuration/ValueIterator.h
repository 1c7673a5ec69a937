// ValueIterator: walks the entries (texts) of one value.
//
// Get one from ValueBase::getIterator() or ValueGroup::getValueIterator(name). Call next() before
// reading; the typed reads are those of Value.
//
//   for (zelk::configuration::ValueIterator it = paths.getIterator(); it.next();)
//     std::cout << it.asString() << '\n';
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include <boost/scoped_ptr.hpp>

#include "zelk/configuration/ObjectId.h"

namespace zelk::configuration {

class ValueBase;

namespace impl {
class ValueIteratorImpl;
}

class ValueIterator {
public:
  // A null iterator.
  ValueIterator();
  // Iterates the entries of value (a null iterator for a null value).
  explicit ValueIterator(const ValueBase& value);
  // Copies the position.
  ValueIterator(const ValueIterator& other);
  ValueIterator& operator=(const ValueIterator& other);
  ~ValueIterator();

  // Moves to the next entry; false once past the last one.
  bool next();
  // Back to before the first entry.
  void reset();
  bool isNull() const;

  // Every accessor below throws ConfigurationException "The value is NULL" on a null iterator,
  // "Must call next() before dereferencing an iterator" before the first next(), and
  // "Dereferencing iterator after next() returns false" past the end; typed reads also throw as
  // Value's do.
  bool asBool() const;
  int32_t asInt32() const;
  uint32_t asUInt32() const;
  int64_t asInt64() const;
  uint64_t asUInt64() const;
  double asDouble() const;
  ObjectId asOID() const;
  std::string asString() const;
  bool isDefaultValue() const;
  bool hasValues() const;
  size_t getValueCount() const;
  int getValueType() const;

private:
  boost::scoped_ptr<impl::ValueIteratorImpl> mImpl;
};

}  // namespace zelk::configuration
