// ChangeSource: a source of values that can change while the application runs (value files, a
// cluster key), as the manager's follower sees it.
//
// A manager that follows its values (ConfigurationManager::followValues) runs one following
// thread. Each source tells it that something may have changed through ChangeSink::changed(),
// from any thread and as often as it likes: several reports in a row are coalesced into one
// re-read. The following thread then asks every source, on that thread, for the providers whose
// content changed (reread), builds the new merged tree from them exactly as getValueGroup does,
// checks it, and either puts it in force or refuses it. A source never changes a provider that is
// registered with the manager: it hands over new provider objects, and the manager swaps them in
// only when the whole new tree is good. See docs/FOLLOWING.md.
//
//   class ClusterSource : public ChangeSource {
//    public:
//     void start(ChangeSink& sink) override { mSink = &sink; /* a watch thread calls
//                                                 mSink->changed("etcd key /fleet/tool") */ }
//     void stop() override { /* joins the watch thread: no sink call after this returns */ }
//     void reread(ProviderChanges& changes, ValidationErrors& errors) override {
//       if (mReceived.revision != mInForce.revision)
//         changes.replace(mProvider, makeProvider(mReceived), "etcd key /fleet/tool");
//     }
//   };
#pragma once

#include <string>
#include <vector>

namespace zelk::configuration {
class ValidationErrors;
class ValueProvider;
}  // namespace zelk::configuration

namespace zelk::configuration::impl {

// Where sources report. Implemented by the follower; every call is thread-safe.
class ChangeSink {
public:
  virtual ~ChangeSink();
  // Something described by what may have changed: the follower re-reads after the coalescing
  // delay. Cheap; never blocks on the re-read.
  virtual void changed(const std::string& what) = 0;
  // A change that arrives whole in one report (one put to a cluster key is one consistent
  // document): the follower re-reads at once, without the coalescing delay, unless reports of the
  // other kind are still settling.
  virtual void changedWhole(const std::string& what) = 0;
  // A note about the source itself (it fell back to polling, it lost its connection): written to
  // the main log.
  virtual void note(const std::string& text) = 0;
};

// The provider replacements one re-read proposes. Owns the new providers until the manager takes
// them; those of a refused change are destroyed with it.
class ProviderChanges {
public:
  struct Change {
    // The registered provider that goes (null: replacement is added after the providers of its
    // id).
    ValueProvider* current;
    // The provider that takes its place (null: current goes without one).
    ValueProvider* replacement;
    // What changed, for reports: a file path, a cluster key.
    std::string source;
  };

  ProviderChanges();
  ~ProviderChanges();

  // Each takes ownership of replacement.
  void replace(ValueProvider* current, ValueProvider* replacement, const std::string& source);
  void add(ValueProvider* replacement, const std::string& source);
  void remove(ValueProvider* current, const std::string& source);

  bool empty() const { return mChanges.empty(); }
  const std::vector<Change>& get() const { return mChanges; }
  // The sources named by the changes, in order, each once.
  std::vector<std::string> getSources() const;
  // Hands the replacements over: they are no longer destroyed with this object.
  void release() { mReleased = true; }

private:
  ProviderChanges(const ProviderChanges&) = delete;
  ProviderChanges& operator=(const ProviderChanges&) = delete;

  std::vector<Change> mChanges;
  bool mReleased;
};

class ChangeSource {
public:
  virtual ~ChangeSource();

  // Starts reporting to sink (which outlives the source's reporting). Throws when the source
  // cannot be watched at all; a source that can fall back (polling) does so and says why through
  // sink.note().
  virtual void start(ChangeSink& sink) = 0;
  // Stops reporting: no call of the sink is made after stop() returns. Idempotent.
  virtual void stop() = 0;
  // On the following thread: adds to changes a new provider for every provider of this source
  // whose content differs from the content in force, and records problems (a file that cannot be
  // read) in errors. Must leave the registered providers as they are. A source remembers what it
  // proposed, so that content refused once is not proposed again until it changes.
  virtual void reread(ProviderChanges& changes, ValidationErrors& errors) = 0;
  // On the following thread, once changes are in force: the providers of changes are now the
  // registered ones (the replaced ones are destroyed after this call). Does nothing by default.
  virtual void applied(const ProviderChanges& changes);
};

}  // namespace zelk::configuration::impl
