// FileSystemVisitor: walks a directory through the host's listing functions and calls back for
// each sub-directory and file. Derive and override the callbacks:
//
//   class CrgFinder : public zelk::FileSystemVisitor {
//     bool visitFile(const char* path) override {
//       if (endsWith(path, ".crg")) found.insert(path);
//       return true;   // false stops the walk
//     }
//   };
//   CrgFinder finder;
//   finder.scan("/etc/zelk", false);
#pragma once

namespace zelk {

class FileSystemVisitor {
public:
  FileSystemVisitor() = default;
  virtual ~FileSystemVisitor() = default;

  // Called for each sub-directory of a recursive scan before it is entered; false stops the walk.
  virtual bool visitDirectory(const char* path);
  // Called for each entry that is not a directory; false stops the walk.
  virtual bool visitFile(const char* path);

  // Walks directory (a contract: not null, not empty), entering sub-directories ("." and ".."
  // excluded) only when recursive, and no deeper than MAX_DEPTH levels (a guard against loops of
  // symbolic links; deeper directories are passed over without a callback). Returns false when a
  // callback stopped the walk; otherwise, and also when the directory cannot be opened, returns
  // recursive. Kept on purpose: a complete non-recursive scan returns false, so the result is not a
  // success flag.
  bool scan(const char* directory, bool recursive);

  // True when s ends with suffix, compared exactly (contracts: neither is null).
  static bool endsWith(const char* s, const char* suffix);

  static constexpr unsigned int MAX_DEPTH = 64;

private:
  unsigned int mDepth = 0;  // sub-directory levels entered by the scan in progress
};

}  // namespace zelk
