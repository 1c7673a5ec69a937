#include "zelk/configuration/impl/ValueGroupMerger.h"

#include "zelk/configuration/Container.h"
#include "zelk/configuration/ParameterRef.h"
#include "zelk/configuration/Specification.h"
#include "zelk/configuration/ValidationErrors.h"
#include "zelk/configuration/ValueGroup.h"
#include "zelk/configuration/impl/ValueAccess.h"
#include "zelk/configuration/impl/ValueGroupState.h"
#include "zelk/configuration/impl/ValueState.h"

namespace zelk::configuration::impl {

void ValueGroupMerger::merge(const Specification& spec, ValueGroup& target,
                             const ValueGroup& source, ValidationErrors* errors) {
  ValidationErrors localErrors;
  ValueGroupMerger merger(spec, target, errors != 0 ? errors : &localErrors);
  source.accept(merger);
}

ValueGroupMerger::ValueGroupMerger(const Specification& spec, ValueGroup& target,
                                   ValidationErrors* errors)
    : mItemsContainer(spec.getItemsContainer()), mErrors(errors) {
  Frame root;
  root.mTarget.reset(new ValueGroup(target));
  root.mActive = true;
  push(root);
}

ValueGroupMerger::~ValueGroupMerger() {}

void ValueGroupMerger::push(const Frame& frame) { mStack.push_back(frame); }

const ValueGroupMerger::Frame& ValueGroupMerger::peek() const { return mStack.back(); }

void ValueGroupMerger::pop() { mStack.pop_back(); }

bool ValueGroupMerger::isGroupInSpecification(const ValueGroup* group) const {
  if (group == 0) {
    return false;
  }
  // Walks up the parents (iteratively, so deep trees cannot exhaust the stack).
  for (boost::shared_ptr<ValueGroupState> state = ValueAccess::peekState(*group); state;
       state = state->getParent()) {
    const Container* container = state->getContainer();
    if (container == 0) {
      return false;
    }
    if (container == mItemsContainer) {
      return true;
    }
  }
  return false;
}

bool ValueGroupMerger::visitValueGroupStart(ValueGroup& group) {
  if (!isGroupInSpecification(&group)) {
    // Nothing below a group outside the specification is merged.
    Frame inactive;
    inactive.mTarget = peek().mTarget;
    inactive.mActive = false;
    push(inactive);
    return true;
  }
  const Container* container = group.getContainer();
  ValueGroup& target = *peek().mTarget;
  Frame frame;
  frame.mActive = true;
  const boost::shared_ptr<ValueGroup> existing =
      target.findValueGroup(container->getId(), mErrors);
  if (!container->isUnbounded() && existing) {
    // A bounded container merges into the one group the target already has.
    frame.mTarget = existing;
  } else if (!ValueItemState::namesEqual(target.getName(), group.getName())) {
    ValueGroup copy(group, 1);
    target.add(copy);
    frame.mTarget.reset(new ValueGroup(copy));
  } else {
    // The two roots meet.
    frame.mTarget = peek().mTarget;
  }
  push(frame);
  return true;
}

bool ValueGroupMerger::visitValueBase(ValueBase& value) {
  const Frame& top = peek();
  if (!top.mActive) {
    return true;
  }
  const ParameterRef* ref = value.getParameterRef();
  if (ref == 0) {
    // Unmatched values are never merged.
    return true;
  }
  ValueGroup& target = *top.mTarget;
  const boost::shared_ptr<ValueBase> existing = target.findValueBase(ref->getId(), mErrors);
  if (!existing) {
    // The source's state itself joins the target.
    target.add(value);
  } else if (ref->isUnbounded()) {
    ValueAccess::getState(*existing)->append(*ValueAccess::getState(value));
  }
  // A bounded value already in the target wins.
  return true;
}

bool ValueGroupMerger::visitValueGroupEnd(ValueGroup&) {
  pop();
  return true;
}

}  // namespace zelk::configuration::impl
