#include "zelk/configuration/GroupItemVisitor.h"

namespace zelk::configuration {

GroupItemVisitor::~GroupItemVisitor() {}
bool GroupItemVisitor::visitSpecificationStart(const Specification&) { return true; }
bool GroupItemVisitor::visitSpecificationEnd(const Specification&) { return true; }
bool GroupItemVisitor::visitGroupStart(const Group&) { return true; }
bool GroupItemVisitor::visitGroupEnd(const Group&) { return true; }
bool GroupItemVisitor::visitContainerStart(const Container&) { return true; }
bool GroupItemVisitor::visitContainerMiddle(const Container&) { return true; }
bool GroupItemVisitor::visitContainerEnd(const Container&) { return true; }
bool GroupItemVisitor::visitOneOfStart(const OneOf&) { return true; }
bool GroupItemVisitor::visitOneOfMiddle(const OneOf&) { return true; }
bool GroupItemVisitor::visitOneOfEnd(const OneOf&) { return true; }
bool GroupItemVisitor::visitLogicalGroupStart(const LogicalGroup&) { return true; }
bool GroupItemVisitor::visitLogicalGroupMiddle(const LogicalGroup&) { return true; }
bool GroupItemVisitor::visitLogicalGroupEnd(const LogicalGroup&) { return true; }
bool GroupItemVisitor::visitParameterRef(const ParameterRef&) { return true; }

}  // namespace zelk::configuration
