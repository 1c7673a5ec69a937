#include "zelk/configuration/impl/OneOfImpl.h"

#include "zelk/configuration/GroupItemVisitor.h"

namespace zelk::configuration::impl {

OneOfImpl::OneOfImpl(OneOf* self, int32_t characteristics) : ConstraintImpl(self, characteristics) {}

const char* OneOfImpl::getItemTypeName() const { return "One Of"; }

const char* OneOfImpl::getIdPrefix() const { return "oo"; }

bool OneOfImpl::accept(GroupItemVisitor& visitor) const {
  const OneOf& self = *static_cast<const OneOf*>(getSelf());
  return acceptChildren<OneOf>(visitor, self, &GroupItemVisitor::visitOneOfStart,
                               &GroupItemVisitor::visitOneOfMiddle,
                               &GroupItemVisitor::visitOneOfEnd);
}

Constraint* OneOfImpl::createEmpty() const { return new OneOf(0); }

}  // namespace zelk::configuration::impl
