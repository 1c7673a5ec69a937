// Constraint: a logical group or one-of, binding its children together or making them
// alternatives.
//
// A constraint has no id of its own: it takes one when first attached to a parent, formed from the
// parent's id, "_", "lg" or "oo" and its position ("db_oo2", "db_oo2_lg0"). Children added to a
// constraint are linked to it and to its container, and inherit its hidden bit.
//
//   OneOf* choice = impl::Factory::createOneOf(0);
//   impl::Factory::addItemToGroupItem(container, choice);   // choice->getId() is now e.g. "db_oo0"
//   impl::Factory::addItemToGroupItem(choice, impl::Factory::createParameterRef(a, 0, ""));
#pragma once

#include "zelk/configuration/GroupItemCollection.h"

namespace zelk::configuration {

namespace impl {
class ConstraintImpl;
}

class Constraint : public GroupItemCollection {
public:
  // Appends item (a contract: not null) and links it to this constraint and its container; a
  // hidden constraint makes the item hidden.
  void addItem(const GroupItem* item) override;

  impl::ConstraintImpl* getConstraintImpl() const;

protected:
  explicit Constraint(impl::ConstraintImpl* impl);
};

}  // namespace zelk::configuration
