#include "zelk/configuration/Value.h"

#include <boost/make_shared.hpp>

#include "zelk/configuration/Parameter.h"
#include "zelk/configuration/ParameterRef.h"
#include "zelk/configuration/ValueGroupItemVisitor.h"
#include "zelk/configuration/impl/ValueState.h"

namespace zelk::configuration {

const Value Value::Null;

Value::Value() {}

Value::Value(const char* name) : ValueBase(boost::make_shared<impl::ValueState>(name)) {}

Value::Value(const Parameter* parameter)
    : ValueBase(boost::make_shared<impl::ValueState>(parameter)) {}

Value::Value(const ParameterRef* ref)
    : ValueBase(boost::make_shared<impl::ValueState>(static_cast<const GroupItem*>(ref))) {}

Value::Value(const Value& other, int shallow) {
  if (!other.isNull()) {
    setState(other.getState()->clone(shallow));
  }
}

Value::Value(const Value& other) : ValueBase(other) {}

Value::Value(const boost::shared_ptr<impl::ValueState>& state) : ValueBase(state) {}

Value& Value::operator=(const Value& other) {
  ValueBase::operator=(other);
  return *this;
}

Value::~Value() {}

Value Value::create(const ParameterRef* ref, const char* text) {
  return Value(impl::ValueState::create(ref, text));
}

Value Value::create(const char* name, const char* text) {
  return Value(impl::ValueState::create(name, text));
}

boost::shared_ptr<ValueGroupItem> Value::clone(int shallow) const {
  return boost::shared_ptr<ValueGroupItem>(new Value(*this, shallow));
}

bool Value::accept(ValueGroupItemVisitor& visitor) const {
  // Handles are references to their state: visiting through a non-const handle changes nothing
  // of the handle itself.
  return visitor.visitValue(const_cast<Value&>(*this));
}

// A held value read again is answered here from the state's converted-value cache, without a
// further call; anything else (first read, other type, null handle) takes the full read, which
// converts, checks and throws.
template <typename T>
T Value::readFirst(int type, T (impl::ValueState::*read)(size_t) const) const {
  const impl::ValueItemState* state = peekState().get();
  if (state != 0) {
    T value;
    if (static_cast<const impl::ValueState*>(state)->readCached(type, value)) {
      return value;
    }
  }
  return (getValueState().*read)(0);
}

bool Value::asBool() const { return readFirst(Parameter::BOOL, &impl::ValueState::asBool); }
int32_t Value::asInt32() const { return readFirst(Parameter::INT32, &impl::ValueState::asInt32); }
uint32_t Value::asUInt32() const {
  return readFirst(Parameter::UINT32, &impl::ValueState::asUInt32);
}
int64_t Value::asInt64() const { return readFirst(Parameter::INT64, &impl::ValueState::asInt64); }
uint64_t Value::asUInt64() const {
  return readFirst(Parameter::UINT64, &impl::ValueState::asUInt64);
}
double Value::asDouble() const { return readFirst(Parameter::DOUBLE, &impl::ValueState::asDouble); }
ObjectId Value::asOID() const { return readFirst(Parameter::OID, &impl::ValueState::asOID); }
std::string Value::asString() const { return getValueState().asString(0); }

int32_t Value::asEnum() const {
  const impl::ValueState& state = getValueState();
  return state.getEnumValue(state.getText(0).c_str());
}

bool Value::hasValue() const { return getValueState().hasValues(); }

template <typename T>
void Value::setValue(const T& value) {
  impl::ValueState& state = getValueState();
  const boost::shared_ptr<impl::ValueState> old = state.saveOldValue(0);
  if (state.hasValues()) {
    state.set(0, value);
  } else {
    state.add(value);
  }
  raiseValueChanged(old);
}

void Value::set(const char* text) { setValue(text); }
void Value::set(bool value) { setValue(value); }
void Value::set(int32_t value) { setValue(value); }
void Value::set(uint32_t value) { setValue(value); }
void Value::set(int64_t value) { setValue(value); }
void Value::set(uint64_t value) { setValue(value); }
void Value::set(double value) { setValue(value); }
void Value::set(const ObjectId& value) { setValue(value); }

}  // namespace zelk::configuration
