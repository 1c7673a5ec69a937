// zelk-config: checks the configuration registry of an installation, lists its specifications,
// shows their usage and help, and tries command lines and value files on them.
//
//   zelk-config -check
//   zelk-config -list
//   zelk-config -help -specification zbackup
//   zelk-config -values -specification zbackup -valueFile backup-nightly.xml -- -dryRun
//   zelk-config -values -format json -specification zbackup -export /tmp/zbackup.xml
//   zelk-config -schema values -specification zbackup
//   zelk-config -completion bash -specification zbackup
//
// Its own parameters are declared in zelk-config.crg and parsed by the configuration library;
// each command is a row of the command table (Command.h) with a file of its own.

#include <algorithm>
#include <iostream>
#include <optional>
#include <string>

#include "Command.h"
#include "CommandLine.h"
#include "Installation.h"
#include "Output.h"

using namespace zelk::configtool;

namespace {

// What the library's parse of the command line leaves to check: the options that go together,
// as the rows of the command table say.
std::optional<int> checkCombination(const Options& options) {
  const Command& command = *options.command;
  const std::string given =
      std::string("-") + command.name + (command.takesWord() ? " " + options.word : "");
  std::string problem;
  if (options.specification.empty() && command.needsSpecification(options.word)) {
    problem = given + " needs -specification";
  } else if (command.takesWord() && std::find(command.words.begin(), command.words.end(),
                                              options.word) == command.words.end()) {
    problem = std::string("-") + command.name + " takes ";
    for (std::size_t i = 0; i < command.words.size(); ++i) {
      if (i > 0) problem += i + 1 == command.words.size() ? " or " : ", ";
      problem += command.words[i];
    }
    problem += ", not \"" + options.word + "\"";
  } else if (!options.format.empty() && !command.takesFormat(options.format)) {
    problem = options.formatFlag + " goes with " + commandsTakingFormat(options.format);
  } else if (options.exportFile && command.name != std::string("values")) {
    problem = "-export goes with -values";
  } else if (options.publish && command.name != std::string("values")) {
    problem = "-publish goes with -values";
  } else if (options.revision && !options.publish) {
    problem = "-revision goes with -publish";
  } else if (options.publish && options.valueFiles.size() != 1) {
    problem = "-publish needs exactly one -valueFile: the file it publishes";
  } else if (!options.etcd && (options.publish || command.name == std::string("readKey"))) {
    problem = given + (options.publish ? " -publish" : "") + " needs -cluster";
  } else if (options.etcd && !options.publish && command.name != std::string("readKey")) {
    problem = "-cluster goes with -readKey or -values -publish";
  }
  if (problem.empty()) return std::nullopt;
  printError(problem);
  return EXIT_BAD_COMMAND_LINE;
}

int run(int argc, const char* const* argv) {
  std::string ownRegistry;
  try {
    ownRegistry = findOwnRegistry();
  } catch (const InstallationError& e) {
    printError(e.what());
    return EXIT_PROBLEMS;
  }
  Options options;
  if (std::optional<int> status = parseCommandLine(argc, argv, ownRegistry, options)) {
    return *status;
  }
  if (const std::optional<int> status = checkCombination(options)) return *status;

  Directories directories;
  try {
    directories = selectInstallation(options);
  } catch (const InstallationError& e) {
    printError(e.what());
    return EXIT_PROBLEMS;
  }
  const std::size_t width = options.width != 0 ? options.width : terminalWidth();
  return options.command->run(CommandContext{options, directories, width, std::cout});
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return run(argc, argv);
  } catch (const std::exception& e) {
    // Nothing should get here; if something does, it is still one clear line, not a crash.
    printException(e);
  } catch (...) {
    printError("unexpected error");
  }
  return EXIT_PROBLEMS;
}
