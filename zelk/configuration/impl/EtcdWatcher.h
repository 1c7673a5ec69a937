// EtcdWatcher: follows one etcd key from a known revision on a thread of its own, and tells of
// every change of the key's document without missing one.
//
// The watch starts at the revision after the read that gave the document in force, so a change
// made between that read and the watch is seen. When the cluster cancels the watch (its start was
// compacted away, a leader change, a shutdown) or the connection is lost, the watcher reads the
// key again, tells of the document if it differs from the last one told, and watches again from
// after that read. A lost cluster is retried with growing pauses (from minDelay, doubling up to
// maxDelay); the values in force stay as they are meanwhile.
//
//   EtcdWatcher watcher(source, read.revision, read.modRevision, read.found);
//   watcher.start([](const EtcdWatcher::Received& r) { ... }, [](const std::string& note) { ... });
//   ...
//   watcher.stop();   // no callback runs after this returns
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

#include "zelk/configuration/EtcdSource.h"

namespace zelk::configuration::impl {

class EtcdClient;

class EtcdWatcher {
public:
  // The key's document as it is after a change.
  struct Received {
    // False when the key was deleted.
    bool found = false;
    std::string document;
    // The revision of the change.
    int64_t modRevision = 0;
    std::string endpoint;
  };

  // Follows source's key from after readRevision; modRevision and found describe the document in
  // force, so that a read again that finds it unchanged tells nothing.
  EtcdWatcher(const EtcdSource& source, int64_t readRevision, int64_t modRevision, bool found);
  ~EtcdWatcher();
  EtcdWatcher(const EtcdWatcher&) = delete;
  EtcdWatcher& operator=(const EtcdWatcher&) = delete;

  // Starts the thread: onChange for each change, in order; onNote for the connection being lost
  // and found again, and for answers not understood. Both run on the watcher's thread and may
  // throw nothing.
  void start(std::function<void(const Received&)> onChange,
             std::function<void(const std::string&)> onNote);
  // Stops and joins the thread; no callback runs after this returns. Idempotent.
  void stop();
  // The pauses between attempts to reach a lost cluster.
  void setDelays(std::chrono::milliseconds minDelay, std::chrono::milliseconds maxDelay);

private:
  void run();
  // Waits delay or until stop(); false when stopped.
  bool pause(std::chrono::milliseconds delay);
  void tell(const Received& received);

  const EtcdSource mSource;
  std::unique_ptr<EtcdClient> mClient;
  int64_t mNextRevision;
  int64_t mModRevision;
  bool mFound;
  std::function<void(const Received&)> mOnChange;
  std::function<void(const std::string&)> mOnNote;
  std::chrono::milliseconds mMinDelay;
  std::chrono::milliseconds mMaxDelay;
  std::mutex mMutex;
  std::condition_variable mWake;
  bool mStopping;
  std::thread mThread;
};

}  // namespace zelk::configuration::impl
