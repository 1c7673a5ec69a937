#include "zelk/configuration/impl/StorageLocationValidator.h"

#include <cstring>

#include "zelk/util/Contracts.h"
#include "zelk/util/StringFunctions.h"

namespace zelk::configuration::impl {

namespace {

const char* const SEPARATOR = "::";
const char* const ERROR_MESSAGE = "Value is not properly formatted";

}  // namespace

StorageLocationValidator::StorageLocationValidator() : Validator("storageLocation") {}

StorageLocationValidator::~StorageLocationValidator() {}

char* StorageLocationValidator::validate(const char* value) const {
  ZELK_CONTRACT(value != 0);
  // Only the first separator is examined: "a::b::" passes.
  const char* separator = std::strstr(value, SEPARATOR);
  if (separator == 0) {
    return 0;
  }
  const size_t separatorLength = std::strlen(SEPARATOR);
  if (separator == value || separator[separatorLength] == '\0') {
    return zelk::cloneString(ERROR_MESSAGE);
  }
  return 0;
}

}  // namespace zelk::configuration::impl
