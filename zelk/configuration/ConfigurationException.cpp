#include "zelk/configuration/ConfigurationException.h"

#include <cstdarg>
#include <cstring>
#include <utility>

#include "zelk/util/SafeFormat.h"
#include "zelk/util/StringFunctions.h"

namespace zelk::configuration {

ConfigurationException::ConfigurationException(const char* format, ...) {
  if (format != nullptr) {
    va_list arguments;
    va_start(arguments, format);
    const std::string text = formatMessageV(format, arguments);
    va_end(arguments);
    mMessage = cloneString(text.c_str());
  }
}

ConfigurationException::ConfigurationException(RawMessage, const char* text)
    : mMessage(cloneString(text)) {}

ConfigurationException::ConfigurationException(const ConfigurationException& other)
    : HostErrorReporter(other),
      mMessage(cloneString(other.mMessage)),
      mPosition(other.mPosition),
      mReason(other.mReason) {}

ConfigurationException& ConfigurationException::operator=(const ConfigurationException& other) {
  if (this != &other) {
    char* copy = cloneString(other.mMessage);
    delete[] mMessage;
    mMessage = copy;
    mPosition = other.mPosition;
    mReason = other.mReason;
  }
  return *this;
}

ConfigurationException::~ConfigurationException() { delete[] mMessage; }

const char* ConfigurationException::what() const noexcept { return mMessage; }

int ConfigurationException::get_kind() const { return -700; }

}  // namespace zelk::configuration
