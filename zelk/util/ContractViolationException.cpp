#include "zelk/util/ContractViolationException.h"

#include <utility>

#include "zelk/util/StringFunctions.h"

namespace zelk {

ContractViolationException::ContractViolationException(const char* message, const char* file,
                                                       unsigned int line)
    : mMessage(cloneString(message)), mFile(cloneString(file)), mLine(line) {}

ContractViolationException::ContractViolationException(const ContractViolationException& other)
    : std::exception(other),
      mMessage(cloneString(other.mMessage)),
      mFile(cloneString(other.mFile)),
      mLine(other.mLine) {}

ContractViolationException& ContractViolationException::operator=(
    const ContractViolationException& other) {
  if (this != &other) {
    ContractViolationException copy(other);
    std::swap(mMessage, copy.mMessage);
    std::swap(mFile, copy.mFile);
    mLine = copy.mLine;
  }
  return *this;
}

ContractViolationException::~ContractViolationException() {
  delete[] mMessage;
  delete[] mFile;
}

const char* ContractViolationException::what() const noexcept { return mMessage; }

}  // namespace zelk
