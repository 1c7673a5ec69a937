// OneOfValidator: checks that at most one alternative of each one-of has values, and that every
// one-of has at least two alternatives.
//
// A nested one-of that has values counts as one alternative of the one-of that holds it. The
// alternatives given together are named in specification order:
//
//   ValidationErrors errors;
//   OneOfValidator::validate(*spec, values, errors);
//   // "The "a" and "b" parameters are mutually exclusive, you can only specify one."
#pragma once

#include <cstddef>
#include <map>
#include <set>
#include <vector>

#include "zelk/configuration/impl/ContainerValuesVisitor.h"

namespace zelk::configuration::impl {

class OneOfValidator : public ContainerValuesVisitor {
public:
  // Adds the problems of values against specification to errors.
  static void validate(const Specification& specification, const ValueGroup& values,
                       ValidationErrors& errors);

  OneOfValidator(const Specification& specification, const ValueGroup& values,
                 ValidationErrors& errors);
  ~OneOfValidator() override;

  bool visitContainerStart(const Container& container) override;
  bool visitOneOfStart(const OneOf& oneOf) override;
  bool visitOneOfEnd(const OneOf& oneOf) override;
  bool visitParameterRef(const ParameterRef& ref) override;

private:
  // The alternatives of one one-of that have values, in the order they were met.
  struct Given {
    size_t count = 0;
    std::vector<const GroupItem*> items;
    std::set<const GroupItem*> seen;
  };

  // Counts item, which has values, for the one-of that directly holds it (if any).
  void incrementCountFor(const GroupItem& item);

  std::map<const OneOf*, Given> mGiven;
};

}  // namespace zelk::configuration::impl
