#include "zelk/configuration/impl/UnmatchedItemValidator.h"

#include "zelk/configuration/ValidationErrors.h"
#include "zelk/configuration/ValueBase.h"
#include "zelk/configuration/ValueGroup.h"

namespace zelk::configuration::impl {

void UnmatchedItemValidator::validate(const ValueGroupItem& item, ValidationErrors& errors) {
  UnmatchedItemValidator validator(errors);
  item.accept(validator);
}

UnmatchedItemValidator::UnmatchedItemValidator(ValidationErrors& errors) : mErrors(errors) {}

UnmatchedItemValidator::~UnmatchedItemValidator() {}

bool UnmatchedItemValidator::visitValueBase(ValueBase& value) {
  if (!value.isMatched()) {
    mErrors.addError("\"%s\" is not a recognized parameter", value.getName());
  }
  return true;
}

bool UnmatchedItemValidator::visitValueGroupStart(ValueGroup& group) {
  if (!group.isMatched()) {
    mErrors.addError("\"%s\" is not a recognized container", group.getName());
    return false;
  }
  return true;
}

}  // namespace zelk::configuration::impl
