// ItemPlace: where a group item sits in its specification, by name: the id of the top container
// (for a specification's items, the specification's id) and the ids of the containers below it
// down to the item itself. Logical groups and one-ofs are left out, as they are in value trees.
//
// Listeners are registered by place rather than by object, so that a listener keeps watching
// "the same item" when the registry is loaded again and the item is a new object (possibly at
// the address of some other old one). Ids compare case-insensitively.
//
//   ItemPlace place(*parameterRef);   // e.g. {"backup", "db", "port"}
//   place.getIds().front();           // "backup"
#pragma once

#include <string>
#include <vector>

namespace zelk::configuration {
class GroupItem;
}

namespace zelk::configuration::impl {

class ItemPlace {
public:
  explicit ItemPlace(const GroupItem& item);

  // From the top container down to the item; never empty.
  const std::vector<std::string>& getIds() const { return mIds; }
  // The ids joined with "/", for messages and tests.
  std::string toString() const;

  // Id by id, case-insensitively; a place comes before the places below it.
  bool operator<(const ItemPlace& other) const;
  bool operator==(const ItemPlace& other) const;

private:
  std::vector<std::string> mIds;
};

}  // namespace zelk::configuration::impl
