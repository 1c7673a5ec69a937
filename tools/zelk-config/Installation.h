// Installation: the directories that zelk-config works on, and the registry files in them.
#pragma once

#include <cstddef>
#include <stdexcept>
#include <string>
#include <vector>

namespace zelk::configuration {
class ConfigurationManager;
class Specification;
}  // namespace zelk::configuration

namespace zelk::configtool {

struct Options;

// An installation as the host gives it: etc, plug-ins and configuration directories (each empty
// when the host has none).
struct Directories {
  std::string etc;
  std::string plugins;
  std::string config;
};

// A named directory or file that does not exist.
class InstallationError : public std::runtime_error {
public:
  using std::runtime_error::runtime_error;
};

// The directory that holds the running executable (empty when it cannot be told).
std::string executableDirectory();

// The registry file that declares zelk-config's own parameters: next to the executable (the
// build tree), else in the installed data directory. Throws InstallationError when neither
// holds it.
std::string findOwnRegistry();

// Picks the installation that options name (-installation, then -etcDir, -pluginsDir and
// -configDir one by one), else the default: the example installation when zelk-config runs
// from its build tree, the installed one otherwise. Makes the host answer with it and returns
// it. Throws InstallationError for a named directory that does not exist.
Directories selectInstallation(const Options& options);

// The registry files that the library loads at start-up, in its order: the main registry
// ("zelk.crg" in any letter case) first, then every other ".crg" file of the etc directory and,
// at every depth, of the plug-ins directory, in path order. mainFound tells whether the main
// registry was among them. Entries that are not regular files (a FIFO named "x.crg") are left
// out; when skipped is given, a line for each says which and why.
std::vector<std::string> findRegistryFiles(const Directories& directories, bool& mainFound,
                                           std::vector<std::string>* skipped = nullptr);

// "etc directory "...", plug-ins directory "..."", for messages.
std::string describeDirectories(const Directories& directories);

// The process-wide manager with the installation loaded; null, with the problem reported, when
// its registry files do not load. A size limit other than 0 applies to the registry files too:
// they are read again under it.
configuration::ConfigurationManager* loadInstallation(const Directories& directories,
                                                      std::size_t maxFileSize);

// The specification of that id, or null with the problem reported.
const configuration::Specification* findSpecification(configuration::ConfigurationManager& manager,
                                                      const std::string& id);

}  // namespace zelk::configtool
