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

const SourcePosition& ValidationErrorsImpl::getPosition(size_t index) const {
  ZELK_CONTRACT(index < mErrors.size());
  static const SourcePosition UNKNOWN;
  return index < mPositions.size() ? mPositions[index] : UNKNOWN;
}

void ValidationErrorsImpl::setPosition(size_t index, const SourcePosition& position) {
  ZELK_CONTRACT(index < mErrors.size());
  if (mPositions.size() <= index) mPositions.resize(index + 1);
  mPositions[index] = position;
}

}  // namespace zelk::configuration::impl
