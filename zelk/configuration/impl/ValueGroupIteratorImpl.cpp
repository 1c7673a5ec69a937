#include "zelk/configuration/impl/ValueGroupIteratorImpl.h"

#include <strings.h>

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
  mCurrent.reset();
  if (!mGroup) {
    return false;
  }
  // From the all-ones position the first candidate is 0.
  size_t position = mPosition + 1;
  // The search and the read are two locked steps; when another thread changed the group in
  // between, the item read is not the one found, and the search goes on after it.
  while (mGroup->findNextGroup(position, mName.c_str())) {
    const boost::shared_ptr<ValueItemState> item = mGroup->tryGetItem(position);
    if (item && item->isValueGroup() &&
        (mName.empty() || strcasecmp(item->getName(), mName.c_str()) == 0)) {
      mPosition = position;
      mCurrent = item;
      return true;
    }
    ++position;
  }
  mPosition = position;
  return false;
}

void ValueGroupIteratorImpl::reset() {
  mPosition = std::numeric_limits<size_t>::max();
  mCurrent.reset();
}

ValueGroup ValueGroupIteratorImpl::getCurrent() const {
  if (!mGroup) {
    throw ConfigurationException("Dereferencing iterator after isNull() returns true");
  }
  if (!mCurrent) {
    throw ConfigurationException("Dereferencing iterator after next() returns false");
  }
  return ValueGroup(boost::static_pointer_cast<ValueGroupState>(mCurrent));
}

}  // namespace zelk::configuration::impl
