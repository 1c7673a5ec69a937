// -list: the specifications of the installation, in the format chosen.

#include <memory>

#include "Command.h"
#include "CommandLine.h"
#include "Commands.h"
#include "Installation.h"
#include "Output.h"
#include "OutputFormat.h"
#include "zelk/configuration/ConfigurationManager.h"
#include "zelk/configuration/Specification.h"

namespace zelk::configtool {

using configuration::ConfigurationManager;
using configuration::Specification;

int runList(const CommandContext& context) {
  ConfigurationManager* manager =
      loadInstallation(context.directories, context.options.maxFileSize);
  if (manager == nullptr) return EXIT_PROBLEMS;
  std::unique_ptr<zelk::IEnumerator<Specification*>> enumerator(
      manager->getSpecificationEnumerator());
  std::vector<const Specification*> specifications;
  for (; enumerator->hasNext(); enumerator->moveNext()) {
    specifications.push_back(enumerator->getCurrent());
  }
  chosenFormat(context.options).writeList(context.out, specifications, context.width);
  return EXIT_CLEAN;
}

}  // namespace zelk::configtool
