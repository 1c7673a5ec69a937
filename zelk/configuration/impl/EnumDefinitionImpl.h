// EnumDefinitionImpl: the symbol-to-value map of an enumeration and its automatic numbering.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "zelk/configuration/EnumDefinition.h"

namespace zelk::configuration::impl {

class EnumDefinitionImpl {
public:
  // Contract: name is neither null nor empty.
  explicit EnumDefinitionImpl(const char* name);

  const char* getName() const { return mName.c_str(); }
  int32_t addEnumValue(const char* symbol, int32_t value);
  int32_t addEnumValue(const char* symbol);
  int32_t getValue(const char* symbol, ValidationErrors* errors) const;
  const char* getSymbolicName(int32_t value, ValidationErrors* errors) const;
  const char* getSymbolicNameByIndex(size_t index) const;
  const char* getSymbolicNameInDefinitionOrder(size_t index) const;
  size_t getNumberOfValues() const { return mNameValues.size(); }
  // The value that addEnumValue(symbol) would give next; after 2147483647 it has wrapped to
  // -2147483648.
  int32_t getNextValue() const { return mNextValue; }

private:
  std::string mName;
  // Ordered by symbol, byte-wise.
  std::map<std::string, int32_t> mNameValues;
  int32_t mNextValue;
  // The symbols in the order they were first added, for messages that list them.
  std::vector<std::string> mDefinitionOrder;
};

}  // namespace zelk::configuration::impl
