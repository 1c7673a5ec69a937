// -check: every registry file of the installation, or the files named with -registry, checked
// by RegistryChecker.

#include <iostream>

#include "Command.h"
#include "CommandLine.h"
#include "Commands.h"
#include "Installation.h"
#include "Output.h"
#include "RegistryChecker.h"

namespace zelk::configtool {

int runCheck(const CommandContext& context) {
  const Options& options = context.options;
  RegistryChecker checker;
  std::vector<std::string> files = options.registryFiles;
  if (files.empty()) {
    bool mainFound = false;
    files = findRegistryFiles(context.directories, mainFound);
    if (!mainFound) {
      checker.addProblem("Unable to find the zelk.crg file. Looked in the " +
                         describeDirectories(context.directories) + ".");
    }
  }
  checker.check(files, options.maxFileSize);
  checker.print(context.out);
  return checker.getFindings().empty() ? EXIT_CLEAN : EXIT_PROBLEMS;
}

}  // namespace zelk::configtool
