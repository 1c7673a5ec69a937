// Command: the commands of zelk-config, one row of a table each (CommandTable.cpp). main() finds
// the row of the command given and runs it; the checks of the command line (what needs
// -specification, which output formats go with which command) read the same rows, and a test
// compares the rows with zelk-config.crg, the usage and the README.
//
//   const Command* command = findCommand("values");
//   if (command != nullptr) return command->run(context);
//
// Adding a command: declare its parameter in zelk-config.crg, inside the one-of of commands (its
// place there is its place in the usage), write its run function in a file of its own
// (<Name>Command.cpp, declared in Commands.h), add its row to the table, and a row to the README's
// table of commands.
#pragma once

#include <cstddef>
#include <iosfwd>
#include <string>
#include <vector>

namespace zelk::configuration {
class ConfigurationManager;
class Specification;
}  // namespace zelk::configuration

namespace zelk::configtool {

struct Options;
struct Directories;
class OutputFormat;

// What a command runs with: the parsed command line, the installation, the width of text output
// and the stream the output goes to.
struct CommandContext {
  const Options& options;
  const Directories& directories;
  std::size_t width;
  std::ostream& out;
};

// Whether a command works on the specification named with -specification.
enum class SpecificationUse { NONE, OPTIONAL, REQUIRED };

struct Command {
  // The parameter of zelk-config.crg that selects the command, given as "-" name.
  const char* name;
  // The words the command is given with (-schema registry); empty for a switch (-check).
  std::vector<std::string> words;
  SpecificationUse specification;
  // For a command given with a word: the one word that needs -specification, when only one does
  // (-schema values, not -schema registry); empty when the use above holds for every word.
  std::string specificationWord;
  // The output formats the command writes (names of OutputFormat); the first is the default.
  std::vector<std::string> formats;
  // Runs the command; returns the exit status.
  int (*run)(const CommandContext& context);

  bool takesWord() const { return !words.empty(); }
  bool takesFormat(const std::string& format) const;
  // Whether the command, given with word (empty for a switch), needs -specification.
  bool needsSpecification(const std::string& word) const;
};

// The commands, in the order of the usage.
const std::vector<Command>& commandTable();

// The command of that name (exactly as in the table), or null.
const Command* findCommand(const std::string& name);

// For a command that works on a specification: loads the installation and returns the
// specification named with -specification, with the manager that holds it in manager; returns
// null, with the problem reported, when either fails.
const configuration::Specification* loadSpecification(
    const CommandContext& context, configuration::ConfigurationManager*& manager);

// The format options name (-format, -json), else the first of its command's.
const OutputFormat& chosenFormat(const Options& options);

// The commands that take the format, as the user writes them: "-list or -values".
std::string commandsTakingFormat(const std::string& format);

}  // namespace zelk::configtool
