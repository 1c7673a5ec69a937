#include "zelk/util/AtomicFile.h"

#include <errno.h>
#include <fcntl.h>
#include <limits.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cstdio>

#include "zelk/host/HostFileSystem.h"

namespace zelk {

namespace {

std::atomic<WriteFunction> writeFunction{nullptr};
std::atomic<unsigned long> temporaryCounter{0};

ssize_t writeSome(int fd, const void* data, std::size_t size) {
  const WriteFunction replaced = writeFunction.load();
  return replaced != nullptr ? replaced(fd, data, size) : ::write(fd, data, size);
}

FileWriteResult failure(int error) {
  FileWriteResult result;
  result.error = error;
  result.reason = host::hostSystemErrorText(error);
  return result;
}

std::string directoryOf(const std::string& path) {
  const std::string::size_type slash = path.rfind('/');
  if (slash == std::string::npos) return ".";
  if (slash == 0) return "/";
  return path.substr(0, slash);
}

// Writes all of data, retrying short writes and interruptions. Returns 0 or an errno value.
int writeAll(int fd, const char* data, std::size_t size) {
  while (size > 0) {
    const ssize_t written = writeSome(fd, data, size);
    if (written < 0) {
      if (errno == EINTR) continue;
      return errno;
    }
    if (written == 0) return ENOSPC;  // no progress: treat as a full disk rather than loop
    data += written;
    size -= static_cast<std::size_t>(written);
  }
  return 0;
}

}  // namespace

void setWriteFunctionForTesting(WriteFunction write) { writeFunction.store(write); }

bool writeFileAtomically(const std::string& path, const std::string& content, std::string& why) {
  const FileWriteResult result = replaceFile(path, content);
  if (!result) why = "cannot write \"" + path + "\": " + result.reason;
  return static_cast<bool>(result);
}

FileWriteResult replaceFile(const std::string& path, const std::string& text) {
  return replaceFile(path, text.data(), text.size());
}

FileWriteResult replaceFile(const std::string& path, const char* data, std::size_t size) {
  if (path.empty()) return failure(ENOENT);
  // A link is followed to the file it leads to, so that the link stays a link. A link that leads
  // nowhere yet names the file to create.
  std::string target = path;
  struct stat info;
  bool exists = false;
  if (lstat(path.c_str(), &info) == 0) {
    if (S_ISLNK(info.st_mode)) {
      char resolved[PATH_MAX];
      if (realpath(path.c_str(), resolved) != nullptr) {
        target = resolved;
        if (stat(target.c_str(), &info) != 0) return failure(errno);
        exists = true;
      } else if (errno != ENOENT) {
        return failure(errno);
      }
    } else {
      exists = true;
    }
  } else if (errno != ENOENT) {
    return failure(errno);
  }
  if (exists && !S_ISREG(info.st_mode)) {
    FileWriteResult result;
    result.reason = host::hostDescribeNotRegular(info.st_mode);
    return result;
  }

  // A name no other writer uses: the target's, the process and a counter; O_EXCL makes sure.
  const std::string directory = directoryOf(target);
  std::string temporary;
  int fd = -1;
  for (int attempt = 0; fd < 0; ++attempt) {
    temporary = target + ".tmp." + std::to_string(getpid()) + "." +
                std::to_string(temporaryCounter.fetch_add(1));
    fd = ::open(temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, 0666);
    if (fd < 0 && (errno != EEXIST || attempt >= 100)) return failure(errno);
  }
  int error = 0;
  if (exists) {
    // The old file's owner first (may fail for an unprivileged process; the mode still holds),
    // then its permission bits, which chown may have cleared.
    if (fchown(fd, info.st_uid, info.st_gid) != 0) {
      // Not ours to give away: keep the writer's ownership.
    }
    if (fchmod(fd, info.st_mode & 07777) != 0) error = errno;
  }
  if (error == 0) error = writeAll(fd, data, size);
  if (error == 0 && fsync(fd) != 0) error = errno;
  if (::close(fd) != 0 && error == 0) error = errno;
  if (error == 0 && ::rename(temporary.c_str(), target.c_str()) != 0) error = errno;
  if (error != 0) {
    ::unlink(temporary.c_str());
    return failure(error);
  }
  // The rename is done; flushing the directory makes it durable. Its failure cannot undo the
  // replacement, so it is not reported as a failure to write.
  const int directoryFd = ::open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (directoryFd >= 0) {
    fsync(directoryFd);
    ::close(directoryFd);
  }
  return FileWriteResult();
}

}  // namespace zelk
