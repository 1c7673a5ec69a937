#include "zelk/configuration/impl/SpecificationValuesFinder.h"

namespace zelk::configuration::impl {

ValueGroup SpecificationValuesFinder::find(const ValueGroup& tree, const GroupItem* target) {
  if (tree.isNull()) {
    return ValueGroup::Null;
  }
  SpecificationValuesFinder finder(target);
  tree.accept(finder);
  return finder.getFound();
}

SpecificationValuesFinder::SpecificationValuesFinder(const GroupItem* target) : mTarget(target) {}

bool SpecificationValuesFinder::visitValueGroupStart(ValueGroup& group) {
  if (!mFound.isNull()) {
    return false;
  }
  if (group.getGroupItem() == mTarget) {
    mFound = group;
  }
  return true;
}

}  // namespace zelk::configuration::impl
