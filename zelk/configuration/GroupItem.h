// GroupItem: one node of a specification tree.
//
// A specification is a tree of containers, logical groups, one-ofs and parameter references. Each
// node knows its kind, its id, its characteristics (optional, unbounded, hidden) and its parents:
// the enclosing Container and, when it sits in a logical group or one-of, that Constraint.
// Nodes are made and destroyed only through impl::Factory; a collection owns its children.
//
//   const GroupItem* item = specification->findItem("level");
//   if (item != 0 && item->getItemType() == GroupItem::PARAMETER_REF && item->isOptional()) ...
//   bool inside = item->isDescendantOf(specification->getItemsContainer());
#pragma once

#include <cstdint>

#include <boost/scoped_ptr.hpp>

namespace zelk::configuration {

class Constraint;
class Container;
class GroupItemCollection;
class GroupItemVisitor;
class LogicalGroup;
class OneOf;

namespace impl {
class Factory;
class GroupItemImpl;
}  // namespace impl

class GroupItem {
public:
  enum ItemType : int32_t { CONTAINER = 0, LOGICAL_GROUP = 1, ONE_OF = 2, PARAMETER_REF = 3 };
  enum CopyType { DEEP = 0, SHALLOW = 1 };
  // The characteristics bits.
  enum Characteristic : int32_t { OPTIONAL = 0x1, UNBOUNDED = 0x2, HIDDEN = 0x4 };

  // The item's id: a container's own id, a parameter reference's parameter id, a logical
  // group's or one-of's computed id (empty until the item is first attached).
  virtual const char* getId() const;
  // True when the item sits directly in a one-of, else the optional bit.
  virtual bool isOptional() const;
  // The unbounded bit (always false for logical groups and one-ofs).
  virtual bool isUnbounded() const;
  virtual bool isHidden() const;
  virtual ItemType getItemType() const;
  // "Container", "Logical Group", "One Of" or "ParameterRef".
  virtual const char* getItemTypeName() const;
  // Walks the item (and its children) with the visitor; false when the visitor stopped the walk.
  virtual bool accept(GroupItemVisitor& visitor) const;
  virtual ~GroupItem();
  // A new, unattached copy (DEEP: with copies of all children; SHALLOW: without children).
  // Release it with impl::Factory::destroy.
  virtual GroupItem* clone(CopyType copyType) const;
  // Adds a deep copy of this item to collection.
  virtual void copyToCollection(GroupItemCollection& collection) const;

  // The enclosing container, or null.
  Container* getContainer() const;
  void setContainer(Container* container);
  // The enclosing logical group or one-of, or null.
  Constraint* getConstraint() const;
  void setConstraint(Constraint* constraint);
  // The enclosing constraint when it is a one-of / logical group, else null.
  OneOf* getOneOf() const;
  LogicalGroup* getLogicalGroup() const;
  // The enclosing constraint if there is one, else the enclosing container.
  GroupItemCollection* getCollection() const;

  // The stored bit set (bits that do not apply to the kind are always clear).
  int32_t getCharacteristics() const;
  // Stores the bit set, clearing the bits that do not apply to the kind.
  void setCharacteristics(int32_t characteristics);
  void setOptional(bool optional);
  void setHidden(bool hidden);

  // True when collection encloses the item at any depth. Contract: collection is not null.
  bool isDescendantOf(const GroupItemCollection* collection) const;
  // True when collection is the item's direct parent (its constraint for a logical group or
  // one-of, its container for a container). Contract: collection is not null.
  bool isDirectDescendantOf(const GroupItemCollection* collection) const;

  impl::GroupItemImpl* getImpl() const;

protected:
  // Takes ownership of impl (a contract: not null).
  explicit GroupItem(impl::GroupItemImpl* impl);

  boost::scoped_ptr<impl::GroupItemImpl> mImpl;

private:
  GroupItem(const GroupItem&) = delete;
  GroupItem& operator=(const GroupItem&) = delete;
};

}  // namespace zelk::configuration
