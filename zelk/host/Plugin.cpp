#include "zelk/host/Plugin.h"

#include <exception>
#include <utility>

#include "zelk/host/HostMainLog.h"

namespace zelk::host {

Plugin::Plugin(std::string extensionPointName, std::string name, PluginFactory factory)
    : mExtensionPointName(std::move(extensionPointName)),
      mName(std::move(name)),
      mFactory(std::move(factory)) {}

void* Plugin::createImplementation() {
  if (mDisabled.load() || !mFactory) {
    return nullptr;
  }
  std::string reason;
  try {
    return mFactory();
  } catch (const std::exception& e) {
    reason = e.what() != nullptr ? e.what() : "";
  } catch (...) {
    reason = "an unknown exception";
  }
  // Only the first failure is logged: the plug-in is not asked again.
  if (!mDisabled.exchange(true)) {
    const std::string text = "Skipped plug-in \"" + mName + "\" of extension point \"" +
                             mExtensionPointName + "\": createPlugin() threw: " + reason;
    hostAddToMainLog(PLUGINS_LOG_CATEGORY, text.c_str());
  }
  return nullptr;
}

}  // namespace zelk::host
