#include "zelk/configuration/impl/OneOfValidator.h"

#include <string>

#include "zelk/configuration/Container.h"
#include "zelk/configuration/OneOf.h"
#include "zelk/configuration/ParameterRef.h"
#include "zelk/configuration/Specification.h"
#include "zelk/configuration/ValidationErrors.h"
#include "zelk/configuration/ValueBase.h"

namespace zelk::configuration::impl {

void OneOfValidator::validate(const Specification& specification, const ValueGroup& values,
                              ValidationErrors& errors) {
  OneOfValidator validator(specification, values, errors);
  specification.accept(validator);
}

OneOfValidator::OneOfValidator(const Specification& specification, const ValueGroup& values,
                               ValidationErrors& errors)
    : ContainerValuesVisitor(specification, values, errors) {}

OneOfValidator::~OneOfValidator() {}

bool OneOfValidator::visitContainerStart(const Container& container) {
  GroupPointer group = findGroupFor(container);
  if (!group) {
    // The walk ends at the first container without values, on purpose.
    return false;
  }
  incrementCountFor(container);
  push(group);
  return true;
}

bool OneOfValidator::visitOneOfStart(const OneOf& oneOf) {
  if (oneOf.getNumberOfItems() < 2) {
    mErrors.addError("Invalid specification: \"%s\". A one of must contain at least two children",
                     mSpecification.getId());
  }
  return true;
}

bool OneOfValidator::visitOneOfEnd(const OneOf& oneOf) {
  auto found = mGiven.find(&oneOf);
  if (found == mGiven.end() || found->second.count == 0) {
    return true;
  }
  // A nested one-of that was given counts as one alternative of its parent.
  incrementCountFor(oneOf);
  const Given& given = found->second;
  if (given.count > 1) {
    std::string message = "The ";
    const size_t n = given.items.size();
    for (size_t k = 1; k <= n; ++k) {
      if (k == n && k > 1) {
        message += " and ";
      } else if (k > 1) {
        message += ", ";
      }
      message += "\"";
      message += given.items[k - 1]->getId();
      message += "\"";
    }
    message += " parameters are mutually exclusive, you can only specify one.";
    // The message is the format of the error, so "%%" in an id reads as "%": kept on purpose.
    mErrors.addErrorAsFormat(message.c_str());
  }
  mGiven.erase(found);
  return true;
}

bool OneOfValidator::visitParameterRef(const ParameterRef& ref) {
  if (findValue(ref)) {
    incrementCountFor(ref);
  }
  return true;
}

void OneOfValidator::incrementCountFor(const GroupItem& item) {
  const OneOf* oneOf = item.getOneOf();
  if (oneOf == 0) {
    return;
  }
  Given& given = mGiven[oneOf];
  ++given.count;
  if (given.seen.insert(&item).second) {
    given.items.push_back(&item);
  }
}

}  // namespace zelk::configuration::impl
