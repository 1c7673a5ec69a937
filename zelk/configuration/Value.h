// Value: a handle on a bounded (single) value of a value tree.
//
// Values are kept as texts and converted on typed reads (a successful conversion is kept until the
// value changes; a failed one is reported on every read); a read in a type other than the bound
// parameter's throws ConfigurationException "This value is not an int32" and the like.
// Get one from ValueGroup::getValue (Value::Null when absent) or make one with Value::create.
//
//   zelk::configuration::Value port = values.getValue("port");
//   if (!port.isNull()) {
//     int32_t n = port.asInt32();
//     port.set(n + 1);       // listeners of the parameter are told of the change
//   }
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include <boost/shared_ptr.hpp>

#include "zelk/configuration/ObjectId.h"
#include "zelk/configuration/ValueBase.h"

namespace zelk::configuration {

class Value : public ValueBase {
public:
  // The handle with no state, returned when a value is not found.
  static const Value Null;

  // A null handle.
  Value();
  // A new, empty, unbound value named name; throws ContractViolationException "Must provide a
  // name" for a null or empty name.
  explicit Value(const char* name);
  // A new, empty default value of parameter.
  explicit Value(const Parameter* parameter);
  // A new, empty value bound to ref.
  explicit Value(const ParameterRef* ref);
  // A handle on a copy of other's state (without texts when shallow is non-zero); null for null.
  Value(const Value& other, int shallow);
  // Shares other's state.
  Value(const Value& other);
  // A handle on state (library use).
  explicit Value(const boost::shared_ptr<impl::ValueState>& state);
  Value& operator=(const Value& other);
  ~Value() override;

  // A value bound to ref holding text. For a boolean parameter a non-null text throws
  // ConfigurationException ("\"p\" is a boolean parameter and cannot accept a value") and null
  // means true; for other types a null or empty text throws "Must provide a value for the \"p\"
  // parameter."; invalid texts throw ValidationException.
  static Value create(const ParameterRef* ref, const char* text);
  // An unbound value named name holding text, or "1" (a true flag) for a null or empty text.
  static Value create(const char* name, const char* text);

  ItemType getItemType() const override { return VALUE; }
  boost::shared_ptr<ValueGroupItem> clone(int shallow) const override;
  bool accept(ValueGroupItemVisitor& visitor) const override;

  // Typed reads of the (first) text. Each throws ConfigurationException "This value is not %s %s"
  // when the value's type differs, and ContractViolationException "index out of range" when the
  // value holds no text.
  bool asBool() const;
  int32_t asInt32() const;
  uint32_t asUInt32() const;
  int64_t asInt64() const;
  uint64_t asUInt64() const;
  double asDouble() const;
  ObjectId asOID() const;
  // "true"/"false" for a boolean value, else the stored text (enumerations give the symbol).
  std::string asString() const;
  // The number of the stored enumeration symbol; throws ConfigurationException "Unknown
  // enumeration type for value '%s'" when the value has no enumeration.
  int32_t asEnum() const;
  bool hasValue() const;

  // Replaces the text (or adds the first one) and tells listeners of the change. Throws
  // ConfigurationException for a type mismatch or a default value that already holds a text,
  // ValidationException for an invalid text; the value is unchanged then.
  void set(const char* text);
  void set(bool value);
  void set(int32_t value);
  void set(uint32_t value);
  void set(int64_t value);
  void set(uint64_t value);
  void set(double value);
  void set(const ObjectId& value);

private:
  template <typename T>
  void setValue(const T& value);
  // The typed read of the first text: read (ValueState::asInt32 and the like) unless the cache
  // answers for type.
  template <typename T>
  T readFirst(int type, T (impl::ValueState::*read)(size_t) const) const;
};

}  // namespace zelk::configuration
