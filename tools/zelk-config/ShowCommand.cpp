// -show -specification id: the specification as the library's diagnostic text.

#include <ostream>

#include "Command.h"
#include "CommandLine.h"
#include "Commands.h"
#include "Output.h"
#include "zelk/configuration/ConfigurationManager.h"

namespace zelk::configtool {

int runShow(const CommandContext& context) {
  configuration::ConfigurationManager* manager = nullptr;
  const auto* specification = loadSpecification(context, manager);
  if (specification == nullptr) return EXIT_PROBLEMS;
  context.out << manager->getRepresentation(*specification);
  return EXIT_CLEAN;
}

}  // namespace zelk::configtool
