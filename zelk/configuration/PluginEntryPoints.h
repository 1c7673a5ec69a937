// The two functions through which the host loads this library as a plug-in.
//
// Both are exported under their plain, unmangled names, so the host finds them with dlsym:
//
//   void* library = dlopen("libzelkconfiguration.so", RTLD_NOW);
//   auto name = reinterpret_cast<const char* (*)()>(dlsym(library, "extensionPointName"));
//   auto create = reinterpret_cast<void* (*)()>(dlsym(library, "createPlugin"));
//   name();     // "Configuration Manager"
//   create();   // the process-wide ConfigurationManager, as a ConfigurationManagerBase*
#pragma once

extern "C" {

// The name of the extension point that this plug-in serves: "Configuration Manager".
__attribute__((visibility("default"))) const char* extensionPointName();
// ConfigurationManager::getInstance(), as a pointer to its ConfigurationManagerBase; the same
// object on every call. Throws what getInstance() throws.
__attribute__((visibility("default"))) void* createPlugin();

}
