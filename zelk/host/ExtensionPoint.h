// ExtensionPoint: a named place where plug-ins attach, such as "ParameterValidator".
//
// Construction looks up the plug-ins registered under the name at that moment: first those
// registered in the process, in registration order, then those loaded from libraries in the host's
// plug-ins directory, in path order (the directory is searched when an extension point is made;
// see PluginRegistry.h for the loading rules).
//
//   zelk::host::ExtensionPoint point("ParameterValidator", 1, 1);
//   for (size_t i = 0; i < point.pluginCount(); ++i) {
//     void* object = point.plugin(i)->createImplementation();
//   }
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "zelk/host/Plugin.h"

namespace zelk::host {

class ExtensionPoint {
public:
  // name must not be null or empty (std::invalid_argument). majorVersion and minorVersion are the
  // interface version that the caller expects; the stand-in records them.
  ExtensionPoint(const char* name, int majorVersion, int minorVersion);
  ExtensionPoint(const ExtensionPoint&) = delete;
  ExtensionPoint& operator=(const ExtensionPoint&) = delete;

  const char* getName() const { return mName.c_str(); }
  int getMajorVersion() const { return mMajorVersion; }
  int getMinorVersion() const { return mMinorVersion; }

  size_t pluginCount() const { return mPlugins.size(); }
  // The plug-in at index; throws std::out_of_range when index >= pluginCount(). The plug-in
  // stays valid as long as this extension point.
  Plugin* plugin(size_t index) const;

private:
  std::string mName;
  int mMajorVersion;
  int mMinorVersion;
  std::vector<std::shared_ptr<Plugin>> mPlugins;
};

}  // namespace zelk::host
