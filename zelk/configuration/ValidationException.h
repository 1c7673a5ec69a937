// ValidationException: problems in user input, all of them.
//
// Thrown by ValidationErrors::throwIfErrors() and by operations that were given no error list.
// what() is the errors joined by newlines; getErrors() lists them one by one.
//
//   try {
//     manager->getValueGroup("backup", true, 0);
//   } catch (const zelk::configuration::ValidationException& e) {
//     for (size_t i = 0; i < e.getErrors().getNumberOfErrors(); ++i)
//       std::cerr << e.getErrors().getError(i) << '\n';
//   }
#pragma once

#include "zelk/configuration/ConfigurationException.h"
#include "zelk/configuration/ValidationErrors.h"

namespace zelk::configuration {

class ValidationException : public ConfigurationException {
public:
  // The message is the errors joined by newlines (no newline at the end).
  explicit ValidationException(const ValidationErrors& errors);
  // message is read as a format without arguments ("%%" becomes "%").
  ValidationException(const ValidationErrors& errors, const char* message);
  ValidationException(const ValidationException& other) = default;
  ~ValidationException() override;

  int get_kind() const override;
  const ValidationErrors& getErrors() const { return mErrors; }

  // Builds an exception whose message is format formatted with the arguments; a null format gives
  // an empty message.
  static ValidationException Create(const ValidationErrors& errors, const char* format, ...)
      __attribute__((format(printf, 2, 3)));

private:
  ValidationException(const ValidationErrors& errors, RawMessage, const char* text);

  ValidationErrors mErrors;
};

}  // namespace zelk::configuration
