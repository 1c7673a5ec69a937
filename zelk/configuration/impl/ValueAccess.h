// ValueAccess: how library code reaches the shared state behind a value handle.
//
// Handles keep their state to themselves; providers, the manager's value cache and the merger
// need it (to cache a tree, to share a state between trees, to build handles on it).
//
//   boost::shared_ptr<impl::ValueGroupState> state = impl::ValueAccess::getState(values);
//   ValueGroup again(state);   // shares the tree
#pragma once

#include <boost/shared_ptr.hpp>

namespace zelk::configuration {
class ValueBase;
class ValueGroup;
class ValueGroupItem;
}  // namespace zelk::configuration

namespace zelk::configuration::impl {

class ValueGroupState;
class ValueItemState;
class ValueState;

class ValueAccess {
public:
  ValueAccess() = delete;

  // The state of a handle; each throws ConfigurationException "Cannot access a value or value
  // group when isNull() returns true" on a null handle.
  static boost::shared_ptr<ValueItemState> getState(const ValueGroupItem& item);
  static boost::shared_ptr<ValueGroupState> getState(const ValueGroup& group);
  static boost::shared_ptr<ValueState> getState(const ValueBase& value);

  // The state of a handle, empty for a null handle.
  static boost::shared_ptr<ValueItemState> peekState(const ValueGroupItem& item);
  static boost::shared_ptr<ValueGroupState> peekState(const ValueGroup& group);
  static boost::shared_ptr<ValueState> peekState(const ValueBase& value);

  // A new handle of the right kind on state (ValueGroup, UnboundedValue for an unbounded value,
  // else Value); empty for an empty state.
  static boost::shared_ptr<ValueGroupItem> makeHandle(const boost::shared_ptr<ValueItemState>& state);
};

}  // namespace zelk::configuration::impl
