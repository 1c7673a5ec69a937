// GroupItemCollection: a group item that holds other group items, in order.
//
// Containers, logical groups and one-ofs are collections. A collection owns its children; the
// order of addition is the order of iteration, printing and help. Searches compare ids without
// regard to case. On a container they look at every item below it (through logical groups and
// one-ofs, but not into nested containers); on a logical group or one-of only at its direct
// children.
//
//   const ParameterRef* ref = container->findParameterRef("level");
//   for (size_t i = 0; i < container->getNumberOfItems(); ++i) {
//     const GroupItem* child = container->getItem(i);
//   }
#pragma once

#include <cstddef>

#include "zelk/configuration/GroupItem.h"

namespace zelk::configuration {

class ParameterRef;

namespace impl {
class GroupItemCollectionImpl;
}

class GroupItemCollection : public GroupItem {
public:
  // The child at index (a contract: index < the number of items).
  virtual const GroupItem* getItem(size_t index) const;
  virtual size_t getNumberOfItems() const;
  // The first item with the id (any kind), or null. Contract: id is neither null nor empty.
  virtual const GroupItem* findItem(const char* id) const;
  // The first container with the id, or null. Contract: id is neither null nor empty.
  virtual const Container* findContainer(const char* id) const;
  // The first parameter reference whose parameter has the id, or null. Contract: id is neither
  // null nor empty.
  virtual const ParameterRef* findParameterRef(const char* id) const;
  // Appends item (a contract: not null), takes ownership and links it to this collection.
  virtual void addItem(const GroupItem* item);

  // Appends a deep copy of every child of source, in order.
  void copyElementsFrom(const GroupItemCollection& source);

  impl::GroupItemCollectionImpl* getCollectionImpl() const;

protected:
  explicit GroupItemCollection(impl::GroupItemCollectionImpl* impl);
};

}  // namespace zelk::configuration
