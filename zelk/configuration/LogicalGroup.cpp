#include "zelk/configuration/LogicalGroup.h"

#include "zelk/configuration/impl/LogicalGroupImpl.h"

namespace zelk::configuration {

LogicalGroup::LogicalGroup(int32_t characteristics)
    : Constraint(new impl::LogicalGroupImpl(this, characteristics)) {}

}  // namespace zelk::configuration
