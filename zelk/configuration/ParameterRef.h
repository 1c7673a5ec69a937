// ParameterRef: the use of one global Parameter at one place of a specification tree.
//
// Its id is the parameter's id. The reference may carry its own description and default value,
// which win over the parameter's. It never owns the parameter.
//
//   ParameterRef* ref = impl::Factory::createParameterRef(level, GroupItem::OPTIONAL, "");
//   impl::Factory::setDefaultValueFor(ref, "3");
//   impl::Factory::addItemToGroupItem(container, ref);
//   ref->getDefaultValue().asUInt32();   // 3
#pragma once

#include "zelk/configuration/GroupItem.h"

namespace zelk::configuration {

class Parameter;
class Value;

namespace impl {
class ParameterRefImpl;
}

class ParameterRef : public GroupItem {
public:
  // The referenced parameter (never null).
  const Parameter* getParameter() const;
  // The reference's own description if not empty, else the parameter's.
  const char* getDescription() const;
  // A handle on the reference's own default value if one was set, else the parameter's default
  // value (Value::Null when neither has one).
  Value getDefaultValue() const;

  impl::ParameterRefImpl* getParameterRefImpl() const;

protected:
  friend class impl::Factory;
  friend class impl::ParameterRefImpl;
  // Contract: parameter is not null. The hidden, optional and unbounded bits all apply.
  ParameterRef(const Parameter* parameter, int32_t characteristics, const char* description);
};

}  // namespace zelk::configuration
