// Console output of zelk-config: problems one line each, and texts laid out for the screen.
#pragma once

#include <cstddef>
#include <exception>
#include <iosfwd>
#include <string>
#include <vector>

namespace zelk::configuration {
class ConfigurationManager;
class Specification;
}  // namespace zelk::configuration

namespace zelk::configtool {

// Exit statuses: success, problems found (or an error), a bad zelk-config command line.
constexpr int EXIT_CLEAN = 0;
constexpr int EXIT_PROBLEMS = 1;
constexpr int EXIT_BAD_COMMAND_LINE = 2;

// Writes "zelk-config: " and text to standard error; a text of several lines gives one output
// line per line, each with the prefix.
void printError(const std::string& text);

// Writes the problems an exception carries: each error of a ValidationException on its own line,
// the message of any other exception. Returns the number of lines written.
std::size_t printException(const std::exception& exception);

// The texts of an exception, one per problem (the errors of a ValidationException, else what(),
// followed by the system's reason in parentheses when the library gives one).
std::string describeException(const std::exception& exception);

// Why plug-ins of the installation were skipped (a library writable by others, a link leading
// out of the plug-ins directory, an entry point that throws), as the host's main log says: each
// line once, in order. A validator that a registry names may be missing for one of these reasons.
std::vector<std::string> pluginSkipNotes();

// The width of the terminal that standard output writes to, or 80 when it is not a terminal.
std::size_t terminalWidth();

// Writes text word-wrapped to width, each line indented by indent blanks.
void printWrapped(std::ostream& out, const std::string& text, std::size_t indent,
                  std::size_t width);

// The usage of a specification as a tool prints it: "Usage: <name>", then the library's usage
// lines.
void printUsage(std::ostream& out, configuration::ConfigurationManager& manager,
                const configuration::Specification& specification);

// The help of a specification as a tool prints it: the title, the description, the usage and
// the table of parameters, laid out for width columns.
void printHelp(std::ostream& out, configuration::ConfigurationManager& manager,
               const configuration::Specification& specification, std::size_t width);

}  // namespace zelk::configtool
