// ValidatorImpl: a validator's name, and the check of every text of a value.
#pragma once

#include <string>

#include "zelk/configuration/Validator.h"

namespace zelk::configuration::impl {

class ValidatorImpl {
public:
  // Contract: name is neither null nor empty.
  explicit ValidatorImpl(const char* name);
  virtual ~ValidatorImpl();

  // Runs validator.validate(const char*) on every non-null text of value; null when all pass,
  // else every error followed by a newline, in a new[] array.
  virtual char* validate(const Validator& validator, const ValueBase& value) const;

  const char* getName() const { return mName.c_str(); }

private:
  std::string mName;
};

}  // namespace zelk::configuration::impl
