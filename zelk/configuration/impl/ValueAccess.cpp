#include "zelk/configuration/impl/ValueAccess.h"

#include "zelk/configuration/UnboundedValue.h"
#include "zelk/configuration/Value.h"
#include "zelk/configuration/ValueGroup.h"
#include "zelk/configuration/impl/ValueGroupState.h"
#include "zelk/configuration/impl/ValueState.h"

namespace zelk::configuration::impl {

boost::shared_ptr<ValueItemState> ValueAccess::getState(const ValueGroupItem& item) {
  return item.getState();
}

boost::shared_ptr<ValueGroupState> ValueAccess::getState(const ValueGroup& group) {
  return boost::static_pointer_cast<ValueGroupState>(group.getState());
}

boost::shared_ptr<ValueState> ValueAccess::getState(const ValueBase& value) {
  return boost::static_pointer_cast<ValueState>(value.getState());
}

boost::shared_ptr<ValueItemState> ValueAccess::peekState(const ValueGroupItem& item) {
  return item.mState;
}

boost::shared_ptr<ValueGroupState> ValueAccess::peekState(const ValueGroup& group) {
  return boost::static_pointer_cast<ValueGroupState>(group.mState);
}

boost::shared_ptr<ValueState> ValueAccess::peekState(const ValueBase& value) {
  return boost::static_pointer_cast<ValueState>(value.mState);
}

boost::shared_ptr<ValueGroupItem> ValueAccess::makeHandle(
    const boost::shared_ptr<ValueItemState>& state) {
  if (!state) {
    return boost::shared_ptr<ValueGroupItem>();
  }
  if (state->isValueGroup()) {
    return boost::shared_ptr<ValueGroupItem>(
        new ValueGroup(boost::static_pointer_cast<ValueGroupState>(state)));
  }
  const boost::shared_ptr<ValueState> value = boost::static_pointer_cast<ValueState>(state);
  if (value->isUnbounded()) {
    return boost::shared_ptr<ValueGroupItem>(new UnboundedValue(value));
  }
  return boost::shared_ptr<ValueGroupItem>(new Value(value));
}

}  // namespace zelk::configuration::impl
