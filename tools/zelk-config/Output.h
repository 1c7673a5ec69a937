// Console output of zelk-config: problems one line each, and texts laid out for the screen.
#pragma once

#include <cstddef>
#include <exception>
#include <iosfwd>
#include <string>

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

// The texts of an exception, one per problem (the errors of a ValidationException, else what()).
std::string describeException(const std::exception& exception);

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
