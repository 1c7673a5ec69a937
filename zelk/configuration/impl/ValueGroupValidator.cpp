#include "zelk/configuration/impl/ValueGroupValidator.h"

#include "zelk/configuration/ValidationErrors.h"
#include "zelk/configuration/ValueGroup.h"
#include "zelk/configuration/impl/BoundedGroupItemValidator.h"
#include "zelk/configuration/impl/OneOfValidator.h"
#include "zelk/configuration/impl/RequiredGroupItemValidator.h"
#include "zelk/configuration/impl/UnmatchedItemValidator.h"

namespace zelk::configuration::impl {

void ValueGroupValidator::validate(const Specification& specification, const ValueGroup& values,
                                   ValidationErrors& errors, int options, const ItemPlacer* place) {
  if ((options & SKIP_UNMATCHED) == 0) {
    UnmatchedItemValidator::validate(values, errors, place);
  }
  if (errors.getNumberOfErrors() > 0) {
    return;
  }
  if ((options & SKIP_REQUIRED) == 0) {
    RequiredGroupItemValidator::validate(specification, values, errors);
  }
  if (errors.getNumberOfErrors() > 0) {
    return;
  }
  if ((options & SKIP_BOUNDED) == 0) {
    BoundedGroupItemValidator::validate(specification, values, errors, place);
  }
  if (errors.getNumberOfErrors() > 0) {
    return;
  }
  if ((options & SKIP_ONE_OF) == 0) {
    OneOfValidator::validate(specification, values, errors);
  }
}

}  // namespace zelk::configuration::impl
