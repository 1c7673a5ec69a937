// ContractViolationException: a broken precondition, a programming error of the caller.
//
// Thrown only through ZELK_CONTRACT (see Contracts.h). what() is the whole message, such as
// "Contract violation: \"index < mErrors.size()\""; getFile() and getLine() say where.
#pragma once

#include <exception>

namespace zelk {

class ContractViolationException : public std::exception {
public:
  ContractViolationException(const char* message, const char* file, unsigned int line);
  ContractViolationException(const ContractViolationException& other);
  ContractViolationException& operator=(const ContractViolationException& other);
  ~ContractViolationException() override;

  const char* what() const noexcept override;
  const char* getFile() const { return mFile; }
  unsigned int getLine() const { return mLine; }

private:
  char* mMessage;
  char* mFile;
  unsigned int mLine;
};

}  // namespace zelk
