// EtcdValueProvider: the value provider of one etcd key that holds a value document (provider id
// "ETCD").
//
// The key holds a document in the value-file format (a root element with one child element per
// tool, as in machine.config), so a fleet of machines can share the values a file would give one
// machine. In the provider order the cluster comes after the command line and before the value
// files: the command line beats the cluster, and the cluster beats the files and machine.config.
//
// The manager makes one for each "-etcdConfiguration <settings>" on the command line and for each
// "etcdConfiguration" element directly below the root of a value file it reads; an application
// adds one with ConfigurationManager::addEtcdConfiguration, or builds one itself:
//
//   EtcdValueProvider* etcd = new EtcdValueProvider(10, "");
//   manager->registerValueProvider(etcd);
//   etcd->enableProvider(source);   // reads the key; throws when it cannot (see EtcdSource)
#pragma once

#include <cstdint>
#include <string>

#include "zelk/configuration/EtcdSource.h"
#include "zelk/configuration/ValueProvider.h"

namespace zelk::configuration {

namespace impl {
class EtcdValueProviderImpl;
}

class EtcdValueProvider : public ValueProvider {
public:
  // A disabled provider with the given priority and description; its id is "ETCD".
  EtcdValueProvider(int priority, const std::string& description);
  ~EtcdValueProvider() override;

  // "ETCD".
  const char* getName() const override;

  using ValueProvider::enableProvider;
  // Reads the document of source's key and enables the provider. Throws ConfigurationException
  // when the source is incomplete or the cluster is away and the source says to fail (the message
  // names the endpoints), ValidationException when the document is malformed; the provider then
  // stays as it was.
  void enableProvider(const EtcdSource& source);

  const EtcdSource& getSource() const;
  // The revision of the last change of the document in force (0 when the key holds none).
  int64_t getRevision() const;
  // The endpoint the document came from; empty when it came from the last-received file.
  const char* getEndpoint() const;
  // True when the cluster was away at start and the document is the last one received.
  bool isFromLastReceived() const;

  impl::EtcdValueProviderImpl* getEtcdImpl() const;
};

}  // namespace zelk::configuration
