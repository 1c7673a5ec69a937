// UnboundedValue: a handle on a value that may hold any number of entries.
//
// Entries are texts, read by index in the bound parameter's type. Get one from
// ValueGroup::getUnboundedValue or make one with UnboundedValue::create.
//
//   zelk::configuration::UnboundedValue paths = values.getUnboundedValue("paths");
//   for (size_t i = 0; i < paths.getValueCount(); ++i) use(paths.asString(i));
//   paths.add("/tmp");   // listeners are told of the added value
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include <boost/shared_ptr.hpp>

#include "zelk/configuration/ObjectId.h"
#include "zelk/configuration/ValueBase.h"

namespace zelk::configuration {

class Value;

class UnboundedValue : public ValueBase {
public:
  // The handle with no state, returned when a value is not found.
  static const UnboundedValue Null;

  // A null handle.
  UnboundedValue();
  // A new, empty, unbound value named name ("Must provide a name" for a null or empty name).
  explicit UnboundedValue(const char* name);
  // A new, empty value bound to ref.
  explicit UnboundedValue(const ParameterRef* ref);
  // Shares the state of a bounded value handle.
  explicit UnboundedValue(const Value& value);
  // A handle on a copy of other's state (without entries when shallow is non-zero).
  UnboundedValue(const UnboundedValue& other, int shallow);
  UnboundedValue(const UnboundedValue& other);
  // A handle on state (library use).
  explicit UnboundedValue(const boost::shared_ptr<impl::ValueState>& state);
  UnboundedValue& operator=(const UnboundedValue& other);
  ~UnboundedValue() override;

  // As Value::create, giving an unbounded handle.
  static UnboundedValue create(const ParameterRef* ref, const char* text);
  static UnboundedValue create(const char* name, const char* text);

  ItemType getItemType() const override { return UNBOUNDED_VALUE; }
  boost::shared_ptr<ValueGroupItem> clone(int shallow) const override;
  bool accept(ValueGroupItemVisitor& visitor) const override;

  // Typed reads of entry index; the same errors as Value's reads ("index out of range" for an
  // index not below getValueCount()).
  bool asBool(size_t index = 0) const;
  int32_t asInt32(size_t index = 0) const;
  uint32_t asUInt32(size_t index = 0) const;
  int64_t asInt64(size_t index = 0) const;
  uint64_t asUInt64(size_t index = 0) const;
  double asDouble(size_t index = 0) const;
  ObjectId asOID(size_t index = 0) const;
  std::string asString(size_t index = 0) const;
  int32_t asEnum(size_t index = 0) const;

  // Appends an entry (validated by type) and tells listeners. Errors as Value::set.
  void add(const char* text);
  void add(bool value);
  void add(int32_t value);
  void add(uint32_t value);
  void add(int64_t value);
  void add(uint64_t value);
  void add(double value);
  void add(const ObjectId& value);

  // Replaces entry index and tells listeners of the change. Errors as Value::set.
  void set(size_t index, const char* text);
  void set(size_t index, bool value);
  void set(size_t index, int32_t value);
  void set(size_t index, uint32_t value);
  void set(size_t index, int64_t value);
  void set(size_t index, uint64_t value);
  void set(size_t index, double value);
  void set(size_t index, const ObjectId& value);

  // Appends every entry of other, unvalidated. Throws ConfigurationException "Values of %s type
  // cannot be appended to this %s type unbounded value" when both are typed and the types differ.
  void append(const ValueBase& other);

private:
  template <typename T>
  void addValue(const T& value);
  template <typename T>
  void setValue(size_t index, const T& value);
};

}  // namespace zelk::configuration
