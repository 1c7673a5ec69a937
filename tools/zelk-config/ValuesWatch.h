// -values -watch: after the values, follows the tool's value files and prints each change as it
// is applied (which value, old and new text, which file) and each refused change with its
// errors, until SIGINT or SIGTERM.
//
//   applied: /etc/zelk/config/zbackup.config
//     retries: 8 -> 12
//   refused: /etc/zelk/config/zbackup.config
//     "many" is not a valid UInt32
#pragma once

#include <iosfwd>

namespace zelk::configuration {
class ConfigurationManager;
}

namespace zelk::configtool {

// Follows specificationId in manager, printing to out, until a signal; returns the exit status.
int watchValues(configuration::ConfigurationManager& manager, const char* specificationId,
                std::ostream& out);

}  // namespace zelk::configtool
