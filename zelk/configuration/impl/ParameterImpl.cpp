#include "zelk/configuration/impl/ParameterImpl.h"

#include <map>

#include "zelk/configuration/Value.h"
#include "zelk/configuration/impl/ValueAccess.h"
#include "zelk/configuration/impl/ValueState.h"
#include "zelk/util/Contracts.h"

namespace zelk::configuration::impl {

namespace {

typedef std::map<int32_t, const char*> ValueTypeNames;

ValueTypeNames createValueTypeMap() {
  ValueTypeNames names;
  names[Parameter::BOOL] = "bool";
  names[Parameter::STRING] = "string";
  names[Parameter::INT32] = "int32";
  names[Parameter::UINT32] = "uint32";
  names[Parameter::DOUBLE] = "double";
  names[Parameter::OID] = "OID";
  names[Parameter::ENUM] = "enumeration";
  names[Parameter::INT64] = "int64";
  names[Parameter::UINT64] = "uint64";
  return names;
}

// Built once, on first use (also safe from other files' static initialisation), then only read.
const ValueTypeNames& smValueTypeNames() {
  static const ValueTypeNames names = createValueTypeMap();
  return names;
}

}  // namespace

ParameterImpl::ParameterImpl(Parameter* self, const char* id, const char* name,
                             const char* description, Parameter::ValueType valueType,
                             const char* valueName, const Validator* validator,
                             const EnumDefinition* enumDefinition)
    : GlobalItemImpl(self, id, name, description),
      mValueType(valueType),
      mValidator(validator),
      mEnumDefinition(enumDefinition) {
  ZELK_CONTRACT_MESSAGE(valueType >= Parameter::BOOL && valueType <= Parameter::UINT64,
                        "Invalid value type");
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
  const ValueTypeNames& names = smValueTypeNames();
  ValueTypeNames::const_iterator found = names.find(valueType);
  return found != names.end() ? found->second : "unknown";
}

}  // namespace zelk::configuration::impl
