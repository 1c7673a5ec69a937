#include "zelk/configuration/impl/EtcdValueProviderImpl.h"

#include <fstream>
#include <sstream>

#include "zelk/configuration/ConfigurationException.h"
#include "zelk/configuration/ConfigurationManager.h"
#include "zelk/configuration/impl/EtcdClient.h"
#include "zelk/host/HostMainLog.h"
#include "zelk/util/AtomicFile.h"

namespace zelk::configuration::impl {

namespace {

const char* const LOG_CATEGORY = "Configuration";
// The first line of a last-received file; the revision follows. It is an XML comment, so the
// file is itself a value file.
const char* const LAST_RECEIVED_HEADER = "<!-- etcd revision ";
const char* const LAST_RECEIVED_HEADER_END = " -->\n";

std::string documentName(const EtcdSource& source, int64_t revision) {
  return "etcd key " + source.key + " at revision " + std::to_string(revision);
}

}  // namespace

// The description is accepted for symmetry with the other providers; nothing reads it.
EtcdValueProviderImpl::EtcdValueProviderImpl(int priority, const std::string&)
    : XmlFileValueProviderImpl(ConfigurationManager::ETCD_PROVIDER_NAME, priority),
      mRevision(0),
      mReadRevision(0),
      mFromLastReceived(false) {}

EtcdValueProviderImpl::~EtcdValueProviderImpl() {}

void EtcdValueProviderImpl::setArguments(const char* settings, int) {
  setSource(EtcdSource::parse(settings != 0 ? settings : ""));
}

void EtcdValueProviderImpl::setArguments(int argc, const char* const* argv, const char*,
                                         int options) {
  if (argc <= 0) {
    throw ConfigurationException("%s", "Must provide at least one argument");
  }
  setArguments(argv != 0 ? argv[0] : 0, options);
}

void EtcdValueProviderImpl::setSource(const EtcdSource& source) {
  source.check();
  std::unique_ptr<EtcdClient> client(new EtcdClient(source));
  EtcdClient::Range read;
  std::string away;
  try {
    read = client->range(source.key);
  } catch (const ConfigurationException& e) {
    away = e.what();
  }
  const EtcdSource previousSource = mSource;
  mSource = source;
  if (!away.empty()) {
    try {
      startFromLastReceived(away);
    } catch (...) {
      mSource = previousSource;
      throw;
    }
    mClient.swap(client);
    return;
  }
  try {
    apply(read.found, read.value, read.modRevision, read.revision, client->getEndpoint());
  } catch (...) {
    mSource = previousSource;
    throw;
  }
  mClient.swap(client);
  keepLastReceived();
  std::string log = "loadEtcdConfiguration: [succeeded]\n [endpoint = \"" + mEndpoint +
                    "\", key = \"" + mSource.key + "\", revision = " + std::to_string(mRevision) +
                    "]";
  if (!read.found) {
    log += "\n [the key holds no document]";
  }
  zelk::host::hostAddToMainLog(LOG_CATEGORY, log.c_str());
}

void EtcdValueProviderImpl::apply(bool found, const std::string& document, int64_t modRevision,
                                  int64_t readRevision, const std::string& endpoint) {
  load(found, document, modRevision);
  mReadRevision = readRevision;
  mEndpoint = endpoint;
  mFromLastReceived = false;
}

void EtcdValueProviderImpl::setReceived(const EtcdSource& source, bool found,
                                        const std::string& document, int64_t modRevision,
                                        const std::string& endpoint) {
  const EtcdSource previousSource = mSource;
  mSource = source;
  try {
    apply(found, document, modRevision, modRevision, endpoint);
  } catch (...) {
    mSource = previousSource;
    throw;
  }
}

void EtcdValueProviderImpl::load(bool found, const std::string& document, int64_t revision) {
  // A key without a document holds no values: an empty root element stands for it.
  loadText(found ? document : std::string("<") + ConfigurationManager::ETCD_PROVIDER_NAME + "/>",
           documentName(mSource, revision));
  mRevision = found ? revision : 0;
  mDocumentText = found ? document : std::string();
}

void EtcdValueProviderImpl::keepLastReceived() {
  // A key without a document leaves the last one kept: a start without the cluster then has the
  // last values there were.
  if (mSource.lastReceivedFile.empty() || mRevision == 0) {
    return;
  }
  std::string why;
  if (!writeFileAtomically(mSource.lastReceivedFile, makeLastReceived(mDocumentText, mRevision),
                           why)) {
    // The values are in force all the same; only a later start without the cluster would miss
    // them.
    zelk::host::hostAddToMainLog(
        LOG_CATEGORY, ("loadEtcdConfiguration: [the last document received is not kept]\n [" +
                       why + "]")
                          .c_str());
  }
}

void EtcdValueProviderImpl::startFromLastReceived(const std::string& why) {
  if (mSource.whenAway != EtcdSource::START_FROM_LAST_RECEIVED) {
    zelk::host::hostAddToMainLog(LOG_CATEGORY,
                                 ("loadEtcdConfiguration: [failed]\n [" + why + "]").c_str());
    throw ConfigurationException("%s", why.c_str());
  }
  std::ifstream in(mSource.lastReceivedFile, std::ios::binary);
  std::stringstream text;
  text << in.rdbuf();
  std::string document;
  int64_t revision = 0;
  if (!in || !readLastReceived(text.str(), document, revision)) {
    zelk::host::hostAddToMainLog(LOG_CATEGORY,
                                 ("loadEtcdConfiguration: [failed]\n [" + why + "]").c_str());
    throw ConfigurationException("%s, and no last document received is kept in \"%s\"",
                                 why.c_str(), mSource.lastReceivedFile.c_str());
  }
  load(true, document, revision);
  mReadRevision = revision;
  mEndpoint.clear();
  mFromLastReceived = true;
  zelk::host::hostAddToMainLog(
      LOG_CATEGORY, ("loadEtcdConfiguration: [started from the last document received]\n [key = "
                     "\"" +
                     mSource.key + "\", revision = " + std::to_string(revision) + ", file = \"" +
                     mSource.lastReceivedFile + "\"]\n [" + why + "]")
                        .c_str());
}

std::string EtcdValueProviderImpl::makeLastReceived(const std::string& document,
                                                    int64_t revision) {
  return LAST_RECEIVED_HEADER + std::to_string(revision) + LAST_RECEIVED_HEADER_END + document;
}

bool EtcdValueProviderImpl::readLastReceived(const std::string& text, std::string& document,
                                             int64_t& revision) {
  const std::string header = LAST_RECEIVED_HEADER;
  if (text.compare(0, header.size(), header) != 0) {
    return false;
  }
  const size_t end = text.find(LAST_RECEIVED_HEADER_END, header.size());
  if (end == std::string::npos || end == header.size() || end - header.size() > 18) {
    return false;
  }
  int64_t number = 0;
  for (size_t i = header.size(); i < end; ++i) {
    if (text[i] < '0' || text[i] > '9') {
      return false;
    }
    number = number * 10 + (text[i] - '0');
  }
  revision = number;
  document = text.substr(end + std::string(LAST_RECEIVED_HEADER_END).size());
  return true;
}

}  // namespace zelk::configuration::impl
