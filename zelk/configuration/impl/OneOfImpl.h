// OneOfImpl: the type code, type name, id prefix and visitor calls of a one-of.
#pragma once

#include "zelk/configuration/OneOf.h"
#include "zelk/configuration/impl/ConstraintImpl.h"

namespace zelk::configuration::impl {

class OneOfImpl : public ConstraintImpl {
public:
  OneOfImpl(OneOf* self, int32_t characteristics);

  GroupItem::ItemType getItemType() const override { return GroupItem::ONE_OF; }
  const char* getItemTypeName() const override;
  const char* getIdPrefix() const override;
  bool accept(GroupItemVisitor& visitor) const override;

protected:
  Constraint* createEmpty() const override;
};

}  // namespace zelk::configuration::impl
