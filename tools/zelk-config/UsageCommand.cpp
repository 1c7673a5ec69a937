// -usage -specification id: the usage lines of a tool, as it prints them.

#include "Command.h"
#include "CommandLine.h"
#include "Commands.h"
#include "Output.h"
#include "zelk/configuration/ConfigurationManager.h"

namespace zelk::configtool {

int runUsage(const CommandContext& context) {
  configuration::ConfigurationManager* manager = nullptr;
  const auto* specification = loadSpecification(context, manager);
  if (specification == nullptr) return EXIT_PROBLEMS;
  printUsage(context.out, *manager, *specification);
  return EXIT_CLEAN;
}

}  // namespace zelk::configtool
