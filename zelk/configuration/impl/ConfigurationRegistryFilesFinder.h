// ConfigurationRegistryFilesFinder: collects the configuration registry files (".crg", suffix
// compared exactly) met by a directory scan, in sorted (byte-wise) path order. A ".crg" entry that
// is not a regular file (a FIFO, socket, device, or a directory reached through a link) is skipped
// with a main-log line "Skipped registry file "<path>": it is a FIFO, not a regular file": reading
// a FIFO would wait for a writer and hang every tool of the installation.
//
//   ConfigurationRegistryFilesFinder finder;
//   finder.scan(etcDir.c_str(), false);
//   finder.scan(pluginDir.c_str(), true);
//   std::string main;
//   if (finder.takeMainRegistry("/", main)) { ... load main, then finder.getFiles() ... }
#pragma once

#include <set>
#include <string>
#include <utility>
#include <vector>

#include "zelk/util/FileSystemVisitor.h"

namespace zelk::configuration::impl {

class ConfigurationRegistryFilesFinder : public zelk::FileSystemVisitor {
public:
  // "zelk.crg", the registry that is loaded first.
  static const char* const MAIN_CONFIGURATION_REGISTRY_FILE_NAME;
  // ".crg", the suffix of every registry file.
  static const char* const CONFIGURATION_REGISTRY_FILE_EXTENSION;

  // Keeps path when it ends with ".crg" and is a regular file (or cannot be examined: loading it
  // then says why); always goes on.
  bool visitFile(const char* path) override;

  // The ".crg" paths skipped for not being regular files, each with the reason, in the order met.
  const std::vector<std::pair<std::string, std::string>>& getSkipped() const { return mSkipped; }

  // The paths found so far, in sorted order.
  const std::set<std::string>& getFiles() const { return mFiles; }

  // Finds the first path, in sorted order, whose file name (the text after the last separator)
  // is "zelk.crg" ignoring case; removes it from the set, stores it in path and returns true.
  // A path without a separator is never the main registry. Returns false when none matches.
  bool takeMainRegistry(const std::string& separator, std::string& path);

private:
  std::set<std::string> mFiles;
  std::vector<std::pair<std::string, std::string>> mSkipped;
};

}  // namespace zelk::configuration::impl
