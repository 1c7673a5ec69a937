// ConfigurationRegistryFilesFinder: collects the configuration registry files (".crg", suffix
// compared exactly) met by a directory scan, in sorted (byte-wise) path order.
//
//   ConfigurationRegistryFilesFinder finder;
//   finder.scan(etcDir.c_str(), false);
//   finder.scan(pluginDir.c_str(), true);
//   std::string main;
//   if (finder.takeMainRegistry("/", main)) { ... load main, then finder.getFiles() ... }
#pragma once

#include <set>
#include <string>

#include "zelk/util/FileSystemVisitor.h"

namespace zelk::configuration::impl {

class ConfigurationRegistryFilesFinder : public zelk::FileSystemVisitor {
public:
  // "zelk.crg", the registry that is loaded first.
  static const char* const MAIN_CONFIGURATION_REGISTRY_FILE_NAME;
  // ".crg", the suffix of every registry file.
  static const char* const CONFIGURATION_REGISTRY_FILE_EXTENSION;

  // Keeps path when it ends with ".crg"; always goes on.
  bool visitFile(const char* path) override;

  // The paths found so far, in sorted order.
  const std::set<std::string>& getFiles() const { return mFiles; }

  // Finds the first path, in sorted order, whose file name (the text after the last separator)
  // is "zelk.crg" ignoring case; removes it from the set, stores it in path and returns true.
  // A path without a separator is never the main registry. Returns false when none matches.
  bool takeMainRegistry(const std::string& separator, std::string& path);

private:
  std::set<std::string> mFiles;
};

}  // namespace zelk::configuration::impl
