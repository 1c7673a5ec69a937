// UnmatchedItemValidator: reports every value and value group of a matched value tree that names
// nothing in the specification (its binding was not set by the specification matcher).
//
//   ValidationErrors errors;
//   UnmatchedItemValidator::validate(values, errors);
//   // ""verbos" is not a recognized parameter"
#pragma once

#include "zelk/configuration/ValueGroupItemVisitor.h"
#include "zelk/configuration/impl/ItemPlacer.h"

namespace zelk::configuration {
class ValidationErrors;
class ValueGroupItem;
}  // namespace zelk::configuration

namespace zelk::configuration::impl {

class UnmatchedItemValidator : public ValueGroupItemVisitor {
public:
  // Adds one error per unbound item of the tree below item (item included) to errors.
  // With place, each error is placed at its item.
  static void validate(const ValueGroupItem& item, ValidationErrors& errors,
                       const ItemPlacer* place = nullptr);

  explicit UnmatchedItemValidator(ValidationErrors& errors, const ItemPlacer* place = nullptr);
  ~UnmatchedItemValidator() override;

  bool visitValueBase(ValueBase& value) override;
  // An unbound group is reported and its walk ends there.
  bool visitValueGroupStart(ValueGroup& group) override;

private:
  void placeLast(const ValueGroupItem& item);

  ValidationErrors& mErrors;
  const ItemPlacer* mPlace;
};

}  // namespace zelk::configuration::impl
