// The host's plug-in registry: plug-ins registered in the process, and plug-in libraries loaded
// from the host's plug-ins directory (hostGetPluginsDir).
//
//   int id = zelk::host::hostRegisterPlugin("ParameterValidator", "upper-case",
//                                           [] { return static_cast<void*>(new UpperCase); });
//   ...
//   zelk::host::hostUnregisterPlugin(id);
//
// A plug-in library is a shared object ("*.so") anywhere below the plug-ins directory that
// exports, with C linkage:
//
//   extern "C" const char* extensionPointName();   // e.g. "ParameterValidator"
//   extern "C" void* createPlugin();               // a new implementation object per call
//
// Loading rules. A library is only ever opened by its absolute path inside the plug-ins directory
// (symbolic links that lead outside it are refused). The file is opened once; its type, mode and
// owner are checked on the open file, and the dynamic loader is given that same open file (through
// /proc/self/fd), so a library swapped in at the path after the checks is never the one loaded.
// The loader therefore knows the library by that descriptor name: dependencies found through
// $ORIGIN are not supported. A library is skipped, with one main-log line (category "Plugins")
// saying why, when:
//   - it, or a directory on its path from the plug-ins directory down, is writable by group or
//     others;
//   - it belongs to a user other than root and the process's own;
//   - it cannot be loaded;
//   - it lacks extensionPointName() or createPlugin();
//   - its extensionPointName() is null, throws, or names another extension point than the one
//     being loaded.
// A createPlugin() that throws is reported when it is called (see Plugin::createImplementation).
// Loaded libraries stay loaded until the process ends, so their objects stay usable.
#pragma once

#include <cstddef>
#include <memory>
#include <vector>

#include "zelk/host/Plugin.h"

namespace zelk::host {

// Registers a plug-in made by factory under extensionPointName (both names must not be null or
// empty: std::invalid_argument). Returns an id for hostUnregisterPlugin. Extension points made
// afterwards list it.
int hostRegisterPlugin(const char* extensionPointName, const char* name, PluginFactory factory);
// Removes a registration; unknown ids are ignored. Extension points made before keep it.
void hostUnregisterPlugin(int id);

// Searches the host's plug-ins directory (recursively) for libraries of extensionPointName and
// loads those not loaded yet; libraries that were skipped are tried again, and reported again, on
// every call. Returns the number of libraries newly loaded. Does nothing when the host gives no
// plug-ins directory. extensionPointName must not be null or empty (std::invalid_argument).
size_t hostLoadPlugins(const char* extensionPointName);

// The plug-ins of one extension point: those registered in the process, in registration order,
// then those of libraries loaded from inside the current plug-ins directory, in path order. Does
// not search the directory itself (ExtensionPoint does, through hostLoadPlugins).
std::vector<std::shared_ptr<Plugin>> hostFindPlugins(const char* extensionPointName);

}  // namespace zelk::host
