#include "zelk/host/HostDirectories.h"

#include <cstring>
#include <mutex>
#include <string>

namespace zelk::host {

namespace {

struct Directories {
  std::string etc = ZELK_HOST_DEFAULT_ETC_DIR;
  std::string plugins = ZELK_HOST_DEFAULT_PLUGINS_DIR;
  std::string config = ZELK_HOST_DEFAULT_CONFIG_DIR;
};

std::mutex& directoriesMutex() {
  static std::mutex mutex;
  return mutex;
}

Directories& directories() {
  static Directories instance;
  return instance;
}

bool copyOut(const std::string Directories::*which, char* buffer) {
  if (buffer == nullptr) {
    return false;
  }
  std::lock_guard<std::mutex> lock(directoriesMutex());
  const std::string& value = directories().*which;
  if (value.empty() || value.size() >= HOST_PATH_BUFFER_SIZE) {
    buffer[0] = '\0';
    return false;
  }
  std::memcpy(buffer, value.c_str(), value.size() + 1);
  return true;
}

}  // namespace

bool hostGetEtcDir(char* buffer) { return copyOut(&Directories::etc, buffer); }

bool hostGetPluginsDir(char* buffer) { return copyOut(&Directories::plugins, buffer); }

bool hostGetConfigDir(char* buffer) { return copyOut(&Directories::config, buffer); }

char hostGetDirSeparator(const char*) { return '/'; }

void hostSetDirectories(const char* etcDir, const char* pluginsDir, const char* configDir) {
  std::lock_guard<std::mutex> lock(directoriesMutex());
  Directories& d = directories();
  d.etc = etcDir != nullptr ? etcDir : "";
  d.plugins = pluginsDir != nullptr ? pluginsDir : "";
  d.config = configDir != nullptr ? configDir : "";
}

void hostResetDirectories() {
  std::lock_guard<std::mutex> lock(directoriesMutex());
  directories() = Directories();
}

}  // namespace zelk::host
