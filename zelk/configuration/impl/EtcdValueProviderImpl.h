// EtcdValueProviderImpl: a value document read from one etcd key, answered like a value file.
//
// The key holds a document in the value-file format, so every rule of value files (matching,
// parameters written as elements, size limits, errors) carries over: the provider is a value-file
// provider whose document comes from the cluster. It keeps the revision of the document in force
// and the cluster's revision at the read, from which a watch misses nothing.
//
// When no endpoint answers at start, the source's whenAway decides: fail with the client's error,
// which names the endpoints, or start from the last document received, kept in the source's
// lastReceivedFile (written whole or not at all after every document received), and say so in the
// main log. A key that does not exist gives no values.
//
//   EtcdValueProviderImpl impl(3, "");
//   impl.setSource(EtcdSource::parse("endpoints=http://127.0.0.1:2379;key=/fleet/backup"));
//   ValueGroup raw = impl.getSpecificationValues(*spec, 0);
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "zelk/configuration/EtcdSource.h"
#include "zelk/configuration/impl/XmlFileValueProviderImpl.h"

namespace zelk::configuration::impl {

class EtcdClient;

class EtcdValueProviderImpl : public XmlFileValueProviderImpl {
public:
  EtcdValueProviderImpl(int priority, const std::string& description);
  ~EtcdValueProviderImpl() override;

  // The source from its settings text (EtcdSource::parse), read as setSource does.
  void setArguments(const char* settings, int options) override;
  // setArguments(argv[0]); throws ConfigurationException "Must provide at least one argument" when
  // argc is not positive.
  void setArguments(int argc, const char* const* argv, const char* specificationId,
                    int options) override;
  // Reads the document of source's key and puts it in force. Throws ConfigurationException when
  // the source is incomplete, when the cluster is away and whenAway says FAIL (or no last document
  // is kept), and ValidationException when the document is malformed; the document held before
  // then stays.
  void setSource(const EtcdSource& source);

  // Takes a document of source's key received from the cluster (after a change) without asking
  // the cluster; found false: the key was deleted, no values. Throws as loading does, leaving the
  // provider as it was.
  void setReceived(const EtcdSource& source, bool found, const std::string& document,
                   int64_t modRevision, const std::string& endpoint);
  // Writes the document in force to the source's lastReceivedFile, when it names one; a failure
  // is written to the main log.
  void keepLastReceived();

  const EtcdSource& getSource() const { return mSource; }
  // The revision of the last change of the document in force; 0 when the key does not exist.
  int64_t getRevision() const { return mRevision; }
  // The cluster's revision when the document in force was read.
  int64_t getReadRevision() const { return mReadRevision; }
  // The endpoint the document came from (empty before the first read).
  const std::string& getEndpoint() const { return mEndpoint; }
  // True when the document in force came from the last-received file because the cluster was
  // away at start.
  bool isFromLastReceived() const { return mFromLastReceived; }
  // The client of the source (null before setSource).
  EtcdClient* getClient() const { return mClient.get(); }

  // The last-received file's text for a document and its revision, and back; readLastReceived
  // returns false when text is not such a file.
  static std::string makeLastReceived(const std::string& document, int64_t revision);
  static bool readLastReceived(const std::string& text, std::string& document, int64_t& revision);

private:
  // Loads document (an empty one when not found) as the one in force.
  void load(bool found, const std::string& document, int64_t revision);
  void apply(bool found, const std::string& document, int64_t modRevision, int64_t readRevision,
             const std::string& endpoint);
  void startFromLastReceived(const std::string& why);

  EtcdSource mSource;
  std::unique_ptr<EtcdClient> mClient;
  int64_t mRevision;
  int64_t mReadRevision;
  std::string mEndpoint;
  bool mFromLastReceived;
  // The document in force as received, for keepLastReceived.
  std::string mDocumentText;
};

}  // namespace zelk::configuration::impl
