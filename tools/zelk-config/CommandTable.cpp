#include "Command.h"

#include <algorithm>

#include "CommandLine.h"
#include "Commands.h"
#include "Installation.h"
#include "OutputFormat.h"

namespace zelk::configtool {

namespace {

const std::string TEXT = "text";
const std::string JSON = "json";

}  // namespace

const std::vector<Command>& commandTable() {
  // One row a command, in the order of the one-of in zelk-config.crg. To add one, see Command.h.
  // clang-format off
  //   name          words                   -specification              only for  formats       run
  static const std::vector<Command> COMMANDS = {
      {"check",      {},                     SpecificationUse::NONE,     "",       {TEXT},       runCheck},
      {"list",       {},                     SpecificationUse::NONE,     "",       {TEXT, JSON}, runList},
      {"usage",      {},                     SpecificationUse::OPTIONAL, "",       {TEXT},       runUsage},
      {"help",       {},                     SpecificationUse::OPTIONAL, "",       {TEXT},       runHelp},
      {"show",       {},                     SpecificationUse::REQUIRED, "",       {TEXT},       runShow},
      {"values",     {},                     SpecificationUse::REQUIRED, "",       {TEXT, JSON}, runValues},
      {"readKey",    {},                     SpecificationUse::NONE,     "",       {TEXT, JSON}, runReadKey},
      {"schema",     {"registry", "values"}, SpecificationUse::REQUIRED, "values", {TEXT},       runSchema},
      {"completion", {"bash", "zsh", "fish"}, SpecificationUse::REQUIRED, "",      {TEXT},       runCompletion},
      {"man",        {},                     SpecificationUse::REQUIRED, "",       {TEXT},       runMan},
  };
  // clang-format on
  return COMMANDS;
}

bool Command::takesFormat(const std::string& format) const {
  return std::find(formats.begin(), formats.end(), format) != formats.end();
}

bool Command::needsSpecification(const std::string& word) const {
  if (specification != SpecificationUse::REQUIRED) return false;
  return specificationWord.empty() || word == specificationWord;
}

const Command* findCommand(const std::string& name) {
  for (const Command& command : commandTable()) {
    if (name == command.name) return &command;
  }
  return nullptr;
}

const configuration::Specification* loadSpecification(
    const CommandContext& context, configuration::ConfigurationManager*& manager) {
  manager = loadInstallation(context.directories, context.options.maxFileSize);
  if (manager == nullptr) return nullptr;
  return findSpecification(*manager, context.options.specification);
}

const OutputFormat& chosenFormat(const Options& options) {
  const OutputFormat* format =
      findFormat(options.format.empty() ? options.command->formats.front() : options.format);
  // The command line is checked before a command runs: an unknown format never gets here.
  return format != nullptr ? *format : textFormat();
}

std::string commandsTakingFormat(const std::string& format) {
  std::vector<std::string> names;
  for (const Command& command : commandTable()) {
    if (command.takesFormat(format)) names.push_back(std::string("-") + command.name);
  }
  std::string text;
  for (std::size_t i = 0; i < names.size(); ++i) {
    if (i > 0) text += i + 1 == names.size() ? " or " : ", ";
    text += names[i];
  }
  return text;
}

}  // namespace zelk::configtool
