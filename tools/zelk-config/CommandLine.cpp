#include "CommandLine.h"

#include <cstring>
#include <exception>
#include <iostream>
#include <stdexcept>

#include "Command.h"
#include "Output.h"
#include "zelk/configuration/ConfigurationManager.h"
#include "zelk/configuration/ConfigurationRegistryLoader.h"
#include "zelk/configuration/Specification.h"
#include "zelk/configuration/UnboundedValue.h"
#include "zelk/configuration/Value.h"
#include "zelk/configuration/ValueGroup.h"
#include "zelk/configuration/impl/CommandLineValueProvider.h"
#include "zelk/host/HostDirectories.h"

namespace zelk::configtool {

using configuration::ConfigurationManager;
using configuration::ConfigurationRegistryLoader;
using configuration::Specification;
using configuration::UnboundedValue;
using configuration::Value;
using configuration::ValueGroup;

namespace {

const char* const OWN_SPECIFICATION = "zelk-config";
const char* const END_OF_OPTIONS = "--";

// The manager with no installation behind it: without a main registry its start-up fails, which
// is expected here; the manager stays usable and empty.
ConfigurationManager* startEmptyManager() {
  host::hostSetDirectories(nullptr, nullptr, nullptr);
  return ConfigurationManager::getInstanceIgnoringLoadFailure();
}

bool flagGiven(const ValueGroup& values, const char* name) {
  const Value value = values.getValue(name, nullptr, false);
  return !value.isNull() && value.hasValue() && value.asBool();
}

std::optional<std::string> textGiven(const ValueGroup& values, const char* name) {
  const Value value = values.getValue(name, nullptr, false);
  if (value.isNull() || !value.hasValue()) return std::nullopt;
  return value.asString();
}

std::vector<std::string> textsGiven(const ValueGroup& values, const char* name) {
  std::vector<std::string> texts;
  const UnboundedValue value = values.getUnboundedValue(name, nullptr, false);
  if (!value.isNull()) {
    for (std::size_t i = 0; i < value.getValueCount(); ++i) texts.push_back(value.asString(i));
  }
  return texts;
}

bool commandGiven(const ValueGroup& values, const Command& command) {
  return command.takesWord() ? textGiven(values, command.name).has_value()
                             : flagGiven(values, command.name);
}

void readOptions(const ValueGroup& values, Options& options) {
  // A help request skips the library's validation, so more than one command may be set: help
  // wins. Otherwise the library lets exactly one through.
  const Command* help = findCommand("help");
  options.command = help;
  if (!commandGiven(values, *help)) {
    for (const Command& command : commandTable()) {
      if (commandGiven(values, command)) {
        options.command = &command;
        break;
      }
    }
  }
  if (options.command->takesWord()) {
    options.word = textGiven(values, options.command->name).value_or("");
  }
  options.specification = textGiven(values, "specification").value_or("");
  options.installation = textGiven(values, "installation");
  options.etcDir = textGiven(values, "etcDir");
  options.pluginsDir = textGiven(values, "pluginsDir");
  options.configDir = textGiven(values, "configDir");
  options.applicationFile = textGiven(values, "applicationFile");
  options.registryFiles = textsGiven(values, "registry");
  options.valueFiles = textsGiven(values, "valueFile");
  options.noMachineConfig = flagGiven(values, "noMachineConfig");
  if (const std::optional<std::string> format = textGiven(values, "format")) {
    options.format = *format;
    options.formatFlag = "-format " + *format;
  } else if (flagGiven(values, "json")) {
    options.format = "json";
    options.formatFlag = "-json";
  }
  options.exportFile = textGiven(values, "export");
  options.watch = flagGiven(values, "watch");
  if (options.watch && options.command != findCommand("values")) {
    throw std::invalid_argument("-watch goes with -values");
  }
  options.explain = flagGiven(values, "explain");
  if (options.explain && options.command != findCommand("values")) {
    throw std::invalid_argument("-explain goes with -values");
  }
  options.etcd = textGiven(values, "cluster");
  options.publish = flagGiven(values, "publish");
  const Value revision = values.getValue("revision", nullptr, false);
  if (!revision.isNull() && revision.hasValue()) {
    options.revision = revision.asInt64();
    if (*options.revision < 0) throw std::invalid_argument("-revision must not be negative");
  }
  const Value width = values.getValue("width", nullptr, false);
  if (!width.isNull() && width.hasValue()) options.width = width.asUInt32();
  const Value maxFileSize = values.getValue("maxFileSize", nullptr, false);
  if (!maxFileSize.isNull() && maxFileSize.hasValue()) {
    options.maxFileSize = static_cast<std::size_t>(maxFileSize.asUInt64());
    if (options.maxFileSize == 0) throw std::invalid_argument("-maxFileSize must be at least 1");
  }
}

void printOwnHelpHint() {
  std::cerr << "Run \"zelk-config -help\" for its parameters.\n";
}

}  // namespace

std::optional<int> parseCommandLine(int argc, const char* const* argv,
                                    const std::string& registryPath, Options& options) {
  std::vector<const char*> own;
  own.push_back(argc > 0 && argv[0] != nullptr ? argv[0] : OWN_SPECIFICATION);
  int i = 1;
  for (; i < argc && std::strcmp(argv[i], END_OF_OPTIONS) != 0; ++i) own.push_back(argv[i]);
  for (++i; i < argc; ++i) options.toolArguments.push_back(argv[i]);

  ConfigurationManager* manager = startEmptyManager();
  try {
    ConfigurationRegistryLoader::loadFile(registryPath.c_str(), manager, 0);
  } catch (const std::exception& e) {
    printError("cannot read its own registry file \"" + registryPath + "\":");
    printException(e);
    return EXIT_PROBLEMS;
  }
  const Specification* self = manager->getSpecification(OWN_SPECIFICATION);
  if (self == nullptr) {
    printError("the registry file \"" + registryPath + "\" does not declare \"zelk-config\"");
    return EXIT_PROBLEMS;
  }

  std::optional<int> status;
  try {
    auto* commandLine = new configuration::impl::CommandLineValueProvider(1, "");
    manager->registerValueProvider(commandLine);
    commandLine->enableProvider(static_cast<int>(own.size()), own.data(), OWN_SPECIFICATION, 0);
    const ValueGroup values = manager->getValueGroup(OWN_SPECIFICATION, false, 0);
    if (values.getItemCount() == 0) {
      // No arguments at all: say how to call the tool.
      printUsage(std::cerr, *manager, *self);
      status = EXIT_BAD_COMMAND_LINE;
    } else {
      readOptions(values, options);
      if (options.width != 0 && (options.width < MIN_WIDTH || options.width > MAX_WIDTH)) {
        printError("the width must be from " + std::to_string(MIN_WIDTH) + " to " +
                   std::to_string(MAX_WIDTH));
        printOwnHelpHint();
        status = EXIT_BAD_COMMAND_LINE;
      } else if (options.command->specification == SpecificationUse::OPTIONAL &&
                 options.specification.empty()) {
        // -help and -usage without a specification: zelk-config's own.
        if (options.command == findCommand("help")) {
          printHelp(std::cout, *manager, *self, options.width != 0 ? options.width : terminalWidth());
        } else {
          printUsage(std::cout, *manager, *self);
        }
        status = EXIT_CLEAN;
      }
    }
  } catch (const std::exception& e) {
    printException(e);
    printOwnHelpHint();
    status = EXIT_BAD_COMMAND_LINE;
  }
  ConfigurationManager::shutdown();
  return status;
}

}  // namespace zelk::configtool
