#include "zelk/host/ExtensionPoint.h"

#include <stdexcept>

#include "zelk/host/PluginRegistry.h"

namespace zelk::host {

ExtensionPoint::ExtensionPoint(const char* name, int majorVersion, int minorVersion)
    : mMajorVersion(majorVersion), mMinorVersion(minorVersion) {
  if (name == nullptr || *name == '\0') {
    throw std::invalid_argument("An extension point needs a name");
  }
  mName = name;
  hostLoadPlugins(name);
  mPlugins = hostFindPlugins(name);
}

Plugin* ExtensionPoint::plugin(size_t index) const {
  if (index >= mPlugins.size()) {
    throw std::out_of_range("Plug-in index out of range");
  }
  return mPlugins[index].get();
}

}  // namespace zelk::host
