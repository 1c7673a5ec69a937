#include "zelk/util/FileSystemVisitor.h"

#include <cstring>
#include <memory>
#include <string>

#include "zelk/host/HostFileSystem.h"
#include "zelk/util/Contracts.h"

namespace zelk {

namespace {

const char* const DIRECTORY_SEPARATOR = "/";
const char* const CURRENT_DIR = "/.";
const char* const PARENT_DIR = "/..";

// Closes and deletes the host's listing on every way out of scan().
struct ListingCloser {
  void operator()(host::HostDirectory* listing) const {
    listing->close();
    delete listing;
  }
};

}  // namespace

bool FileSystemVisitor::visitDirectory(const char*) { return true; }

bool FileSystemVisitor::visitFile(const char*) { return true; }

bool FileSystemVisitor::scan(const char* directory, bool recursive) {
  ZELK_CONTRACT(directory != 0 && *directory != 0);
  std::unique_ptr<host::HostDirectory, ListingCloser> listing(host::hostOpenDir(directory));
  if (!listing) {
    return recursive;
  }
  std::string base(directory);
  if (!endsWith(directory, DIRECTORY_SEPARATOR)) {
    base += DIRECTORY_SEPARATOR;
  }
  const std::string::size_type baseLength = base.size();
  std::string path;
  while (const char* name = listing->next()) {
    path.assign(base, 0, baseLength);
    path += name;
    if ((host::hostFileExists(path.c_str()) & host::HOST_FILE_DIRECTORY) != 0) {
      if (endsWith(path.c_str(), CURRENT_DIR) || endsWith(path.c_str(), PARENT_DIR) || !recursive ||
          mDepth >= MAX_DEPTH) {
        continue;
      }
      if (!visitDirectory(path.c_str())) {
        return false;
      }
      ++mDepth;
      bool completed;
      try {
        completed = scan(path.c_str(), true);
      } catch (...) {
        --mDepth;
        throw;
      }
      --mDepth;
      if (!completed) {
        return false;
      }
    } else if (!visitFile(path.c_str())) {
      return false;
    }
  }
  // Kept on purpose: a complete non-recursive scan returns false.
  return recursive;
}

bool FileSystemVisitor::endsWith(const char* s, const char* suffix) {
  ZELK_CONTRACT(s != 0);
  ZELK_CONTRACT(suffix != 0);
  const std::size_t length = std::strlen(s);
  const std::size_t suffixLength = std::strlen(suffix);
  return length >= suffixLength &&
         std::memcmp(s + length - suffixLength, suffix, suffixLength) == 0;
}

}  // namespace zelk
