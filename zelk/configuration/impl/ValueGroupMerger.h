// ValueGroupMerger: folds a source value tree into a target tree under one specification.
//
// Walks the source: bounded values keep the target's value, unbounded values get the source's
// entries appended, bounded containers merge into the target's existing group, unbounded ones get
// a new group; unmatched values and everything below groups outside the specification are
// dropped. Values the target lacks are added as they are, sharing their state with the source.
//
//   impl::ValueGroupMerger::merge(spec, target, source, 0);
#pragma once

#include <vector>

#include <boost/shared_ptr.hpp>

#include "zelk/configuration/ValueGroupItemVisitor.h"

namespace zelk::configuration {
class Container;
class Specification;
class ValidationErrors;
}  // namespace zelk::configuration

namespace zelk::configuration::impl {

class ValueGroupMerger : public ValueGroupItemVisitor {
public:
  // Merges source into target. The merger itself reports nothing to errors (a local list is used
  // when errors is null); the only failure is the exception of ValueState::append.
  static void merge(const Specification& spec, ValueGroup& target, const ValueGroup& source,
                    ValidationErrors* errors);

  ValueGroupMerger(const Specification& spec, ValueGroup& target, ValidationErrors* errors);
  ~ValueGroupMerger() override;

  bool visitValueGroupStart(ValueGroup& group) override;
  bool visitValueBase(ValueBase& value) override;
  bool visitValueGroupEnd(ValueGroup& group) override;

  // True when group and all its ancestors are bound up to the specification's items container.
  bool isGroupInSpecification(const ValueGroup* group) const;

private:
  struct Frame {
    boost::shared_ptr<ValueGroup> mTarget;
    bool mActive;
  };

  void push(const Frame& frame);
  const Frame& peek() const;
  void pop();

  const Container* mItemsContainer;
  ValidationErrors* mErrors;
  std::vector<Frame> mStack;
};

}  // namespace zelk::configuration::impl
