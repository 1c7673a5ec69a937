#include "zelk/configuration/impl/ConfigurationRegistryFilesFinder.h"

#include <strings.h>

#include "zelk/host/HostProcess.h"

namespace zelk::configuration::impl {

namespace {

const bool hostInitialised = zelk::host::hostProcessInit();

}  // namespace

const char* const ConfigurationRegistryFilesFinder::MAIN_CONFIGURATION_REGISTRY_FILE_NAME =
    "zelk.crg";
const char* const ConfigurationRegistryFilesFinder::CONFIGURATION_REGISTRY_FILE_EXTENSION = ".crg";

bool ConfigurationRegistryFilesFinder::visitFile(const char* path) {
  if (endsWith(path, CONFIGURATION_REGISTRY_FILE_EXTENSION)) {
    mFiles.insert(path);
  }
  return true;
}

bool ConfigurationRegistryFilesFinder::takeMainRegistry(const std::string& separator,
                                                        std::string& path) {
  for (std::set<std::string>::iterator file = mFiles.begin(); file != mFiles.end(); ++file) {
    const std::string::size_type last = file->rfind(separator);
    if (last == std::string::npos) {
      continue;
    }
    if (strcasecmp(file->c_str() + last + separator.size(),
                   MAIN_CONFIGURATION_REGISTRY_FILE_NAME) == 0) {
      path = *file;
      mFiles.erase(file);
      return true;
    }
  }
  return false;
}

}  // namespace zelk::configuration::impl
