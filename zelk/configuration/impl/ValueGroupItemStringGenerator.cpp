#include "zelk/configuration/impl/ValueGroupItemStringGenerator.h"

#include <string>

#include "zelk/configuration/Container.h"
#include "zelk/configuration/Parameter.h"
#include "zelk/configuration/ParameterRef.h"
#include "zelk/configuration/ValueBase.h"
#include "zelk/configuration/ValueGroup.h"
#include "zelk/configuration/ValueIterator.h"
#include "zelk/configuration/impl/ValueAccess.h"
#include "zelk/configuration/impl/ValueGroupState.h"
#include "zelk/configuration/impl/ValueState.h"

namespace zelk::configuration::impl {

std::string ValueGroupItemStringGenerator::getString(const ValueGroupItem& item) {
  ValueGroupItemStringGenerator generator;
  item.accept(generator);
  return generator.getRepresentation();
}

ValueGroupItemStringGenerator::ValueGroupItemStringGenerator() {}

ValueGroupItemStringGenerator::~ValueGroupItemStringGenerator() {}

bool ValueGroupItemStringGenerator::visitValueBase(ValueBase& value) {
  printValue(value);
  return true;
}

bool ValueGroupItemStringGenerator::visitValueGroupStart(ValueGroup& group) {
  printStartValueGroup(group);
  return true;
}

bool ValueGroupItemStringGenerator::visitValueGroupEnd(ValueGroup& group) {
  printEndValueGroup(group);
  return true;
}

void ValueGroupItemStringGenerator::printStartValueGroup(const ValueGroup& group) {
  const boost::shared_ptr<ValueGroupState> state = ValueAccess::peekState(group);
  const boost::shared_ptr<ValueGroupState> parent =
      state ? state->getParent() : boost::shared_ptr<ValueGroupState>();
  const Container* container = state ? state->getContainer() : 0;
  printKey(state ? state->getName() : 0);
  printLiteralValue("(state: 0x");
  printPointerValue(state.get());
  printLiteralValue(", parent: 0x");
  printPointerValue(parent.get());
  printLiteralValue(", container: 0x");
  printPointerValue(container);
  if (container != 0) {
    printLiteralValue("->");
    printStringValue(container->getId());
  }
  printLiteralValue(")");
  printNewLine();
  enterScope("{");
}

void ValueGroupItemStringGenerator::printEndValueGroup(const ValueGroup&) { leaveScope("}"); }

void ValueGroupItemStringGenerator::printValue(const ValueBase& value) {
  const boost::shared_ptr<ValueState> state = ValueAccess::getState(value);
  const boost::shared_ptr<ValueGroupState> parent = state->getParent();
  const ParameterRef* ref = state->getParameterRef();
  const std::string key =
      std::string(state->getName()) + " (" + state->getValueTypeName() + ")";
  printKey(key.c_str());
  printLiteralValue("(state: 0x");
  printPointerValue(state.get());
  printLiteralValue(", parent: 0x");
  printPointerValue(parent.get());
  printLiteralValue(", paramRef: 0x");
  printPointerValue(ref);
  if (ref != 0) {
    printLiteralValue("->");
    printStringValue(ref->getParameter()->getId());
  }
  printLiteralValue(")");
  printNewLine();
  enterScope("[");
  const int type = state->getValueType();
  for (ValueIterator entry(value); entry.next();) {
    indent();
    switch (type) {
      case Parameter::BOOL:
        printBoolValue(entry.asBool());
        break;
      case Parameter::INT32:
        printInt32Value(entry.asInt32());
        break;
      case Parameter::UINT32:
        printUInt32Value(entry.asUInt32());
        break;
      case Parameter::INT64:
        printInt64Value(entry.asInt64());
        break;
      case Parameter::UINT64:
        printUInt64Value(entry.asUInt64());
        break;
      case Parameter::DOUBLE:
        printDoubleValue(entry.asDouble());
        break;
      default:
        // Strings, object ids, enumerations (their symbols) and untyped values.
        printStringValue(entry.asString().c_str());
        break;
    }
    printNewLine();
  }
  leaveScope("]");
}

}  // namespace zelk::configuration::impl
