// zelk-config: checks the configuration registry of an installation, lists its specifications,
// shows their usage and help, and tries command lines and value files on them.
//
//   zelk-config -check
//   zelk-config -list
//   zelk-config -help -specification zbackup
//   zelk-config -values -specification zbackup -valueFile backup-nightly.xml -- -dryRun
//   zelk-config -values -json -specification zbackup -export /tmp/zbackup.xml
//   zelk-config -schema values -specification zbackup
//   zelk-config -completion bash -specification zbackup
//
// Its own parameters are declared in zelk-config.crg and parsed by the configuration library.

#include <iostream>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "CommandLine.h"
#include "CompletionWriter.h"
#include "Installation.h"
#include "JsonWriter.h"
#include "Output.h"
#include "RegistryChecker.h"
#include "SchemaWriter.h"
#include "ValuesReport.h"
#include "zelk/configuration/ConfigurationManager.h"
#include "zelk/configuration/Specification.h"

using namespace zelk::configtool;
using zelk::configuration::ConfigurationManager;
using zelk::configuration::Specification;

namespace {

std::string describeDirectories(const Directories& directories) {
  const auto shown = [](const std::string& path) {
    return path.empty() ? std::string("(none)") : "\"" + path + "\"";
  };
  return "etc directory " + shown(directories.etc) + ", plug-ins directory " +
         shown(directories.plugins);
}

int runCheck(const Options& options, const Directories& directories) {
  RegistryChecker checker;
  std::vector<std::string> files = options.registryFiles;
  if (files.empty()) {
    bool mainFound = false;
    files = findRegistryFiles(directories, mainFound);
    if (!mainFound) {
      checker.addProblem("Unable to find the zelk.crg file. Looked in the " +
                         describeDirectories(directories) + ".");
    }
  }
  checker.check(files, options.maxFileSize);
  checker.print(std::cout);
  return checker.getFindings().empty() ? EXIT_CLEAN : EXIT_PROBLEMS;
}

// The process-wide manager with the installation loaded; null, with the problem reported, when
// its registry files do not load. A size limit given on the command line applies to the registry
// files too: they are read again under it.
ConfigurationManager* loadInstallation(const Directories& directories, std::size_t maxFileSize) {
  try {
    if (maxFileSize == 0) return ConfigurationManager::getInstance();
    ConfigurationManager* manager = nullptr;
    try {
      manager = ConfigurationManager::getInstance();
    } catch (const std::exception&) {
      manager = ConfigurationManager::getInstance();  // loaded again just below
    }
    manager->setMaxFileSize(maxFileSize);
    manager->reset();
    return manager;
  } catch (const std::exception& e) {
    printError("the installation does not load (" + describeDirectories(directories) + "):");
    printException(e);
    printError("run \"zelk-config -check\" for every problem with its place");
    return nullptr;
  }
}

const Specification* findSpecification(ConfigurationManager& manager, const std::string& id) {
  const Specification* specification = manager.getSpecification(id.c_str());
  if (specification == nullptr) {
    printError("The \"" + id + "\" specification was not found");
  }
  return specification;
}

// The specifications as a JSON array, one object for each.
void printListAsJson(ConfigurationManager& manager) {
  std::unique_ptr<zelk::IEnumerator<Specification*>> specifications(
      manager.getSpecificationEnumerator());
  JsonWriter json(std::cout);
  json.beginArray();
  for (; specifications->hasNext(); specifications->moveNext()) {
    const Specification* specification = specifications->getCurrent();
    json.beginObject();
    json.key("id");
    json.value(specification->getId());
    json.key("name");
    json.value(specification->getName());
    json.key("title");
    json.value(specification->getTitle());
    json.key("description");
    json.value(specification->getDescription());
    json.endObject();
  }
  json.endArray();
}

int runList(const Options& options, const Directories& directories, std::size_t width) {
  ConfigurationManager* manager = loadInstallation(directories, options.maxFileSize);
  if (manager == nullptr) return EXIT_PROBLEMS;
  if (options.json) {
    printListAsJson(*manager);
    return EXIT_CLEAN;
  }
  std::unique_ptr<zelk::IEnumerator<Specification*>> specifications(
      manager->getSpecificationEnumerator());
  std::size_t count = 0;
  for (; specifications->hasNext(); specifications->moveNext(), ++count) {
    const Specification* specification = specifications->getCurrent();
    std::cout << specification->getId() << ": " << specification->getTitle() << '\n';
    printWrapped(std::cout, specification->getDescription(), 4, width);
  }
  if (count == 0) std::cout << "The installation declares no specifications.\n";
  return EXIT_CLEAN;
}

int runOnSpecification(const Options& options, const Directories& directories,
                       std::size_t width) {
  ConfigurationManager* manager = loadInstallation(directories, options.maxFileSize);
  if (manager == nullptr) return EXIT_PROBLEMS;
  const Specification* specification = findSpecification(*manager, options.specification);
  if (specification == nullptr) return EXIT_PROBLEMS;
  switch (options.command) {
    case Options::USAGE:
      printUsage(std::cout, *manager, *specification);
      break;
    case Options::HELP:
      printHelp(std::cout, *manager, *specification, width);
      break;
    case Options::SCHEMA:
      writeValuesSchema(std::cout, *specification);
      break;
    case Options::COMPLETION:
      writeBashCompletion(std::cout, *specification);
      break;
    default:
      std::cout << manager->getRepresentation(*specification);
      break;
  }
  return EXIT_CLEAN;
}

// What the library's parse of the command line leaves to check: the options that go together.
std::optional<int> checkCombination(const Options& options) {
  // The command as the user wrote it, when it works on the specification named with
  // -specification; else null.
  const char* onSpecification = nullptr;
  if (options.command == Options::SHOW) {
    onSpecification = "-show";
  } else if (options.command == Options::VALUES) {
    onSpecification = "-values";
  } else if (options.command == Options::COMPLETION) {
    onSpecification = "-completion";
  } else if (options.command == Options::SCHEMA && options.schemaKind == "values") {
    onSpecification = "-schema values";
  }
  std::string problem;
  if (options.specification.empty() && onSpecification != nullptr) {
    problem = std::string(onSpecification) + " needs -specification";
  } else if (options.command == Options::SCHEMA && options.schemaKind != "registry" &&
             options.schemaKind != "values") {
    problem = "-schema takes registry or values, not \"" + options.schemaKind + "\"";
  } else if (options.command == Options::COMPLETION && options.shell != "bash") {
    problem = "-completion takes bash, not \"" + options.shell + "\"";
  } else if (options.json && options.command != Options::LIST &&
             options.command != Options::VALUES) {
    problem = "-json goes with -list or -values";
  } else if (options.exportFile && options.command != Options::VALUES) {
    problem = "-export goes with -values";
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
  switch (options.command) {
    case Options::CHECK:
      return runCheck(options, directories);
    case Options::LIST:
      return runList(options, directories, width);
    case Options::SCHEMA:
      if (options.schemaKind == "registry") {
        std::cout << registrySchema();
        return EXIT_CLEAN;
      }
      return runOnSpecification(options, directories, width);
    case Options::VALUES:
      if (loadInstallation(directories, options.maxFileSize) == nullptr) {
        return EXIT_PROBLEMS;
      }
      return reportValues(options, std::cout);
    default:
      return runOnSpecification(options, directories, width);
  }
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
