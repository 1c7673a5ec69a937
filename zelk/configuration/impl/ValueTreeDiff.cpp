#include "zelk/configuration/impl/ValueTreeDiff.h"

#include <map>

#include "zelk/configuration/ListenerArguments.h"
#include "zelk/configuration/ValueBase.h"
#include "zelk/configuration/impl/ListenerManager.h"
#include "zelk/configuration/impl/ValueAccess.h"
#include "zelk/configuration/impl/ValueState.h"
#include "zelk/util/CaseInsensitiveHash.h"
#include "zelk/util/CaseInsensitiveLess.h"

namespace zelk::configuration::impl {

namespace {

typedef boost::shared_ptr<ValueGroupItem> Item;

std::string textsOf(const Item& item) {
  const boost::shared_ptr<ValueState> state =
      ValueAccess::peekState(static_cast<const ValueBase&>(*item));
  std::string joined;
  if (!state) {
    return joined;
  }
  const std::vector<std::string> texts = state->getTexts();
  for (size_t i = 0; i < texts.size(); ++i) {
    joined += i == 0 ? "" : ", ";
    joined += texts[i];
  }
  return joined;
}

// A group's items by kind: values by name, groups by name in order.
struct Index {
  std::map<std::string, Item, zelk::CaseInsensitiveLess> values;
  std::map<std::string, std::vector<Item>, zelk::CaseInsensitiveLess> groups;

  explicit Index(const ValueGroup& group) {
    if (group.isNull()) {
      return;
    }
    for (size_t i = 0; i < group.getItemCount(); ++i) {
      const Item item = group.getItem(i);
      if (item->isValueGroup()) {
        groups[std::string(item->getName())].push_back(item);
      } else {
        values.insert(std::make_pair(std::string(item->getName()), item));
      }
    }
  }
};

class Comparer {
public:
  explicit Comparer(std::vector<ValueTreeDiff::Entry>& entries) : mEntries(entries) {}

  void compare(const ValueGroup& before, const ValueGroup& after, const std::string& prefix) {
    const Index old(before);
    std::map<std::string, size_t, zelk::CaseInsensitiveLess> groupsSeen;
    std::map<std::string, bool, zelk::CaseInsensitiveLess> valuesSeen;
    if (!after.isNull()) {
      for (size_t i = 0; i < after.getItemCount(); ++i) {
        const Item item = after.getItem(i);
        const std::string key = std::string(item->getName());
        if (item->isValueGroup()) {
          const size_t position = groupsSeen[key]++;
          const auto others = old.groups.find(key);
          const std::string path = prefix + item->getName() + positionOf(key, after, position);
          if (others == old.groups.end() || position >= others->second.size()) {
            add(ValueChange::GROUP_ADDED, path, Item(), item);
          } else {
            compare(static_cast<const ValueGroup&>(*others->second[position]),
                    static_cast<const ValueGroup&>(*item), path + "/");
          }
          continue;
        }
        valuesSeen[key] = true;
        const auto other = old.values.find(key);
        const std::string path = prefix + item->getName();
        if (other == old.values.end()) {
          add(ValueChange::VALUE_ADDED, path, Item(), item);
        } else if (textsOf(other->second) != textsOf(item)) {
          add(ValueChange::VALUE_CHANGED, path, other->second, item);
        }
      }
    }
    // What before held and after does not.
    for (const auto& value : old.values) {
      if (valuesSeen.count(value.first) == 0) {
        add(ValueChange::VALUE_REMOVED, prefix + value.second->getName(), value.second, Item());
      }
    }
    for (const auto& groups : old.groups) {
      const auto seen = groupsSeen.find(groups.first);
      for (size_t position = seen != groupsSeen.end() ? seen->second : 0;
           position < groups.second.size(); ++position) {
        add(ValueChange::GROUP_REMOVED,
            prefix + groups.second[position]->getName() + positionOf(groups.first, before, position),
            groups.second[position], Item());
      }
    }
  }

private:
  // "[n]" (from 1) for a group whose name repeats in parent, else nothing.
  static std::string positionOf(const std::string& key, const ValueGroup& parent, size_t position) {
    size_t count = 0;
    for (size_t i = 0; i < parent.getItemCount() && count < 2; ++i) {
      const Item item = parent.getItem(i);
      if (item->isValueGroup() && zelk::caseInsensitiveEqual(item->getName(), key.c_str())) {
        ++count;
      }
    }
    return count < 2 ? std::string() : "[" + std::to_string(position + 1) + "]";
  }

  void add(ValueChange::Kind kind, const std::string& path, const Item& before,
           const Item& after) {
    ValueTreeDiff::Entry entry;
    entry.change.kind = kind;
    entry.change.path = path;
    if (before && before->isValue()) {
      entry.change.oldText = textsOf(before);
    }
    if (after && after->isValue()) {
      entry.change.newText = textsOf(after);
    }
    entry.before = before;
    entry.after = after;
    mEntries.push_back(entry);
  }

  std::vector<ValueTreeDiff::Entry>& mEntries;
};

}  // namespace

std::vector<ValueTreeDiff::Entry> ValueTreeDiff::compare(const ValueGroup& before,
                                                        const ValueGroup& after) {
  std::vector<Entry> entries;
  Comparer(entries).compare(before, after, "");
  return entries;
}

void ValueTreeDiff::broadcast(const std::vector<Entry>& entries) {
  ListenerManager* listeners = ListenerManager::getInstance();
  for (const Entry& entry : entries) {
    switch (entry.change.kind) {
      case ValueChange::VALUE_ADDED: {
        const ValueBase& value = static_cast<const ValueBase&>(*entry.after);
        listeners->broadcastValueAdded(value.getParameterRef(), ValueAddedArguments(&value));
        break;
      }
      case ValueChange::VALUE_CHANGED: {
        const ValueBase& value = static_cast<const ValueBase&>(*entry.after);
        const Value old(ValueAccess::peekState(static_cast<const ValueBase&>(*entry.before)));
        listeners->broadcastValueChanged(value.getParameterRef(),
                                         ValueChangedArguments(&value, old));
        break;
      }
      case ValueChange::VALUE_REMOVED: {
        const ValueBase& value = static_cast<const ValueBase&>(*entry.before);
        listeners->broadcastValueRemoved(value.getParameterRef(), ValueRemovedArguments(&value));
        break;
      }
      case ValueChange::GROUP_ADDED: {
        const ValueGroup& group = static_cast<const ValueGroup&>(*entry.after);
        listeners->broadcastValueGroupAdded(group.getContainer(),
                                            ValueGroupAddedArguments(&group));
        break;
      }
      case ValueChange::GROUP_REMOVED: {
        const ValueGroup& group = static_cast<const ValueGroup&>(*entry.before);
        listeners->broadcastValueGroupRemoved(group.getContainer(),
                                              ValueGroupRemovedArguments(&group));
        break;
      }
    }
  }
}

}  // namespace zelk::configuration::impl
