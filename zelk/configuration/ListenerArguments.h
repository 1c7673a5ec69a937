// The records handed to ConfigurationListener notifications.
//
// Each record's first member points to the value item the event is about: the value for value
// events, the group for group events. The pointed-to handle lives only for the duration of the
// notification; copy it (handles share their state) to keep the item.
//
//   void onValueChanged(const ParameterRef*, const ValueChangedArguments& args) override {
//     if (!args.mOldValue.isNull() && args.mOldValue.hasValue())
//       std::cout << args.mValue->getName() << " was " << args.mOldValue.asString() << '\n';
//   }
#pragma once

#include "zelk/configuration/Value.h"

namespace zelk::configuration {

class ValueBase;
class ValueGroup;

// A value was added to a complete group, or an entry was added to an unbounded value.
struct ValueAddedArguments {
  explicit ValueAddedArguments(const ValueBase* value) : mValue(value) {}
  const ValueBase* mValue;
};

// A value was set. mOldValue holds the previous text of the entry that changed (no text when the
// entry was new); it is Value::Null for an unmatched value.
struct ValueChangedArguments {
  ValueChangedArguments(const ValueBase* value, const Value& oldValue)
      : mValue(value), mOldValue(oldValue) {}
  const ValueBase* mValue;
  Value mOldValue;
};

// A value was removed from a complete group.
struct ValueRemovedArguments {
  explicit ValueRemovedArguments(const ValueBase* value) : mValue(value) {}
  const ValueBase* mValue;
};

// A group was added to a complete group (or installed as application values).
struct ValueGroupAddedArguments {
  explicit ValueGroupAddedArguments(const ValueGroup* group) : mValueGroup(group) {}
  const ValueGroup* mValueGroup;
};

// A group was removed from a complete group (or replaced as application values).
struct ValueGroupRemovedArguments {
  explicit ValueGroupRemovedArguments(const ValueGroup* group) : mValueGroup(group) {}
  const ValueGroup* mValueGroup;
};

}  // namespace zelk::configuration
