// Following value files while the application runs: the ways editors and orchestrators save,
// coalescing, refused changes, stopping, polling, and readers on other threads during changes.
// In its own executable because it changes process-wide state (host directories, the main log).
#include <gtest/gtest.h>
#include <stdio.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "support/InstallationFixture.h"
#include "support/MainLogCapture.h"
#include "support/TextFiles.h"
#include "zelk/configuration/ConfigurationListener.h"
#include "zelk/configuration/ConfigurationManager.h"
#include "zelk/configuration/ListenerArguments.h"
#include "zelk/configuration/ParameterRef.h"
#include "zelk/configuration/Specification.h"
#include "zelk/configuration/Value.h"
#include "zelk/configuration/ValueGroup.h"
#include "zelk/configuration/impl/ConfigurationManagerImpl.h"

namespace zelk::configuration {
namespace {

using std::chrono::milliseconds;

// "svc": port (int32), name (required string), where (string checked by "storageLocation"), and
// four strings a..d that the readers' test changes together.
const char* const REGISTRY =
    "<ConfigurationRegistry crgSchemaVersion=\"1.1\"><Parameters>"
    "<Parameter id=\"port\" type=\"int32\" description=\"P\"/>"
    "<Parameter id=\"name\" type=\"string\" description=\"N\"/>"
    "<Parameter id=\"where\" type=\"string\" description=\"W\" validator=\"storageLocation\"/>"
    "<Parameter id=\"a\" type=\"string\" description=\"A\"/>"
    "<Parameter id=\"b\" type=\"string\" description=\"B\"/>"
    "<Parameter id=\"c\" type=\"string\" description=\"C\"/>"
    "<Parameter id=\"d\" type=\"string\" description=\"D\"/></Parameters>"
    "<Specifications><Specification id=\"svc\" description=\"S\">"
    "<ParameterRef id=\"port\" optional=\"true\"/><ParameterRef id=\"name\"/>"
    "<ParameterRef id=\"where\" optional=\"true\"/><ParameterRef id=\"a\" optional=\"true\"/>"
    "<ParameterRef id=\"b\" optional=\"true\"/><ParameterRef id=\"c\" optional=\"true\"/>"
    "<ParameterRef id=\"d\" optional=\"true\"/></Specification></Specifications>"
    "</ConfigurationRegistry>";

const milliseconds TIMEOUT(5000);

std::string values(const std::string& port) {
  return "<svc name=\"n\" port=\"" + port + "\"/>";
}

// Replaces path the way editors save: a new file in the same directory renamed over the old one.
void renameOver(const std::string& path, const std::string& content) {
  test::writeTextFile(path + ".swp", content);
  ASSERT_EQ(0, ::rename((path + ".swp").c_str(), path.c_str()));
}

// Everything the listeners and callbacks were told, and a way to wait for it.
class Record : public ConfigurationListener {
public:
  void onValueAdded(const ParameterRef* ref, const ValueAddedArguments& args) override {
    add("added " + std::string(ref->getId()) + "=" + text(args.mValue));
  }
  void onValueChanged(const ParameterRef* ref, const ValueChangedArguments& args) override {
    add("changed " + std::string(ref->getId()) + " " + args.mOldValue.asString() + "->" +
        text(args.mValue));
  }
  void onValueRemoved(const ParameterRef* ref, const ValueRemovedArguments&) override {
    add("removed " + std::string(ref->getId()));
  }

  FollowOptions options(milliseconds delay = milliseconds(50)) {
    FollowOptions options;
    options.coalescingDelay = delay;
    options.onApplied = [this](const AppliedChange& change) {
      std::lock_guard<std::mutex> lock(mMutex);
      ++mApplied;
      mSources = change.sources;
      mWake.notify_all();
    };
    options.onRefused = [this](const RefusedChange& change) {
      std::lock_guard<std::mutex> lock(mMutex);
      mRefused.push_back(change.errors);
      mWake.notify_all();
    };
    return options;
  }

  // Waits until at least count changes were applied; false on timeout.
  bool waitApplied(int count) {
    std::unique_lock<std::mutex> lock(mMutex);
    return mWake.wait_for(lock, TIMEOUT, [&] { return mApplied >= count; });
  }
  bool waitRefused(size_t count) {
    std::unique_lock<std::mutex> lock(mMutex);
    return mWake.wait_for(lock, TIMEOUT, [&] { return mRefused.size() >= count; });
  }
  std::vector<std::string> events() {
    std::lock_guard<std::mutex> lock(mMutex);
    return mEvents;
  }
  int applied() {
    std::lock_guard<std::mutex> lock(mMutex);
    return mApplied;
  }
  std::vector<std::vector<std::string>> refused() {
    std::lock_guard<std::mutex> lock(mMutex);
    return mRefused;
  }
  std::vector<std::string> sources() {
    std::lock_guard<std::mutex> lock(mMutex);
    return mSources;
  }

private:
  static std::string text(const ValueBase* value) {
    return static_cast<const Value*>(value)->asString();
  }
  void add(const std::string& event) {
    std::lock_guard<std::mutex> lock(mMutex);
    mEvents.push_back(event);
  }

  std::mutex mMutex;
  std::condition_variable mWake;
  std::vector<std::string> mEvents;
  int mApplied = 0;
  std::vector<std::vector<std::string>> mRefused;
  std::vector<std::string> mSources;
};

class ValueFollowingTest : public ::testing::Test {
protected:
  ValueFollowingTest() { mInstallation.writeEtcFile("zelk.crg", REGISTRY); }

  // Enables the manager on the application file path (with content) and follows "svc".
  void follow(const std::string& path, const std::string& content, const FollowOptions& options) {
    test::writeTextFile(path, content);
    mManager.enableConfiguration(true, path.c_str(), 0, nullptr, "svc");
    mRecord.startListeningTo(mManager.getSpecification("svc"));
    mManager.followValues("svc", options);
  }

  std::string port() { return mManager.getValueGroup("svc", true, 0).getValue("port").asString(); }

  test::InstallationFixture mInstallation;
  test::MainLogCapture mLog;
  Record mRecord;
  ConfigurationManager mManager;
};

TEST_F(ValueFollowingTest, AnEditorsRenameOverSaveIsAppliedAndToldOnce) {
  const std::string path = mInstallation.configDir() + "/svc.config";
  follow(path, values("1"), mRecord.options());
  const ValueGroup before = mManager.getValueGroup("svc", true, 0);

  renameOver(path, "<svc name=\"n\" port=\"2\" where=\"host::/data\"/>");
  ASSERT_TRUE(mRecord.waitApplied(1));
  EXPECT_EQ("2", port());
  // A tree handed out earlier keeps its values.
  EXPECT_EQ("1", before.getValue("port").asString());
  EXPECT_EQ((std::vector<std::string>{"changed port 1->2", "added where=host::/data"}),
            mRecord.events());
  EXPECT_EQ(std::vector<std::string>{path}, mRecord.sources());
  EXPECT_TRUE(mLog.contains("followValues: [applied]")) << mLog.dump();

  // The watch survives the rename: the next save is seen too.
  renameOver(path, values("3"));
  ASSERT_TRUE(mRecord.waitApplied(2));
  EXPECT_EQ("3", port());
}

TEST_F(ValueFollowingTest, AFileDeletedAndCreatedAgainIsFollowedAndMachineConfigWhenCreated) {
  const std::string path = mInstallation.configDir() + "/svc.config";
  follow(path, values("1"), mRecord.options());

  // The application's file is required: its absence is refused and the values stay.
  ASSERT_EQ(0, ::unlink(path.c_str()));
  ASSERT_TRUE(mRecord.waitRefused(1)) << mLog.dump();
  EXPECT_EQ(std::vector<std::string>{"File \"" + path + "\" was not found"},
            mRecord.refused()[0]);
  EXPECT_EQ("1", port());

  test::writeTextFile(path, values("2"));
  ASSERT_TRUE(mRecord.waitApplied(1));
  EXPECT_EQ("2", port());

  // "machine.config" was missing at start; once created, its values count (after the
  // application file's).
  test::writeTextFile(mInstallation.configDir() + "/machine.config",
                      "<svc port=\"9\" where=\"m::x\"/>");
  ASSERT_TRUE(mRecord.waitApplied(2));
  EXPECT_EQ("2", port());
  EXPECT_EQ("m::x", mManager.getValueGroup("svc", true, 0).getValue("where").asString());
}

TEST_F(ValueFollowingTest, ASwappedSymbolicLinkToADirectoryIsFollowed) {
  // The layout of a mounted configuration: svc.config -> ..data/svc.config, ..data -> ..v1.
  const std::string dir = mInstallation.root() + "/mounted";
  test::writeTextFile(dir + "/..v1/svc.config", values("1"));
  ASSERT_EQ(0, ::symlink("..v1", (dir + "/..data").c_str()));
  ASSERT_EQ(0, ::symlink("..data/svc.config", (dir + "/svc.config").c_str()));
  mManager.enableConfiguration(false, (dir + "/svc.config").c_str(), 0, nullptr, "svc");
  mManager.followValues("svc", mRecord.options());

  for (int version = 2; version <= 3; ++version) {
    const std::string next = "..v" + std::to_string(version);
    test::writeTextFile(dir + "/" + next + "/svc.config", values(std::to_string(version)));
    ASSERT_EQ(0, ::symlink(next.c_str(), (dir + "/..tmp").c_str()));
    ASSERT_EQ(0, ::rename((dir + "/..tmp").c_str(), (dir + "/..data").c_str()));
    ASSERT_TRUE(mRecord.waitApplied(version - 1));
    EXPECT_EQ(std::to_string(version), port());
  }
  // The directory the link leads to now is watched too: an edit in place there is seen.
  test::writeTextFile(dir + "/..v3/svc.config", values("4"));
  ASSERT_TRUE(mRecord.waitApplied(3));
  EXPECT_EQ("4", port());
}

TEST_F(ValueFollowingTest, ABurstOfWritesIsOneChangeAndUnchangedContentNone) {
  const std::string path = mInstallation.configDir() + "/svc.config";
  follow(path, values("1"), mRecord.options(milliseconds(400)));

  // Written in pieces, as a program writing without a temporary file does.
  for (int i = 2; i <= 6; ++i) {
    test::writeTextFile(path, values(std::to_string(i)));
  }
  ASSERT_TRUE(mRecord.waitApplied(1));
  EXPECT_EQ("6", port());
  // The same content saved again, then a comment-only edit: no value differs, nothing is told.
  test::writeTextFile(path, values("6"));
  test::writeTextFile(path, "<!-- same --><svc name=\"n\" port=\"6\"/>");
  // A last change that is told shows that nothing came between.
  test::writeTextFile(mInstallation.configDir() + "/machine.config", "<svc a=\"x\"/>");
  ASSERT_TRUE(mRecord.waitApplied(2));
  EXPECT_EQ((std::vector<std::string>{"changed port 1->6", "added a=x"}), mRecord.events());
  EXPECT_EQ(2, mRecord.applied());
}

TEST_F(ValueFollowingTest, AnInvalidEditIsKeptOutWithEveryErrorReported) {
  struct Case {
    const char* content;
    const char* error;
  };
  const Case cases[] = {
      {"<svc name=\"n\" port=\"x\"/>", "\"x\" is not a valid Int32"},
      {"<svc name=\"n\" port=\"1\" where=\"::/d\"/>",
       "The value \"::/d\" of \"where\" is rejected by the \"storageLocation\" validator: Value "
       "is not properly formatted"},
      {"<svc port=\"5\"/>", "name"},
      {"<svc name=\"n\" port=\"1\"", "svc.config"},
      {"<svc name=\"n\" port=\"1\"/>                                                        ",
       "more than the limit of 64 bytes"},
  };
  const std::string path = mInstallation.configDir() + "/svc.config";
  follow(path, values("1"), mRecord.options());
  mManager.setMaxFileSize(64);
  const ValueGroup before = mManager.getValueGroup("svc", true, 0);
  size_t refused = 0;
  for (const Case& bad : cases) {
    SCOPED_TRACE(bad.content);
    renameOver(path, bad.content);
    ASSERT_TRUE(mRecord.waitRefused(++refused)) << mLog.dump();
    const std::vector<std::string> errors = mRecord.refused().back();
    ASSERT_FALSE(errors.empty());
    EXPECT_NE(std::string::npos, errors[0].find(bad.error)) << errors[0];
    // The same tree is handed out, and nothing was told.
    EXPECT_EQ(before.getInstanceId(), mManager.getValueGroup("svc", true, 0).getInstanceId());
    EXPECT_TRUE(mRecord.events().empty());
  }
  EXPECT_TRUE(mLog.contains("followValues: [refused]")) << mLog.dump();
  // The next good save applies.
  renameOver(path, values("7"));
  ASSERT_TRUE(mRecord.waitApplied(1));
  EXPECT_EQ("7", port());
}

TEST_F(ValueFollowingTest, StoppingEndsFollowingAndResetStopsIt) {
  const std::string path = mInstallation.configDir() + "/svc.config";
  follow(path, values("1"), mRecord.options(milliseconds(20)));
  EXPECT_TRUE(mManager.isFollowing());
  mManager.stopFollowing();
  EXPECT_FALSE(mManager.isFollowing());
  renameOver(path, values("2"));
  // Twenty coalescing delays: a follower still running would have applied by then.
  std::this_thread::sleep_for(milliseconds(400));
  EXPECT_EQ(0, mRecord.applied());
  EXPECT_EQ("1", port());

  mManager.followValues("svc", mRecord.options(milliseconds(20)));
  mManager.reset();
  EXPECT_FALSE(mManager.isFollowing());
}

TEST_F(ValueFollowingTest, PollingFollowsWhenAskedAndSaysSo) {
  const std::string path = mInstallation.configDir() + "/svc.config";
  FollowOptions options = mRecord.options();
  options.forcePolling = true;
  options.pollInterval = milliseconds(20);
  follow(path, values("1"), options);
  EXPECT_TRUE(mManager.getImpl()->isPollingValueFiles());
  renameOver(path, values("22"));
  ASSERT_TRUE(mRecord.waitApplied(1));
  EXPECT_EQ("22", port());
  EXPECT_TRUE(mLog.contains("following value files by polling every 20 ms")) << mLog.dump();
}

TEST_F(ValueFollowingTest, ReadersSeeAllValuesFromBeforeOrAllFromAfterAChange) {
  const std::string path = mInstallation.configDir() + "/svc.config";
  auto content = [](int n) {
    const std::string v = std::to_string(n);
    return "<svc name=\"n\" a=\"" + v + "\" b=\"" + v + "\" c=\"" + v + "\" d=\"" + v + "\"/>";
  };
  follow(path, content(0), mRecord.options(milliseconds(5)));
  std::atomic<bool> done(false);
  std::atomic<int> mixed(0);
  std::vector<std::thread> readers;
  for (int i = 0; i < 4; ++i) {
    readers.emplace_back([&] {
      while (!done.load()) {
        const ValueGroup tree = mManager.getValueGroup("svc", true, 0);
        const std::string a = tree.getValue("a").asString();
        if (tree.getValue("b").asString() != a || tree.getValue("c").asString() != a ||
            tree.getValue("d").asString() != a) {
          ++mixed;
        }
      }
    });
  }
  const int CHANGES = 20;
  bool allApplied = true;
  for (int n = 1; n <= CHANGES && allApplied; ++n) {
    test::writeTextFile(path + ".swp", content(n));
    allApplied = ::rename((path + ".swp").c_str(), path.c_str()) == 0 && mRecord.waitApplied(n);
  }
  done = true;
  for (std::thread& reader : readers) {
    reader.join();
  }
  ASSERT_TRUE(allApplied);
  EXPECT_EQ(0, mixed.load());
  EXPECT_EQ(std::to_string(CHANGES), mManager.getValueGroup("svc", true, 0).getValue("a").asString());
}

}  // namespace
}  // namespace zelk::configuration
