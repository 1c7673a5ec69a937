#include "zelk/configuration/ValidationException.h"

#include <cstdarg>
#include <string>

#include "zelk/util/SafeFormat.h"
#include "zelk/util/StringUtil.h"

namespace zelk::configuration {

namespace {

// The errors joined by newlines. The text is escaped and then read back as a format, so that the
// message equals the joined errors exactly.
std::string getErrorMessage(const ValidationErrors& errors) {
  std::string joined;
  for (size_t i = 0; i < errors.getNumberOfErrors(); ++i) {
    if (i != 0) {
      joined += '\n';
    }
    joined += errors.getError(i);
  }
  const std::string escaped = StringUtil::escapeString(joined.c_str());
  return formatWithoutArguments(escaped.c_str());
}

}  // namespace

ValidationException::ValidationException(const ValidationErrors& errors)
    : ConfigurationException(RawMessage(), getErrorMessage(errors).c_str()), mErrors(errors) {
  // The exception stands where its first placed error stands.
  for (size_t i = 0; i < errors.getNumberOfErrors(); ++i) {
    if (errors.getPosition(i).isKnown()) {
      setPosition(errors.getPosition(i));
      break;
    }
  }
}

ValidationException::ValidationException(const ValidationErrors& errors, const char* message)
    : ConfigurationException(RawMessage(),
                             message != nullptr ? formatWithoutArguments(message).c_str() : nullptr),
      mErrors(errors) {}

ValidationException::ValidationException(const ValidationErrors& errors, RawMessage,
                                         const char* text)
    : ConfigurationException(RawMessage(), text), mErrors(errors) {}

ValidationException::~ValidationException() = default;

int ValidationException::get_kind() const { return -701; }

ValidationException ValidationException::Create(const ValidationErrors& errors, const char* format,
                                                ...) {
  std::string text;
  if (format != nullptr) {
    va_list arguments;
    va_start(arguments, format);
    text = formatMessageV(format, arguments);
    va_end(arguments);
  }
  return ValidationException(errors, RawMessage(), text.c_str());
}

}  // namespace zelk::configuration
