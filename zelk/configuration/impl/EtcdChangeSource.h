// EtcdChangeSource: an etcd provider's key as a source of changes for the manager's follower.
//
// While the manager follows its values, an EtcdWatcher follows the key from the revision of the
// document in force; every change it sees is kept and reported to the follower, which asks for it
// on its own thread (reread). The document is then loaded into a new provider, never into the
// registered one, so that a document the follower refuses changes nothing; a malformed document
// is reported as an error and not proposed again. Once a change is in force, its document is kept
// as the last one received.
//
//   manager.addChangeSource(new EtcdChangeSource(provider));   // done by addEtcdConfiguration
#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
#include <string>

#include "zelk/configuration/impl/ChangeSource.h"
#include "zelk/configuration/impl/EtcdWatcher.h"

namespace zelk::configuration {
class EtcdValueProvider;
}

namespace zelk::configuration::impl {

class EtcdChangeSource : public ChangeSource {
public:
  // Follows the key of provider, a registered provider (not owned).
  explicit EtcdChangeSource(EtcdValueProvider* provider);
  ~EtcdChangeSource() override;

  void start(ChangeSink& sink) override;
  void stop() override;
  void reread(ProviderChanges& changes, ValidationErrors& errors) override;
  void applied(const ProviderChanges& changes) override;

  // The provider in force for this key.
  EtcdValueProvider* getProvider() const { return mProvider; }

private:
  // "etcd key <key> at revision <n>", for reports.
  std::string describe(int64_t revision) const;

  EtcdValueProvider* mProvider;
  std::unique_ptr<EtcdWatcher> mWatcher;
  std::mutex mMutex;
  // The last change received (guarded by mMutex), and whether one came since the last reread.
  EtcdWatcher::Received mReceived;
  bool mHasReceived;
  // The revision proposed last (found or not), so that a refused document is not proposed again.
  int64_t mProposedRevision;
  bool mProposedFound;
};

}  // namespace zelk::configuration::impl
