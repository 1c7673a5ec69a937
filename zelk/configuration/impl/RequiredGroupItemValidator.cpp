#include "zelk/configuration/impl/RequiredGroupItemValidator.h"

#include <strings.h>

#include "zelk/configuration/Container.h"
#include "zelk/configuration/LogicalGroup.h"
#include "zelk/configuration/OneOf.h"
#include "zelk/configuration/ParameterRef.h"
#include "zelk/configuration/Specification.h"
#include "zelk/configuration/ValidationErrors.h"
#include "zelk/configuration/ValueBase.h"
#include "zelk/configuration/impl/DescendantIterator.h"

namespace zelk::configuration::impl {

namespace {

const char* const HELP_PARAMETER_ID = "help";
const char* const MISSING_FLAGS_MESSAGE =
    "A required flag was not specified. You must provide one of the following flags: ";

}  // namespace

void RequiredGroupItemValidator::validate(const Specification& specification,
                                          const ValueGroup& values, ValidationErrors& errors) {
  RequiredGroupItemValidator validator(specification, values, errors);
  specification.accept(validator);
}

RequiredGroupItemValidator::RequiredGroupItemValidator(const Specification& specification,
                                                       const ValueGroup& values,
                                                       ValidationErrors& errors)
    : ContainerValuesVisitor(specification, values, errors), mHelpGiven(false) {}

RequiredGroupItemValidator::~RequiredGroupItemValidator() {}

bool RequiredGroupItemValidator::visitSpecificationEnd(const Specification&) {
  if (mHelpGiven) {
    mHelpGiven = false;
  } else if (!mMissing.empty()) {
    std::string message = MISSING_FLAGS_MESSAGE;
    for (size_t i = 0; i < mMissing.size(); ++i) {
      if (i > 0) {
        message += ", ";
      }
      message += mMissing[i];
    }
    // The joined ids are the format of the error, so "%%" in an id reads as "%": kept on purpose.
    mErrors.addErrorAsFormat(message.c_str());
  }
  mMissing.clear();
  return true;
}

bool RequiredGroupItemValidator::visitContainerStart(const Container& container) {
  GroupPointer group = findGroupFor(container);
  if (group) {
    push(group);
    return true;
  }
  if (isRequiredHere(container, *top())) {
    mErrors.addError("The \"%s\" container is required and it was not found", container.getName());
  }
  // The walk ends at the first container without values; nothing after it is checked, on purpose.
  return false;
}

bool RequiredGroupItemValidator::visitLogicalGroupStart(const LogicalGroup& logicalGroup) {
  if (logicalGroup.getNumberOfItems() < 2) {
    mErrors.addError(
        "Invalid specification: \"%s\". A logical group must contain at least two children",
        mSpecification.getId());
    return false;
  }
  if (!logicalGroup.isOptional()) {
    bool hasRequiredItem = false;
    for (size_t i = 0; i < logicalGroup.getNumberOfItems() && !hasRequiredItem; ++i) {
      hasRequiredItem = !logicalGroup.getItem(i)->isOptional();
    }
    if (!hasRequiredItem) {
      mErrors.addError(
          "Invalid specification: \"%s\". A required logical group must contain at least one "
          "required item",
          mSpecification.getId());
      return false;
    }
  }
  return true;
}

bool RequiredGroupItemValidator::visitOneOfEnd(const OneOf& oneOf) {
  if (oneOf.isOptional()) {
    return true;
  }
  // Every container and parameter reference below the one-of, through nested constraints.
  std::vector<const GroupItem*> alternatives;
  DescendantIterator it(&oneOf, DescendantIterator::ALL_ITEM_TYPES);
  while (it.next()) {
    const GroupItem* item = it.getCurrent();
    const GroupItem::ItemType type = item->getItemType();
    if (type == GroupItem::CONTAINER || type == GroupItem::PARAMETER_REF) {
      if (isPresent(*item)) {
        return true;
      }
      alternatives.push_back(item);
    }
  }
  for (const GroupItem* item : alternatives) {
    mMissing.push_back(item->getId());
  }
  return true;
}

bool RequiredGroupItemValidator::visitParameterRef(const ParameterRef& ref) {
  if (findValue(ref)) {
    if (strcasecmp(ref.getId(), HELP_PARAMETER_ID) == 0) {
      mHelpGiven = true;
    }
  } else if (isRequiredHere(ref, *top())) {
    mMissing.push_back(ref.getId());
  }
  return true;
}

bool RequiredGroupItemValidator::isRequiredHere(const GroupItem& item, const ValueGroup& group) {
  if (item.isOptional()) {
    return false;
  }
  const LogicalGroup* logicalGroup = item.getLogicalGroup();
  if (logicalGroup == 0 || !logicalGroup->isOptional()) {
    return true;
  }
  for (const std::string& id : presentMembers(*logicalGroup, group).ids) {
    if (strcasecmp(id.c_str(), item.getId()) != 0) {
      return true;
    }
  }
  return false;
}

const RequiredGroupItemValidator::PresentMembers& RequiredGroupItemValidator::presentMembers(
    const LogicalGroup& logicalGroup, const ValueGroup& group) {
  // Computed once per logical group and value group, so that checking every member of a large
  // group stays linear.
  const uint32_t instance = group.getInstanceId();
  auto found = mPresentMembers.find(&logicalGroup);
  if (found != mPresentMembers.end() && found->second.groupInstance == instance) {
    return found->second;
  }
  PresentMembers& present = mPresentMembers[&logicalGroup];
  present.groupInstance = instance;
  present.ids.clear();
  for (size_t i = 0; i < logicalGroup.getNumberOfItems() && present.ids.size() < 2; ++i) {
    const char* id = logicalGroup.getItem(i)->getId();
    if (id == 0 || *id == '\0' || group.getItemCount(id) == 0) {
      continue;
    }
    if (present.ids.empty() || strcasecmp(present.ids[0].c_str(), id) != 0) {
      present.ids.push_back(id);
    }
  }
  return present;
}

}  // namespace zelk::configuration::impl
