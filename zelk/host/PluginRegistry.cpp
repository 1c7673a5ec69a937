#include "zelk/host/PluginRegistry.h"

#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <map>
#include <mutex>
#include <stdexcept>
#include <string>
#include <utility>

#include "zelk/host/HostDirectories.h"
#include "zelk/host/HostMainLog.h"

namespace zelk::host {

namespace {

using NameFunction = const char* (*)();
using CreateFunction = void* (*)();

const char* const LIBRARY_SUFFIX = ".so";
// Sub-directories deeper than this below the plug-ins directory are not searched.
const int MAX_SEARCH_DEPTH = 32;

struct Registration {
  int id;
  std::shared_ptr<Plugin> plugin;
};

struct Library {
  void* handle = nullptr;
  std::string extensionPointName;
  std::shared_ptr<Plugin> plugin;
};

struct Registry {
  // Recursive: a library's static initialisation, run by dlopen under this lock, may register.
  std::recursive_mutex mutex;
  int nextId = 1;
  std::vector<Registration> registrations;
  std::map<std::string, Library> libraries;  // keyed by canonical path, loaded libraries only
};

Registry& registry() {
  static Registry* instance = new Registry;  // never destroyed: plug-in objects may outlive main
  return *instance;
}

void logSkip(const std::string& path, const std::string& reason) {
  const std::string text = "Skipped plug-in library \"" + path + "\": " + reason;
  hostAddToMainLog(PLUGINS_LOG_CATEGORY, text.c_str());
}

bool writableByOthers(const struct stat& info) { return (info.st_mode & (S_IWGRP | S_IWOTH)) != 0; }

std::string canonicalPath(const std::string& path) {
  char resolved[PATH_MAX];
  return realpath(path.c_str(), resolved) != nullptr ? std::string(resolved) : std::string();
}

struct Candidate {
  std::string path;
  std::string unsafeDirectory;  // the first group/world-writable directory on the way, if any
};

// Collects the "*.so" files below directory; symbolic links to directories are not followed.
void findLibraries(const std::string& directory, const std::string& unsafeDirectory, int depth,
                   std::vector<Candidate>& found) {
  DIR* dir = opendir(directory.c_str());
  if (dir == nullptr) {
    return;
  }
  std::vector<std::string> subdirectories;
  while (const dirent* entry = readdir(dir)) {
    const std::string name = entry->d_name;
    if (name == "." || name == "..") {
      continue;
    }
    const std::string path = directory + "/" + name;
    struct stat info;
    if (lstat(path.c_str(), &info) != 0) {
      continue;
    }
    if (S_ISDIR(info.st_mode)) {
      subdirectories.push_back(path);
    } else if (name.size() > std::strlen(LIBRARY_SUFFIX) &&
               name.compare(name.size() - std::strlen(LIBRARY_SUFFIX), std::string::npos,
                            LIBRARY_SUFFIX) == 0) {
      found.push_back({path, unsafeDirectory});
    }
  }
  closedir(dir);
  if (depth >= MAX_SEARCH_DEPTH) {
    return;
  }
  for (const std::string& sub : subdirectories) {
    struct stat info;
    std::string unsafe = unsafeDirectory;
    if (unsafe.empty() && stat(sub.c_str(), &info) == 0 && writableByOthers(info)) {
      unsafe = sub;
    }
    findLibraries(sub, unsafe, depth + 1, found);
  }
}

std::string descriptorPath(int fd) { return "/proc/self/fd/" + std::to_string(fd); }

// Loads the library open as fd, the very file that was checked, through its /proc/self/fd name.
// The dynamic loader first matches that name against the objects it has loaded, and descriptor
// numbers are reused, so a name that is taken already moves the descriptor to a free one first.
// Returns the handle, or null with the loader's error (naming path, not the descriptor) in error.
void* loadDescriptor(int& fd, const std::string& path, std::string& error) {
  // Bounded: each loaded object holds at most one name, and each try skips one.
  for (int attempt = 0; attempt < 1024; ++attempt) {
    const std::string name = descriptorPath(fd);
    void* known = dlopen(name.c_str(), RTLD_LAZY | RTLD_NOLOAD);
    if (known != nullptr) {
      dlclose(known);
      const int moved = fcntl(fd, F_DUPFD_CLOEXEC, fd + 1);
      if (moved < 0) {
        break;
      }
      ::close(fd);
      fd = moved;
      continue;
    }
    dlerror();
    void* handle = dlopen(name.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (handle == nullptr) {
      const char* text = dlerror();
      error = text != nullptr ? text : "unknown error";
      if (error.compare(0, name.size(), name) == 0) {
        error.replace(0, name.size(), path);
      }
    }
    return handle;
  }
  error = "no free name to load it by";
  return nullptr;
}

// Opens one library and checks its entry points. Returns the reason for skipping it, or the
// empty string with library filled in.
std::string openLibrary(int& fd, const std::string& path, const std::string& extensionPointName,
                        Library& library) {
  std::string error;
  void* handle = loadDescriptor(fd, path, error);
  if (handle == nullptr) {
    return "it cannot be loaded: " + error;
  }
  auto nameFunction = reinterpret_cast<NameFunction>(dlsym(handle, "extensionPointName"));
  auto createFunction = reinterpret_cast<CreateFunction>(dlsym(handle, "createPlugin"));
  std::string reason;
  const char* name = nullptr;
  if (nameFunction == nullptr) {
    reason = "it does not export extensionPointName()";
  } else if (createFunction == nullptr) {
    reason = "it does not export createPlugin()";
  } else {
    try {
      name = nameFunction();
      if (name == nullptr) {
        reason = "its extensionPointName() returned null";
      } else if (extensionPointName != name) {
        reason = "it belongs to extension point \"" + std::string(name) + "\", not \"" +
                 extensionPointName + "\"";
      }
    } catch (const std::exception& e) {
      reason =
          std::string("its extensionPointName() threw: ") + (e.what() != nullptr ? e.what() : "");
    } catch (...) {
      reason = "its extensionPointName() threw an unknown exception";
    }
  }
  if (!reason.empty()) {
    dlclose(handle);
    return reason;
  }
  library.handle = handle;
  library.extensionPointName = extensionPointName;
  library.plugin = std::make_shared<Plugin>(extensionPointName, path,
                                            [createFunction]() { return createFunction(); });
  return std::string();
}

// The path of the file open as fd, as the system resolves it now.
std::string openedPath(int fd) {
  char resolved[PATH_MAX];
  const ssize_t length = readlink(descriptorPath(fd).c_str(), resolved, sizeof resolved - 1);
  return length > 0 ? std::string(resolved, static_cast<size_t>(length)) : std::string();
}

bool isInside(const std::string& path, const std::string& root) {
  return path.size() > root.size() + 1 && path.compare(0, root.size(), root) == 0 &&
         path[root.size()] == '/';
}

// Checks the library open as fd: its type, its mode, its owner, and that it still lies inside the
// plug-ins root. Returns the reason for skipping it, or the empty string.
std::string checkOpenFile(int fd, const std::string& root) {
  struct stat info;
  if (fd < 0 || fstat(fd, &info) != 0 || !S_ISREG(info.st_mode)) {
    return "it is not a regular file";
  }
  if (writableByOthers(info)) {
    return "it is writable by group or others";
  }
  if (info.st_uid != 0 && info.st_uid != geteuid()) {
    return "it belongs to another user";
  }
  // A directory on the way that was swapped after the path was resolved shows here.
  if (!isInside(openedPath(fd), root)) {
    return "it leads outside the plug-ins directory";
  }
  return std::string();
}

std::string currentPluginsRoot() {
  char buffer[HOST_PATH_BUFFER_SIZE];
  if (!hostGetPluginsDir(buffer)) {
    return std::string();
  }
  return canonicalPath(buffer);
}

}  // namespace

int hostRegisterPlugin(const char* extensionPointName, const char* name, PluginFactory factory) {
  if (extensionPointName == nullptr || *extensionPointName == '\0' || name == nullptr ||
      *name == '\0') {
    throw std::invalid_argument("A plug-in needs an extension point name and a name");
  }
  Registry& r = registry();
  std::lock_guard<std::recursive_mutex> lock(r.mutex);
  const int id = r.nextId++;
  r.registrations.push_back(
      {id, std::make_shared<Plugin>(extensionPointName, name, std::move(factory))});
  return id;
}

void hostUnregisterPlugin(int id) {
  Registry& r = registry();
  std::lock_guard<std::recursive_mutex> lock(r.mutex);
  r.registrations.erase(std::remove_if(r.registrations.begin(), r.registrations.end(),
                                       [id](const Registration& g) { return g.id == id; }),
                        r.registrations.end());
}

size_t hostLoadPlugins(const char* extensionPointName) {
  if (extensionPointName == nullptr || *extensionPointName == '\0') {
    throw std::invalid_argument("An extension point needs a name");
  }
  const std::string root = currentPluginsRoot();
  if (root.empty()) {
    return 0;
  }
  std::string rootUnsafe;
  struct stat rootInfo;
  if (stat(root.c_str(), &rootInfo) != 0 || !S_ISDIR(rootInfo.st_mode)) {
    return 0;
  }
  if (writableByOthers(rootInfo)) {
    rootUnsafe = root;
  }
  std::vector<Candidate> candidates;
  findLibraries(root, rootUnsafe, 0, candidates);
  std::sort(candidates.begin(), candidates.end(),
            [](const Candidate& a, const Candidate& b) { return a.path < b.path; });

  Registry& r = registry();
  std::lock_guard<std::recursive_mutex> lock(r.mutex);
  size_t loaded = 0;
  for (const Candidate& candidate : candidates) {
    if (!candidate.unsafeDirectory.empty()) {
      logSkip(candidate.path,
              "the directory \"" + candidate.unsafeDirectory + "\" is writable by group or others");
      continue;
    }
    const std::string path = canonicalPath(candidate.path);
    if (path.empty()) {
      logSkip(candidate.path, "its path cannot be resolved");
      continue;
    }
    if (!isInside(path, root)) {
      logSkip(candidate.path, "it leads outside the plug-ins directory");
      continue;
    }
    // The file is opened once, without following a link and without waiting on a FIFO; the
    // checks look at the open file, and the loader is given that same file, so whoever swaps the
    // path in between changes nothing that is loaded.
    int fd = ::open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
    std::string reason = checkOpenFile(fd, root);
    const auto known = r.libraries.find(path);
    Library library;
    if (reason.empty() && known != r.libraries.end()) {
      if (known->second.extensionPointName != extensionPointName) {
        reason = "it belongs to extension point \"" + known->second.extensionPointName +
                 "\", not \"" + extensionPointName + "\"";
      }
    } else if (reason.empty()) {
      reason = openLibrary(fd, path, extensionPointName, library);
    }
    if (fd >= 0) {
      ::close(fd);
    }
    if (!reason.empty()) {
      logSkip(candidate.path, reason);
      continue;
    }
    if (known != r.libraries.end()) {
      continue;
    }
    r.libraries.emplace(path, std::move(library));
    ++loaded;
  }
  return loaded;
}

std::vector<std::shared_ptr<Plugin>> hostFindPlugins(const char* extensionPointName) {
  std::vector<std::shared_ptr<Plugin>> found;
  if (extensionPointName == nullptr || *extensionPointName == '\0') {
    return found;
  }
  const std::string root = currentPluginsRoot();
  Registry& r = registry();
  std::lock_guard<std::recursive_mutex> lock(r.mutex);
  for (const Registration& registration : r.registrations) {
    if (std::strcmp(registration.plugin->getExtensionPointName(), extensionPointName) == 0) {
      found.push_back(registration.plugin);
    }
  }
  if (!root.empty()) {
    for (const auto& [path, library] : r.libraries) {
      if (library.extensionPointName == extensionPointName && isInside(path, root)) {
        found.push_back(library.plugin);
      }
    }
  }
  return found;
}

}  // namespace zelk::host
