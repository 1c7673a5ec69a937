#include "zelk/configuration/ValueGroup.h"

#include <utility>

#include "zelk/configuration/ConfigurationException.h"
#include "zelk/configuration/Container.h"
#include "zelk/configuration/ListenerArguments.h"
#include "zelk/configuration/Parameter.h"
#include "zelk/configuration/ParameterRef.h"
#include "zelk/configuration/Specification.h"
#include "zelk/configuration/ValidationErrors.h"
#include "zelk/configuration/ValueGroupItemVisitor.h"
#include "zelk/configuration/ValueGroupIterator.h"
#include "zelk/configuration/ValueIterator.h"
#include "zelk/configuration/impl/ListenerManager.h"
#include "zelk/configuration/impl/ValueAccess.h"
#include "zelk/configuration/impl/ValueGroupMerger.h"
#include "zelk/configuration/impl/ValueGroupState.h"
#include "zelk/configuration/impl/ValueState.h"
#include "zelk/util/Contracts.h"
#include "zelk/util/StringFunctions.h"

namespace zelk::configuration {

namespace {

// Marks every group of a tree complete.
class CompleteMarker : public ValueGroupItemVisitor {
public:
  bool visitValueGroupStart(ValueGroup& group) override {
    impl::ValueAccess::getState(group)->setComplete(true);
    return true;
  }
};

// Reports that name is not a bounded value: to errors, or thrown without a list.
void reportNotBounded(const char* name, ValidationErrors* errors) {
  if (errors != 0) {
    errors->addError("\"%s\" is not a bounded value.", name);
  } else {
    throw ConfigurationException("\"%s\" is not a bounded value.", name);
  }
}

// Visits one item of a group through a handle of the right kind.
bool acceptItem(const boost::shared_ptr<impl::ValueItemState>& item,
                ValueGroupItemVisitor& visitor) {
  if (item->isValueGroup()) {
    return ValueGroup(boost::static_pointer_cast<impl::ValueGroupState>(item)).accept(visitor);
  }
  const boost::shared_ptr<impl::ValueState> value =
      boost::static_pointer_cast<impl::ValueState>(item);
  if (value->isUnbounded()) {
    return UnboundedValue(value).accept(visitor);
  }
  return Value(value).accept(visitor);
}

}  // namespace

const ValueGroup ValueGroup::Null;

ValueGroup::ValueGroup() {}

ValueGroup::ValueGroup(const char* name) : ValueGroupItem(impl::ValueGroupState::create(name)) {}

ValueGroup::ValueGroup(const Container* container)
    : ValueGroupItem(impl::ValueGroupState::create(container)) {}

ValueGroup::ValueGroup(const Specification* specification) {
  ZELK_CONTRACT(specification != 0);
  setState(impl::ValueGroupState::create(specification->getItemsContainer()));
}

ValueGroup::ValueGroup(const ValueGroup& other, int shallow) {
  if (!other.isNull()) {
    setState(other.getState()->clone(shallow));
  }
}

ValueGroup::ValueGroup(const ValueGroup& other) : ValueGroupItem(other) {}

ValueGroup::ValueGroup(const boost::shared_ptr<impl::ValueGroupState>& state)
    : ValueGroupItem(state) {}

ValueGroup& ValueGroup::operator=(const ValueGroup& other) {
  ValueGroupItem::operator=(other);
  return *this;
}

ValueGroup::~ValueGroup() {}

impl::ValueGroupState& ValueGroup::getGroupState() const {
  return static_cast<impl::ValueGroupState&>(*getState());
}

boost::shared_ptr<impl::ValueGroupState> ValueGroup::getGroupStatePointer() const {
  return boost::static_pointer_cast<impl::ValueGroupState>(getState());
}

bool ValueGroup::isUnbounded() const { return getGroupState().isUnbounded(); }

boost::shared_ptr<ValueGroupItem> ValueGroup::clone(int shallow) const {
  return boost::shared_ptr<ValueGroupItem>(new ValueGroup(*this, shallow));
}

bool ValueGroup::accept(ValueGroupItemVisitor& visitor) const {
  // Handles are references to their state: visiting through a non-const handle changes nothing
  // of the handle itself.
  ValueGroup& self = const_cast<ValueGroup&>(*this);
  const impl::ValueGroupState& state = getGroupState();
  if (!visitor.visitValueGroupStart(self)) {
    return false;
  }
  // The items present at the start are visited, even if the visitor changes the group.
  const impl::ValueGroupState::Items items = state.getItems();
  for (const boost::shared_ptr<impl::ValueItemState>& item : items) {
    if (!acceptItem(item, visitor)) {
      visitor.visitValueGroupEnd(self);
      return false;
    }
  }
  return visitor.visitValueGroupEnd(self);
}

bool ValueGroup::isComplete() const { return getGroupState().isComplete(); }

ValueGroupItem& ValueGroup::add(ValueGroupItem& item) {
  impl::ValueGroupState& state = getGroupState();
  const boost::shared_ptr<impl::ValueItemState> itemState = impl::ValueAccess::getState(item);
  itemState->setParent(getGroupStatePointer());
  state.add(itemState);
  if (state.isComplete()) {
    if (item.isValueGroup() && item.isMatched()) {
      static_cast<ValueGroup&>(item).complete();
    }
    if (item.isComplete()) {
      impl::ListenerManager* listeners = impl::ListenerManager::getInstance();
      if (item.isValue()) {
        const ValueBase& value = static_cast<const ValueBase&>(item);
        listeners->broadcastValueAdded(value.getParameterRef(), ValueAddedArguments(&value));
      } else {
        const ValueGroup& group = static_cast<const ValueGroup&>(item);
        listeners->broadcastValueGroupAdded(group.getContainer(), ValueGroupAddedArguments(&group));
      }
    }
  }
  return item;
}

namespace {

// Tells listeners that a matched item left a complete group.
void announceRemoval(const boost::shared_ptr<impl::ValueItemState>& removed) {
  impl::ListenerManager* listeners = impl::ListenerManager::getInstance();
  if (removed->isValueGroup()) {
    const ValueGroup group(boost::static_pointer_cast<impl::ValueGroupState>(removed));
    listeners->broadcastValueGroupRemoved(group.getContainer(), ValueGroupRemovedArguments(&group));
  } else {
    const boost::shared_ptr<impl::ValueState> state =
        boost::static_pointer_cast<impl::ValueState>(removed);
    if (state->isUnbounded()) {
      const UnboundedValue value(state);
      listeners->broadcastValueRemoved(value.getParameterRef(), ValueRemovedArguments(&value));
    } else {
      const Value value(state);
      listeners->broadcastValueRemoved(value.getParameterRef(), ValueRemovedArguments(&value));
    }
  }
}

}  // namespace

bool ValueGroup::remove(size_t index) {
  impl::ValueGroupState& state = getGroupState();
  const boost::shared_ptr<impl::ValueItemState> removed = state.remove(index);
  if (state.isComplete() && removed->getGroupItem() != 0) {
    announceRemoval(removed);
  }
  return true;
}

bool ValueGroup::remove(const char* name) {
  impl::ValueGroupState& state = getGroupState();
  const boost::shared_ptr<impl::ValueItemState> removed = state.remove(name);
  if (!removed) {
    return false;
  }
  if (state.isComplete() && removed->getGroupItem() != 0) {
    announceRemoval(removed);
  }
  return true;
}

void ValueGroup::clear() { getGroupState().clear(); }

void ValueGroup::reset() { getGroupState().reset(); }

const Container* ValueGroup::getContainer() const { return getGroupState().getContainer(); }

size_t ValueGroup::getItemCount(const char* name) const {
  return getGroupState().getItemCount(name);
}

boost::shared_ptr<ValueGroupItem> ValueGroup::getItem(size_t index) const {
  return impl::ValueAccess::makeHandle(getGroupState().getItem(index));
}

boost::shared_ptr<ValueGroupItem> ValueGroup::findItem(const char* name) const {
  return impl::ValueAccess::makeHandle(getGroupState().findItem(name));
}

void ValueGroup::unexpectedType(const char* name, ValidationErrors* errors,
                                ItemType expected) const {
  const char* typeName = impl::ValueItemState::getItemTypeName(expected);
  if (errors != 0) {
    errors->addError("\"%s\" is not a %s.", name, typeName);
  } else {
    throw ConfigurationException("\"%s\" is not a %s.", name, typeName);
  }
}

Value ValueGroup::getValue(const char* name, ValidationErrors* errors, bool useDefault) const {
  const impl::ValueGroupState& state = getGroupState();
  boost::shared_ptr<impl::ValueItemState> item = state.findItem(name);
  if (!item) {
    return useDefault ? state.getDefaultValueFor(name) : Value::Null;
  }
  if (!item->isValue()) {
    unexpectedType(name, errors, VALUE);
    return Value::Null;
  }
  const GroupItem* groupItem = item->getGroupItem();
  // The one flag also decides whether unmatched values are seen; the two effects stay tied.
  if (groupItem == 0) {
    return useDefault ? Value(boost::static_pointer_cast<impl::ValueState>(std::move(item)))
                      : Value::Null;
  }
  if (groupItem->isUnbounded()) {
    reportNotBounded(name, errors);
    return Value::Null;
  }
  // The found pointer is handed on, not copied: a look-up by name costs no reference count.
  return Value(boost::static_pointer_cast<impl::ValueState>(std::move(item)));
}

UnboundedValue ValueGroup::getUnboundedValue(const char* name, ValidationErrors* errors,
                                             bool useDefault) const {
  const impl::ValueGroupState& state = getGroupState();
  const boost::shared_ptr<impl::ValueItemState> item = state.findItem(name);
  if (!item) {
    return useDefault ? UnboundedValue(state.getDefaultValueFor(name)) : UnboundedValue::Null;
  }
  if (!item->isValue()) {
    unexpectedType(name, errors, UNBOUNDED_VALUE);
    return UnboundedValue::Null;
  }
  if (item->getGroupItem() == 0 && !useDefault) {
    return UnboundedValue::Null;
  }
  return UnboundedValue(boost::static_pointer_cast<impl::ValueState>(item));
}

ValueGroup ValueGroup::getValueGroup(const char* name, ValidationErrors* errors,
                                     bool useDefault) const {
  const impl::ValueGroupState& state = getGroupState();
  const boost::shared_ptr<impl::ValueItemState> item = state.findItem(name);
  if (!item) {
    return useDefault ? state.getDefaultValueGroup(name) : ValueGroup::Null;
  }
  if (!item->isValueGroup()) {
    unexpectedType(name, errors, VALUE_GROUP);
    return ValueGroup::Null;
  }
  return ValueGroup(boost::static_pointer_cast<impl::ValueGroupState>(item));
}

boost::shared_ptr<ValueBase> ValueGroup::findValueBase(const char* name,
                                                       ValidationErrors* errors) const {
  const boost::shared_ptr<impl::ValueItemState> item = getGroupState().findItem(name);
  if (!item) {
    return boost::shared_ptr<ValueBase>();
  }
  if (!item->isValue()) {
    unexpectedType(name, errors, VALUE);
    return boost::shared_ptr<ValueBase>();
  }
  return boost::static_pointer_cast<ValueBase>(impl::ValueAccess::makeHandle(item));
}

boost::shared_ptr<ValueGroup> ValueGroup::findValueGroup(const char* name,
                                                         ValidationErrors* errors) const {
  const boost::shared_ptr<impl::ValueItemState> item = getGroupState().findItem(name);
  if (!item) {
    return boost::shared_ptr<ValueGroup>();
  }
  if (!item->isValueGroup()) {
    unexpectedType(name, errors, VALUE_GROUP);
    return boost::shared_ptr<ValueGroup>();
  }
  return boost::shared_ptr<ValueGroup>(
      new ValueGroup(boost::static_pointer_cast<impl::ValueGroupState>(item)));
}

namespace {

// Reads entry index of the value named name in state into out with the typed read Read; false
// when there is no such value.
template <typename T, T (impl::ValueState::*Read)(size_t) const>
bool readEntry(const impl::ValueGroupState& state, const char* name, size_t index, T& out) {
  return state.readValue(name, index,
                         [&](const impl::ValueState& value) { out = (value.*Read)(index); });
}

}  // namespace

bool ValueGroup::tryGetValue(const char* name, bool& out, size_t index) const {
  return readEntry<bool, &impl::ValueState::asBool>(getGroupState(), name, index, out);
}

bool ValueGroup::tryGetValue(const char* name, int32_t& out, size_t index) const {
  return readEntry<int32_t, &impl::ValueState::asInt32>(getGroupState(), name, index, out);
}

bool ValueGroup::tryGetValue(const char* name, uint32_t& out, size_t index) const {
  return readEntry<uint32_t, &impl::ValueState::asUInt32>(getGroupState(), name, index, out);
}

bool ValueGroup::tryGetValue(const char* name, int64_t& out, size_t index) const {
  return readEntry<int64_t, &impl::ValueState::asInt64>(getGroupState(), name, index, out);
}

bool ValueGroup::tryGetValue(const char* name, uint64_t& out, size_t index) const {
  return readEntry<uint64_t, &impl::ValueState::asUInt64>(getGroupState(), name, index, out);
}

bool ValueGroup::tryGetValue(const char* name, double& out, size_t index) const {
  return readEntry<double, &impl::ValueState::asDouble>(getGroupState(), name, index, out);
}

bool ValueGroup::tryGetValue(const char* name, ObjectId& out, size_t index) const {
  return readEntry<ObjectId, &impl::ValueState::asOID>(getGroupState(), name, index, out);
}

bool ValueGroup::tryGetValue(const char* name, std::string& out, size_t index) const {
  return readEntry<std::string, &impl::ValueState::asString>(getGroupState(), name, index, out);
}

bool ValueGroup::tryGetValue(const char* name, char*& out, size_t index) const {
  std::string text;
  if (!tryGetValue(name, text, index)) {
    return false;
  }
  out = cloneString(text.c_str());
  return true;
}

bool ValueGroup::tryGetValue(const char* name, const char*& out, size_t index) const {
  return getGroupState().readValue(name, index, [&](const impl::ValueState& value) {
    out = value.getValueType() == Parameter::BOOL ? (value.asBool(index) ? "true" : "false")
                                                  : value.getTextPointer(index);
  });
}

Value ValueGroup::addValue(const char* name, const char* text) {
  const Container* container = getContainer();
  const ParameterRef* ref =
      (container != 0 && name != 0 && *name != '\0') ? container->findParameterRef(name) : 0;
  Value value = ref != 0 ? Value::create(ref, text) : Value::create(name, text);
  add(value);
  return value;
}

UnboundedValue ValueGroup::addUnboundedValue(const char* name, const char* text) {
  const Container* container = getContainer();
  const ParameterRef* ref =
      (container != 0 && name != 0 && *name != '\0') ? container->findParameterRef(name) : 0;
  UnboundedValue value =
      ref != 0 ? UnboundedValue::create(ref, text) : UnboundedValue::create(name, text);
  add(value);
  return value;
}

ValueGroup ValueGroup::addGroup(const char* name) {
  const Container* container = getContainer();
  const Container* nested =
      (container != 0 && name != 0 && *name != '\0') ? container->findContainer(name) : 0;
  ValueGroup group = nested != 0 ? ValueGroup(nested) : ValueGroup(name);
  add(group);
  return group;
}

Value ValueGroup::getDefaultValueFor(const char* name) const {
  return getGroupState().getDefaultValueFor(name);
}

ValueGroup ValueGroup::getDefaultValueGroup(const char* name) const {
  return getGroupState().getDefaultValueGroup(name);
}

void ValueGroup::complete() {
  CompleteMarker marker;
  accept(marker);
}

void ValueGroup::merge(const Specification& spec, const ValueGroup& other) {
  impl::ValueGroupMerger::merge(spec, *this, other, 0);
}

ValueGroupIterator ValueGroup::getValueGroupIterator(const char* name) const {
  return ValueGroupIterator(*this, name);
}

ValueIterator ValueGroup::getValueIterator(const char* name) const {
  const boost::shared_ptr<impl::ValueItemState> item = getGroupState().findItem(name);
  if (!item || !item->isValue()) {
    return ValueIterator();
  }
  return ValueIterator(Value(boost::static_pointer_cast<impl::ValueState>(item)));
}

}  // namespace zelk::configuration
