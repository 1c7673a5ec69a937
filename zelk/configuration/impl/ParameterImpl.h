// ParameterImpl: a parameter's value type, value name, default value (owned), validator and
// enumeration (neither owned), and the process-wide table of value type names.
#pragma once

#include <cstdint>
#include <string>

#include <boost/scoped_ptr.hpp>

#include "zelk/configuration/Parameter.h"
#include "zelk/configuration/impl/GlobalItemImpl.h"

namespace zelk::configuration::impl {

class ParameterImpl : public GlobalItemImpl {
public:
  // Contracts: "Invalid value type", "An EnumDefinition must be provided for enum parameters",
  // and a non-empty id.
  ParameterImpl(Parameter* self, const char* id, const char* name, const char* description,
                Parameter::ValueType valueType, const char* valueName,
                const Validator* validator, const EnumDefinition* enumDefinition);
  ~ParameterImpl() override;

  GlobalItem::ItemType getItemType() const override { return GlobalItem::PARAMETER; }
  const char* getItemTypeName() const override;

  Parameter::ValueType getValueType() const { return mValueType; }
  const char* getValueName() const;
  // A copy of the default value's handle, or Value::Null.
  Value getDefaultValue() const;
  void setDefaultValue(const Value& value);
  // True when a default value is set.
  bool hasDefaultValue() const;
  const Validator* getValidator() const { return mValidator; }
  const EnumDefinition* getEnumDefinition() const { return mEnumDefinition; }

  // "unknown" outside BOOL..UINT64. The table is built once per process.
  static const char* getValueTypeName(Parameter::ValueType valueType);

private:
  Parameter::ValueType mValueType;
  std::string mValueName;
  boost::scoped_ptr<Value> mDefaultValue;
  const Validator* mValidator;
  const EnumDefinition* mEnumDefinition;
};

}  // namespace zelk::configuration::impl
