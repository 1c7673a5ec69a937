// SpecificationMatcher: binds each value and value group of a raw value tree to the parameter
// reference or container of a specification that it names.
//
// Names are resolved against the container of the enclosing group: a group named after a
// container below it is bound to that container; a group that names nothing stays unbound and its
// children are resolved against the enclosing container instead (the unbound group itself is
// reported later by the unmatched-item check). Values are bound to the parameter references that
// their names find. Matching a tree a second time is harmless.
//
//   ValidationErrors errors;
//   SpecificationMatcher::match(values, *spec, errors);
//   errors.throwIfErrors();   // "An unnamed value was found", ...
#pragma once

#include <deque>

#include "zelk/configuration/ValueGroupItemVisitor.h"

namespace zelk::configuration {
class Container;
class Specification;
class ValidationErrors;
}  // namespace zelk::configuration

namespace zelk::configuration::impl {

class SpecificationMatcher : public ValueGroupItemVisitor {
public:
  // Binds the items of group to specification; unnamed items are reported to errors.
  static void match(ValueGroup& group, const Specification& specification,
                    ValidationErrors& errors);

  explicit SpecificationMatcher(ValidationErrors& errors);
  ~SpecificationMatcher() override;

  // false (contents not visited) for an unnamed group below the root.
  bool visitValueGroupStart(ValueGroup& group) override;
  bool visitValueGroupEnd(ValueGroup& group) override;
  bool visitValueBase(ValueBase& value) override;

private:
  ValidationErrors& mErrors;
  // The container against which names at the current depth are resolved; null below a point from
  // which nothing is matched.
  std::deque<const Container*> mStack;
};

}  // namespace zelk::configuration::impl
