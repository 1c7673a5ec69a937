// LogicalGroup: items that are given together or not at all.
//
// Only the optional bit applies (unbounded and hidden are cleared when stored, though adding a
// child to a hidden group marks the child hidden). Its id is "<parent id>_lg<position>".
//
//   LogicalGroup* both = impl::Factory::createLogicalGroup(GroupItem::OPTIONAL);
//   impl::Factory::addItemToGroupItem(container, both);
#pragma once

#include "zelk/configuration/Constraint.h"

namespace zelk::configuration {

namespace impl {
class LogicalGroupImpl;
}

class LogicalGroup : public Constraint {
protected:
  friend class impl::Factory;
  friend class impl::LogicalGroupImpl;
  explicit LogicalGroup(int32_t characteristics);
};

}  // namespace zelk::configuration
