#include "zelk/configuration/PluginEntryPoints.h"

#include "zelk/configuration/ConfigurationManager.h"
#include "zelk/host/HostProcess.h"

namespace {

const bool hostInitialised = zelk::host::hostProcessInit();

}  // namespace

extern "C" {

const char* extensionPointName() { return "Configuration Manager"; }

void* createPlugin() {
  zelk::configuration::ConfigurationManagerBase* manager =
      zelk::configuration::ConfigurationManager::getInstance();
  return manager;
}

}
