// TempDir: a fresh private directory below /tmp, removed with everything in it on destruction.

#pragma once

#include <string>

namespace zelk::test {

class TempDir {
public:
  TempDir();
  TempDir(const TempDir&) = delete;
  TempDir& operator=(const TempDir&) = delete;
  ~TempDir();

  // The directory's absolute path, without a trailing '/'.
  const std::string& path() const { return mPath; }
  // path() + "/" + name.
  std::string file(const std::string& name) const;
  // Creates the sub-directory name (and its parents) with mode 0755; returns its path.
  std::string makeDirectory(const std::string& name) const;

private:
  std::string mPath;
};

}  // namespace zelk::test
