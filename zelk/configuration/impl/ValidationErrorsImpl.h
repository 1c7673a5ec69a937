// ValidationErrorsImpl: the storage behind ValidationErrors, one string per error in order.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace zelk::configuration::impl {

class ValidationErrorsImpl {
public:
  // Appends a copy of error (a contract: not null, not empty).
  void addError(const char* error);
  const char* getError(size_t index) const;
  size_t getNumberOfErrors() const { return mErrors.size(); }
  void clear() { mErrors.clear(); }

private:
  std::vector<std::string> mErrors;
};

}  // namespace zelk::configuration::impl
