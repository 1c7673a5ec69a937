#include "zelk/host/HostFileSystem.h"

#include <dirent.h>
#include <sys/stat.h>

namespace zelk::host {

namespace {

class PosixDirectory : public HostDirectory {
public:
  explicit PosixDirectory(DIR* dir) : mDir(dir) {}
  ~PosixDirectory() override { close(); }

  const char* next() override {
    if (mDir == nullptr) {
      return nullptr;
    }
    const dirent* entry = readdir(mDir);
    return entry != nullptr ? entry->d_name : nullptr;
  }

  void close() override {
    if (mDir != nullptr) {
      closedir(mDir);
      mDir = nullptr;
    }
  }

private:
  DIR* mDir;
};

}  // namespace

HostDirectory::~HostDirectory() = default;

unsigned int hostFileExists(const char* path) {
  if (path == nullptr || *path == '\0') {
    return HOST_FILE_NOT_FOUND;
  }
  struct stat info;
  if (stat(path, &info) != 0) {
    return HOST_FILE_NOT_FOUND;
  }
  return S_ISDIR(info.st_mode) ? HOST_FILE_DIRECTORY : HOST_FILE_REGULAR;
}

HostDirectory* hostOpenDir(const char* path) {
  if (path == nullptr || *path == '\0') {
    return nullptr;
  }
  DIR* dir = opendir(path);
  return dir != nullptr ? new PosixDirectory(dir) : nullptr;
}

}  // namespace zelk::host
