#include "zelk/host/FormattedHostException.h"

#include <cstdarg>
#include <cstdio>

namespace zelk::host {

FormattedHostException::FormattedHostException(const char* format, ...) {
  if (format == nullptr) {
    return;
  }
  char buffer[4096];
  buffer[0] = '\0';
  va_list arguments;
  va_start(arguments, format);
  std::vsnprintf(buffer, sizeof buffer, format, arguments);
  va_end(arguments);
  mMessage = buffer;
}

const char* FormattedHostException::what() const noexcept { return mMessage.c_str(); }

// The host's kind for errors raised by its own services.
int FormattedHostException::get_kind() const { return -100; }

}  // namespace zelk::host
