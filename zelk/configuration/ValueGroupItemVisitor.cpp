#include "zelk/configuration/ValueGroupItemVisitor.h"

#include "zelk/configuration/UnboundedValue.h"
#include "zelk/configuration/Value.h"

namespace zelk::configuration {

ValueGroupItemVisitor::~ValueGroupItemVisitor() {}

bool ValueGroupItemVisitor::visitValueBase(ValueBase&) { return true; }

bool ValueGroupItemVisitor::visitValue(Value& value) { return visitValueBase(value); }

bool ValueGroupItemVisitor::visitUnboundedValue(UnboundedValue& value) {
  return visitValueBase(value);
}

bool ValueGroupItemVisitor::visitValueGroupStart(ValueGroup&) { return true; }

bool ValueGroupItemVisitor::visitValueGroupEnd(ValueGroup&) { return true; }

}  // namespace zelk::configuration
