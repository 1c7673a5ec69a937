#include "zelk/configuration/UnboundedValue.h"

#include <boost/make_shared.hpp>

#include "zelk/configuration/ParameterRef.h"
#include "zelk/configuration/Value.h"
#include "zelk/configuration/ValueGroupItemVisitor.h"
#include "zelk/configuration/impl/ValueAccess.h"
#include "zelk/configuration/impl/ValueState.h"

namespace zelk::configuration {

const UnboundedValue UnboundedValue::Null;

UnboundedValue::UnboundedValue() {}

UnboundedValue::UnboundedValue(const char* name)
    : ValueBase(boost::make_shared<impl::ValueState>(name)) {}

UnboundedValue::UnboundedValue(const ParameterRef* ref)
    : ValueBase(boost::make_shared<impl::ValueState>(static_cast<const GroupItem*>(ref))) {}

UnboundedValue::UnboundedValue(const Value& value)
    : ValueBase(impl::ValueAccess::peekState(value)) {}

UnboundedValue::UnboundedValue(const UnboundedValue& other, int shallow) {
  if (!other.isNull()) {
    setState(other.getState()->clone(shallow));
  }
}

UnboundedValue::UnboundedValue(const UnboundedValue& other) : ValueBase(other) {}

UnboundedValue::UnboundedValue(const boost::shared_ptr<impl::ValueState>& state)
    : ValueBase(state) {}

UnboundedValue& UnboundedValue::operator=(const UnboundedValue& other) {
  ValueBase::operator=(other);
  return *this;
}

UnboundedValue::~UnboundedValue() {}

UnboundedValue UnboundedValue::create(const ParameterRef* ref, const char* text) {
  return UnboundedValue(impl::ValueState::create(ref, text));
}

UnboundedValue UnboundedValue::create(const char* name, const char* text) {
  return UnboundedValue(impl::ValueState::create(name, text));
}

boost::shared_ptr<ValueGroupItem> UnboundedValue::clone(int shallow) const {
  return boost::shared_ptr<ValueGroupItem>(new UnboundedValue(*this, shallow));
}

bool UnboundedValue::accept(ValueGroupItemVisitor& visitor) const {
  // Handles are references to their state: visiting through a non-const handle changes nothing
  // of the handle itself.
  return visitor.visitUnboundedValue(const_cast<UnboundedValue&>(*this));
}

bool UnboundedValue::asBool(size_t index) const { return getValueState().asBool(index); }
int32_t UnboundedValue::asInt32(size_t index) const { return getValueState().asInt32(index); }
uint32_t UnboundedValue::asUInt32(size_t index) const { return getValueState().asUInt32(index); }
int64_t UnboundedValue::asInt64(size_t index) const { return getValueState().asInt64(index); }
uint64_t UnboundedValue::asUInt64(size_t index) const { return getValueState().asUInt64(index); }
double UnboundedValue::asDouble(size_t index) const { return getValueState().asDouble(index); }
ObjectId UnboundedValue::asOID(size_t index) const { return getValueState().asOID(index); }
std::string UnboundedValue::asString(size_t index) const {
  return getValueState().asString(index);
}

int32_t UnboundedValue::asEnum(size_t index) const {
  const impl::ValueState& state = getValueState();
  return state.getEnumValue(state.getText(index).c_str());
}

template <typename T>
void UnboundedValue::addValue(const T& value) {
  getValueState().add(value);
  raiseValueAdded();
}

template <typename T>
void UnboundedValue::setValue(size_t index, const T& value) {
  impl::ValueState& state = getValueState();
  const boost::shared_ptr<impl::ValueState> old = state.saveOldValue(index);
  state.set(index, value);
  raiseValueChanged(old);
}

void UnboundedValue::add(const char* text) { addValue(text); }
void UnboundedValue::add(bool value) { addValue(value); }
void UnboundedValue::add(int32_t value) { addValue(value); }
void UnboundedValue::add(uint32_t value) { addValue(value); }
void UnboundedValue::add(int64_t value) { addValue(value); }
void UnboundedValue::add(uint64_t value) { addValue(value); }
void UnboundedValue::add(double value) { addValue(value); }
void UnboundedValue::add(const ObjectId& value) { addValue(value); }

void UnboundedValue::set(size_t index, const char* text) { setValue(index, text); }
void UnboundedValue::set(size_t index, bool value) { setValue(index, value); }
void UnboundedValue::set(size_t index, int32_t value) { setValue(index, value); }
void UnboundedValue::set(size_t index, uint32_t value) { setValue(index, value); }
void UnboundedValue::set(size_t index, int64_t value) { setValue(index, value); }
void UnboundedValue::set(size_t index, uint64_t value) { setValue(index, value); }
void UnboundedValue::set(size_t index, double value) { setValue(index, value); }
void UnboundedValue::set(size_t index, const ObjectId& value) { setValue(index, value); }

void UnboundedValue::append(const ValueBase& other) {
  getValueState().append(*impl::ValueAccess::getState(other));
}

}  // namespace zelk::configuration
