// GroupImpl: a group's items container (owned).
#pragma once

#include "zelk/configuration/Group.h"
#include "zelk/configuration/impl/GlobalItemImpl.h"

namespace zelk::configuration::impl {

class GroupImpl : public GlobalItemImpl {
public:
  // The id and the name are both name; the items container has id and name name.
  GroupImpl(Group* self, const char* name, const char* description);
  ~GroupImpl() override;

  GlobalItem::ItemType getItemType() const override { return GlobalItem::GROUP; }
  const char* getItemTypeName() const override;
  Container* getItemsContainer() const { return mItemsContainer; }
  bool accept(GroupItemVisitor& visitor) const;

private:
  Container* mItemsContainer;
};

}  // namespace zelk::configuration::impl
