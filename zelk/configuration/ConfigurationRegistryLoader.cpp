#include "zelk/configuration/ConfigurationRegistryLoader.h"

#include "zelk/configuration/impl/ConfigurationRegistryLoaderImpl.h"
#include "zelk/host/HostProcess.h"

namespace zelk::configuration {

namespace {

const bool hostInitialised = zelk::host::hostProcessInit();

}  // namespace

void ConfigurationRegistryLoader::loadFile(const char* path, ConfigurationManager* manager,
                                           int flags) {
  impl::ConfigurationRegistryLoaderImpl loader(manager);
  loader.loadFile(path, flags);
}

}  // namespace zelk::configuration
