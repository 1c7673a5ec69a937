// ValueGroupValidator: the structural checks of a matched value tree against its specification,
// in their fixed order: unknown items, missing required items, items given more than once, and
// alternatives of a one-of given together.
//
// Each check can be switched off by a bit of options; after each of the first three, validation
// stops when the error list holds any error (also one that was there before the call):
//
//   ValidationErrors errors;
//   ValueGroupValidator::validate(*spec, values, errors, ValueGroupValidator::SKIP_REQUIRED);
//   errors.throwIfErrors();
#pragma once

#include "zelk/configuration/impl/ItemPlacer.h"

namespace zelk::configuration {
class Specification;
class ValidationErrors;
class ValueGroup;
}  // namespace zelk::configuration

namespace zelk::configuration::impl {

class ValueGroupValidator {
public:
  // The option bits that switch a check off (bit 1 belongs to the command line).
  enum Options {
    SKIP_UNMATCHED = 2,
    SKIP_REQUIRED = 4,
    SKIP_BOUNDED = 8,
    SKIP_ONE_OF = 16
  };

  ValueGroupValidator() = delete;

  // Adds the problems of values against specification to errors; throws nothing for bad input.
  // With place, an unknown item and an item given more than once are placed where they were
  // written (the second of them, for the latter).
  static void validate(const Specification& specification, const ValueGroup& values,
                       ValidationErrors& errors, int options, const ItemPlacer* place = nullptr);
};

}  // namespace zelk::configuration::impl
