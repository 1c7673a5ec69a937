#include "SourceTracker.h"

#include <memory>

#include "zelk/configuration/ConfigurationManager.h"
#include "zelk/configuration/Container.h"
#include "zelk/configuration/EtcdValueProvider.h"
#include "zelk/configuration/ParameterRef.h"
#include "zelk/configuration/Specification.h"
#include "zelk/configuration/Value.h"
#include "zelk/configuration/ValueBase.h"
#include "zelk/configuration/ValueIterator.h"
#include "zelk/configuration/ValueProvider.h"
#include "zelk/configuration/XmlFileValueProvider.h"
#include "zelk/configuration/impl/CommandLineValueProviderImpl.h"
#include "zelk/configuration/impl/XmlFileValueProviderImpl.h"

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

void SourceTracker::replay(ConfigurationManager& manager, const Specification& specification,
                           int firstToolWord) {
  mManager = &manager;
  mFirstToolWord = firstToolWord;
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
      if (mFirstToolWord >= 0) explainAnswer(*provider, specification, answer, copy);
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

std::vector<Contribution> SourceTracker::contributionsOf(const ValueBase& replayed) const {
  std::vector<Contribution> story;
  const auto found = mContributions.find(replayed.getInstanceId());
  if (found != mContributions.end()) story = found->second;
  const ParameterRef* reference = replayed.getParameterRef();
  if (reference != nullptr && !story.empty()) {
    for (Contribution overridden : defaultOf(*reference)) {
      overridden.overridden = true;
      story.push_back(overridden);
    }
  }
  return story;
}

EntryPlace SourceTracker::placeOf(const ValueBase& replayed, std::size_t entry) const {
  const auto found = mContributions.find(replayed.getInstanceId());
  if (found == mContributions.end()) return EntryPlace();
  // The value's entries are those of the parts in force, in order.
  for (const Contribution& contribution : found->second) {
    if (contribution.overridden) continue;
    if (entry < contribution.places.size()) return contribution.places[entry];
    entry -= contribution.places.size();
  }
  return EntryPlace();
}

std::vector<Contribution> SourceTracker::defaultOf(const ParameterRef& reference) const {
  // Members of a one-of have no default that a tool reads.
  if (reference.getOneOf() != nullptr) return {};
  const Value fallback = reference.getDefaultValue();
  if (fallback.isNull() || !fallback.hasValues()) return {};
  Contribution contribution;
  contribution.source = FROM_DEFAULT;
  EntryPlace place;
  if (mManager != nullptr) {
    const SourcePosition position = mManager->getDefaultPosition(reference);
    place.file = position.file;
    place.line = position.line;
    place.column = position.column;
  }
  for (ValueIterator entry = fallback.getIterator(); entry.next();) {
    contribution.texts.push_back(entry.asString());
    contribution.places.push_back(place);
  }
  return {contribution};
}

void SourceTracker::explainAnswer(const ValueProvider& provider, const Specification& specification,
                                  const ValueGroup& answer, const ValueGroup& copy) {
  std::map<uint32_t, std::vector<EntryPlace>> places;
  const impl::ValueProviderImpl* implementation = provider.getImpl();
  if (const auto* file = dynamic_cast<const impl::XmlFileValueProviderImpl*>(implementation)) {
    for (const auto& value : file->placeEntries(specification, answer)) {
      std::vector<EntryPlace>& entries = places[value.first];
      for (const SourcePosition& position : value.second) {
        EntryPlace place;
        place.file = position.file;
        place.line = position.line;
        place.column = position.column;
        entries.push_back(place);
      }
    }
  } else if (const auto* words =
                 dynamic_cast<const impl::CommandLineValueProviderImpl*>(implementation)) {
    for (const auto& value : words->placeEntries(answer)) {
      std::vector<EntryPlace>& entries = places[value.first];
      for (int word : value.second) {
        EntryPlace place;
        place.argument = word - mFirstToolWord + 1;
        entries.push_back(place);
      }
    }
  }
  // The two roots meet in the merge.
  explainGroup(answer, copy, &mReplay, mLabels.size() - 1, places);
}

void SourceTracker::explainGroup(const ValueGroup& answer, const ValueGroup& copy,
                                 const ValueGroup* target, std::size_t source,
                                 const std::map<uint32_t, std::vector<EntryPlace>>& places) {
  // copy is a deep copy of answer: the same items in the same order. The merge keeps a bounded
  // container's one group and gives every instance of an unbounded one a group of its own, whose
  // values are then the copy's own.
  for (std::size_t i = 0; i < copy.getItemCount() && i < answer.getItemCount(); ++i) {
    const boost::shared_ptr<ValueGroupItem> item = copy.getItem(i);
    const boost::shared_ptr<ValueGroupItem> original = answer.getItem(i);
    if (item->isValueGroup()) {
      const auto& group = *boost::static_pointer_cast<ValueGroup>(item);
      const Container* container = group.getContainer();
      if (container == nullptr || !original->isValueGroup()) continue;
      boost::shared_ptr<ValueGroup> into;
      if (target != nullptr && !container->isUnbounded()) {
        into = target->findValueGroup(container->getId(), nullptr);
      }
      explainGroup(*boost::static_pointer_cast<ValueGroup>(original), group, into.get(), source,
                   places);
      continue;
    }
    const auto* value = dynamic_cast<const ValueBase*>(item.get());
    const ParameterRef* reference = value != nullptr ? value->getParameterRef() : nullptr;
    if (reference == nullptr) continue;
    const boost::shared_ptr<ValueBase> existing =
        target != nullptr ? target->findValueBase(reference->getId(), nullptr)
                          : boost::shared_ptr<ValueBase>();
    Contribution contribution;
    contribution.source = source;
    contribution.overridden = existing && !reference->isUnbounded();
    for (ValueIterator entry = value->getIterator(); entry.next();) {
      contribution.texts.push_back(entry.asString());
    }
    const auto placed = places.find(original->getInstanceId());
    if (placed != places.end() && placed->second.size() == contribution.texts.size()) {
      contribution.places = placed->second;
    } else {
      contribution.places.assign(contribution.texts.size(), EntryPlace());
    }
    mContributions[existing ? existing->getInstanceId() : value->getInstanceId()].push_back(
        contribution);
  }
}

}  // namespace zelk::configtool
