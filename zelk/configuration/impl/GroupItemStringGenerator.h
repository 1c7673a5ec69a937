// GroupItemStringGenerator: renders a specification item and everything below it as indented
// key/value text for diagnostics (ConfigurationManager::getRepresentation).
//
//   std::string text = GroupItemStringGenerator::getString(*spec->getItemsContainer());
//   // Container: 
//   // {
//   //   id: "tool"
//   //   ...
#pragma once

#include <string>

#include "zelk/configuration/GroupItemVisitor.h"
#include "zelk/configuration/impl/RepresentationPrinter.h"

namespace zelk::configuration {
class GroupItem;
}

namespace zelk::configuration::impl {

class GroupItemStringGenerator : public RepresentationPrinter, public GroupItemVisitor {
public:
  // The text of item and its descendants.
  static std::string getString(const GroupItem& item);

  GroupItemStringGenerator();
  ~GroupItemStringGenerator() override;

  bool visitContainerStart(const Container& container) override;
  bool visitContainerEnd(const Container& container) override;
  bool visitOneOfStart(const OneOf& oneOf) override;
  bool visitOneOfEnd(const OneOf& oneOf) override;
  bool visitLogicalGroupStart(const LogicalGroup& logicalGroup) override;
  bool visitLogicalGroupEnd(const LogicalGroup& logicalGroup) override;
  bool visitParameterRef(const ParameterRef& ref) override;

private:
  // The key line and the opening of the item's scope.
  void printStart(const char* kind);
  // The key line and opening of the scope that holds a collection's children.
  void printItemsStart();
  // Closes the children's scope and the item's scope.
  void printCollectionEnd();
};

}  // namespace zelk::configuration::impl
