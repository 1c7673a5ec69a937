// -schema registry, -schema values -specification id: XML Schemas (SchemaWriter).

#include <ostream>

#include "Command.h"
#include "CommandLine.h"
#include "Commands.h"
#include "Output.h"
#include "SchemaWriter.h"
#include "zelk/configuration/ConfigurationManager.h"

namespace zelk::configtool {

int runSchema(const CommandContext& context) {
  if (context.options.word == "registry") {
    context.out << registrySchema();
    return EXIT_CLEAN;
  }
  configuration::ConfigurationManager* manager = nullptr;
  const auto* specification = loadSpecification(context, manager);
  if (specification == nullptr) return EXIT_PROBLEMS;
  writeValuesSchema(context.out, *specification);
  return EXIT_CLEAN;
}

}  // namespace zelk::configtool
