#include "zelk/configuration/Parameter.h"

#include "zelk/configuration/Value.h"
#include "zelk/configuration/impl/ParameterImpl.h"

namespace zelk::configuration {

Parameter::Parameter(const char* id, const char* name, const char* description,
                     ValueType valueType, const char* valueName, const Validator* validator,
                     const EnumDefinition* enumDefinition)
    : GlobalItem(new impl::ParameterImpl(this, id, name, description, valueType, valueName,
                                         validator, enumDefinition)) {}

Parameter::ValueType Parameter::getValueType() const {
  return getParameterImpl()->getValueType();
}

const char* Parameter::getValueTypeName() const {
  return impl::ParameterImpl::getValueTypeName(getParameterImpl()->getValueType());
}

const char* Parameter::getValueTypeName(ValueType type) {
  return impl::ParameterImpl::getValueTypeName(type);
}

const char* Parameter::getValueName() const { return getParameterImpl()->getValueName(); }

Value Parameter::getDefaultValue() const { return getParameterImpl()->getDefaultValue(); }

void Parameter::setDefaultValue(const Value& value) { getParameterImpl()->setDefaultValue(value); }

const Validator* Parameter::getValidator() const { return getParameterImpl()->getValidator(); }

const EnumDefinition* Parameter::getEnumDefinition() const {
  return getParameterImpl()->getEnumDefinition();
}

impl::ParameterImpl* Parameter::getParameterImpl() const {
  return static_cast<impl::ParameterImpl*>(mImpl.get());
}

}  // namespace zelk::configuration
