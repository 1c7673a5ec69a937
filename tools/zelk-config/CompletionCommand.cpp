// -completion shell -specification id: a completion script for a tool (CompletionWriter).

#include "Command.h"
#include "CommandLine.h"
#include "Commands.h"
#include "CompletionWriter.h"
#include "Output.h"
#include "zelk/configuration/ConfigurationManager.h"

namespace zelk::configtool {

int runCompletion(const CommandContext& context) {
  configuration::ConfigurationManager* manager = nullptr;
  const auto* specification = loadSpecification(context, manager);
  if (specification == nullptr) return EXIT_PROBLEMS;
  // The shells, by the words of the command's row.
  if (context.options.word == "zsh") {
    writeZshCompletion(context.out, *specification);
  } else if (context.options.word == "fish") {
    writeFishCompletion(context.out, *specification);
  } else {
    writeBashCompletion(context.out, *specification);
  }
  return EXIT_CLEAN;
}

}  // namespace zelk::configtool
