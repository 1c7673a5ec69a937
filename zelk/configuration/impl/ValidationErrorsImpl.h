// ValidationErrorsImpl: the storage behind ValidationErrors, one string per error in order.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "zelk/configuration/SourcePosition.h"

namespace zelk::configuration::impl {

class ValidationErrorsImpl {
public:
  // Appends a copy of error (a contract: not null, not empty).
  void addError(const char* error);
  const char* getError(size_t index) const;
  size_t getNumberOfErrors() const { return mErrors.size(); }
  void clear() {
    mErrors.clear();
    mPositions.clear();
  }
  const SourcePosition& getPosition(size_t index) const;
  void setPosition(size_t index, const SourcePosition& position);

private:
  std::vector<std::string> mErrors;
  // Positions of the errors that have one, by index; most lists have none, so the vector stays
  // empty and costs nothing.
  std::vector<SourcePosition> mPositions;
};

}  // namespace zelk::configuration::impl
