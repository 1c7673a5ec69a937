// EnumDefinition: the symbols of an enumerated parameter and their integer values.
//
// Symbols are case-sensitive and kept in symbol order. A symbol added without a value takes the
// next automatic value: 0, 1, 2 ... and, after an explicit value v, v + 1. Look-ups report a
// missing symbol or value into the caller's ValidationErrors (or throw ValidationException when
// given none).
//
//   EnumDefinition* mode = impl::Factory::createEnumDefinition("mode", manager);
//   impl::Factory::addEnumValue(mode, "fast");      // 0
//   impl::Factory::addEnumValue(mode, "safe", 10);  // 10
//   ValidationErrors errors;
//   mode->getValue("safe", &errors);                // 10
#pragma once

#include <cstddef>
#include <cstdint>

#include <boost/scoped_ptr.hpp>

namespace zelk::configuration {

class ValidationErrors;

namespace impl {
class EnumDefinitionImpl;
class Factory;
}  // namespace impl

class EnumDefinition {
public:
  virtual ~EnumDefinition();

  const char* getName() const;
  // Adds symbol with value unless the symbol is present already (then its first value stays).
  // Either way the next automatic value becomes value + 1, which is returned.
  int32_t addEnumValue(const char* symbol, int32_t value);
  // Adds symbol with the next automatic value; returns the new next automatic value.
  int32_t addEnumValue(const char* symbol);
  // The value of symbol (exact case); when absent records "Symbol "<symbol>" was not found" and
  // returns 0.
  int32_t getValue(const char* symbol, ValidationErrors* errors) const;
  // The first symbol, in symbol order, that has value; when none records "Value <value> was not
  // found" and returns null.
  const char* getSymbolicName(int32_t value, ValidationErrors* errors) const;
  // The index-th symbol in symbol order (a contract: index < the number of values).
  const char* getSymbolicNameByIndex(size_t index) const;
  // The index-th symbol in the order the symbols were first added (a contract: index < the number
  // of values). Messages that list the allowed symbols use this order.
  const char* getSymbolicNameInDefinitionOrder(size_t index) const;
  size_t getNumberOfValues() const;

  impl::EnumDefinitionImpl* getImpl() const;

protected:
  friend class impl::Factory;
  // Contract: name is neither null nor empty.
  explicit EnumDefinition(const char* name);

  boost::scoped_ptr<impl::EnumDefinitionImpl> mImpl;

private:
  EnumDefinition(const EnumDefinition&) = delete;
  EnumDefinition& operator=(const EnumDefinition&) = delete;
};

}  // namespace zelk::configuration
