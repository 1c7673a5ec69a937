#include "zelk/configuration/impl/SpecificationMatcher.h"

#include "zelk/configuration/Container.h"
#include "zelk/configuration/ParameterRef.h"
#include "zelk/configuration/Specification.h"
#include "zelk/configuration/ValidationErrors.h"
#include "zelk/configuration/ValueBase.h"
#include "zelk/configuration/ValueGroup.h"

namespace zelk::configuration::impl {

namespace {

bool isEmpty(const char* name) { return name == 0 || *name == '\0'; }

// Binds item unless it is bound to groupItem already (binding to another item is refused by the
// value model).
void bind(ValueGroupItem& item, const GroupItem* groupItem) {
  if (item.getGroupItem() != groupItem) {
    item.setGroupItem(groupItem);
  }
}

}  // namespace

void SpecificationMatcher::match(ValueGroup& group, const Specification& specification,
                                 ValidationErrors& errors) {
  SpecificationMatcher matcher(errors);
  matcher.mStack.push_back(specification.getItemsContainer());
  group.accept(matcher);
}

SpecificationMatcher::SpecificationMatcher(ValidationErrors& errors) : mErrors(errors) {}

SpecificationMatcher::~SpecificationMatcher() {}

bool SpecificationMatcher::visitValueGroupStart(ValueGroup& group) {
  const Container* top = mStack.back();
  if (top == 0) {
    mStack.push_back(0);
    return true;
  }
  if (isEmpty(group.getName())) {
    if (!group.getParent().isNull()) {
      mErrors.addError("An unnamed value group was found");
      return false;
    }
    mStack.push_back(top);
    return true;
  }
  if (group.matches(*top)) {
    bind(group, top);
    mStack.push_back(top);
    return true;
  }
  const Container* found = top->findContainer(group.getName());
  if (found != 0) {
    bind(group, found);
    mStack.push_back(found);
  } else {
    // An unknown group's children are resolved against the enclosing container, on purpose.
    mStack.push_back(top);
  }
  return true;
}

bool SpecificationMatcher::visitValueGroupEnd(ValueGroup&) {
  mStack.pop_back();
  return true;
}

bool SpecificationMatcher::visitValueBase(ValueBase& value) {
  const char* name = value.getName();
  if (isEmpty(name)) {
    mErrors.addError("An unnamed value was found");
    return true;
  }
  const Container* top = mStack.back();
  if (top != 0) {
    const ParameterRef* ref = top->findParameterRef(name);
    if (ref != 0) {
      bind(value, ref);
    }
  }
  return true;
}

}  // namespace zelk::configuration::impl
