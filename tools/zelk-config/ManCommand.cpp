// -man -specification id: a man page of a tool (ManPageWriter).

#include "Command.h"
#include "CommandLine.h"
#include "Commands.h"
#include "ManPageWriter.h"
#include "Output.h"
#include "zelk/configuration/ConfigurationManager.h"
#include "zelk/configuration/Specification.h"

namespace zelk::configtool {

int runMan(const CommandContext& context) {
  configuration::ConfigurationManager* manager = nullptr;
  const auto* specification = loadSpecification(context, manager);
  if (specification == nullptr) return EXIT_PROBLEMS;
  writeManPage(context.out, *specification, manager->composeUsageMessage(specification->getId()));
  return EXIT_CLEAN;
}

}  // namespace zelk::configtool
