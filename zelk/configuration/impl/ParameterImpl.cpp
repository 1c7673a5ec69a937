#include "zelk/configuration/impl/ParameterImpl.h"

#include "zelk/configuration/Value.h"
#include "zelk/configuration/impl/ValueAccess.h"
#include "zelk/configuration/impl/ValueState.h"
#include "zelk/configuration/impl/ValueTypeTable.h"
#include "zelk/util/Contracts.h"

namespace zelk::configuration::impl {

ParameterImpl::ParameterImpl(Parameter* self, const char* id, const char* name,
                             const char* description, Parameter::ValueType valueType,
                             const char* valueName, const Validator* validator,
                             const EnumDefinition* enumDefinition)
    : GlobalItemImpl(self, id, name, description),
      mValueType(valueType),
      mValidator(validator),
      mEnumDefinition(enumDefinition) {
  ZELK_CONTRACT_MESSAGE(ValueTypeTable::find(valueType) != 0, "Invalid value type");
  ZELK_CONTRACT_MESSAGE(valueType != Parameter::ENUM || enumDefinition != 0,
                        "An EnumDefinition must be provided for enum parameters");
  if (valueName != 0 && *valueName != '\0') {
    mValueName = valueName;
  } else if (valueType != Parameter::BOOL) {
    // A flag takes no value text, so only non-boolean parameters borrow their name.
    mValueName = getName();
  }
}

ParameterImpl::~ParameterImpl() {}

const char* ParameterImpl::getItemTypeName() const { return "Parameter"; }

const char* ParameterImpl::getValueName() const { return mValueName.c_str(); }

Value ParameterImpl::getDefaultValue() const {
  if (mDefaultValue) {
    return *mDefaultValue;
  }
  return Value::Null;
}

void ParameterImpl::setDefaultValue(const Value& value) {
  mDefaultValue.reset(new Value(ValueState::keptByRegistry(ValueAccess::peekState(value))));
}

bool ParameterImpl::hasDefaultValue() const { return mDefaultValue.get() != 0; }

const char* ParameterImpl::getValueTypeName(Parameter::ValueType valueType) {
  return ValueTypeTable::displayName(valueType);
}

}  // namespace zelk::configuration::impl
