#include "zelk/host/HostFileSystem.h"

#include <dirent.h>
#include <string.h>
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

std::string hostDescribeNotRegular(mode_t mode) {
  const char* what = "not a regular file";
  if (S_ISDIR(mode)) {
    what = "a directory";
  } else if (S_ISFIFO(mode)) {
    what = "a FIFO";
  } else if (S_ISSOCK(mode)) {
    what = "a socket";
  } else if (S_ISCHR(mode)) {
    what = "a character device";
  } else if (S_ISBLK(mode)) {
    what = "a block device";
  } else if (S_ISLNK(mode)) {
    what = "a symbolic link";
  }
  return std::string("it is ") + what + (S_ISREG(mode) ? "" : ", not a regular file");
}

std::string hostSystemErrorText(int error) {
  char buffer[256];
  // The GNU strerror_r returns the text, which may or may not be in the buffer.
  return std::string(strerror_r(error, buffer, sizeof buffer));
}

}  // namespace zelk::host
