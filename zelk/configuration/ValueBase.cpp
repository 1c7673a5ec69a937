#include "zelk/configuration/ValueBase.h"

#include "zelk/configuration/ListenerArguments.h"
#include "zelk/configuration/Value.h"
#include "zelk/configuration/ValueIterator.h"
#include "zelk/configuration/impl/ListenerManager.h"
#include "zelk/configuration/impl/ValueGroupState.h"
#include "zelk/configuration/impl/ValueState.h"

namespace zelk::configuration {

ValueBase::ValueBase() {}

ValueBase::ValueBase(const boost::shared_ptr<impl::ValueState>& state) : ValueGroupItem(state) {}

ValueBase::ValueBase(const ValueBase& other) : ValueGroupItem(other) {}

ValueBase& ValueBase::operator=(const ValueBase& other) {
  ValueGroupItem::operator=(other);
  return *this;
}

ValueBase::~ValueBase() {}

impl::ValueState& ValueBase::getValueState() const {
  return static_cast<impl::ValueState&>(*getState());
}

boost::shared_ptr<impl::ValueState> ValueBase::getValueStatePointer() const {
  return boost::static_pointer_cast<impl::ValueState>(getState());
}

bool ValueBase::isUnbounded() const { return getValueState().isUnbounded(); }

bool ValueBase::isComplete() const {
  const boost::shared_ptr<impl::ValueGroupState> parent = getValueState().getParent();
  return parent && parent->isComplete();
}

int ValueBase::getValueType() const { return getValueState().getValueType(); }

const char* ValueBase::getValueTypeName() const { return getValueState().getValueTypeName(); }

const Parameter* ValueBase::getParameter() const { return getValueState().getParameter(); }

const ParameterRef* ValueBase::getParameterRef() const {
  return getValueState().getParameterRef();
}

size_t ValueBase::getValueCount() const { return getValueState().getValueCount(); }

bool ValueBase::hasValues() const { return getValueState().hasValues(); }

bool ValueBase::isDefaultValue() const { return getValueState().isDefaultValue(); }

ValueIterator ValueBase::getIterator() const { return ValueIterator(*this); }

boost::shared_ptr<impl::ValueState> ValueBase::saveOldValue(size_t index) const {
  return getValueState().saveOldValue(index);
}

void ValueBase::raiseValueAdded() const {
  impl::ListenerManager::getInstance()->broadcastValueAdded(getParameterRef(),
                                                            ValueAddedArguments(this));
}

void ValueBase::raiseValueChanged(const boost::shared_ptr<impl::ValueState>& oldValue) const {
  impl::ListenerManager::getInstance()->broadcastValueChanged(
      getParameterRef(), ValueChangedArguments(this, oldValue ? Value(oldValue) : Value::Null));
}

}  // namespace zelk::configuration
