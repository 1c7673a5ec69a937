#include "zelk/configuration/impl/EnumDefinitionImpl.h"

#include <iterator>
#include <utility>

#include "zelk/configuration/ValidationErrors.h"
#include "zelk/util/Contracts.h"
#include "zelk/util/StringUtil.h"

namespace zelk::configuration::impl {

EnumDefinitionImpl::EnumDefinitionImpl(const char* name) : mNextValue(0) {
  ZELK_CONTRACT(name != 0 && *name != '\0');
  mName = name;
}

int32_t EnumDefinitionImpl::addEnumValue(const char* symbol, int32_t value) {
  ZELK_CONTRACT(symbol != 0);
  // A repeated symbol keeps its first value, silently.
  if (mNameValues.insert(std::make_pair(std::string(symbol), value)).second) {
    mDefinitionOrder.push_back(symbol);
  }
  // Wraps like the 32-bit counter it is.
  mNextValue = static_cast<int32_t>(static_cast<uint32_t>(value) + 1u);
  return mNextValue;
}

int32_t EnumDefinitionImpl::addEnumValue(const char* symbol) {
  return addEnumValue(symbol, mNextValue);
}

int32_t EnumDefinitionImpl::getValue(const char* symbol, ValidationErrors* errors) const {
  const std::string key(symbol != 0 ? symbol : "");
  std::map<std::string, int32_t>::const_iterator found = mNameValues.find(key);
  if (found == mNameValues.end()) {
    ValidationErrors::processError(errors, "Symbol \"%s\" was not found",
                                   zelk::StringUtil::escapeString(key.c_str()).c_str());
    return 0;
  }
  return found->second;
}

const char* EnumDefinitionImpl::getSymbolicName(int32_t value, ValidationErrors* errors) const {
  for (std::map<std::string, int32_t>::const_iterator it = mNameValues.begin();
       it != mNameValues.end(); ++it) {
    if (it->second == value) {
      return it->first.c_str();
    }
  }
  ValidationErrors::processError(errors, "Value %d was not found", static_cast<int>(value));
  return 0;
}

const char* EnumDefinitionImpl::getSymbolicNameByIndex(size_t index) const {
  ZELK_CONTRACT(index < mNameValues.size());
  std::map<std::string, int32_t>::const_iterator it = mNameValues.begin();
  std::advance(it, index);
  return it->first.c_str();
}

const char* EnumDefinitionImpl::getSymbolicNameInDefinitionOrder(size_t index) const {
  ZELK_CONTRACT(index < mNameValues.size());
  return mDefinitionOrder[index].c_str();
}

}  // namespace zelk::configuration::impl
