// -check: every registry file of the installation, or the files named with -registry, checked
// by RegistryChecker.

#include <iostream>

#include "Command.h"
#include "CommandLine.h"
#include "Commands.h"
#include "Installation.h"
#include "Output.h"
#include "RegistryChecker.h"
#include "zelk/host/HostMainLog.h"

namespace zelk::configtool {

int runCheck(const CommandContext& context) {
  const Options& options = context.options;
  // What the main log says from here on is about this installation only.
  host::hostClearMainLog();
  RegistryChecker checker;
  std::vector<std::string> files = options.registryFiles;
  if (files.empty()) {
    bool mainFound = false;
    std::vector<std::string> skipped;
    files = findRegistryFiles(context.directories, mainFound, &skipped);
    if (!mainFound) {
      checker.addProblem("Unable to find the zelk.crg file. Looked in the " +
                         describeDirectories(context.directories) + ".");
    }
    for (const std::string& line : skipped) checker.addProblem(line);
  }
  checker.check(files, options.maxFileSize);
  // Loading validator plug-ins may have skipped some; a registry that names their validators
  // then fails with "was not found", and this says why.
  for (const std::string& note : pluginSkipNotes()) checker.addProblem(note);
  checker.print(context.out);
  return checker.getFindings().empty() ? EXIT_CLEAN : EXIT_PROBLEMS;
}

}  // namespace zelk::configtool
