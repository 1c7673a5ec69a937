// -help -specification id: the help of a tool, as it prints it, laid out for the width.

#include "Command.h"
#include "CommandLine.h"
#include "Commands.h"
#include "Output.h"
#include "zelk/configuration/ConfigurationManager.h"

namespace zelk::configtool {

int runHelp(const CommandContext& context) {
  configuration::ConfigurationManager* manager = nullptr;
  const auto* specification = loadSpecification(context, manager);
  if (specification == nullptr) return EXIT_PROBLEMS;
  printHelp(context.out, *manager, *specification, context.width);
  return EXIT_CLEAN;
}

}  // namespace zelk::configtool
