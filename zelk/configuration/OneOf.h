// OneOf: exactly one of its children is given.
//
// Every child of a one-of reports isOptional() true. Only the optional bit of the one-of itself
// applies. Its id is "<parent id>_oo<position>".
//
//   OneOf* mode = impl::Factory::createOneOf(0);
//   impl::Factory::addItemToGroupItem(container, mode);
//   impl::Factory::addItemToGroupItem(mode, impl::Factory::createParameterRef(fast, 0, ""));
//   impl::Factory::addItemToGroupItem(mode, impl::Factory::createParameterRef(safe, 0, ""));
#pragma once

#include "zelk/configuration/Constraint.h"

namespace zelk::configuration {

namespace impl {
class OneOfImpl;
}

class OneOf : public Constraint {
protected:
  friend class impl::Factory;
  friend class impl::OneOfImpl;
  explicit OneOf(int32_t characteristics);
};

}  // namespace zelk::configuration
