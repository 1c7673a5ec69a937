#include "zelk/configuration/impl/EtcdChangeSource.h"

#include <exception>

#include "zelk/configuration/EtcdValueProvider.h"
#include "zelk/configuration/ValidationErrors.h"
#include "zelk/configuration/impl/EtcdValueProviderImpl.h"

namespace zelk::configuration::impl {

EtcdChangeSource::EtcdChangeSource(EtcdValueProvider* provider)
    : mProvider(provider),
      mHasReceived(false),
      mProposedRevision(provider->getRevision()),
      mProposedFound(provider->getRevision() != 0) {}

EtcdChangeSource::~EtcdChangeSource() { stop(); }

std::string EtcdChangeSource::describe(int64_t revision) const {
  return "etcd key " + mProvider->getSource().key + " at revision " + std::to_string(revision);
}

void EtcdChangeSource::start(ChangeSink& sink) {
  if (mWatcher) {
    return;
  }
  const EtcdValueProviderImpl* impl = mProvider->getEtcdImpl();
  mWatcher.reset(new EtcdWatcher(impl->getSource(), impl->getReadRevision(), impl->getRevision(),
                                 impl->getRevision() != 0));
  ChangeSink* target = &sink;
  mWatcher->start(
      [this, target](const EtcdWatcher::Received& received) {
        {
          std::lock_guard<std::mutex> lock(mMutex);
          mReceived = received;
          mHasReceived = true;
        }
        target->changedWhole(describe(received.modRevision));
      },
      [target](const std::string& note) { target->note(note); });
}

void EtcdChangeSource::stop() {
  if (mWatcher) {
    mWatcher->stop();
    mWatcher.reset();
  }
}

void EtcdChangeSource::reread(ProviderChanges& changes, ValidationErrors& errors) {
  EtcdWatcher::Received received;
  {
    std::lock_guard<std::mutex> lock(mMutex);
    if (!mHasReceived) {
      return;
    }
    received = mReceived;
    mHasReceived = false;
  }
  const bool found = received.found;
  const int64_t revision = found ? received.modRevision : 0;
  if (found == mProposedFound && revision == mProposedRevision) {
    return;
  }
  mProposedFound = found;
  mProposedRevision = revision;
  std::unique_ptr<EtcdValueProvider> replacement(
      new EtcdValueProvider(mProvider->getPriority(), ""));
  replacement->getImpl()->setManager(mProvider->getImpl()->getManager());
  try {
    replacement->getEtcdImpl()->setReceived(mProvider->getSource(), found, received.document,
                                            received.modRevision, received.endpoint);
  } catch (const std::exception& e) {
    // The message names the key and the revision; it is added as a text without arguments.
    errors.addErrorAsFormat(e.what());
    return;
  }
  replacement->getImpl()->setEnabled(true);
  changes.replace(mProvider, replacement.release(), describe(received.modRevision));
}

void EtcdChangeSource::applied(const ProviderChanges& changes) {
  for (const ProviderChanges::Change& change : changes.get()) {
    if (change.current == mProvider && change.replacement != 0) {
      mProvider = static_cast<EtcdValueProvider*>(change.replacement);
      mProvider->getEtcdImpl()->keepLastReceived();
    }
  }
}

}  // namespace zelk::configuration::impl
