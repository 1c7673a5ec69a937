#include "zelk/util/SafeFormat.h"

#include <cstdio>

namespace zelk {

std::string formatWithoutArguments(const char* text) {
  std::string result;
  if (text == nullptr) {
    return result;
  }
  for (const char* p = text; *p != '\0' && result.size() < kFormatBufferSize - 1; ++p) {
    result.push_back(*p);
    if (p[0] == '%' && p[1] == '%') {
      ++p;
    }
  }
  return result;
}

std::string formatMessageV(const char* format, va_list arguments) {
  char buffer[kFormatBufferSize];
  buffer[0] = '\0';
  std::vsnprintf(buffer, sizeof buffer, format, arguments);
  return buffer;
}

std::string formatMessage(const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  std::string result = formatMessageV(format, arguments);
  va_end(arguments);
  return result;
}

}  // namespace zelk
