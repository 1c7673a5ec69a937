// Following an etcd key against a real etcd: no change is missed between the read and the watch,
// across a compaction of the revision the watch starts from, or across a restart of etcd.
#include <gtest/gtest.h>

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <string>
#include <vector>

#include "support/EtcdServer.h"
#include "zelk/configuration/impl/EtcdClient.h"
#include "zelk/configuration/impl/EtcdWatcher.h"

namespace zelk::configuration::impl {
namespace {

// What a watcher told, in order: each document ("-" for a deleted key), and its notes.
class Told {
public:
  void start(EtcdWatcher& watcher) {
    watcher.start(
        [this](const EtcdWatcher::Received& received) {
          std::lock_guard<std::mutex> lock(mMutex);
          mDocuments.push_back(received.found ? received.document : "-");
          mRevisions.push_back(received.modRevision);
          mChanged.notify_all();
        },
        [this](const std::string& note) {
          std::lock_guard<std::mutex> lock(mMutex);
          mNotes.push_back(note);
        });
  }
  // The documents told once there are count of them (or after 20 seconds, the ones there are).
  std::vector<std::string> documents(size_t count) {
    std::unique_lock<std::mutex> lock(mMutex);
    mChanged.wait_for(lock, std::chrono::seconds(20), [&] { return mDocuments.size() >= count; });
    return mDocuments;
  }
  std::vector<int64_t> revisions() {
    std::lock_guard<std::mutex> lock(mMutex);
    return mRevisions;
  }
  std::string notes() {
    std::lock_guard<std::mutex> lock(mMutex);
    std::string text;
    for (const std::string& note : mNotes) text += note + "\n";
    return text;
  }

private:
  std::mutex mMutex;
  std::condition_variable mChanged;
  std::vector<std::string> mDocuments;
  std::vector<int64_t> mRevisions;
  std::vector<std::string> mNotes;
};

TEST(EtcdWatcherTest, AChangeBetweenTheReadAndTheWatchIsNotLost) {
  test::EtcdServer etcd;
  etcd.put("/k", "one");
  const EtcdClient::Range read = etcd.client().range("/k");
  // Made after the read, before the watch starts.
  const int64_t two = etcd.put("/k", "two");
  EtcdWatcher watcher(etcd.source("/k"), read.revision, read.modRevision, read.found);
  Told told;
  told.start(watcher);
  EXPECT_EQ((std::vector<std::string>{"two"}), told.documents(1));
  etcd.put("/other", "x");
  etcd.remove("/k");
  const int64_t four = etcd.put("/k", "four");
  EXPECT_EQ((std::vector<std::string>{"two", "-", "four"}), told.documents(3));
  EXPECT_EQ(two, told.revisions()[0]);
  EXPECT_EQ(four, told.revisions()[2]);
  watcher.stop();
  etcd.put("/k", "after stop");
  EXPECT_EQ(3u, told.documents(3).size());
}

TEST(EtcdWatcherTest, ACompactedStartReadsAgainAndGoesOn) {
  test::EtcdServer etcd;
  etcd.put("/k", "one");
  const EtcdClient::Range read = etcd.client().range("/k");
  etcd.put("/k", "two");
  const int64_t three = etcd.put("/k", "three");
  etcd.compact(three);
  EtcdWatcher watcher(etcd.source("/k"), read.revision, read.modRevision, read.found);
  Told told;
  told.start(watcher);
  // The history from the read on is gone: the key is read again, and its document now is told.
  EXPECT_EQ((std::vector<std::string>{"three"}), told.documents(1));
  etcd.put("/k", "four");
  EXPECT_EQ((std::vector<std::string>{"three", "four"}), told.documents(2));
}

TEST(EtcdWatcherTest, ARestartOfEtcdIsSurvivedWithoutAMissedChange) {
  test::EtcdServer etcd;
  const int64_t first = etcd.put("/k", "one");
  EtcdWatcher watcher(etcd.source("/k"), first, first, true);
  watcher.setDelays(std::chrono::milliseconds(50), std::chrono::milliseconds(400));
  Told told;
  told.start(watcher);
  etcd.put("/k", "two");
  EXPECT_EQ((std::vector<std::string>{"two"}), told.documents(1));
  etcd.stop();
  etcd.start();
  // Made as soon as etcd is back, likely before the watcher has found it again.
  etcd.put("/k", "three");
  EXPECT_EQ((std::vector<std::string>{"two", "three"}), told.documents(2));
  etcd.put("/k", "four");
  EXPECT_EQ((std::vector<std::string>{"two", "three", "four"}), told.documents(3));
  const std::string notes = told.notes();
  EXPECT_NE(std::string::npos, notes.find("The connection to the etcd cluster at " +
                                          etcd.endpoint() + " was lost"))
      << notes;
  EXPECT_NE(std::string::npos, notes.find("answers again")) << notes;
}

}  // namespace
}  // namespace zelk::configuration::impl
