// ConfigurationException: the exception of the library's public API.
//
// Operational failures (a missing file, an unknown specification, a duplicate registry entry) are
// thrown as ConfigurationException with a printf-style message; ValidationException, its subclass,
// carries the list of input problems. Both derive from the host's exception base, so the host's
// own error handling can catch and print them.
//
//   try {
//     manager->getValueGroup("backup", true, 0);
//   } catch (const zelk::configuration::ConfigurationException& e) {
//     std::cerr << e.what() << '\n';   // get_kind() is -700 (-701 for a ValidationException)
//   }
#pragma once

#include <string>

#include "zelk/host/HostErrorReporter.h"

namespace zelk::configuration {

class ConfigurationException : public zelk::host::HostErrorReporter {
public:
  // Formats the arguments printf-style (cut at 4095 characters). The format must be the caller's
  // own literal; a null format leaves the message null.
  explicit ConfigurationException(const char* format, ...) __attribute__((format(printf, 2, 3)));
  ConfigurationException(const ConfigurationException& other);
  ConfigurationException& operator=(const ConfigurationException& other);
  ~ConfigurationException() override;

  // The message, or null when the exception was built from a null format.
  const char* what() const noexcept override;
  int get_kind() const override;

protected:
  struct RawMessage {};
  // Takes text as the message as it stands (null leaves the message null).
  ConfigurationException(RawMessage, const char* text);

private:
  char* mMessage = nullptr;
};

}  // namespace zelk::configuration
