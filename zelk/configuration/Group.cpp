#include "zelk/configuration/Group.h"

#include "zelk/configuration/impl/GroupImpl.h"

namespace zelk::configuration {

Group::Group(const char* name, const char* description)
    : GlobalItem(new impl::GroupImpl(this, name, description)) {}

const Container* Group::getItemsContainer() const { return getGroupImpl()->getItemsContainer(); }

Container* Group::getItemsContainer() { return getGroupImpl()->getItemsContainer(); }

bool Group::accept(GroupItemVisitor& visitor) const { return getGroupImpl()->accept(visitor); }

impl::GroupImpl* Group::getGroupImpl() const { return static_cast<impl::GroupImpl*>(mImpl.get()); }

}  // namespace zelk::configuration
