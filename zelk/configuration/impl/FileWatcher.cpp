#include "zelk/configuration/impl/FileWatcher.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <system_error>
#include <tuple>

namespace zelk::configuration::impl {

namespace {

// Everything that can make a name in a directory lead elsewhere or a file change.
const uint32_t DIRECTORY_EVENTS = IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO |
                                  IN_CLOSE_WRITE | IN_MODIFY | IN_ATTRIB | IN_DELETE_SELF |
                                  IN_MOVE_SELF | IN_ONLYDIR;
// Symbolic links followed on the way to one file, as the kernel allows.
const int MAX_LINKS = 40;

std::string errorText(const char* call, int error) {
  return std::string(call) + " failed: " + std::strerror(error);
}

std::string absolute(const std::string& path) {
  if (!path.empty() && path[0] == '/') {
    return path;
  }
  char buffer[4096];
  if (getcwd(buffer, sizeof buffer) == 0) {
    return "/" + path;
  }
  return std::string(buffer) + "/" + path;
}

std::vector<std::string> components(const std::string& path) {
  std::vector<std::string> parts;
  size_t start = 0;
  while (start <= path.size()) {
    size_t end = path.find('/', start);
    if (end == std::string::npos) {
      end = path.size();
    }
    if (end > start) {
      parts.push_back(path.substr(start, end - start));
    }
    start = end + 1;
  }
  return parts;
}

std::string join(const std::string& directory, const std::string& name) {
  return directory == "/" ? "/" + name : directory + "/" + name;
}

std::string parentOf(const std::string& directory) {
  const size_t slash = directory.rfind('/');
  return slash == 0 || slash == std::string::npos ? "/" : directory.substr(0, slash);
}

}  // namespace

FileWatcher::FileWatcher(const std::vector<std::string>& paths, ChangeCallback onChange,
                         FallbackCallback onFallback, bool forcePolling,
                         std::chrono::milliseconds pollInterval)
    : mOnChange(onChange),
      mOnFallback(onFallback),
      mForcePolling(forcePolling),
      mPollInterval(pollInterval.count() > 0 ? pollInterval : std::chrono::milliseconds(1)),
      mPolling(false),
      mInotifyFd(-1),
      mWakeFd(-1) {
  for (const std::string& path : paths) {
    mPaths.push_back(absolute(path));
  }
}

FileWatcher::~FileWatcher() {
  stop();
  if (mInotifyFd >= 0) {
    close(mInotifyFd);
  }
}

bool FileWatcher::Signature::operator==(const Signature& other) const {
  return std::tie(exists, device, inode, size, modifiedSeconds, modifiedNanoseconds) ==
         std::tie(other.exists, other.device, other.inode, other.size, other.modifiedSeconds,
                  other.modifiedNanoseconds);
}

FileWatcher::Signature FileWatcher::signatureOf(const std::string& path) {
  struct stat status;
  if (stat(path.c_str(), &status) != 0) {
    return Signature{false, 0, 0, 0, 0, 0};
  }
  return Signature{true,
                   static_cast<unsigned long>(status.st_dev),
                   static_cast<unsigned long>(status.st_ino),
                   static_cast<long>(status.st_size),
                   static_cast<long>(status.st_mtim.tv_sec),
                   static_cast<long>(status.st_mtim.tv_nsec)};
}

void FileWatcher::addInterests(const std::string& path, Interests& interests) {
  std::vector<std::string> pending = components(path);
  std::string resolved = "/";
  size_t next = 0;
  int links = 0;
  while (next < pending.size()) {
    const std::string part = pending[next++];
    if (part == ".") {
      continue;
    }
    if (part == "..") {
      resolved = parentOf(resolved);
      continue;
    }
    const std::string candidate = join(resolved, part);
    const bool last = next == pending.size();
    struct stat status;
    if (lstat(candidate.c_str(), &status) != 0) {
      // Missing: its directory is watched for the name, so that its creation is seen.
      interests[resolved].insert(part);
      return;
    }
    if (S_ISLNK(status.st_mode)) {
      interests[resolved].insert(part);
      char target[4096];
      const ssize_t length = readlink(candidate.c_str(), target, sizeof target - 1);
      if (length <= 0 || ++links > MAX_LINKS) {
        return;
      }
      target[length] = '\0';
      std::vector<std::string> rest(pending.begin() + static_cast<long>(next), pending.end());
      pending = components(target);
      pending.insert(pending.end(), rest.begin(), rest.end());
      next = 0;
      if (target[0] == '/') {
        resolved = "/";
      }
      continue;
    }
    if (last) {
      interests[resolved].insert(part);
      return;
    }
    resolved = candidate;
  }
}

void FileWatcher::start() {
  if (mThread.joinable()) {
    return;
  }
  mWakeFd = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
  if (mWakeFd < 0) {
    throw std::system_error(errno, std::generic_category(), "eventfd");
  }
  std::string why = "polling was asked for";
  if (mForcePolling || !setUpInotify(why)) {
    fallBack(why);
  }
  try {
    mThread = std::thread(&FileWatcher::run, this);
  } catch (...) {
    close(mWakeFd);
    mWakeFd = -1;
    throw;
  }
}

void FileWatcher::stop() {
  if (!mThread.joinable()) {
    return;
  }
  const uint64_t one = 1;
  ssize_t written;
  do {
    written = write(mWakeFd, &one, sizeof one);
  } while (written < 0 && errno == EINTR);
  mThread.join();
  close(mWakeFd);
  mWakeFd = -1;
}

bool FileWatcher::waitForStop(std::chrono::milliseconds timeout) {
  pollfd wake = {mWakeFd, POLLIN, 0};
  const auto deadline = std::chrono::steady_clock::now() + timeout;
  for (;;) {
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
        deadline - std::chrono::steady_clock::now());
    const int ready = poll(&wake, 1, left.count() > 0 ? static_cast<int>(left.count()) : 0);
    if (ready > 0) {
      return true;
    }
    if (ready == 0 || errno != EINTR) {
      return false;
    }
  }
}

void FileWatcher::fallBack(const std::string& why) {
  if (mInotifyFd >= 0) {
    close(mInotifyFd);
    mInotifyFd = -1;
  }
  mSignatures.clear();
  for (const std::string& path : mPaths) {
    mSignatures.push_back(signatureOf(path));
  }
  mPolling.store(true);
  if (mOnFallback) {
    mOnFallback("following value files by polling every " +
                std::to_string(mPollInterval.count()) + " ms: " + why);
  }
}

void FileWatcher::run() {
  std::string why;
  if (!mPolling.load()) {
    if (runInotify(why)) {
      return;
    }
    fallBack(why);
    // A change may have been missed while inotify failed.
    mOnChange();
  }
  runPolling();
}

bool FileWatcher::setUpInotify(std::string& why) {
  mInotifyFd = inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
  if (mInotifyFd < 0) {
    why = errorText("inotify_init1", errno);
    return false;
  }
  return refresh(why);
}

bool FileWatcher::refresh(std::string& why) {
  Interests next;
  for (const std::string& path : mPaths) {
    addInterests(path, next);
  }
  for (const auto& entry : next) {
    if (mWatchOf.count(entry.first) != 0) {
      continue;
    }
    const int watch = inotify_add_watch(mInotifyFd, entry.first.c_str(), DIRECTORY_EVENTS);
    if (watch < 0) {
      // A directory that went away in between is seen through its parent next time.
      if (errno == ENOENT || errno == ENOTDIR || errno == EACCES) {
        continue;
      }
      why = errorText("inotify_add_watch", errno);
      return false;
    }
    mWatchOf[entry.first] = watch;
    mDirectoriesOf[watch].insert(entry.first);
  }
  for (auto it = mWatchOf.begin(); it != mWatchOf.end();) {
    if (next.count(it->first) != 0) {
      ++it;
      continue;
    }
    std::set<std::string>& directories = mDirectoriesOf[it->second];
    directories.erase(it->first);
    if (directories.empty()) {
      inotify_rm_watch(mInotifyFd, it->second);
      mDirectoriesOf.erase(it->second);
    }
    it = mWatchOf.erase(it);
  }
  mInterests.swap(next);
  return true;
}

bool FileWatcher::runInotify(std::string& why) {
  alignas(inotify_event) char buffer[64 * 1024];
  for (;;) {
    pollfd ready[2] = {{mInotifyFd, POLLIN, 0}, {mWakeFd, POLLIN, 0}};
    if (poll(ready, 2, -1) < 0) {
      if (errno == EINTR) {
        continue;
      }
      why = errorText("poll", errno);
      return false;
    }
    if (ready[1].revents != 0) {
      return true;
    }
    bool relevant = false;
    for (;;) {
      const ssize_t length = read(mInotifyFd, buffer, sizeof buffer);
      if (length <= 0) {
        break;
      }
      for (ssize_t offset = 0; offset < length;) {
        const inotify_event* event = reinterpret_cast<const inotify_event*>(buffer + offset);
        offset += static_cast<ssize_t>(sizeof(inotify_event) + event->len);
        if ((event->mask & IN_Q_OVERFLOW) != 0) {
          relevant = true;
          continue;
        }
        const auto directories = mDirectoriesOf.find(event->wd);
        if (directories == mDirectoriesOf.end()) {
          continue;  // a watch already dropped
        }
        if ((event->mask & (IN_IGNORED | IN_DELETE_SELF | IN_MOVE_SELF | IN_UNMOUNT)) != 0) {
          relevant = true;  // a directory on the way went away
          continue;
        }
        if (event->len == 0) {
          continue;
        }
        for (const std::string& directory : directories->second) {
          const auto names = mInterests.find(directory);
          if (names != mInterests.end() && names->second.count(event->name) != 0) {
            relevant = true;
          }
        }
      }
    }
    if (relevant) {
      if (!refresh(why)) {
        return false;
      }
      mOnChange();
    }
  }
}

void FileWatcher::runPolling() {
  std::vector<Signature>& last = mSignatures;
  while (!waitForStop(mPollInterval)) {
    bool changed = false;
    for (size_t i = 0; i < mPaths.size(); ++i) {
      const Signature now = signatureOf(mPaths[i]);
      if (!(now == last[i])) {
        last[i] = now;
        changed = true;
      }
    }
    if (changed) {
      mOnChange();
    }
  }
}

}  // namespace zelk::configuration::impl
