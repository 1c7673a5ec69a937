#include "zelk/configuration/ParameterRef.h"

#include "zelk/configuration/Value.h"
#include "zelk/configuration/impl/ParameterRefImpl.h"

namespace zelk::configuration {

ParameterRef::ParameterRef(const Parameter* parameter, int32_t characteristics,
                           const char* description)
    : GroupItem(new impl::ParameterRefImpl(this, parameter, characteristics, description)) {}

const Parameter* ParameterRef::getParameter() const {
  return getParameterRefImpl()->getParameter();
}

const char* ParameterRef::getDescription() const {
  return getParameterRefImpl()->getDescription();
}

Value ParameterRef::getDefaultValue() const { return getParameterRefImpl()->getDefaultValue(); }

impl::ParameterRefImpl* ParameterRef::getParameterRefImpl() const {
  return static_cast<impl::ParameterRefImpl*>(mImpl.get());
}

}  // namespace zelk::configuration
