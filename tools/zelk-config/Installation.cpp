#include "Installation.h"

#include <unistd.h>

#include <climits>
#include <cstdlib>

#include "CommandLine.h"
#include "Output.h"
#include "zelk/configuration/ConfigurationManager.h"
#include "zelk/configuration/Specification.h"
#include "zelk/configuration/impl/ConfigurationRegistryFilesFinder.h"
#include "zelk/host/HostDirectories.h"
#include "zelk/host/HostFileSystem.h"

namespace zelk::configtool {

namespace {

const char* const OWN_REGISTRY_FILE_NAME = "zelk-config.crg";

bool isDirectory(const std::string& path) {
  const unsigned int status = host::hostFileExists(path.c_str());
  return status != host::HOST_FILE_NOT_FOUND && (status & host::HOST_FILE_DIRECTORY) != 0;
}

bool isFile(const std::string& path) {
  const unsigned int status = host::hostFileExists(path.c_str());
  return status != host::HOST_FILE_NOT_FOUND && (status & host::HOST_FILE_DIRECTORY) == 0;
}

std::string canonical(const std::string& path) {
  char resolved[PATH_MAX];
  return realpath(path.c_str(), resolved) != nullptr ? std::string(resolved) : path;
}

bool runsFromBuildTree() {
#ifdef ZELK_CONFIG_BUILD_DIR
  const std::string here = executableDirectory();
  return !here.empty() && here == canonical(ZELK_CONFIG_BUILD_DIR);
#else
  return false;
#endif
}

std::string requireDirectory(const std::string& path, const char* what) {
  if (!isDirectory(path)) {
    throw InstallationError(std::string("the ") + what + " \"" + path + "\" was not found");
  }
  return path;
}

}  // namespace

std::string executableDirectory() {
  char path[PATH_MAX];
  const ssize_t length = readlink("/proc/self/exe", path, sizeof path - 1);
  if (length <= 0) return std::string();
  std::string executable(path, static_cast<std::size_t>(length));
  const std::string::size_type slash = executable.rfind('/');
  return slash == std::string::npos ? std::string() : executable.substr(0, slash);
}

std::string findOwnRegistry() {
  std::vector<std::string> candidates;
  const std::string here = executableDirectory();
  if (!here.empty()) {
    candidates.push_back(here + "/" + OWN_REGISTRY_FILE_NAME);
    candidates.push_back(here + "/../share/zelk/" + OWN_REGISTRY_FILE_NAME);
  }
#ifdef ZELK_CONFIG_DATA_DIR
  candidates.push_back(std::string(ZELK_CONFIG_DATA_DIR) + "/" + OWN_REGISTRY_FILE_NAME);
#endif
  for (const std::string& candidate : candidates) {
    if (isFile(candidate)) return candidate;
  }
  std::string message = std::string("its registry file ") + OWN_REGISTRY_FILE_NAME +
                        " was not found; looked for:";
  for (const std::string& candidate : candidates) message += "\n  " + candidate;
  throw InstallationError(message);
}

Directories selectInstallation(const Options& options) {
  Directories directories;
  if (options.installation) {
    std::string root = requireDirectory(*options.installation, "installation directory");
    while (root.size() > 1 && root.back() == '/') root.pop_back();
    directories.etc = root + "/etc";
    directories.plugins = root + "/plugins";
    directories.config = root + "/config";
  } else if (runsFromBuildTree()) {
#ifdef ZELK_CONFIG_EXAMPLE_INSTALLATION
    directories.etc = std::string(ZELK_CONFIG_EXAMPLE_INSTALLATION) + "/etc";
    directories.plugins = std::string(ZELK_CONFIG_EXAMPLE_INSTALLATION) + "/plugins";
    directories.config = std::string(ZELK_CONFIG_EXAMPLE_INSTALLATION) + "/config";
#endif
  } else {
    host::hostResetDirectories();  // the compiled-in directories of the installed library
    char buffer[host::HOST_PATH_BUFFER_SIZE];
    if (host::hostGetEtcDir(buffer)) directories.etc = buffer;
    if (host::hostGetPluginsDir(buffer)) directories.plugins = buffer;
    if (host::hostGetConfigDir(buffer)) directories.config = buffer;
  }
  if (options.etcDir) directories.etc = requireDirectory(*options.etcDir, "etc directory");
  if (options.pluginsDir) {
    directories.plugins = requireDirectory(*options.pluginsDir, "plug-ins directory");
  }
  if (options.configDir) {
    directories.config = requireDirectory(*options.configDir, "configuration directory");
  }
  host::hostSetDirectories(directories.etc.c_str(), directories.plugins.c_str(),
                           directories.config.c_str());
  return directories;
}

std::vector<std::string> findRegistryFiles(const Directories& directories, bool& mainFound,
                                           std::vector<std::string>* skipped) {
  // The library's own search, so that zelk-config finds, orders and skips files as a tool does.
  configuration::impl::ConfigurationRegistryFilesFinder finder;
  if (!directories.etc.empty()) finder.scan(directories.etc.c_str(), false);
  if (!directories.plugins.empty()) finder.scan(directories.plugins.c_str(), true);
  std::string main;
  mainFound = finder.takeMainRegistry("/", main);
  std::vector<std::string> files;
  if (mainFound) files.push_back(main);
  files.insert(files.end(), finder.getFiles().begin(), finder.getFiles().end());
  if (skipped != nullptr) {
    for (const auto& [path, reason] : finder.getSkipped()) {
      skipped->push_back("Skipped registry file \"" + path + "\": " + reason);
    }
  }
  return files;
}

std::string describeDirectories(const Directories& directories) {
  const auto shown = [](const std::string& path) {
    return path.empty() ? std::string("(none)") : "\"" + path + "\"";
  };
  return "etc directory " + shown(directories.etc) + ", plug-ins directory " +
         shown(directories.plugins);
}

configuration::ConfigurationManager* loadInstallation(const Directories& directories,
                                                      std::size_t maxFileSize) {
  using configuration::ConfigurationManager;
  try {
    if (maxFileSize == 0) return ConfigurationManager::getInstance();
    // A failed first load is loaded again just below, with the new limit.
    ConfigurationManager* manager = ConfigurationManager::getInstanceIgnoringLoadFailure();
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

const configuration::Specification* findSpecification(configuration::ConfigurationManager& manager,
                                                      const std::string& id) {
  const configuration::Specification* specification = manager.getSpecification(id.c_str());
  if (specification == nullptr) {
    printError("The \"" + id + "\" specification was not found");
  }
  return specification;
}

}  // namespace zelk::configtool
