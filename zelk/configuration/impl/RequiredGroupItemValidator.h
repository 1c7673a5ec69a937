// RequiredGroupItemValidator: checks that a value tree holds everything its specification
// requires, and that its logical groups are well formed.
//
// Missing required parameters and one-ofs are collected over the whole walk and reported in one
// message at the end, unless a "help" value is present. A required container without values is
// reported at once. Run it through ValueGroupValidator, or on its own:
//
//   ValidationErrors errors;
//   RequiredGroupItemValidator::validate(*spec, values, errors);
//   // "A required flag was not specified. You must provide one of the following flags: a, b"
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "zelk/configuration/impl/ContainerValuesVisitor.h"

namespace zelk::configuration {
class LogicalGroup;
}

namespace zelk::configuration::impl {

class RequiredGroupItemValidator : public ContainerValuesVisitor {
public:
  // Adds the problems of values against specification to errors.
  static void validate(const Specification& specification, const ValueGroup& values,
                       ValidationErrors& errors);

  RequiredGroupItemValidator(const Specification& specification, const ValueGroup& values,
                             ValidationErrors& errors);
  ~RequiredGroupItemValidator() override;

  bool visitSpecificationEnd(const Specification& specification) override;
  bool visitContainerStart(const Container& container) override;
  bool visitLogicalGroupStart(const LogicalGroup& logicalGroup) override;
  bool visitOneOfEnd(const OneOf& oneOf) override;
  bool visitParameterRef(const ParameterRef& ref) override;

  // Whether item must have values in group: items that are not optional are required, except
  // inside an optional logical group, which is all or nothing: there an item is required only
  // when another member of the group has values in group.
  bool isRequiredHere(const GroupItem& item, const ValueGroup& group);

private:
  // Up to two distinct ids of members of one logical group that have values in one value group;
  // two are enough to answer "does a member other than this one have values".
  struct PresentMembers {
    uint32_t groupInstance;
    std::vector<std::string> ids;
  };
  const PresentMembers& presentMembers(const LogicalGroup& logicalGroup, const ValueGroup& group);

  std::vector<std::string> mMissing;
  bool mHelpGiven;
  std::map<const LogicalGroup*, PresentMembers> mPresentMembers;
};

}  // namespace zelk::configuration::impl
