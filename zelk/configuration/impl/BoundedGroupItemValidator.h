// BoundedGroupItemValidator: checks that nothing that may be given only once is given twice: a
// parameter reference that is not unbounded holds at most one value text, and a container that is
// not unbounded has at most one value group.
//
//   ValidationErrors errors;
//   BoundedGroupItemValidator::validate(*spec, values, errors);
//   // "The "port" parameter cannot be provided more than once"
#pragma once

#include "zelk/configuration/impl/ContainerValuesVisitor.h"
#include "zelk/configuration/impl/ItemPlacer.h"

namespace zelk::configuration::impl {

class BoundedGroupItemValidator : public ContainerValuesVisitor {
public:
  // Adds the problems of values against specification to errors; with place, each is placed at
  // the second text of the value, or the second group of the container.
  static void validate(const Specification& specification, const ValueGroup& values,
                       ValidationErrors& errors, const ItemPlacer* place = nullptr);

  BoundedGroupItemValidator(const Specification& specification, const ValueGroup& values,
                            ValidationErrors& errors, const ItemPlacer* place = nullptr);
  ~BoundedGroupItemValidator() override;

  bool visitContainerStart(const Container& container) override;
  bool visitParameterRef(const ParameterRef& ref) override;

private:
  // False, with an error, when group is one of several groups of a container that is bounded.
  bool checkContainer(const Container& container, const ValueGroup& group);

  const ItemPlacer* mPlace;
};

}  // namespace zelk::configuration::impl
