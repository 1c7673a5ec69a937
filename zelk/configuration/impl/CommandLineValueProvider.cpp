#include "zelk/configuration/impl/CommandLineValueProvider.h"

#include "zelk/configuration/ConfigurationManager.h"
#include "zelk/configuration/impl/CommandLineValueProviderImpl.h"

namespace zelk::configuration::impl {

CommandLineValueProvider::CommandLineValueProvider(int priority, const std::string& id)
    : ValueProvider(new CommandLineValueProviderImpl(priority, id)) {}

CommandLineValueProvider::~CommandLineValueProvider() {}

const char* CommandLineValueProvider::getName() const {
  return ConfigurationManager::COMMAND_LINE_PROVIDER_NAME;
}

CommandLineValueProviderImpl* CommandLineValueProvider::getCommandLineImpl() const {
  return static_cast<CommandLineValueProviderImpl*>(getImpl());
}

}  // namespace zelk::configuration::impl
