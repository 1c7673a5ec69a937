#include "zelk/configuration/OneOf.h"

#include "zelk/configuration/impl/OneOfImpl.h"

namespace zelk::configuration {

OneOf::OneOf(int32_t characteristics) : Constraint(new impl::OneOfImpl(this, characteristics)) {}

}  // namespace zelk::configuration
