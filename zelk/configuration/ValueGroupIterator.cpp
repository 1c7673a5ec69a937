#include "zelk/configuration/ValueGroupIterator.h"

#include "zelk/configuration/ValueGroup.h"
#include "zelk/configuration/impl/ValueAccess.h"
#include "zelk/configuration/impl/ValueGroupIteratorImpl.h"
#include "zelk/configuration/impl/ValueGroupState.h"

namespace zelk::configuration {

ValueGroupIterator::ValueGroupIterator()
    : mImpl(new impl::ValueGroupIteratorImpl(boost::shared_ptr<impl::ValueGroupState>(), 0)) {}

ValueGroupIterator::ValueGroupIterator(const ValueGroup& group, const char* name)
    : mImpl(new impl::ValueGroupIteratorImpl(impl::ValueAccess::peekState(group), name)) {}

ValueGroupIterator::ValueGroupIterator(const ValueGroupIterator& other)
    : mImpl(new impl::ValueGroupIteratorImpl(*other.mImpl)) {}

ValueGroupIterator& ValueGroupIterator::operator=(const ValueGroupIterator& other) {
  if (this != &other) {
    mImpl.reset(new impl::ValueGroupIteratorImpl(*other.mImpl));
  }
  return *this;
}

ValueGroupIterator::~ValueGroupIterator() {}

bool ValueGroupIterator::next() { return mImpl->next(); }

void ValueGroupIterator::reset() { mImpl->reset(); }

bool ValueGroupIterator::isNull() const { return mImpl->isNull(); }

ValueGroup ValueGroupIterator::getCurrent() const { return mImpl->getCurrent(); }

}  // namespace zelk::configuration
