// ConfigurationException: the exception of the library's public API.
//
// Error policy: what each kind of exception means and which calls throw it.
//
// - ValidationException (a ConfigurationException, get_kind() -701): the user's input is wrong,
//   all of it listed in getErrors(), one message per problem. Thrown by getValueGroup and
//   ValueProvider::getValues (values that do not convert, do not match the specification, or
//   break its required, bounded or one-of rules), by typed reads of a text that does not convert,
//   by the value model's writes (ValueGroup::addValue, Value::set ...) of such texts, and by
//   registry loading for a missing required attribute. A call that takes an optional
//   ValidationErrors* appends to the list when given one and throws instead when not.
// - ConfigurationException (get_kind() -700): an operation could not be done: a missing,
//   unreadable or malformed file, a registry entry that refers to something unknown or is defined
//   twice, an unknown specification for getValueGroup, a typed read of the wrong type ("This
//   value is not an uint32"), a write to a default value, an unsupported setArguments form. The
//   message is the whole report.
// - std::invalid_argument: bad arguments to the command-line provider, which enableConfiguration
//   passes on: a null argument array, no specification id, or a specification id the manager does
//   not know ("The "x" specification was not found"). It is the standard kind on purpose, as
//   every command-line front end reports bad arguments; the string and UTF functions of
//   zelk/util throw it too for text that is not valid UTF-8.
// - zelk::ContractViolationException (a std::exception): a programming error of the caller, a
//   broken precondition such as a null pointer or an empty name: "Contract violation: "<check>"".
//   Never caused by user input; not meant to be caught except to report it.
// - zelk::host::FormattedHostException: a regular expression that does not compile.
//
// Where a problem stands in a file is data, not only text: the registry loader and the value-file
// reader put a SourcePosition (file, line, column, element, attribute) on the
// ConfigurationException they throw (getPosition) and on each error of a ValidationException
// (ValidationErrors::getPosition); isKnown() is false where no place applies.
//
// The first two derive from the host's exception base, so the host's own error handling can
// catch and print them. A tool that reports everything it can meet catches ValidationException
// (to list the problems), then ConfigurationException, then std::exception:
//
//   try {
//     manager->enableConfiguration(true, nullptr, argc, argv, "backup");
//     values = manager->getValueGroup("backup", true, 0);
//   } catch (const ValidationException& e) {          // every problem of the user's input
//     for (size_t i = 0; i < e.getErrors().getNumberOfErrors(); ++i)
//       std::cerr << e.getErrors().getError(i) << '\n';
//   } catch (const ConfigurationException& e) {       // a missing file, a broken registry ...
//     std::cerr << e.what() << '\n';
//   } catch (const std::exception& e) {               // an unknown specification id ...
//     std::cerr << e.what() << '\n';
//   }
#pragma once

#include <string>

#include "zelk/configuration/SourcePosition.h"
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

  // Where in a file the problem stands, for errors of the registry loader and the value-file
  // reader; unknown (line 0) otherwise. The message says the same in words.
  const SourcePosition& getPosition() const { return mPosition; }
  void setPosition(const SourcePosition& position) { mPosition = position; }

  // Why the operation failed in the system's words, where the message is a fixed text: for
  // "File "x" was not found" or "File "x" cannot be written" the errno text ("Permission
  // denied", "No space left on device") or what the path is ("it is a FIFO, not a regular
  // file"). Empty when there is none. The same reason is written to the host's main log.
  const std::string& getReason() const noexcept { return mReason; }
  void setReason(const std::string& reason) { mReason = reason; }

protected:
  struct RawMessage {};
  // Takes text as the message as it stands (null leaves the message null).
  ConfigurationException(RawMessage, const char* text);

private:
  char* mMessage = nullptr;
  SourcePosition mPosition;
  std::string mReason;
};

}  // namespace zelk::configuration
