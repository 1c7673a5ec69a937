// SpecificationValuesFinder: finds, in a matched value tree, the first group (in visiting order)
// bound to a given specification item, normally a specification's items container.
//
//   ValueGroup mine = SpecificationValuesFinder::find(matchedTree, spec->getItemsContainer());
#pragma once

#include "zelk/configuration/ValueGroup.h"
#include "zelk/configuration/ValueGroupItemVisitor.h"

namespace zelk::configuration {
class GroupItem;
}

namespace zelk::configuration::impl {

class SpecificationValuesFinder : public ValueGroupItemVisitor {
public:
  // The first group of tree bound to target (sharing its state), or ValueGroup::Null.
  static ValueGroup find(const ValueGroup& tree, const GroupItem* target);

  explicit SpecificationValuesFinder(const GroupItem* target);

  // Keeps group when it is bound to the target; stops the walk once a group was found.
  bool visitValueGroupStart(ValueGroup& group) override;

  const ValueGroup& getFound() const { return mFound; }

private:
  const GroupItem* mTarget;
  ValueGroup mFound;
};

}  // namespace zelk::configuration::impl
