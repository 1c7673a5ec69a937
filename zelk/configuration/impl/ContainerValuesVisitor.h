// ContainerValuesVisitor: the common ground of the structural validators that walk a
// specification: beside the walk it keeps a stack of the value groups that hold the values of the
// containers being visited, and it looks values and groups up in the group on top.
//
// The walk starts at visitSpecificationStart, which puts the root value group on the stack.
// Subclasses push the group of each container they enter and pop it at visitContainerEnd.
//
//   class CountPresent : public ContainerValuesVisitor {
//   public:
//     using ContainerValuesVisitor::ContainerValuesVisitor;
//     bool visitParameterRef(const ParameterRef& ref) override {
//       if (findValue(ref)) ++present;
//       return true;
//     }
//     size_t present = 0;
//   };
#pragma once

#include <deque>

#include <boost/shared_ptr.hpp>

#include "zelk/configuration/GroupItemVisitor.h"
#include "zelk/configuration/ValueGroup.h"

namespace zelk::configuration {
class GroupItem;
class ValidationErrors;
class ValueBase;
}  // namespace zelk::configuration

namespace zelk::configuration::impl {

class ContainerValuesVisitor : public GroupItemVisitor {
public:
  // values and errors must outlive the visitor; look-up problems are added to errors.
  ContainerValuesVisitor(const Specification& specification, const ValueGroup& values,
                         ValidationErrors& errors);
  ~ContainerValuesVisitor() override;

  // Puts the root value group on the stack.
  bool visitSpecificationStart(const Specification& specification) override;
  // Pops the group of the container being left.
  bool visitContainerEnd(const Container& container) override;

protected:
  typedef boost::shared_ptr<ValueGroup> GroupPointer;

  // The value group of the container being visited.
  const GroupPointer& top() const { return mStack.back(); }
  void push(const GroupPointer& group) { mStack.push_back(group); }

  // The group that holds container's values below the top group: the top group itself when it
  // stands for container (the root and the items container), else the child group bound to it.
  // Empty when there is none.
  GroupPointer findGroupFor(const Container& container) const;
  // The value of ref in the top group, or empty.
  boost::shared_ptr<ValueBase> findValue(const ParameterRef& ref) const;
  // Whether a container or parameter reference has values in the top group. Type mismatches found
  // here are not reported again: the walk reports them where it meets the item itself.
  bool isPresent(const GroupItem& item) const;

  const Specification& mSpecification;
  const ValueGroup& mValues;
  ValidationErrors& mErrors;

private:
  std::deque<GroupPointer> mStack;
};

}  // namespace zelk::configuration::impl
