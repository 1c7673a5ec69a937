// UnboundedParameterValueFixer: rewrites the parameters of a value file that are written as
// elements (<paths value="/a"/> <paths value="/b"/>, the form for parameters given several times)
// into plain values of the enclosing group, walking the tree in step with a specification.
//
// The result is a copy; the source tree is not changed. Elements are resolved as the matcher
// resolves groups: an element named after the container it sits in (the root element named after
// the specification) stays in that container, an element naming a nested container enters it, and
// an unknown element's children are resolved against the enclosing container.
//
//   ValueGroup rewritten = UnboundedParameterValueFixer::fix(fileTree, *spec);
#pragma once

#include <cstddef>
#include <vector>

#include "zelk/configuration/ValueGroup.h"
#include "zelk/configuration/ValueGroupItemVisitor.h"

namespace zelk::configuration {
class Container;
class Specification;
}  // namespace zelk::configuration

namespace zelk::configuration::impl {

class UnboundedParameterValueFixer : public ValueGroupItemVisitor {
public:
  // The rewritten copy of values for spec; null when values is null or its root element is itself
  // a parameter. Throws ConfigurationException "\"%s\" is not a valid parameter" for a parameter
  // element without a "value" attribute.
  static ValueGroup fix(const ValueGroup& values, const Specification& spec);

  explicit UnboundedParameterValueFixer(const Specification& spec);

  bool visitValueBase(ValueBase& value) override;
  bool visitValueGroupStart(ValueGroup& group) override;
  bool visitValueGroupEnd(ValueGroup& group) override;

  // The root of the copy (null until a group was visited).
  const ValueGroup& getResult() const { return mResult; }
  // The number of parameter elements rewritten into values.
  size_t getRewrittenCount() const { return mRewrittenCount; }

private:
  // The specification item that an element named name stands for in container: the container
  // itself, a parameter reference (rewritten), a nested container, or null when unknown.
  static const GroupItem* resolve(const Container& container, const ValueGroup& group);
  // Copies group (without its items) below the current output group and makes it current.
  void pushContext(const Container* container, const ValueGroup& group);
  // Nothing inside the element being entered is copied.
  void pushEmptyContext(const Container* container);
  // Adds the parameter element group as a value of the current output group.
  void rewrite(const ValueGroup& group);

  std::vector<const Container*> mContainers;
  // Output groups being built; a null group marks a context whose contents are dropped.
  std::vector<ValueGroup> mOutputs;
  ValueGroup mResult;
  size_t mRewrittenCount;
};

}  // namespace zelk::configuration::impl
