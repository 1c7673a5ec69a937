// DescendantIterator: a depth-first walk over the items below a collection.
//
// The walk goes through logical groups and one-ofs but never into a nested container: the nested
// container itself is an item of the walk, its contents are not. With the filter -1 every item is
// returned (a constraint before its children); with an item type only items of that type are.
//
//   DescendantIterator it(container, GroupItem::PARAMETER_REF);
//   while (it.next()) {
//     const ParameterRef* ref = static_cast<const ParameterRef*>(it.getCurrent());
//   }
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "zelk/configuration/GroupItemCollection.h"

namespace zelk::configuration::impl {

class DescendantIterator {
public:
  // Any item type.
  static const int32_t ALL_ITEM_TYPES = -1;

  // Contract: commonAncestor is not null.
  DescendantIterator(const GroupItemCollection* commonAncestor, int32_t itemType);

  // Moves to the next item; false when the walk is over.
  bool next();
  // The current item, or null before the first next() and after the walk.
  const GroupItem* getCurrent() const;

private:
  struct Position {
    const GroupItemCollection* collection;
    long index;
    bool expandPending;
  };

  void push(const GroupItemCollection* collection);

  const GroupItemCollection* mCommonAncestor;
  int32_t mItemType;
  // Items that belong elsewhere end the walk of their collection.
  const Container* mHomeContainer;
  std::vector<Position> mStack;
};

}  // namespace zelk::configuration::impl
