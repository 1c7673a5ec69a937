#include "SourceTracker.h"

#include <memory>

#include "zelk/configuration/ConfigurationManager.h"
#include "zelk/configuration/EtcdValueProvider.h"
#include "zelk/configuration/Specification.h"
#include "zelk/configuration/ValueBase.h"
#include "zelk/configuration/ValueProvider.h"
#include "zelk/configuration/XmlFileValueProvider.h"

namespace zelk::configtool {

using namespace zelk::configuration;

const char* const DEFAULT_SOURCE = "default";

namespace {

// What the manager adds for every provider: skip the required and the one-of checks, which only
// the merged tree gets.
const int PROVIDER_OPTIONS = 0x14;

std::string baseName(const std::string& path) {
  const std::string::size_type slash = path.rfind('/');
  return slash == std::string::npos ? path : path.substr(slash + 1);
}

}  // namespace

void SourceTracker::replay(ConfigurationManager& manager, const Specification& specification) {
  mReplay = ValueGroup(&specification);
  std::unique_ptr<IEnumerator<ValueProvider*>> providers(manager.getValueProviderEnumerator());
  for (; providers->hasNext(); providers->moveNext()) {
    ValueProvider* provider = providers->getCurrent();
    if (!provider->getEnabled()) continue;
    addSource(*provider);
    try {
      const ValueGroup answer = provider->getValues(specification, PROVIDER_OPTIONS);
      if (answer.isNull() || answer.getItemCount() == 0) {
        if (const auto* file = dynamic_cast<const XmlFileValueProvider*>(provider)) {
          mSilentFiles.push_back(file->getXmlFilePath());
        }
        continue;
      }
      // A copy, because merging hands the answer's values over to the merged tree, and the
      // manager must still see its providers' values as they were.
      const ValueGroup copy(answer, 0);
      mReplay.merge(specification, copy);
      record(mReplay, mLabels.size() - 1);
    } catch (const std::exception&) {
      // The manager's own retrieval reports the same problem.
    }
  }
}

std::vector<std::size_t> SourceTracker::sourcesOf(const ValueBase& replayed) const {
  const auto found = mEntrySources.find(replayed.getInstanceId());
  return found != mEntrySources.end() ? found->second : std::vector<std::size_t>();
}

std::vector<std::string> SourceTracker::namesOf(const std::vector<std::size_t>& sources,
                                                const std::vector<std::string>& names,
                                                const char* unknown) {
  std::vector<std::string> result;
  for (std::size_t source : sources) {
    result.push_back(source == FROM_DEFAULT   ? DEFAULT_SOURCE
                     : source == FROM_UNKNOWN ? unknown
                                              : names[source]);
  }
  return result;
}

void SourceTracker::addSource(const ValueProvider& provider) {
  const std::string name = provider.getName();
  if (name == ConfigurationManager::COMMAND_LINE_PROVIDER_NAME) {
    mNames.push_back("command line");
    mLabels.push_back("command line");
    mMachineNames.push_back("command line");
  } else if (const auto* file = dynamic_cast<const XmlFileValueProvider*>(&provider)) {
    mNames.push_back(std::string("value file ") + file->getXmlFilePath());
    mLabels.push_back(baseName(file->getXmlFilePath()));
    mMachineNames.push_back(file->getXmlFilePath());
  } else if (const auto* etcd = dynamic_cast<const EtcdValueProvider*>(&provider)) {
    // Where the document came from: the endpoint (or the file it was kept in, when the cluster
    // was away at start), the key and the revision.
    const std::string from = etcd->isFromLastReceived() ? etcd->getSource().lastReceivedFile
                                                        : std::string(etcd->getEndpoint());
    const std::string revision = std::to_string(etcd->getRevision());
    mNames.push_back("etcd " + from + " key " + etcd->getSource().key + " revision " + revision);
    mLabels.push_back("etcd " + etcd->getSource().key + "@" + revision);
    mMachineNames.push_back("etcd " + from + " " + etcd->getSource().key + " " + revision);
  } else if (name == ConfigurationManager::APPLICATION_PROVIDER_NAME) {
    mNames.push_back("application values");
    mLabels.push_back("application");
    mMachineNames.push_back("application");
  } else {
    mNames.push_back(std::string("provider ") + provider.getId());
    mLabels.push_back(provider.getId());
    mMachineNames.push_back(provider.getId());
  }
}

void SourceTracker::record(const ValueGroup& group, std::size_t source) {
  for (std::size_t i = 0; i < group.getItemCount(); ++i) {
    const boost::shared_ptr<ValueGroupItem> item = group.getItem(i);
    if (item->isValueGroup()) {
      record(*boost::static_pointer_cast<ValueGroup>(item), source);
    } else if (const auto* value = dynamic_cast<const ValueBase*>(item.get())) {
      std::vector<std::size_t>& sources = mEntrySources[value->getInstanceId()];
      while (sources.size() < value->getValueCount()) sources.push_back(source);
    }
  }
}

}  // namespace zelk::configtool
