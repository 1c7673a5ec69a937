// LogicalGroupImpl: the type code, type name, id prefix and visitor calls of a logical group.
#pragma once

#include "zelk/configuration/LogicalGroup.h"
#include "zelk/configuration/impl/ConstraintImpl.h"

namespace zelk::configuration::impl {

class LogicalGroupImpl : public ConstraintImpl {
public:
  LogicalGroupImpl(LogicalGroup* self, int32_t characteristics);

  GroupItem::ItemType getItemType() const override { return GroupItem::LOGICAL_GROUP; }
  const char* getItemTypeName() const override;
  const char* getIdPrefix() const override;
  bool accept(GroupItemVisitor& visitor) const override;

protected:
  Constraint* createEmpty() const override;
};

}  // namespace zelk::configuration::impl
