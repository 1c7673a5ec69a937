// CommandLine: zelk-config's own command line. It is parsed by the configuration library itself,
// against the registry file that ships with the tool (zelk-config.crg), exactly as an
// installation's tools parse theirs.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace zelk::configtool {

struct Command;

struct Options {
  const Command* command = nullptr;  // a row of the command table; null only before parsing
  std::string word;                  // the word the command was given with (-schema values)
  std::string specification;         // empty when not given
  std::optional<std::string> installation;
  std::optional<std::string> etcDir;
  std::optional<std::string> pluginsDir;
  std::optional<std::string> configDir;
  std::optional<std::string> applicationFile;
  std::vector<std::string> registryFiles;
  std::vector<std::string> valueFiles;
  bool noMachineConfig = false;
  std::string format;                     // -format, or "json" for -json; empty when not given
  std::string formatFlag;                 // how the format was given: "-format json" or "-json"
  std::optional<std::string> exportFile;  // -values also writes the values as a value file
  bool watch = false;                     // -values then follows the value files
  bool explain = false;                   // -values tells every source of each value
  std::optional<std::string> etcd;        // -cluster: the etcd key of -readKey and -publish
  bool publish = false;                   // -values puts its one value file into the etcd key
  std::optional<long long> revision;      // -publish only over this revision of the key
  std::size_t width = 0;                  // 0: the terminal's width
  std::size_t maxFileSize = 0;            // 0: the library's default
  std::vector<std::string> toolArguments; // the words after "--": the tool's own command line
};

// The widths accepted for usage and help text (help lines are padded to the full width).
constexpr std::size_t MIN_WIDTH = 20;
constexpr std::size_t MAX_WIDTH = 1000;

// Parses argv into options with the process-wide configuration manager, which it starts with no
// installation and fills from registryPath; the manager is shut down again before it returns, so
// that the installation to work on can be loaded afresh. Everything after the first "--" is kept
// as the tool's command line: the library has no end-of-options marker of its own.
//
// Returns an exit status when nothing is left to do: zelk-config's own help or usage was printed
// (EXIT_CLEAN), or the command line or the registry file was rejected, with the problems written
// to standard error. Returns nothing when options describe a command to run.
std::optional<int> parseCommandLine(int argc, const char* const* argv,
                                    const std::string& registryPath, Options& options);

}  // namespace zelk::configtool
