#include "Output.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <iostream>
#include <set>
#include <sstream>
#include <stdexcept>

#include "zelk/configuration/ConfigurationException.h"
#include "zelk/configuration/ConfigurationManager.h"
#include "zelk/configuration/Specification.h"
#include "zelk/configuration/ValidationErrors.h"
#include "zelk/configuration/ValidationException.h"
#include "zelk/host/HostMainLog.h"
#include "zelk/host/Plugin.h"
#include "zelk/util/StringUtil.h"

namespace zelk::configtool {

using configuration::ConfigurationException;
using configuration::ConfigurationManager;
using configuration::Specification;
using configuration::ValidationException;

namespace {

const char* const PROGRAM_PREFIX = "zelk-config: ";
const std::size_t DEFAULT_WIDTH = 80;
// Help lines are padded to the full width; a wider terminal is used up to this many columns.
const std::size_t MAX_TERMINAL_WIDTH = 1000;

}  // namespace

void printError(const std::string& text) {
  std::istringstream lines(text.empty() ? std::string("unknown error") : text);
  std::string line;
  while (std::getline(lines, line)) {
    std::cerr << PROGRAM_PREFIX << line << '\n';
  }
}

std::string describeException(const std::exception& exception) {
  const auto* validation = dynamic_cast<const ValidationException*>(&exception);
  if (validation != nullptr && validation->getErrors().getNumberOfErrors() > 0) {
    std::string text;
    for (std::size_t i = 0; i < validation->getErrors().getNumberOfErrors(); ++i) {
      if (i > 0) text += '\n';
      text += validation->getErrors().getError(i);
    }
    return text;
  }
  const char* message = exception.what();
  std::string text = message != nullptr && *message != '\0' ? message : "unknown error";
  // The library's fixed texts ("File "x" was not found") carry the system's reason beside them.
  const auto* configuration = dynamic_cast<const ConfigurationException*>(&exception);
  if (configuration != nullptr && !configuration->getReason().empty()) {
    text += " (" + configuration->getReason() + ")";
  }
  return text;
}

std::vector<std::string> pluginSkipNotes() {
  std::vector<std::string> notes;
  std::set<std::string> seen;
  for (const auto& [category, text] : host::hostGetMainLog()) {
    // The plug-ins directory is searched again on every load, and says the same again.
    if (category == host::PLUGINS_LOG_CATEGORY && seen.insert(text).second) notes.push_back(text);
  }
  return notes;
}

std::size_t printException(const std::exception& exception) {
  const std::string text = describeException(exception);
  printError(text);
  std::size_t lines = 1;
  for (char c : text) {
    if (c == '\n') ++lines;
  }
  return lines;
}

std::size_t terminalWidth() {
  winsize size{};
  if (isatty(STDOUT_FILENO) && ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0) {
    return std::min<std::size_t>(size.ws_col, MAX_TERMINAL_WIDTH);
  }
  return DEFAULT_WIDTH;
}

void printWrapped(std::ostream& out, const std::string& text, std::size_t indent,
                  std::size_t width) {
  if (text.empty()) return;
  const std::size_t usable = width > indent + 10 ? width - indent : 10;
  std::ostringstream wrapped;
  try {
    StringUtil::wordWrap(wrapped, text, 0, usable, 0, "/\\");
  } catch (const std::invalid_argument&) {
    wrapped.str(text);  // not UTF-8: shown as it is rather than not at all
  }
  std::istringstream lines(wrapped.str());
  std::string line;
  while (std::getline(lines, line)) {
    out << std::string(indent, ' ') << line << '\n';
  }
}

void printUsage(std::ostream& out, ConfigurationManager& manager,
                const Specification& specification) {
  out << "Usage: " << specification.getName() << '\n'
      << manager.composeUsageMessage(specification.getId()) << '\n';
}

void printHelp(std::ostream& out, ConfigurationManager& manager,
               const Specification& specification, std::size_t width) {
  printWrapped(out, specification.getTitle(), 0, width);
  out << '\n';
  printWrapped(out, specification.getDescription(), 0, width);
  out << '\n';
  printUsage(out, manager, specification);
  out << '\n';
  // The name column is sized by the library; the last argument only has to be below the width.
  out << manager.composeHelpMessage(specification.getId(), width, width / 2);
}

}  // namespace zelk::configtool
