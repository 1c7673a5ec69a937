// GroupItemImpl: the state and behaviour behind a GroupItem: characteristics and parent links.
#pragma once

#include <cstdint>

#include "zelk/configuration/GroupItem.h"

namespace zelk::configuration::impl {

class GroupItemImpl {
public:
  // characteristics is stored as given; subclasses pass it through their unused-bit mask.
  GroupItemImpl(GroupItem* self, int32_t characteristics);
  virtual ~GroupItemImpl();

  // The public item (a contract: set).
  GroupItem* getSelf() const;

  virtual const char* getId() const = 0;
  virtual bool isOptional() const;
  virtual bool isUnbounded() const;
  virtual bool isHidden() const;
  virtual GroupItem::ItemType getItemType() const = 0;
  virtual const char* getItemTypeName() const = 0;
  virtual bool accept(GroupItemVisitor& visitor) const = 0;
  virtual GroupItem* clone(GroupItem::CopyType copyType) const = 0;
  // Adds a deep copy of the item to collection (the copy is attached before its children are
  // copied into it, so constraint ids are formed from the new parent).
  virtual void copyToCollection(GroupItemCollection& collection) const;
  // The bits that do not apply to this kind of item; they are cleared whenever a bit set is
  // stored.
  virtual int32_t getUnusedCharacteristics() const;

  Container* getContainer() const { return mContainer; }
  virtual void setContainer(Container* container);
  Constraint* getConstraint() const { return mConstraint; }
  virtual void setConstraint(Constraint* constraint);
  OneOf* getOneOf() const;
  LogicalGroup* getLogicalGroup() const;
  GroupItemCollection* getCollection() const;

  int32_t getCharacteristics() const { return mCharacteristics; }
  void setCharacteristics(int32_t characteristics);
  void setOptional(bool optional);
  void setHidden(bool hidden);

  bool isDescendantOf(const GroupItemCollection* collection) const;
  bool isDirectDescendantOf(const GroupItemCollection* collection) const;

protected:
  GroupItem* mSelf;
  int32_t mCharacteristics;
  Container* mContainer;
  Constraint* mConstraint;
};

}  // namespace zelk::configuration::impl
