#include "zelk/configuration/impl/ConfigurationRegistryFilesFinder.h"

#include <strings.h>
#include <sys/stat.h>

#include "zelk/configuration/impl/FileOpener.h"
#include "zelk/host/HostFileSystem.h"
#include "zelk/host/HostMainLog.h"
#include "zelk/host/HostProcess.h"

namespace zelk::configuration::impl {

namespace {

const bool hostInitialised = zelk::host::hostProcessInit();

}  // namespace

const char* const ConfigurationRegistryFilesFinder::MAIN_CONFIGURATION_REGISTRY_FILE_NAME =
    "zelk.crg";
const char* const ConfigurationRegistryFilesFinder::CONFIGURATION_REGISTRY_FILE_EXTENSION = ".crg";

bool ConfigurationRegistryFilesFinder::visitFile(const char* path) {
  if (!endsWith(path, CONFIGURATION_REGISTRY_FILE_EXTENSION)) {
    return true;
  }
  struct stat info;
  if (stat(path, &info) == 0 && !S_ISREG(info.st_mode)) {
    const std::string reason = zelk::host::hostDescribeNotRegular(info.st_mode);
    mSkipped.emplace_back(path, reason);
    const std::string text = "Skipped registry file \"" + std::string(path) + "\": " + reason;
    zelk::host::hostAddToMainLog(MAIN_LOG_CATEGORY, text.c_str());
    return true;
  }
  mFiles.insert(path);
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
