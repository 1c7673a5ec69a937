// ValueGroup: a handle on a named group of a value tree, holding values and nested groups.
//
// Value providers build value trees and the configuration manager hands out the merged, validated
// and completed tree of a specification (ConfigurationManager::getValueGroup). Names compare
// case-insensitively; a bound item is named by its specification item's id. Values are unique by
// name within a group (adding a value of an existing name appends to it); groups may repeat.
//
//   zelk::configuration::ValueGroup values = manager->getValueGroup("backup", true, 0);
//   int32_t port = values.getValue("port").asInt32();   // falls back to the default value
//   for (zelk::configuration::ValueGroupIterator it = values.getValueGroupIterator("target");
//        it.next();)
//     std::cout << it.getCurrent().getValue("path").asString() << '\n';
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include <boost/shared_ptr.hpp>

#include "zelk/configuration/ObjectId.h"
#include "zelk/configuration/UnboundedValue.h"
#include "zelk/configuration/Value.h"
#include "zelk/configuration/ValueGroupItem.h"

namespace zelk::configuration {

class Container;
class Specification;
class ValidationErrors;
class ValueGroupIterator;
class ValueIterator;

namespace impl {
class ValueGroupState;
}

class ValueGroup : public ValueGroupItem {
public:
  // The handle with no state, returned when a group is not found.
  static const ValueGroup Null;

  // A null handle.
  ValueGroup();
  // A new, empty, unbound group; "Must provide a name" for a null or empty name.
  explicit ValueGroup(const char* name);
  // A new, empty group bound to container.
  explicit ValueGroup(const Container* container);
  // A new, empty group bound to the specification's items container (the root of its values).
  explicit ValueGroup(const Specification* specification);
  // A handle on a copy of other's state: deep (every item copied) when shallow is 0, else an
  // empty group with the same name, binding, parent and complete flag. Null for a null other.
  ValueGroup(const ValueGroup& other, int shallow);
  // Shares other's state.
  ValueGroup(const ValueGroup& other);
  // A handle on state (library use).
  explicit ValueGroup(const boost::shared_ptr<impl::ValueGroupState>& state);
  ValueGroup& operator=(const ValueGroup& other);
  ~ValueGroup() override;

  ItemType getItemType() const override { return VALUE_GROUP; }
  // True for an unmatched group, else the container's unboundedness.
  bool isUnbounded() const override;
  bool isValue() const override { return false; }
  bool isValueGroup() const override { return true; }
  // A new ValueGroup (as the copy constructor with shallow).
  boost::shared_ptr<ValueGroupItem> clone(int shallow) const override;
  // Start, every item in order, end; false as soon as the visitor says false.
  bool accept(ValueGroupItemVisitor& visitor) const override;
  bool isComplete() const override;

  // Sets item's parent to this group and adds it (a value of an existing value's name is appended
  // to that value instead). In a complete group a matched group item is completed, and listeners
  // are told of the addition. Returns item.
  virtual ValueGroupItem& add(ValueGroupItem& item);
  // Removes the item at index (ContractViolationException "index < mItems.size()" when out of
  // range); listeners are told when the group is complete and the item matched.
  virtual bool remove(size_t index);
  // Removes the first item named name; returns whether one was removed.
  virtual bool remove(const char* name);
  // Removes every item.
  virtual void clear();
  // Unbinds and unparents every item and the group itself, and removes every item.
  virtual void reset();

  // The bound container, or null.
  const Container* getContainer() const;
  // The number of items, or with a name the number of items so named.
  size_t getItemCount(const char* name = 0) const;
  // The item at index ("index < getItemCount()" contract).
  boost::shared_ptr<ValueGroupItem> getItem(size_t index) const;
  // The first item named name, or an empty pointer.
  boost::shared_ptr<ValueGroupItem> findItem(const char* name) const;

  // The bounded value named name. An unmatched value is seen only with useDefault; an absent one
  // gives the parameter's default with useDefault, else Value::Null. A group or an unbounded
  // value of that name is reported to errors (thrown as ConfigurationException without errors)
  // and gives Value::Null.
  Value getValue(const char* name, ValidationErrors* errors = 0, bool useDefault = true) const;
  // As getValue for an unbounded value (a bound bounded value is returned as well).
  UnboundedValue getUnboundedValue(const char* name, ValidationErrors* errors = 0,
                                   bool useDefault = true) const;
  // The first group named name; with useDefault a new empty group for a nested container of that
  // name, else ValueGroup::Null. A value of that name is reported as for getValue.
  ValueGroup getValueGroup(const char* name, ValidationErrors* errors = 0,
                           bool useDefault = true) const;
  // The value named name (bound or not), or an empty pointer; a group so named is reported.
  boost::shared_ptr<ValueBase> findValueBase(const char* name, ValidationErrors* errors = 0) const;
  // The group named name, or an empty pointer; a value so named is reported.
  boost::shared_ptr<ValueGroup> findValueGroup(const char* name,
                                               ValidationErrors* errors = 0) const;

  // Reads entry index of the value named name into out; false when there is no such value.
  // Throws std::out_of_range when the value holds fewer than index entries, and the typed read's
  // errors otherwise.
  bool tryGetValue(const char* name, bool& out, size_t index = 0) const;
  bool tryGetValue(const char* name, int32_t& out, size_t index = 0) const;
  bool tryGetValue(const char* name, uint32_t& out, size_t index = 0) const;
  bool tryGetValue(const char* name, int64_t& out, size_t index = 0) const;
  bool tryGetValue(const char* name, uint64_t& out, size_t index = 0) const;
  bool tryGetValue(const char* name, double& out, size_t index = 0) const;
  bool tryGetValue(const char* name, ObjectId& out, size_t index = 0) const;
  bool tryGetValue(const char* name, std::string& out, size_t index = 0) const;
  // A new array holding the text; the caller releases it with delete[].
  bool tryGetValue(const char* name, char*& out, size_t index = 0) const;
  // A pointer to the text held by the value, valid until that value is next changed.
  bool tryGetValue(const char* name, const char*& out, size_t index = 0) const;

  // Adds a value holding text, bound to the container's parameter reference name when there is
  // one, else unbound, and returns it. When the group already holds a value of that name, the
  // text is appended to that value and the returned value stands alone. Throws as Value::create.
  Value addValue(const char* name, const char* text);
  UnboundedValue addUnboundedValue(const char* name, const char* text);
  // Adds a new group, bound to the container's nested container name when there is one.
  ValueGroup addGroup(const char* name);

  // The default value of the container's parameter reference name (not inside a one-of), or
  // Value::Null.
  Value getDefaultValueFor(const char* name) const;
  // A new empty group for the container's nested container name, or ValueGroup::Null.
  ValueGroup getDefaultValueGroup(const char* name) const;

  // Marks this group and every group below it complete.
  void complete();
  // Folds other into this group under spec: bounded values keep this group's value, unbounded
  // values collect both, unmatched items are dropped. Throws ConfigurationException when
  // unbounded values of different types meet.
  void merge(const Specification& spec, const ValueGroup& other);

  // Iterates the nested groups, only those named name when name is non-empty.
  ValueGroupIterator getValueGroupIterator(const char* name = 0) const;
  // Iterates the entries of the value named name; a null iterator when there is none.
  ValueIterator getValueIterator(const char* name) const;

protected:
  // The group state; throws ConfigurationException on a null handle.
  impl::ValueGroupState& getGroupState() const;
  boost::shared_ptr<impl::ValueGroupState> getGroupStatePointer() const;

private:
  // Reports that name is not an item of the expected type.
  void unexpectedType(const char* name, ValidationErrors* errors, ItemType expected) const;
};

}  // namespace zelk::configuration
