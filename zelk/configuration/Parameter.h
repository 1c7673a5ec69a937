// Parameter: the one definition of a tool parameter, referenced from specification trees.
//
// A parameter is a global item with a value type, the placeholder shown for its value in help
// (its value name), an optional default value, an optional Validator and, for enumerated
// parameters, an EnumDefinition. Parameters are declared in registry files or made with
// impl::Factory, and owned by the ConfigurationManager.
//
//   Parameter* level = impl::Factory::createParameter("level", "Level", "Compression level",
//       Parameter::UINT32, 0, 0, 0, manager);
//   impl::Factory::setDefaultValueFor(level, "3");
//   level->getValueName();        // "Level": the name stands in for a missing value name
//   level->getValueTypeName();    // "uint32"
#pragma once

#include <cstdint>

#include "zelk/configuration/GlobalItem.h"

namespace zelk::configuration {

class EnumDefinition;
class Validator;
class Value;

namespace impl {
class ParameterImpl;
}

class Parameter : public GlobalItem {
public:
  enum ValueType : int32_t {
    BOOL = 0,
    STRING = 1,
    INT32 = 2,
    UINT32 = 3,
    DOUBLE = 4,
    OID = 5,
    ENUM = 6,
    INT64 = 7,
    UINT64 = 8
  };

  ValueType getValueType() const;
  // The type name: "bool", "string", "int32", "uint32", "double", "OID", "enumeration", "int64"
  // or "uint64" (the display names of impl::ValueTypeTable, which also holds the registry words).
  const char* getValueTypeName() const;
  // The type name of type, or "unknown" for a value outside the table.
  static const char* getValueTypeName(ValueType type);
  // The value name given at creation; when none was given it is the parameter's name, except for
  // a boolean parameter, which keeps an empty value name.
  const char* getValueName() const;
  // A copy of the default value, or Value::Null when none is set.
  Value getDefaultValue() const;
  // Replaces the default value with a copy of value's handle.
  void setDefaultValue(const Value& value);
  // The validator that applies to the parameter's values, or null.
  const Validator* getValidator() const;
  // The enumeration of an ENUM parameter, else null.
  const EnumDefinition* getEnumDefinition() const;

  impl::ParameterImpl* getParameterImpl() const;

protected:
  friend class impl::Factory;
  // Contracts: "Invalid value type" for a type outside BOOL..UINT64, "An EnumDefinition must be
  // provided for enum parameters", and a non-empty id.
  Parameter(const char* id, const char* name, const char* description, ValueType valueType,
            const char* valueName, const Validator* validator,
            const EnumDefinition* enumDefinition);
};

}  // namespace zelk::configuration
