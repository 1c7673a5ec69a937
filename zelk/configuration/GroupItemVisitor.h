// GroupItemVisitor: walks a specification tree, one callback per item kind and position.
//
// accept() on a specification, group or group item calls Start on entering a collection, Middle
// between two of its children (not after the last) and End on leaving it, and visitParameterRef
// for each parameter reference. A callback returning false stops the walk. Every default does
// nothing and returns true, so a visitor overrides only what it needs:
//
//   struct Counter : GroupItemVisitor {
//     size_t count = 0;
//     bool visitParameterRef(const ParameterRef&) override { ++count; return true; }
//   };
//   Counter counter;
//   spec->accept(counter);
#pragma once

namespace zelk::configuration {

class Container;
class Group;
class LogicalGroup;
class OneOf;
class ParameterRef;
class Specification;

class GroupItemVisitor {
public:
  virtual ~GroupItemVisitor();
  virtual bool visitSpecificationStart(const Specification& specification);
  virtual bool visitSpecificationEnd(const Specification& specification);
  virtual bool visitGroupStart(const Group& group);
  virtual bool visitGroupEnd(const Group& group);
  virtual bool visitContainerStart(const Container& container);
  virtual bool visitContainerMiddle(const Container& container);
  virtual bool visitContainerEnd(const Container& container);
  virtual bool visitOneOfStart(const OneOf& oneOf);
  virtual bool visitOneOfMiddle(const OneOf& oneOf);
  virtual bool visitOneOfEnd(const OneOf& oneOf);
  virtual bool visitLogicalGroupStart(const LogicalGroup& logicalGroup);
  virtual bool visitLogicalGroupMiddle(const LogicalGroup& logicalGroup);
  virtual bool visitLogicalGroupEnd(const LogicalGroup& logicalGroup);
  virtual bool visitParameterRef(const ParameterRef& parameterRef);
};

}  // namespace zelk::configuration
