#include "support/TempDir.h"

#include <sys/stat.h>

#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <system_error>
#include <vector>

namespace zelk::test {

TempDir::TempDir() {
  std::string pattern = (std::filesystem::temp_directory_path() / "zelk-test-XXXXXX").string();
  std::vector<char> buffer(pattern.begin(), pattern.end());
  buffer.push_back('\0');
  if (mkdtemp(buffer.data()) == nullptr) {
    throw std::runtime_error("cannot create a temporary directory");
  }
  mPath = buffer.data();
}

TempDir::~TempDir() {
  std::error_code ignored;
  std::filesystem::remove_all(mPath, ignored);
}

std::string TempDir::file(const std::string& name) const { return mPath + "/" + name; }

std::string TempDir::makeDirectory(const std::string& name) const {
  const std::string path = file(name);
  std::filesystem::create_directories(path);
  // Explicit mode, so that the umask never makes test directories group-writable.
  for (std::filesystem::path p = path; p.string().size() > mPath.size(); p = p.parent_path()) {
    chmod(p.c_str(), 0755);
  }
  return path;
}

}  // namespace zelk::test
