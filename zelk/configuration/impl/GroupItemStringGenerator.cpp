#include "zelk/configuration/impl/GroupItemStringGenerator.h"

#include "zelk/configuration/Container.h"
#include "zelk/configuration/LogicalGroup.h"
#include "zelk/configuration/OneOf.h"
#include "zelk/configuration/Parameter.h"
#include "zelk/configuration/ParameterRef.h"

namespace zelk::configuration::impl {

std::string GroupItemStringGenerator::getString(const GroupItem& item) {
  GroupItemStringGenerator generator;
  item.accept(generator);
  return generator.getRepresentation();
}

GroupItemStringGenerator::GroupItemStringGenerator() {}

GroupItemStringGenerator::~GroupItemStringGenerator() {}

bool GroupItemStringGenerator::visitContainerStart(const Container& container) {
  printStart("Container");
  printKeyStringValue("id", container.getId());
  printKeyStringValue("name", container.getName());
  printKeyStringValue("description", container.getDescription());
  printKeyBoolValue("optional", container.isOptional());
  printKeyBoolValue("unbounded", container.isUnbounded());
  printItemsStart();
  return true;
}

bool GroupItemStringGenerator::visitContainerEnd(const Container&) {
  printCollectionEnd();
  return true;
}

bool GroupItemStringGenerator::visitOneOfStart(const OneOf& oneOf) {
  printStart("One Of");
  printKeyBoolValue("optional", oneOf.isOptional());
  printItemsStart();
  return true;
}

bool GroupItemStringGenerator::visitOneOfEnd(const OneOf&) {
  printCollectionEnd();
  return true;
}

bool GroupItemStringGenerator::visitLogicalGroupStart(const LogicalGroup& logicalGroup) {
  printStart("Logical Group");
  printKeyBoolValue("optional", logicalGroup.isOptional());
  printItemsStart();
  return true;
}

bool GroupItemStringGenerator::visitLogicalGroupEnd(const LogicalGroup&) {
  printCollectionEnd();
  return true;
}

bool GroupItemStringGenerator::visitParameterRef(const ParameterRef& ref) {
  printStart("ParameterRef");
  printKeyStringValue("id", ref.getParameter()->getId());
  printKeyStringValue("description", ref.getDescription());
  printKeyBoolValue("optional", ref.isOptional());
  printKeyBoolValue("unbounded", ref.isUnbounded());
  printKeyBoolValue("hidden", ref.isHidden());
  leaveScope("}");
  return true;
}

void GroupItemStringGenerator::printStart(const char* kind) {
  printKey(kind);
  printNewLine();
  enterScope("{");
}

void GroupItemStringGenerator::printItemsStart() {
  printKey("items");
  printNewLine();
  enterScope("{");
}

void GroupItemStringGenerator::printCollectionEnd() {
  leaveScope("}");
  leaveScope("}");
}

}  // namespace zelk::configuration::impl
