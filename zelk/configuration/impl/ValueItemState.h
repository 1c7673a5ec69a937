// ValueItemState: what the states behind value handles share: instance id, name, binding and the
// link to the parent group.
//
// States are shared by handles through boost::shared_ptr; a group holds its items by shared
// pointer and each item points back to its group weakly, so neither keeps the other alive.
// A bound state holds the registry generation of its item, so that the specification it points
// into outlives a clear of its manager for as long as the state lives.
// Name, binding and parent are set while a tree is built and read afterwards; the item lists and
// texts that change later are guarded by the subclasses' own reader/writer mutexes.
#pragma once

#include <atomic>
#include <cstdint>
#include <string>

#include <boost/intrusive_ptr.hpp>
#include <boost/shared_ptr.hpp>
#include <boost/weak_ptr.hpp>

#include "zelk/configuration/ValueGroupItem.h"
#include "zelk/configuration/impl/RegistryGeneration.h"

namespace zelk::configuration {
class GroupItem;
}

namespace zelk::configuration::impl {

class ValueGroupState;

class ValueItemState {
public:
  // A named, unbound item; "Must provide a name" for a null or empty name.
  explicit ValueItemState(const char* name);
  // An item bound to groupItem (name empty); contract "groupItem != 0".
  explicit ValueItemState(const GroupItem* groupItem);
  // A copy of name, binding and parent with a new instance id.
  ValueItemState(const ValueItemState& other);
  ValueItemState& operator=(const ValueItemState&) = delete;
  virtual ~ValueItemState();

  virtual bool isValue() const = 0;
  virtual bool isValueGroup() const = 0;
  virtual bool isUnbounded() const = 0;
  // A copy with a new instance id; without contents when shallow is non-zero.
  virtual boost::shared_ptr<ValueItemState> clone(int shallow) const = 0;
  virtual const GroupItem* getGroupItem() const;
  // Bound to groupItem, or, while unbound, named like groupItem's id (case-insensitively).
  virtual bool matches(const GroupItem& groupItem) const;
  // Drops binding and parent; name and id stay.
  virtual void reset();

  uint32_t getInstanceId() const { return mInstanceId; }
  // The bound item's id when bound (binding renames the item), else the stored name.
  const char* getName() const;
  void setName(const char* name);
  boost::shared_ptr<ValueGroupState> getParent() const;
  void setParent(const boost::shared_ptr<ValueGroupState>& parent);
  // Binds the item once; contracts "groupItem != 0" and "mGroupItem == 0 || mGroupItem ==
  // groupItem". The state then holds groupItem's registry generation.
  void setGroupItem(const GroupItem* groupItem);

  // The name of an item type; contract on the range VALUE..VALUE_GROUP.
  static const char* getItemTypeName(ValueGroupItem::ItemType type);
  // Whether two item names are equal, ignoring ASCII case (null equals only null).
  static bool namesEqual(const char* a, const char* b);
  // A counter that grows whenever the effective name of an item that more than one group may hold
  // changes other than in case; every group rebuilds its name index when it moved since it built
  // it. Renames of other items are told to their parent group alone (see noteRename).
  static uint64_t getRenameGeneration();

protected:
  friend class ValueGroupState;

  // Tells the groups that may hold this item that its name moved from before, when it did: its
  // parent alone while the parent is the only group that can hold it, else every group.
  void noteRename(const char* before) const;
  // Called after the binding changed (setGroupItem, reset), for what a subclass derives from it.
  virtual void bindingChanged() {}
  // Records that a group other than the parent may hold the item (it was added to a group that
  // is not its parent, or it left a parent that may still hold it): from then on its renames are
  // told to every group.
  void markShared() { mShared.store(true, std::memory_order_release); }
  // Keeps generation alive for as long as the state lives or until the next binding.
  void holdGeneration(RegistryGeneration* generation) { mGeneration = generation; }

  uint32_t mInstanceId;
  std::atomic<bool> mShared{false};
  std::string mName;
  const GroupItem* mGroupItem;
  boost::weak_ptr<ValueGroupState> mParent;
  boost::intrusive_ptr<const RegistryGeneration> mGeneration;
};

}  // namespace zelk::configuration::impl
