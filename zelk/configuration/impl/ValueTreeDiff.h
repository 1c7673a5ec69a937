// ValueTreeDiff: the difference between two completed value trees of one specification, as the
// changes a followed source made, and its delivery to the listeners.
//
// Values are paired by name within their group (names are unique there), groups by name and
// position among the groups of that name. A value whose texts differ is changed; a value or group
// on one side only is added or removed. The contents of an added or removed group are not listed
// one by one: the group event stands for them, as when a group is added to a complete tree.
//
//   std::vector<ValueTreeDiff::Entry> entries = ValueTreeDiff::compare(before, after);
//   ValueTreeDiff::broadcast(entries);   // to the listeners, nearest watched item first
#pragma once

#include <string>
#include <vector>

#include <boost/shared_ptr.hpp>

#include "zelk/configuration/FollowOptions.h"
#include "zelk/configuration/ValueGroup.h"

namespace zelk::configuration::impl {

class ValueTreeDiff {
public:
  struct Entry {
    ValueChange change;
    // The item before (for changed and removed) and after (for added and changed).
    boost::shared_ptr<ValueGroupItem> before;
    boost::shared_ptr<ValueGroupItem> after;
  };

  ValueTreeDiff() = delete;

  // Every difference from before to after, in the order of after's tree (removals where the
  // removed item stood). Either side may be null (everything on the other side differs).
  static std::vector<Entry> compare(const ValueGroup& before, const ValueGroup& after);
  // Sends each entry to the listeners of its item (ListenerManager), in order.
  static void broadcast(const std::vector<Entry>& entries);
};

}  // namespace zelk::configuration::impl
