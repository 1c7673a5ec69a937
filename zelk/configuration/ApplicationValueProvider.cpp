#include "zelk/configuration/ApplicationValueProvider.h"

#include "zelk/configuration/ConfigurationManager.h"
#include "zelk/configuration/impl/ApplicationValueProviderImpl.h"

namespace zelk::configuration {

ApplicationValueProvider::ApplicationValueProvider(int priority, const std::string& description)
    : ValueProvider(new impl::ApplicationValueProviderImpl(priority, description)) {}

ApplicationValueProvider::~ApplicationValueProvider() {}

const char* ApplicationValueProvider::getName() const {
  return ConfigurationManager::APPLICATION_PROVIDER_NAME;
}

}  // namespace zelk::configuration
