// GroupItemCollectionImpl: the owned, ordered children of a collection, and the searches of a
// logical group or one-of (direct children only).
#pragma once

#include <cstddef>
#include <vector>

#include "zelk/configuration/GroupItemCollection.h"
#include "zelk/configuration/GroupItemVisitor.h"
#include "zelk/configuration/impl/GroupItemImpl.h"

namespace zelk::configuration::impl {

class GroupItemCollectionImpl : public GroupItemImpl {
public:
  GroupItemCollectionImpl(GroupItemCollection* self, int32_t characteristics);
  // Destroys every child through the factory.
  ~GroupItemCollectionImpl() override;

  GroupItemCollection* getCollectionSelf() const;

  const GroupItem* getItem(size_t index) const;
  size_t getNumberOfItems() const { return mItems.size(); }
  const std::vector<const GroupItem*>& getItems() const { return mItems; }

  // Direct children only, first match in order.
  virtual const GroupItem* findItem(const char* id) const;
  virtual const Container* findContainer(const char* id) const;
  virtual const ParameterRef* findParameterRef(const char* id) const;
  // Appends item (a contract: not null) without linking it; the public addItem links it.
  virtual void addItem(const GroupItem* item);

  // Appends a deep copy of every child of source, in order, each through copyToCollection.
  void copyElementsFrom(const GroupItemCollection& source);
  // The shallow clone is attached to collection before the children are copied into it.
  void copyToCollection(GroupItemCollection& collection) const override;

protected:
  // Start; each child in order with Middle between two children; End. Stops at the first false.
  template <typename Item>
  bool acceptChildren(GroupItemVisitor& visitor, const Item& self,
                      bool (GroupItemVisitor::*start)(const Item&),
                      bool (GroupItemVisitor::*middle)(const Item&),
                      bool (GroupItemVisitor::*end)(const Item&)) const {
    if (!(visitor.*start)(self)) {
      return false;
    }
    const size_t count = mItems.size();
    for (size_t i = 0; i < count; ++i) {
      if (!mItems[i]->accept(visitor)) {
        return false;
      }
      if (i + 1 < count && !(visitor.*middle)(self)) {
        return false;
      }
    }
    return (visitor.*end)(self);
  }

  std::vector<const GroupItem*> mItems;
};

}  // namespace zelk::configuration::impl
