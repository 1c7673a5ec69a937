#include "zelk/configuration/impl/ValueIteratorImpl.h"

#include <limits>

#include "zelk/configuration/ConfigurationException.h"
#include "zelk/configuration/impl/ValueState.h"

namespace zelk::configuration::impl {

namespace {
const size_t BEFORE_FIRST = std::numeric_limits<size_t>::max();
}

ValueIteratorImpl::ValueIteratorImpl(const boost::shared_ptr<ValueState>& value)
    : mValue(value), mPosition(BEFORE_FIRST) {}

bool ValueIteratorImpl::next() {
  if (!mValue) {
    return false;
  }
  const size_t count = mValue->getValueCount();
  // From the all-ones position the first step lands on 0; past the end the position stays at
  // the count.
  const size_t position = mPosition + 1;
  if (position >= count) {
    mPosition = count;
    return false;
  }
  mPosition = position;
  return true;
}

void ValueIteratorImpl::reset() { mPosition = BEFORE_FIRST; }

void ValueIteratorImpl::checkIndex() const {
  if (!mValue) {
    throw ConfigurationException("The value is NULL");
  }
  if (mPosition == BEFORE_FIRST) {
    throw ConfigurationException("Must call next() before dereferencing an iterator");
  }
  if (mPosition >= mValue->getValueCount()) {
    throw ConfigurationException("Dereferencing iterator after next() returns false");
  }
}

bool ValueIteratorImpl::asBool() const {
  checkIndex();
  return mValue->asBool(mPosition);
}

int32_t ValueIteratorImpl::asInt32() const {
  checkIndex();
  return mValue->asInt32(mPosition);
}

uint32_t ValueIteratorImpl::asUInt32() const {
  checkIndex();
  return mValue->asUInt32(mPosition);
}

int64_t ValueIteratorImpl::asInt64() const {
  checkIndex();
  return mValue->asInt64(mPosition);
}

uint64_t ValueIteratorImpl::asUInt64() const {
  checkIndex();
  return mValue->asUInt64(mPosition);
}

double ValueIteratorImpl::asDouble() const {
  checkIndex();
  return mValue->asDouble(mPosition);
}

ObjectId ValueIteratorImpl::asOID() const {
  checkIndex();
  return mValue->asOID(mPosition);
}

std::string ValueIteratorImpl::asString() const {
  checkIndex();
  return mValue->asString(mPosition);
}

bool ValueIteratorImpl::isDefaultValue() const {
  checkIndex();
  return mValue->isDefaultValue();
}

bool ValueIteratorImpl::hasValues() const {
  checkIndex();
  return mValue->hasValues();
}

size_t ValueIteratorImpl::getValueCount() const {
  checkIndex();
  return mValue->getValueCount();
}

int ValueIteratorImpl::getValueType() const {
  checkIndex();
  return mValue->getValueType();
}

}  // namespace zelk::configuration::impl
