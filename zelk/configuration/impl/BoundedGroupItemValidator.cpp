#include "zelk/configuration/impl/BoundedGroupItemValidator.h"

#include "zelk/configuration/Container.h"
#include "zelk/configuration/ParameterRef.h"
#include "zelk/configuration/Specification.h"
#include "zelk/configuration/ValidationErrors.h"
#include "zelk/configuration/ValueBase.h"
#include "zelk/configuration/ValueGroup.h"
#include "zelk/configuration/impl/ValueItemState.h"

namespace zelk::configuration::impl {

void BoundedGroupItemValidator::validate(const Specification& specification,
                                         const ValueGroup& values, ValidationErrors& errors,
                                         const ItemPlacer* place) {
  BoundedGroupItemValidator validator(specification, values, errors, place);
  specification.accept(validator);
}

BoundedGroupItemValidator::BoundedGroupItemValidator(const Specification& specification,
                                                     const ValueGroup& values,
                                                     ValidationErrors& errors,
                                                     const ItemPlacer* place)
    : ContainerValuesVisitor(specification, values, errors), mPlace(place) {}

BoundedGroupItemValidator::~BoundedGroupItemValidator() {}

bool BoundedGroupItemValidator::visitContainerStart(const Container& container) {
  GroupPointer group = findGroupFor(container);
  // The walk ends at the first container without values, or at the first repeated one; nothing
  // after it is checked, on purpose.
  if (!group || !checkContainer(container, *group)) {
    return false;
  }
  push(group);
  return true;
}

bool BoundedGroupItemValidator::visitParameterRef(const ParameterRef& ref) {
  boost::shared_ptr<ValueBase> value = findValue(ref);
  if (value && !ref.isUnbounded() && value->getValueCount() > 1) {
    mErrors.addError("The \"%s\" parameter cannot be provided more than once", ref.getId());
    if (mPlace != 0) {
      mErrors.setPosition(mErrors.getNumberOfErrors() - 1, (*mPlace)(*value, 1));
    }
  }
  return true;
}

bool BoundedGroupItemValidator::checkContainer(const Container& container,
                                               const ValueGroup& group) {
  if (container.isUnbounded()) {
    return true;
  }
  const ValueGroup parent = group.getParent();
  if (!parent.isNull() && parent.getItemCount(container.getId()) > 1) {
    mErrors.addError("The \"%s\" container cannot be provided more than once", container.getId());
    if (mPlace != 0) {
      // At the second group of the container.
      size_t seen = 0;
      for (size_t i = 0; i < parent.getItemCount(); ++i) {
        const boost::shared_ptr<ValueGroupItem> item = parent.getItem(i);
        if (item->isValueGroup() &&
            ValueItemState::namesEqual(item->getName(), container.getId()) && ++seen == 2) {
          mErrors.setPosition(mErrors.getNumberOfErrors() - 1, (*mPlace)(*item, 0));
          break;
        }
      }
    }
    return false;
  }
  return true;
}

}  // namespace zelk::configuration::impl
