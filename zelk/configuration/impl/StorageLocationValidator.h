// StorageLocationValidator: the library's own validator "storageLocation".
//
// A storage location is a path, optionally preceded by a host and "::". Only the first "::" is
// examined: it must have text before it and after it.
//
//   StorageLocationValidator v;
//   v.validate("host::/data");   // null
//   v.validate("::/data");       // "Value is not properly formatted" (release with delete[])
#pragma once

#include "zelk/configuration/Validator.h"

namespace zelk::configuration::impl {

class StorageLocationValidator : public Validator {
public:
  StorageLocationValidator();
  ~StorageLocationValidator() override;

  using Validator::validate;
  // Contract: value is not null.
  char* validate(const char* value) const override;
};

}  // namespace zelk::configuration::impl
