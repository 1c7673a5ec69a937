#include "zelk/util/AtomicFile.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <vector>

namespace zelk {

namespace {

bool failed(const std::string& what, const std::string& path, std::string& why) {
  why = "cannot " + what + " \"" + path + "\": " + std::strerror(errno);
  return false;
}

}  // namespace

bool writeFileAtomically(const std::string& path, const std::string& content, std::string& why) {
  const size_t slash = path.rfind('/');
  const std::string directory = slash == std::string::npos ? "." : path.substr(0, slash + 1);
  const std::string name = slash == std::string::npos ? path : path.substr(slash + 1);
  std::string pattern = (slash == std::string::npos ? std::string() : directory) + "." + name +
                        ".XXXXXX";
  std::vector<char> temporary(pattern.begin(), pattern.end());
  temporary.push_back('\0');
  const int fd = mkstemp(temporary.data());
  if (fd < 0) {
    return failed("create a temporary file next to", path, why);
  }
  const std::string temporaryPath = temporary.data();
  size_t written = 0;
  while (written < content.size()) {
    const ssize_t n = write(fd, content.data() + written, content.size() - written);
    if (n < 0 && errno == EINTR) {
      continue;
    }
    if (n <= 0) {
      failed("write", temporaryPath, why);
      close(fd);
      unlink(temporaryPath.c_str());
      return false;
    }
    written += static_cast<size_t>(n);
  }
  if (fsync(fd) != 0) {
    failed("flush", temporaryPath, why);
    close(fd);
    unlink(temporaryPath.c_str());
    return false;
  }
  if (close(fd) != 0) {
    failed("close", temporaryPath, why);
    unlink(temporaryPath.c_str());
    return false;
  }
  if (rename(temporaryPath.c_str(), path.c_str()) != 0) {
    failed("rename a temporary file to", path, why);
    unlink(temporaryPath.c_str());
    return false;
  }
  // The rename is durable only once the directory is.
  const int dir = open(directory.c_str(), O_RDONLY | O_DIRECTORY);
  if (dir < 0) {
    return failed("open the directory", directory, why);
  }
  const bool synced = fsync(dir) == 0;
  close(dir);
  return synced || failed("flush the directory", directory, why);
}

}  // namespace zelk
