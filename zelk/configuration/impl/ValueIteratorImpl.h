// ValueIteratorImpl: the position of a ValueIterator over the texts of one value.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include <boost/shared_ptr.hpp>

#include "zelk/configuration/ObjectId.h"

namespace zelk::configuration::impl {

class ValueState;

class ValueIteratorImpl {
public:
  explicit ValueIteratorImpl(const boost::shared_ptr<ValueState>& value);

  // Advances; false once the position reaches the count.
  bool next();
  // Back to the all-ones position, so that the first next() moves to 0.
  void reset();
  bool isNull() const { return !mValue; }

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
  // Throws "The value is NULL", "Must call next() before dereferencing an iterator" or
  // "Dereferencing iterator after next() returns false".
  void checkIndex() const;

  boost::shared_ptr<ValueState> mValue;
  size_t mPosition;
};

}  // namespace zelk::configuration::impl
