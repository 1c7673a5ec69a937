// ValueFileSource: the value files of an enabled configuration as a ChangeSource: the
// "-loadConfiguration" files, the application's file and "machine.config" (followed even while
// it is missing, since it may be created).
//
// A FileWatcher reports that a file may have changed; reread() compares each file's content with
// the content last proposed (a fingerprint of its bytes) and, for a file that differs, reads it
// into a new XmlFileValueProvider with the priority of the one it replaces. A required file that
// is missing is an error; an optional one that goes takes its provider with it.
//
//   ValueFileSource* files = new ValueFileSource(manager, manager.getValueFiles(), options);
//   manager.addChangeSource(files);
#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "zelk/configuration/impl/ChangeSource.h"

namespace zelk::configuration::impl {

class ConfigurationManagerImpl;
class FileWatcher;

class ValueFileSource : public ChangeSource {
public:
  // One value file as the manager loaded it.
  struct File {
    // The path the provider was given.
    std::string path;
    // The registered provider that holds its values; null while an optional file is missing.
    // Only compared, never used: the application may have unregistered it.
    ValueProvider* provider;
    // Its priority, given to the provider that replaces it.
    int priority;
    // "machine.config": may be missing.
    bool optional;
  };

  ValueFileSource(ConfigurationManagerImpl& manager, const std::vector<File>& files,
                  bool forcePolling, std::chrono::milliseconds pollInterval);
  ~ValueFileSource() override;

  // Takes the fingerprint of every file as the content in force, then starts watching.
  void start(ChangeSink& sink) override;
  void stop() override;
  void reread(ProviderChanges& changes, ValidationErrors& errors) override;
  void applied(const ProviderChanges& changes) override;

  // True once the files are polled rather than watched through inotify.
  bool isPolling() const;

  // Content fingerprint of a file: whether it exists, its length, and a 64-bit hash of its bytes.
  // A file longer than maxBytes is fingerprinted by its length alone (the load refuses it).
  struct Fingerprint {
    bool exists;
    uint64_t size;
    uint64_t hash;
    bool operator==(const Fingerprint& other) const {
      return exists == other.exists && size == other.size && hash == other.hash;
    }
  };
  static Fingerprint fingerprint(const std::string& path, uint64_t maxBytes);

private:
  struct Entry {
    File file;
    Fingerprint proposed;
  };

  ConfigurationManagerImpl& mManager;
  std::vector<Entry> mEntries;
  bool mForcePolling;
  std::chrono::milliseconds mPollInterval;
  std::unique_ptr<FileWatcher> mWatcher;
};

}  // namespace zelk::configuration::impl
