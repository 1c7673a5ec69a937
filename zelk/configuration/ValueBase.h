// ValueBase: what bounded values (Value) and unbounded values (UnboundedValue) share.
//
// A value is a named list of texts, optionally bound to the ParameterRef it satisfies; the bound
// parameter's value type decides which texts are accepted and which typed reads are allowed.
// Texts are converted on typed reads; the conversion of the first text is kept until the value
// changes, so reading a held value again is cheap. You get values from a ValueGroup (getValue,
// getUnboundedValue, addValue) or make them with Value::create / UnboundedValue::create.
//
//   zelk::configuration::UnboundedValue paths = group.getUnboundedValue("paths");
//   for (zelk::configuration::ValueIterator it = paths.getIterator(); it.next();)
//     std::cout << it.asString() << '\n';
#pragma once

#include <cstddef>

#include <boost/shared_ptr.hpp>

#include "zelk/configuration/ValueGroupItem.h"

namespace zelk::configuration {

class Parameter;
class ParameterRef;
class ValueIterator;

namespace impl {
class ValueState;
}

class ValueBase : public ValueGroupItem {
public:
  ~ValueBase() override;

  bool isUnbounded() const override;
  bool isValue() const override { return true; }
  bool isValueGroup() const override { return false; }
  // True when the parent group has been completed; false without a parent.
  bool isComplete() const override;

  // The parameter's value type (Parameter::ValueType), or -1 for an untyped value.
  int getValueType() const;
  // The parameter's value type name ("int32", ...), or "unknown" for an untyped value.
  const char* getValueTypeName() const;
  // The parameter of a default value, else the bound reference's parameter, else null.
  const Parameter* getParameter() const;
  // The bound parameter reference, or null while the value is unmatched.
  const ParameterRef* getParameterRef() const;
  // The number of texts held.
  size_t getValueCount() const;
  bool hasValues() const;
  // True for the default value of a parameter (such a value cannot be changed once it has a text).
  bool isDefaultValue() const;
  // An iterator over the texts of this value.
  ValueIterator getIterator() const;

  // A copy of entry index to hand to change listeners, bound like this value; empty for an
  // unmatched value.
  boost::shared_ptr<impl::ValueState> saveOldValue(size_t index) const;
  // Tells the listeners of the bound reference that this value was added.
  void raiseValueAdded() const;
  // Tells the listeners of the bound reference that this value changed from oldValue.
  void raiseValueChanged(const boost::shared_ptr<impl::ValueState>& oldValue) const;

protected:
  ValueBase();
  explicit ValueBase(const boost::shared_ptr<impl::ValueState>& state);
  ValueBase(const ValueBase& other);
  ValueBase& operator=(const ValueBase& other);

  // The value state; throws ConfigurationException on a null handle.
  impl::ValueState& getValueState() const;
  boost::shared_ptr<impl::ValueState> getValueStatePointer() const;
};

}  // namespace zelk::configuration
