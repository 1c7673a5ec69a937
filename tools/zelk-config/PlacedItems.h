// PlacedItems: the parameter references and containers that a container places directly, seen
// through its logical groups and one-ofs, which only arrange their members: in a value file and
// on the command line those members stand where the constraint stands.
#pragma once

#include "zelk/configuration/Container.h"
#include "zelk/configuration/GroupItem.h"
#include "zelk/configuration/GroupItemCollection.h"
#include "zelk/configuration/ParameterRef.h"

namespace zelk::configtool {

// Calls onParameter(const ParameterRef&) and onContainer(const Container&) for each item that
// collection places, in specification order, without descending into nested containers.
template <typename OnParameter, typename OnContainer>
void forEachPlacedItem(const configuration::GroupItemCollection& collection,
                       OnParameter&& onParameter, OnContainer&& onContainer) {
  using configuration::GroupItem;
  for (std::size_t i = 0; i < collection.getNumberOfItems(); ++i) {
    const GroupItem* item = collection.getItem(i);
    switch (item->getItemType()) {
      case GroupItem::PARAMETER_REF:
        onParameter(*static_cast<const configuration::ParameterRef*>(item));
        break;
      case GroupItem::CONTAINER:
        onContainer(*static_cast<const configuration::Container*>(item));
        break;
      default:
        forEachPlacedItem(*static_cast<const configuration::GroupItemCollection*>(item),
                          onParameter, onContainer);
        break;
    }
  }
}

}  // namespace zelk::configtool
