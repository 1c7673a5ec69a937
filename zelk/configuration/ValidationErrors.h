// ValidationErrors: an ordered list of problems found in user input.
//
// Operations that check input take an optional ValidationErrors*. Given a list they append to it
// and go on, so that one run reports every problem; given null they throw the first problem at
// once as a ValidationException. Callers that collect call throwIfErrors() at the end of a phase.
//
//   zelk::configuration::ValidationErrors errors;
//   zelk::configuration::impl::Convert::asInt32("x", &errors);
//   if (errors.getNumberOfErrors() > 0) std::cerr << errors.getError(0) << '\n';
//   errors.throwIfErrors();   // throws ValidationException holding every error
#pragma once

#include <cstddef>

#include "zelk/configuration/SourcePosition.h"

#include <boost/scoped_ptr.hpp>

namespace zelk::configuration {

namespace impl {
class ValidationErrorsImpl;
}

class ValidationErrors {
public:
  ValidationErrors();
  ValidationErrors(const ValidationErrors& other);
  ValidationErrors& operator=(const ValidationErrors& other);
  virtual ~ValidationErrors();

  // Formats the arguments printf-style (cut at 4095 characters) and appends the text. The format
  // is the caller's own literal; it must not be null or empty (a contract).
  void addError(const char* format, ...) __attribute__((format(printf, 2, 3)));
  // Appends text read as a format without arguments: "%%" becomes "%", any other conversion is
  // kept as written. For messages built from user text that must be formatted once more.
  void addErrorAsFormat(const char* text);

  size_t getNumberOfErrors() const;
  // The error at index (a contract: index < count); valid until the list changes.
  const char* getError(size_t index) const;
  void clear();
  // Where in a file the error at index stands (a contract: index < count); unknown (line 0) for
  // errors added without one.
  const SourcePosition& getPosition(size_t index) const;
  // Places the error at index (a contract: index < count).
  void setPosition(size_t index, const SourcePosition& position);
  // Throws ValidationException(*this) when the list is not empty.
  void throwIfErrors() const;

  // Reports one input problem: formats the arguments, then appends the text to errors, formatting
  // it a second time (see addErrorAsFormat). Without a list, throws a ValidationException holding
  // just this error. A null format does nothing.
  static void processError(ValidationErrors* errors, const char* format, ...)
      __attribute__((format(printf, 2, 3)));

private:
  boost::scoped_ptr<impl::ValidationErrorsImpl> mImpl;
};

}  // namespace zelk::configuration
