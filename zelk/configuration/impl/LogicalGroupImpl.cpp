#include "zelk/configuration/impl/LogicalGroupImpl.h"

#include "zelk/configuration/GroupItemVisitor.h"

namespace zelk::configuration::impl {

LogicalGroupImpl::LogicalGroupImpl(LogicalGroup* self, int32_t characteristics)
    : ConstraintImpl(self, characteristics) {}

const char* LogicalGroupImpl::getItemTypeName() const { return "Logical Group"; }

const char* LogicalGroupImpl::getIdPrefix() const { return "lg"; }

bool LogicalGroupImpl::accept(GroupItemVisitor& visitor) const {
  const LogicalGroup& self = *static_cast<const LogicalGroup*>(getSelf());
  return acceptChildren<LogicalGroup>(visitor, self, &GroupItemVisitor::visitLogicalGroupStart,
                                      &GroupItemVisitor::visitLogicalGroupMiddle,
                                      &GroupItemVisitor::visitLogicalGroupEnd);
}

Constraint* LogicalGroupImpl::createEmpty() const { return new LogicalGroup(0); }

}  // namespace zelk::configuration::impl
