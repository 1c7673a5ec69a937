#include "zelk/configuration/Constraint.h"

#include "zelk/configuration/impl/ConstraintImpl.h"

namespace zelk::configuration {

Constraint::Constraint(impl::ConstraintImpl* impl) : GroupItemCollection(impl) {}

void Constraint::addItem(const GroupItem* item) { getConstraintImpl()->addItem(item); }

impl::ConstraintImpl* Constraint::getConstraintImpl() const {
  return static_cast<impl::ConstraintImpl*>(mImpl.get());
}

}  // namespace zelk::configuration
