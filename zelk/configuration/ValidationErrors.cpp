#include "zelk/configuration/ValidationErrors.h"

#include <cstdarg>
#include <cstring>
#include <string>

#include "zelk/configuration/ValidationException.h"
#include "zelk/configuration/impl/ValidationErrorsImpl.h"
#include "zelk/util/Contracts.h"
#include "zelk/util/SafeFormat.h"

namespace zelk::configuration {

ValidationErrors::ValidationErrors() : mImpl(new impl::ValidationErrorsImpl) {}

ValidationErrors::ValidationErrors(const ValidationErrors& other)
    : mImpl(new impl::ValidationErrorsImpl(*other.mImpl)) {}

ValidationErrors& ValidationErrors::operator=(const ValidationErrors& other) {
  if (this != &other) {
    *mImpl = *other.mImpl;
  }
  return *this;
}

ValidationErrors::~ValidationErrors() = default;

void ValidationErrors::addError(const char* format, ...) {
  ZELK_CONTRACT(format != 0 && strlen(format) > 0);
  va_list arguments;
  va_start(arguments, format);
  const std::string text = formatMessageV(format, arguments);
  va_end(arguments);
  mImpl->addError(text.c_str());
}

void ValidationErrors::addErrorAsFormat(const char* format) {
  ZELK_CONTRACT(format != 0 && strlen(format) > 0);
  mImpl->addError(formatWithoutArguments(format).c_str());
}

size_t ValidationErrors::getNumberOfErrors() const { return mImpl->getNumberOfErrors(); }

const char* ValidationErrors::getError(size_t index) const { return mImpl->getError(index); }

void ValidationErrors::clear() { mImpl->clear(); }

const SourcePosition& ValidationErrors::getPosition(size_t index) const {
  return mImpl->getPosition(index);
}

void ValidationErrors::setPosition(size_t index, const SourcePosition& position) {
  mImpl->setPosition(index, position);
}

void ValidationErrors::throwIfErrors() const {
  if (getNumberOfErrors() != 0) {
    throw ValidationException(*this);
  }
}

void ValidationErrors::processError(ValidationErrors* errors, const char* format, ...) {
  if (format == nullptr) {
    return;
  }
  va_list arguments;
  va_start(arguments, format);
  const std::string text = formatMessageV(format, arguments);
  va_end(arguments);
  if (errors != nullptr) {
    errors->addErrorAsFormat(text.c_str());
    return;
  }
  ValidationErrors local;
  local.addErrorAsFormat(text.c_str());
  throw ValidationException(local);
}

}  // namespace zelk::configuration
