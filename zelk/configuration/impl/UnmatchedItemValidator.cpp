#include "zelk/configuration/impl/UnmatchedItemValidator.h"

#include "zelk/configuration/ValidationErrors.h"
#include "zelk/configuration/ValueBase.h"
#include "zelk/configuration/ValueGroup.h"

namespace zelk::configuration::impl {

void UnmatchedItemValidator::validate(const ValueGroupItem& item, ValidationErrors& errors,
                                      const ItemPlacer* place) {
  UnmatchedItemValidator validator(errors, place);
  item.accept(validator);
}

UnmatchedItemValidator::UnmatchedItemValidator(ValidationErrors& errors, const ItemPlacer* place)
    : mErrors(errors), mPlace(place) {}

void UnmatchedItemValidator::placeLast(const ValueGroupItem& item) {
  if (mPlace != 0) {
    mErrors.setPosition(mErrors.getNumberOfErrors() - 1, (*mPlace)(item, 0));
  }
}

UnmatchedItemValidator::~UnmatchedItemValidator() {}

bool UnmatchedItemValidator::visitValueBase(ValueBase& value) {
  if (!value.isMatched()) {
    mErrors.addError("\"%s\" is not a recognized parameter", value.getName());
    placeLast(value);
  }
  return true;
}

bool UnmatchedItemValidator::visitValueGroupStart(ValueGroup& group) {
  if (!group.isMatched()) {
    mErrors.addError("\"%s\" is not a recognized container", group.getName());
    placeLast(group);
    return false;
  }
  return true;
}

}  // namespace zelk::configuration::impl
