// ConstraintImpl: a logical group's or one-of's computed id and the linking of its children.
#pragma once

#include <string>

#include "zelk/configuration/Constraint.h"
#include "zelk/configuration/impl/GroupItemCollectionImpl.h"

namespace zelk::configuration::impl {

class ConstraintImpl : public GroupItemCollectionImpl {
public:
  static const int32_t UNUSED_CHARACTERISTICS = GroupItem::UNBOUNDED | GroupItem::HIDDEN;

  ConstraintImpl(Constraint* self, int32_t characteristics);
  ~ConstraintImpl() override;

  Constraint* getConstraintSelf() const;

  // Empty until the constraint is first attached to a parent.
  const char* getId() const override { return mId.c_str(); }
  bool isUnbounded() const override { return false; }
  int32_t getUnusedCharacteristics() const override { return UNUSED_CHARACTERISTICS; }
  GroupItem* clone(GroupItem::CopyType copyType) const override;
  // "lg" or "oo".
  virtual const char* getIdPrefix() const = 0;

  // Both compute the id from the new parent (first attachment only) before storing the link.
  // A new container is also passed on to the children, which always share the constraint's
  // container.
  void setContainer(Container* container) override;
  void setConstraint(Constraint* constraint) override;

  // Appends item (a contract: not null), then links it to this constraint and its container; a
  // hidden constraint makes the item hidden.
  void addItem(const GroupItem* item) override;

protected:
  // A new, empty constraint of the same kind.
  virtual Constraint* createEmpty() const = 0;

private:
  void computeId(const GroupItemCollection* parent);

  std::string mId;
};

}  // namespace zelk::configuration::impl
