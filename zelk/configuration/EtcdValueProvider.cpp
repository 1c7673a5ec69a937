#include "zelk/configuration/EtcdValueProvider.h"

#include "zelk/configuration/ConfigurationManager.h"
#include "zelk/configuration/impl/EtcdValueProviderImpl.h"

namespace zelk::configuration {

EtcdValueProvider::EtcdValueProvider(int priority, const std::string& description)
    : ValueProvider(new impl::EtcdValueProviderImpl(priority, description)) {}

EtcdValueProvider::~EtcdValueProvider() {}

const char* EtcdValueProvider::getName() const { return ConfigurationManager::ETCD_PROVIDER_NAME; }

void EtcdValueProvider::enableProvider(const EtcdSource& source) {
  getEtcdImpl()->setSource(source);
  getEtcdImpl()->setEnabled(true);
}

const EtcdSource& EtcdValueProvider::getSource() const { return getEtcdImpl()->getSource(); }

int64_t EtcdValueProvider::getRevision() const { return getEtcdImpl()->getRevision(); }

const char* EtcdValueProvider::getEndpoint() const {
  return getEtcdImpl()->getEndpoint().c_str();
}

bool EtcdValueProvider::isFromLastReceived() const { return getEtcdImpl()->isFromLastReceived(); }

impl::EtcdValueProviderImpl* EtcdValueProvider::getEtcdImpl() const {
  return static_cast<impl::EtcdValueProviderImpl*>(getImpl());
}

}  // namespace zelk::configuration
