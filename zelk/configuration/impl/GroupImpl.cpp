#include "zelk/configuration/impl/GroupImpl.h"

#include "zelk/configuration/Container.h"
#include "zelk/configuration/GroupItemVisitor.h"
#include "zelk/configuration/impl/Factory.h"

namespace zelk::configuration::impl {

GroupImpl::GroupImpl(Group* self, const char* name, const char* description)
    : GlobalItemImpl(self, name, name, description),
      mItemsContainer(new Container(name, name, description, 0)) {}

GroupImpl::~GroupImpl() { Factory::destroy(mItemsContainer); }

const char* GroupImpl::getItemTypeName() const { return "Group"; }

bool GroupImpl::accept(GroupItemVisitor& visitor) const {
  const Group& self = *static_cast<const Group*>(getSelf());
  if (!visitor.visitGroupStart(self)) {
    return false;
  }
  const bool result = mItemsContainer->accept(visitor);
  // The end is called even when the walk of the items stopped.
  if (!visitor.visitGroupEnd(self)) {
    return false;
  }
  return result;
}

}  // namespace zelk::configuration::impl
