// ValueGroupItem: the common base of the handles over a value tree (ValueGroup, Value,
// UnboundedValue).
//
// A handle holds one shared pointer to an internal item state; copying a handle shares the state,
// so two handles for the same item see the same name, binding, parent and contents. A handle
// without a state is null (see the Null members of the derived classes); every accessor that needs
// the state throws ConfigurationException on a null handle.
//
//   zelk::configuration::ValueGroup root("tool");
//   zelk::configuration::Value port = root.addValue("port", "8080");
//   port.getName();          // "port"
//   port.getParent().getName();   // "tool"
//   port.getItemTypeName();  // "bounded value"
#pragma once

#include <cstddef>
#include <cstdint>

#include <boost/shared_ptr.hpp>

namespace zelk::configuration {

class GroupItem;
class ValueGroup;
class ValueGroupItemVisitor;

namespace impl {
class ValueAccess;
class ValueItemState;
}  // namespace impl

class ValueGroupItem {
public:
  enum ItemType { VALUE = 0, UNBOUNDED_VALUE = 1, VALUE_GROUP = 2 };

  virtual ~ValueGroupItem();

  // The specification item this item is bound to, or null while it is unmatched.
  virtual const GroupItem* getGroupItem() const;
  virtual ItemType getItemType() const = 0;
  virtual bool isUnbounded() const = 0;
  virtual bool isValue() const = 0;
  virtual bool isValueGroup() const = 0;
  // A new item over a copy of the state (a new instance id); shallow copies carry no contents.
  virtual boost::shared_ptr<ValueGroupItem> clone(int shallow) const = 0;
  // Lets the visitor walk this item; returns false when the visitor stopped the walk.
  virtual bool accept(ValueGroupItemVisitor& visitor) const = 0;
  // True when the item is bound to groupItem, or, while unbound, carries groupItem's id as name.
  virtual bool matches(const GroupItem& groupItem) const;
  // True once the tree holding the item has been completed (for a value: its parent group's flag).
  virtual bool isComplete() const = 0;

  // True when the handle holds no state.
  bool isNull() const { return !mState; }
  // True when the item is bound to a specification item.
  bool isMatched() const;
  // The effective name: the bound item's id, else the name given at creation.
  const char* getName() const;
  // Renames an unbound item. Throws ContractViolationException for a null or empty name.
  void setName(const char* name);
  // Binds the item; an item is bound at most once (re-binding to the same item is harmless).
  void setGroupItem(const GroupItem* groupItem);
  // The group holding this item, or ValueGroup::Null.
  ValueGroup getParent() const;
  void setParent(const ValueGroup& parent);
  // The process-wide unique id of the state (copies get new ids).
  uint32_t getInstanceId() const;
  // "bounded value", "unbounded value" or "bounded value group".
  const char* getItemTypeName() const;

protected:
  ValueGroupItem();
  explicit ValueGroupItem(const boost::shared_ptr<impl::ValueItemState>& state);
  ValueGroupItem(const ValueGroupItem& other);
  ValueGroupItem& operator=(const ValueGroupItem& other);

  // The shared state; throws ConfigurationException "Cannot access a value or value group when
  // isNull() returns true" on a null handle.
  const boost::shared_ptr<impl::ValueItemState>& getState() const;
  // The shared state, empty on a null handle.
  const boost::shared_ptr<impl::ValueItemState>& peekState() const { return mState; }
  void setState(const boost::shared_ptr<impl::ValueItemState>& state) { mState = state; }

private:
  friend class impl::ValueAccess;

  boost::shared_ptr<impl::ValueItemState> mState;
};

}  // namespace zelk::configuration
