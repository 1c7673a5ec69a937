// BoundedGroupItemValidator: checks that nothing that may be given only once is given twice: a
// parameter reference that is not unbounded holds at most one value text, and a container that is
// not unbounded has at most one value group.
//
//   ValidationErrors errors;
//   BoundedGroupItemValidator::validate(*spec, values, errors);
//   // "The "port" parameter cannot be provided more than once"
#pragma once

#include "zelk/configuration/impl/ContainerValuesVisitor.h"

namespace zelk::configuration::impl {

class BoundedGroupItemValidator : public ContainerValuesVisitor {
public:
  // Adds the problems of values against specification to errors.
  static void validate(const Specification& specification, const ValueGroup& values,
                       ValidationErrors& errors);

  BoundedGroupItemValidator(const Specification& specification, const ValueGroup& values,
                            ValidationErrors& errors);
  ~BoundedGroupItemValidator() override;

  bool visitContainerStart(const Container& container) override;
  bool visitParameterRef(const ParameterRef& ref) override;

private:
  // False, with an error, when group is one of several groups of a container that is bounded.
  bool checkContainer(const Container& container, const ValueGroup& group);
};

}  // namespace zelk::configuration::impl
