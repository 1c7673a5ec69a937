#include "zelk/configuration/impl/ValueGroupIteratorImpl.h"

#include <limits>

#include "zelk/configuration/ConfigurationException.h"
#include "zelk/configuration/ValueGroup.h"
#include "zelk/configuration/impl/ValueGroupState.h"

namespace zelk::configuration::impl {

ValueGroupIteratorImpl::ValueGroupIteratorImpl(const boost::shared_ptr<ValueGroupState>& group,
                                               const char* name)
    : mGroup(group), mName(name != 0 ? name : "") {
  reset();
}

bool ValueGroupIteratorImpl::next() {
  if (!mGroup) {
    return false;
  }
  // From the all-ones position the first candidate is 0.
  size_t position = mPosition + 1;
  const bool found = mGroup->findNextGroup(position, mName.c_str());
  mPosition = position;
  return found;
}

void ValueGroupIteratorImpl::reset() { mPosition = std::numeric_limits<size_t>::max(); }

ValueGroup ValueGroupIteratorImpl::getCurrent() const {
  if (!mGroup) {
    throw ConfigurationException("Dereferencing iterator after isNull() returns true");
  }
  const boost::shared_ptr<ValueItemState> item = mGroup->tryGetItem(mPosition);
  if (!item || !item->isValueGroup()) {
    throw ConfigurationException("Dereferencing iterator after next() returns false");
  }
  return ValueGroup(boost::static_pointer_cast<ValueGroupState>(item));
}

}  // namespace zelk::configuration::impl
