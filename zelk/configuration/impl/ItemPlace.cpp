#include "zelk/configuration/impl/ItemPlace.h"

#include <strings.h>

#include <algorithm>

#include "zelk/configuration/Container.h"
#include "zelk/configuration/GroupItem.h"

namespace zelk::configuration::impl {

ItemPlace::ItemPlace(const GroupItem& item) {
  for (const GroupItem* at = &item; at != 0; at = at->getContainer()) {
    mIds.push_back(at->getId());
  }
  std::reverse(mIds.begin(), mIds.end());
}

std::string ItemPlace::toString() const {
  std::string text;
  for (const std::string& id : mIds) {
    if (!text.empty()) {
      text += '/';
    }
    text += id;
  }
  return text;
}

bool ItemPlace::operator<(const ItemPlace& other) const {
  const size_t common = std::min(mIds.size(), other.mIds.size());
  for (size_t i = 0; i < common; ++i) {
    const int order = strcasecmp(mIds[i].c_str(), other.mIds[i].c_str());
    if (order != 0) {
      return order < 0;
    }
  }
  return mIds.size() < other.mIds.size();
}

bool ItemPlace::operator==(const ItemPlace& other) const {
  return !(*this < other) && !(other < *this);
}

}  // namespace zelk::configuration::impl
