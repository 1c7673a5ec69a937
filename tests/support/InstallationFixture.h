// InstallationFixture: a temporary installation of the host (etc, plug-ins and configuration
// directories) made current for the process while the object lives. The directories the host
// gave before are restored on destruction.

#pragma once

#include <string>

#include "support/TempDir.h"

namespace zelk::test {

class InstallationFixture {
public:
  // Which directories the host gives; a directory left out exists on disk but is not announced.
  enum Directories { ETC = 1, PLUGINS = 2, CONFIG = 4, ALL = 7 };

  explicit InstallationFixture(int announced = ALL);
  InstallationFixture(const InstallationFixture&) = delete;
  InstallationFixture& operator=(const InstallationFixture&) = delete;
  ~InstallationFixture();

  const std::string& root() const { return mRoot.path(); }
  const std::string& etcDir() const { return mEtc; }
  const std::string& pluginsDir() const { return mPlugins; }
  const std::string& configDir() const { return mConfig; }

  // Write a file below one of the directories (name may contain sub-directories); return its path.
  std::string writeEtcFile(const std::string& name, const std::string& content) const;
  std::string writePluginsFile(const std::string& name, const std::string& content) const;
  std::string writeConfigFile(const std::string& name, const std::string& content) const;
  // Copies a file (such as a plug-in library built by the suite) into the plug-ins directory
  // under name, with mode 0755; returns the new path.
  std::string copyIntoPlugins(const std::string& source, const std::string& name) const;

private:
  TempDir mRoot;
  std::string mEtc;
  std::string mPlugins;
  std::string mConfig;
  std::string mPreviousEtc;
  std::string mPreviousPlugins;
  std::string mPreviousConfig;
};

}  // namespace zelk::test
