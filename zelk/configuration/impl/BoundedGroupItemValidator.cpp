#include "zelk/configuration/impl/BoundedGroupItemValidator.h"

#include "zelk/configuration/Container.h"
#include "zelk/configuration/ParameterRef.h"
#include "zelk/configuration/Specification.h"
#include "zelk/configuration/ValidationErrors.h"
#include "zelk/configuration/ValueBase.h"

namespace zelk::configuration::impl {

void BoundedGroupItemValidator::validate(const Specification& specification,
                                         const ValueGroup& values, ValidationErrors& errors) {
  BoundedGroupItemValidator validator(specification, values, errors);
  specification.accept(validator);
}

BoundedGroupItemValidator::BoundedGroupItemValidator(const Specification& specification,
                                                     const ValueGroup& values,
                                                     ValidationErrors& errors)
    : ContainerValuesVisitor(specification, values, errors) {}

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
    return false;
  }
  return true;
}

}  // namespace zelk::configuration::impl
