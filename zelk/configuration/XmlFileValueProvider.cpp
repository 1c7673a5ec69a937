#include "zelk/configuration/XmlFileValueProvider.h"

#include "zelk/configuration/ConfigurationManager.h"
#include "zelk/configuration/impl/XmlFileValueProviderImpl.h"

namespace zelk::configuration {

XmlFileValueProvider::XmlFileValueProvider(int priority, const std::string& description)
    : ValueProvider(new impl::XmlFileValueProviderImpl(priority, description)) {}

XmlFileValueProvider::~XmlFileValueProvider() {}

const char* XmlFileValueProvider::getName() const {
  return ConfigurationManager::XML_FILE_PROVIDER_NAME;
}

const char* XmlFileValueProvider::getXmlFilePath() const {
  return getXmlFileImpl()->getXmlFilePath();
}

impl::XmlFileValueProviderImpl* XmlFileValueProvider::getXmlFileImpl() const {
  return static_cast<impl::XmlFileValueProviderImpl*>(getImpl());
}

}  // namespace zelk::configuration
