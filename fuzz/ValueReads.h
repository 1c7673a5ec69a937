// Reads every value of a value tree in every typed way, as a tool would after retrieving it.
// Only entries that exist are read: asking for an entry past the end is a caller's mistake that
// the library reports as a contract violation.
#pragma once

#include <algorithm>
#include <boost/pointer_cast.hpp>
#include <string>

#include "zelk/configuration/ConfigurationException.h"
#include "zelk/configuration/ConfigurationManager.h"
#include "zelk/configuration/ObjectId.h"
#include "zelk/configuration/Value.h"
#include "zelk/configuration/ValueBase.h"
#include "zelk/configuration/ValueGroup.h"

namespace zelk::fuzz {

template <typename T>
void tryRead(const zelk::configuration::ValueGroup& group, const char* name, size_t index) {
  T out{};
  try {
    group.tryGetValue(name, out, index);
  } catch (const zelk::configuration::ConfigurationException&) {
    // A text that does not fit the type: reported, not a fault.
  }
}

inline void readAll(zelk::configuration::ConfigurationManager* manager,
                    const zelk::configuration::ValueGroup& group, unsigned int depth = 0) {
  using namespace zelk::configuration;
  manager->getRepresentation(group);
  for (const char* name : {"help", "verbose", "count", "size", "offset", "limit", "ratio", "name",
                           "object", "colour", "level", "target", "path", "host", "port",
                           "secret", "mirror", "nothing"}) {
    try {
      const Value value = group.getValue(name);
      if (!value.isNull() && value.getValueCount() > 0) value.asString();
    } catch (const ConfigurationException&) {
      // Not a bounded value: reported.
    }
  }
  for (size_t i = 0; i < group.getItemCount(); ++i) {
    const boost::shared_ptr<ValueGroupItem> item = group.getItem(i);
    if (const boost::shared_ptr<ValueGroup> child = boost::dynamic_pointer_cast<ValueGroup>(item)) {
      if (depth < 64) readAll(manager, *child, depth + 1);
      continue;
    }
    const std::string name = item->getName();
    boost::shared_ptr<ValueBase> found;
    try {
      found = group.findValueBase(name.c_str());
    } catch (const ConfigurationException&) {
      continue;
    }
    if (!found) continue;
    const size_t count = std::min<size_t>(found->getValueCount(), 3);
    for (size_t index = 0; index < count; ++index) {
      tryRead<bool>(group, name.c_str(), index);
      tryRead<int32_t>(group, name.c_str(), index);
      tryRead<uint32_t>(group, name.c_str(), index);
      tryRead<int64_t>(group, name.c_str(), index);
      tryRead<uint64_t>(group, name.c_str(), index);
      tryRead<double>(group, name.c_str(), index);
      tryRead<ObjectId>(group, name.c_str(), index);
      tryRead<std::string>(group, name.c_str(), index);
    }
  }
}

}  // namespace zelk::fuzz
