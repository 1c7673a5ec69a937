// CommandLineValueProvider: the value provider of a tool's command line (provider name "CLI").
//
// The manager makes one in enableConfiguration() over the arguments left after "-loadConfiguration"
// is handled; tools and tests can make their own. Flags start with one "-", are matched to the
// specification's parameters case-insensitively and may be abbreviated to an unambiguous prefix;
// a flag's value is the next word unless that word begins with "-".
//
//   impl::CommandLineValueProvider cli(1, "");
//   const char* argv[] = {"backup", "-verb", "-level", "3"};
//   cli.enableProvider(4, argv, "backup", 0);
//   ValueGroup values = cli.getValues(*spec, 0x14);
#pragma once

#include <string>

#include "zelk/configuration/ValueProvider.h"

namespace zelk::configuration::impl {

class CommandLineValueProviderImpl;

class CommandLineValueProvider : public ValueProvider {
public:
  // A disabled provider with the given priority; an empty id is generated ("CLI-1", "CLI-2" ...).
  CommandLineValueProvider(int priority, const std::string& id);
  ~CommandLineValueProvider() override;

  // "CLI".
  const char* getName() const override;

  // Whether word, following a flag, is that flag's value: it is unless it begins with "-" (so a
  // negative number never is one; kept so). The manager's own switches follow the same rule.
  static bool isFlagValue(const char* word) { return word[0] != '-'; }

  // The implementation behind this handle.
  CommandLineValueProviderImpl* getCommandLineImpl() const;
};

}  // namespace zelk::configuration::impl
