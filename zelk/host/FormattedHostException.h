// FormattedHostException: the host runtime's printf-style exception.
//
//   throw zelk::host::FormattedHostException("REGEX ERROR #%d: %s", code, text);
//
// The format must be a literal of the caller's: user text goes in as an argument, never as the
// format. The text is cut at 4095 characters.
#pragma once

#include <string>

#include "zelk/host/HostErrorReporter.h"

namespace zelk::host {

class FormattedHostException : public HostErrorReporter {
public:
  explicit FormattedHostException(const char* format, ...) __attribute__((format(printf, 2, 3)));

  const char* what() const noexcept override;
  int get_kind() const override;

private:
  std::string mMessage;
};

}  // namespace zelk::host
