#include "zelk/configuration/impl/ContainerValuesVisitor.h"

#include "zelk/configuration/Container.h"
#include "zelk/configuration/ParameterRef.h"
#include "zelk/configuration/ValidationErrors.h"
#include "zelk/configuration/ValueBase.h"

namespace zelk::configuration::impl {

ContainerValuesVisitor::ContainerValuesVisitor(const Specification& specification,
                                               const ValueGroup& values, ValidationErrors& errors)
    : mSpecification(specification), mValues(values), mErrors(errors) {}

ContainerValuesVisitor::~ContainerValuesVisitor() {}

bool ContainerValuesVisitor::visitSpecificationStart(const Specification&) {
  mStack.clear();
  mStack.push_back(GroupPointer(new ValueGroup(mValues)));
  return true;
}

bool ContainerValuesVisitor::visitContainerEnd(const Container&) {
  mStack.pop_back();
  return true;
}

ContainerValuesVisitor::GroupPointer ContainerValuesVisitor::findGroupFor(
    const Container& container) const {
  const GroupPointer& group = top();
  if (group->matches(container)) {
    return group;
  }
  // A group bound to a container carries the container's id as its name.
  return group->findValueGroup(container.getId(), &mErrors);
}

boost::shared_ptr<ValueBase> ContainerValuesVisitor::findValue(const ParameterRef& ref) const {
  return top()->findValueBase(ref.getId(), &mErrors);
}

bool ContainerValuesVisitor::isPresent(const GroupItem& item) const {
  ValidationErrors ignored;
  if (item.getItemType() == GroupItem::CONTAINER) {
    const Container& container = static_cast<const Container&>(item);
    return top()->matches(container) ||
           top()->findValueGroup(container.getId(), &ignored).get() != 0;
  }
  if (item.getItemType() == GroupItem::PARAMETER_REF) {
    return top()->findValueBase(item.getId(), &ignored).get() != 0;
  }
  return false;
}

}  // namespace zelk::configuration::impl
