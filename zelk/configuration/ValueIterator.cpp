#include "zelk/configuration/ValueIterator.h"

#include "zelk/configuration/ValueBase.h"
#include "zelk/configuration/impl/ValueAccess.h"
#include "zelk/configuration/impl/ValueIteratorImpl.h"
#include "zelk/configuration/impl/ValueState.h"

namespace zelk::configuration {

ValueIterator::ValueIterator()
    : mImpl(new impl::ValueIteratorImpl(boost::shared_ptr<impl::ValueState>())) {}

ValueIterator::ValueIterator(const ValueBase& value)
    : mImpl(new impl::ValueIteratorImpl(impl::ValueAccess::peekState(value))) {}

ValueIterator::ValueIterator(const ValueIterator& other)
    : mImpl(new impl::ValueIteratorImpl(*other.mImpl)) {}

ValueIterator& ValueIterator::operator=(const ValueIterator& other) {
  if (this != &other) {
    mImpl.reset(new impl::ValueIteratorImpl(*other.mImpl));
  }
  return *this;
}

ValueIterator::~ValueIterator() {}

bool ValueIterator::next() { return mImpl->next(); }
void ValueIterator::reset() { mImpl->reset(); }
bool ValueIterator::isNull() const { return mImpl->isNull(); }
bool ValueIterator::asBool() const { return mImpl->asBool(); }
int32_t ValueIterator::asInt32() const { return mImpl->asInt32(); }
uint32_t ValueIterator::asUInt32() const { return mImpl->asUInt32(); }
int64_t ValueIterator::asInt64() const { return mImpl->asInt64(); }
uint64_t ValueIterator::asUInt64() const { return mImpl->asUInt64(); }
double ValueIterator::asDouble() const { return mImpl->asDouble(); }
ObjectId ValueIterator::asOID() const { return mImpl->asOID(); }
std::string ValueIterator::asString() const { return mImpl->asString(); }
bool ValueIterator::isDefaultValue() const { return mImpl->isDefaultValue(); }
bool ValueIterator::hasValues() const { return mImpl->hasValues(); }
size_t ValueIterator::getValueCount() const { return mImpl->getValueCount(); }
int ValueIterator::getValueType() const { return mImpl->getValueType(); }

}  // namespace zelk::configuration
