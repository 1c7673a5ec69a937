// A service following its values from an etcd key, against a real etcd: each change reaches the
// listeners once it is in force, and a refused document (malformed, or a value of the wrong type)
// leaves the values in force as they were until the next good one.
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/EtcdServer.h"
#include "support/InstallationFixture.h"
#include "zelk/configuration/ConfigurationListener.h"
#include "zelk/configuration/ConfigurationManager.h"
#include "zelk/configuration/FollowOptions.h"
#include "zelk/configuration/ListenerArguments.h"
#include "zelk/configuration/ParameterRef.h"
#include "zelk/configuration/Value.h"
#include "zelk/configuration/ValueGroup.h"

namespace zelk::configuration {
namespace {

const char* const REGISTRY =
    "<ConfigurationRegistry crgSchemaVersion=\"1.1\"><Parameters>"
    "<Parameter id=\"port\" type=\"int32\" description=\"P\"/>"
    "<Parameter id=\"name\" type=\"string\" description=\"N\"/></Parameters>"
    "<Specifications><Specification id=\"svc\" description=\"S\">"
    "<ParameterRef id=\"port\" optional=\"true\"/><ParameterRef id=\"name\"/>"
    "</Specification></Specifications></ConfigurationRegistry>";

// What the listener and the callbacks were told.
class Record : public ConfigurationListener {
public:
  void onValueChanged(const ParameterRef* ref, const ValueChangedArguments& args) override {
    std::lock_guard<std::mutex> lock(mMutex);
    mEvents.push_back("changed " + std::string(ref->getId()) + " " + args.mOldValue.asString() +
                      "->" + static_cast<const Value*>(args.mValue)->asString());
  }
  FollowOptions options() {
    FollowOptions options;
    // One put is one whole change, read at once: a delay the test could never wait out shows it.
    options.coalescingDelay = std::chrono::hours(1);
    options.onApplied = [this](const AppliedChange&) {
      std::lock_guard<std::mutex> lock(mMutex);
      ++mApplied;
      mWake.notify_all();
    };
    options.onRefused = [this](const RefusedChange& change) {
      std::lock_guard<std::mutex> lock(mMutex);
      mRefused.push_back(change.errors.empty() ? "" : change.errors.front());
      mWake.notify_all();
    };
    return options;
  }
  bool waitApplied(int count) {
    std::unique_lock<std::mutex> lock(mMutex);
    return mWake.wait_for(lock, std::chrono::seconds(10), [&] { return mApplied >= count; });
  }
  bool waitRefused(size_t count) {
    std::unique_lock<std::mutex> lock(mMutex);
    return mWake.wait_for(lock, std::chrono::seconds(10), [&] { return mRefused.size() >= count; });
  }
  std::vector<std::string> events() {
    std::lock_guard<std::mutex> lock(mMutex);
    return mEvents;
  }
  std::vector<std::string> refused() {
    std::lock_guard<std::mutex> lock(mMutex);
    return mRefused;
  }

private:
  std::mutex mMutex;
  std::condition_variable mWake;
  std::vector<std::string> mEvents;
  int mApplied = 0;
  std::vector<std::string> mRefused;
};

TEST(EtcdFollowingTest, ChangesReachTheListenerAndRefusedDocumentsKeepTheValues) {
  test::InstallationFixture installation;
  installation.writeEtcFile("zelk.crg", REGISTRY);
  test::EtcdServer etcd;
  etcd.put("/fleet/svc", "<fleet><svc name=\"n\" port=\"1\"/></fleet>");
  const std::string settings = "endpoints=" + etcd.endpoint() + ";key=/fleet/svc";
  const char* argv[] = {"svc", "-etcdConfiguration", settings.c_str()};
  Record record;
  {
    ConfigurationManager manager;
    manager.enableConfiguration(false, nullptr, 3, argv, "svc");
    record.startListeningTo(manager.getSpecification("svc"));
    manager.followValues("svc", record.options());
    const auto port = [&] {
      return manager.getValueGroup("svc", true, 0).getValue("port").asString();
    };

    etcd.put("/fleet/svc", "<fleet><svc name=\"n\" port=\"2\"/></fleet>");
    ASSERT_TRUE(record.waitApplied(1));
    EXPECT_EQ("2", port());
    EXPECT_EQ(std::vector<std::string>{"changed port 1->2"}, record.events());

    const int64_t malformed = etcd.put("/fleet/svc", "<fleet><svc name=\"n\" port=\"3\"></fleet>");
    ASSERT_TRUE(record.waitRefused(1));
    EXPECT_NE(std::string::npos, record.refused()[0].find("etcd key /fleet/svc at revision " +
                                                          std::to_string(malformed)))
        << record.refused()[0];
    etcd.put("/fleet/svc", "<fleet><svc name=\"n\" port=\"many\"/></fleet>");
    ASSERT_TRUE(record.waitRefused(2));
    EXPECT_NE(std::string::npos, record.refused()[1].find("many")) << record.refused()[1];
    EXPECT_EQ("2", port());

    etcd.put("/fleet/svc", "<fleet><svc name=\"n\" port=\"4\"/></fleet>");
    ASSERT_TRUE(record.waitApplied(2));
    EXPECT_EQ("4", port());
    EXPECT_EQ((std::vector<std::string>{"changed port 1->2", "changed port 2->4"}),
              record.events());
    manager.stopFollowing();
  }
}

}  // namespace
}  // namespace zelk::configuration
