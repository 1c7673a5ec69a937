// Plugin: one plug-in of a host extension point. It makes implementation objects on request.
//
// Plug-ins come from two places: libraries in the host's plug-ins directory that export the C
// functions extensionPointName() and createPlugin(), and factories registered in the process
// (see PluginRegistry.h). Get them through an ExtensionPoint:
//
//   zelk::host::ExtensionPoint validators("ParameterValidator", 1, 1);
//   for (size_t i = 0; i < validators.pluginCount(); ++i) {
//     void* object = validators.plugin(i)->createImplementation();   // e.g. a Validator*
//     if (object != nullptr) { ... the caller owns object ... }
//   }
#pragma once

#include <atomic>
#include <functional>
#include <string>

namespace zelk::host {

// The main-log category of every line about plug-ins: each says which plug-in library or plug-in
// was skipped and why.
constexpr const char* PLUGINS_LOG_CATEGORY = "Plugins";

// Makes one new implementation object, or null. For a library this is its createPlugin().
using PluginFactory = std::function<void*()>;

class Plugin {
public:
  // name is the library's absolute path or the name given at registration.
  Plugin(std::string extensionPointName, std::string name, PluginFactory factory);
  Plugin(const Plugin&) = delete;
  Plugin& operator=(const Plugin&) = delete;

  const char* getName() const { return mName.c_str(); }
  const char* getExtensionPointName() const { return mExtensionPointName.c_str(); }

  // A new implementation object made by the plug-in's factory; the caller owns it and knows its
  // type from the extension point. Returns null when the factory gives none. Never throws: a
  // factory that throws is reported with one main-log line (category "Plugins") and the plug-in
  // is disabled, so that every later call returns null at once.
  void* createImplementation();
  bool isDisabled() const { return mDisabled.load(); }

private:
  std::string mExtensionPointName;
  std::string mName;
  PluginFactory mFactory;
  std::atomic<bool> mDisabled{false};
};

}  // namespace zelk::host
