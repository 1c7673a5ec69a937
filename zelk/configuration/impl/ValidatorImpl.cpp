#include "zelk/configuration/impl/ValidatorImpl.h"

#include "zelk/configuration/ValueBase.h"
#include "zelk/configuration/ValueIterator.h"
#include "zelk/util/Contracts.h"
#include "zelk/util/StringFunctions.h"

namespace zelk::configuration::impl {

ValidatorImpl::ValidatorImpl(const char* name) {
  ZELK_CONTRACT(name != 0 && *name != '\0');
  mName = name;
}

ValidatorImpl::~ValidatorImpl() {}

char* ValidatorImpl::validate(const Validator& validator, const ValueBase& value) const {
  std::string result;
  ValueIterator texts(value);
  while (texts.next()) {
    const std::string text = texts.asString();
    char* error = validator.validate(text.c_str());
    if (error != 0) {
      result += error;
      result += '\n';
      delete[] error;
    }
  }
  if (result.empty()) {
    return 0;
  }
  return zelk::cloneString(result.c_str());
}

}  // namespace zelk::configuration::impl
