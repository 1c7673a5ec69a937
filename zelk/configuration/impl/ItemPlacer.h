// ItemPlacer: where an item of a value tree was written, for the errors that validators find in
// it: the position of entry (0 the first) of a value, or of the element of a group (entry 0).
// Unknown (line 0) for what the placer does not know. A value file provider gives one while
// positions are kept (ConfigurationManager::setKeepPositions); validators take it as optional.
//
//   ItemPlacer place = [&](const ValueGroupItem& item, size_t entry) { return lookUp(item, entry);
//   }; ValueGroupValidator::validate(spec, values, errors, options, &place);
#pragma once

#include <cstddef>
#include <functional>

#include "zelk/configuration/SourcePosition.h"

namespace zelk::configuration {
class ValueGroupItem;
}

namespace zelk::configuration::impl {

typedef std::function<SourcePosition(const ValueGroupItem& item, std::size_t entry)> ItemPlacer;

}  // namespace zelk::configuration::impl
