#include "zelk/configuration/impl/ValidationErrorsImpl.h"

#include "zelk/util/Contracts.h"

namespace zelk::configuration::impl {

void ValidationErrorsImpl::addError(const char* error) {
  ZELK_CONTRACT(error != 0 && *error != '\0');
  mErrors.emplace_back(error);
}

const char* ValidationErrorsImpl::getError(size_t index) const {
  ZELK_CONTRACT(index < mErrors.size());
  return mErrors[index].c_str();
}

}  // namespace zelk::configuration::impl
