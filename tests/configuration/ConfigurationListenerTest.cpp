#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "configuration/Models.h"
#include "support/InstallationFixture.h"
#include "zelk/configuration/ConfigurationManager.h"
#include "zelk/configuration/impl/ConfigurationManagerImpl.h"
#include "zelk/configuration/impl/ItemPlace.h"
#include "zelk/configuration/ConfigurationListener.h"
#include "zelk/configuration/impl/ListenerManager.h"
#include "zelk/configuration/impl/ValueState.h"

namespace zelk::configuration {
namespace {

// Records every notification as "event:name" (old text after '=' for changes).
class RecordingListener : public ConfigurationListener {
public:
  ~RecordingListener() override {}

  void onValueAdded(const ParameterRef*, const ValueAddedArguments& args) override {
    events.push_back(std::string("added:") + args.mValue->getName());
  }
  void onValueChanged(const ParameterRef*, const ValueChangedArguments& args) override {
    std::string old = "<none>";
    if (!args.mOldValue.isNull() && args.mOldValue.hasValue()) {
      old = args.mOldValue.asString();
    }
    events.push_back(std::string("changed:") + args.mValue->getName() + "=" + old);
  }
  void onValueRemoved(const ParameterRef*, const ValueRemovedArguments& args) override {
    events.push_back(std::string("removed:") + args.mValue->getName());
  }
  void onValueGroupAdded(const Container* container,
                         const ValueGroupAddedArguments& args) override {
    events.push_back(std::string("groupAdded:") + container->getId() + "/" +
                     args.mValueGroup->getName());
  }
  void onValueGroupRemoved(const Container* container,
                           const ValueGroupRemovedArguments& args) override {
    events.push_back(std::string("groupRemoved:") + container->getId() + "/" +
                     args.mValueGroup->getName());
  }

  std::vector<std::string> events;
};

class ConfigurationListenerTest : public ::testing::Test {
protected:
  ConfigurationListenerTest() : listeners(impl::ListenerManager::getInstance()) {
    listeners->reset();
  }
  ~ConfigurationListenerTest() override { listeners->reset(); }

  zelk::test::ValueTestModel model;
  impl::ListenerManager* listeners;
};

TEST_F(ConfigurationListenerTest, RegistrationReportsChangesOnly) {
  RecordingListener listener;
  EXPECT_TRUE(listener.startListeningTo(model.spec));
  EXPECT_FALSE(listener.startListeningTo(model.spec));
  EXPECT_TRUE(listener.startListeningTo(model.port));
  EXPECT_EQ(2u, listeners->getListenerCount());
  EXPECT_FALSE(listener.stopListeningTo(model.db));
  EXPECT_TRUE(listener.stopListeningTo(model.port));
  EXPECT_FALSE(listener.stopListeningTo(model.port));
  EXPECT_EQ(1u, listeners->getListenerCount());
}

TEST_F(ConfigurationListenerTest, OnlyTheNearestWatchedItemHearsAnEvent) {
  RecordingListener onSpec;
  RecordingListener onPort;
  onSpec.startListeningTo(model.spec);

  ValueGroup root(model.spec);
  root.complete();
  root.addValue("port", "1");
  ValueGroup db = root.addGroup("db");
  db.addValue("host", "h");
  EXPECT_EQ((std::vector<std::string>{"added:port", "groupAdded:db/db", "added:host"}),
            onSpec.events);

  EXPECT_TRUE(listeners->hasListeners(model.host));
  onPort.startListeningTo(model.port);
  root.getValue("port").set(2);
  EXPECT_EQ((std::vector<std::string>{"changed:port=1"}), onPort.events);
  EXPECT_EQ(3u, onSpec.events.size());  // the nearer listener took the event

  onPort.stopListeningTo(model.port);
  root.getValue("port").set(3);
  EXPECT_EQ("changed:port=2", onSpec.events.back());
  EXPECT_EQ(1u, onPort.events.size());
  EXPECT_EQ(1u, listeners->getListenerCount(model.port));  // falls back to the specification
}

TEST_F(ConfigurationListenerTest, AddsChangesAndRemovalsOfCompleteTreesAreAnnounced) {
  RecordingListener listener;
  listener.startListeningTo(model.spec);

  ValueGroup incomplete(model.spec);
  incomplete.addValue("port", "1");
  incomplete.getValue("port").set(2);
  incomplete.remove("port");
  EXPECT_TRUE(listener.events.empty());  // nothing for an incomplete tree

  ValueGroup root(model.spec);
  ValueGroup target = root.addGroup("target");
  root.complete();
  UnboundedValue paths = root.addUnboundedValue("paths", "/a");
  paths.add("/b");
  paths.set(0, "/c");
  Value fresh(model.name);
  root.add(fresh);
  fresh.set("n");
  root.addValue("stray", "1");  // unmatched: nobody watches it
  EXPECT_TRUE(root.remove("paths"));
  EXPECT_TRUE(root.remove("stray"));
  EXPECT_TRUE(root.remove("target"));
  EXPECT_EQ((std::vector<std::string>{"added:paths", "added:paths", "changed:paths=/a",
                                      "added:name", "changed:name=<none>", "removed:paths",
                                      "groupRemoved:target/target"}),
            listener.events);

  // A listener on a container hears the values inside it.
  RecordingListener onDb;
  onDb.startListeningTo(model.db);
  ValueGroup db = root.addGroup("db");
  db.addValue("host", "x");
  EXPECT_EQ((std::vector<std::string>{"groupAdded:db/db", "added:host"}), onDb.events);
  EXPECT_EQ("groupRemoved:target/target", listener.events.back());
}

TEST_F(ConfigurationListenerTest, DestroyingAListenerUnregistersIt) {
  {
    RecordingListener shortLived;
    shortLived.startListeningTo(model.spec);
    shortLived.startListeningTo(model.db);
    shortLived.startListeningTo(model.port);
    EXPECT_EQ(3u, listeners->getListenerCount());
  }
  EXPECT_EQ(0u, listeners->getListenerCount());
  ValueGroup root(model.spec);
  root.complete();
  root.addValue("port", "1");  // no listener left to call
}

// Stops listening to its item from inside the notification; the walk goes on with the others.
class SelfRemovingListener : public RecordingListener {
public:
  explicit SelfRemovingListener(const ParameterRef* ref) : mRef(ref) {}
  void onValueAdded(const ParameterRef* ref, const ValueAddedArguments& args) override {
    RecordingListener::onValueAdded(ref, args);
    stopListeningTo(mRef);
  }

private:
  const ParameterRef* mRef;
};

TEST_F(ConfigurationListenerTest, ListenersMayStopListeningDuringANotification) {
  SelfRemovingListener first(model.port);
  SelfRemovingListener second(model.port);
  first.startListeningTo(model.port);
  second.startListeningTo(model.port);
  ValueGroup root(model.spec);
  root.complete();
  root.addValue("port", "1");
  EXPECT_EQ(1u, first.events.size());
  EXPECT_EQ(1u, second.events.size());
  EXPECT_FALSE(listeners->hasListeners(model.port));
}

// Notes "end" in a log outside itself when a notification returns, and "destroyed" when its own
// destructor runs. Each change notification first waits a moment, so that another thread can
// destroy the listener meanwhile, then stops watching the port from inside the notification and
// writes into a member whose memory the destructor frees.
class SlowListener : public ConfigurationListener {
public:
  SlowListener(const ParameterRef* port, std::vector<std::string>& log, std::mutex& logMutex)
      : mPort(port), mLog(log), mLogMutex(logMutex) {
    mNotes.reserve(4);
  }
  ~SlowListener() override {
    stopListeningAndWait();
    note("destroyed");
  }
  void onValueChanged(const ParameterRef*, const ValueChangedArguments&) override {
    entered = true;
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    stopListeningTo(mPort);
    mNotes.push_back(1);
    note("end");
  }

  static std::atomic<bool> entered;

private:
  void note(const char* what) {
    std::lock_guard<std::mutex> lock(mLogMutex);
    mLog.push_back(what);
  }

  const ParameterRef* mPort;
  std::vector<int> mNotes;
  std::vector<std::string>& mLog;
  std::mutex& mLogMutex;
};

std::atomic<bool> SlowListener::entered(false);

TEST_F(ConfigurationListenerTest, DestroyingAListenerWaitsForItsNotificationOnAnotherThread) {
  std::vector<std::string> log;
  std::mutex logMutex;
  SlowListener* listener = new SlowListener(model.port, log, logMutex);
  listener->startListeningTo(model.port);
  listener->startListeningTo(model.db);
  ValueGroup root(model.spec);
  root.complete();
  root.addValue("port", "1");
  SlowListener::entered = false;
  std::thread changer([&root] { root.getValue("port").set(2); });
  while (!SlowListener::entered) {
    std::this_thread::yield();
  }
  delete listener;
  changer.join();
  EXPECT_EQ((std::vector<std::string>{"end", "destroyed"}), log);
  EXPECT_EQ(0u, listeners->getListenerCount());
}

// Destroys itself, or only stops, from inside its own notification.
class SelfStoppingListener : public RecordingListener {
public:
  explicit SelfStoppingListener(bool destroy) : mDestroy(destroy) {}
  ~SelfStoppingListener() override { stopListeningAndWait(); }
  void onValueAdded(const ParameterRef* ref, const ValueAddedArguments& args) override {
    RecordingListener::onValueAdded(ref, args);
    if (mDestroy) {
      delete this;
    } else {
      stopListeningAndWait();
    }
  }

private:
  bool mDestroy;
};

TEST_F(ConfigurationListenerTest, AListenerMayStopOrDestroyItselfInItsOwnNotification) {
  SelfStoppingListener stopping(false);
  SelfStoppingListener* destroying = new SelfStoppingListener(true);
  RecordingListener other;
  for (ConfigurationListener* listener :
       std::vector<ConfigurationListener*>{&stopping, destroying, &other}) {
    listener->startListeningTo(model.spec);
    listener->startListeningTo(model.db);
  }
  ValueGroup root(model.spec);
  root.complete();
  root.addValue("port", "1");
  root.addValue("name", "n");
  EXPECT_EQ((std::vector<std::string>{"added:port"}), stopping.events);
  EXPECT_EQ((std::vector<std::string>{"added:port", "added:name"}), other.events);
  EXPECT_EQ(2u, listeners->getListenerCount());  // the other listener's two items
  // The stopped listener may watch again.
  EXPECT_TRUE(stopping.startListeningTo(model.spec));
}

// The tool of the reload case: port and name, and a container db holding host.
const char* const RELOAD_REGISTRY =
    "<ConfigurationRegistry crgSchemaVersion=\"1.1\">"
    "<Parameters><Parameter id=\"port\" type=\"int32\" description=\"P\"/>"
    "<Parameter id=\"name\" type=\"string\" description=\"N\"/>"
    "<Parameter id=\"host\" type=\"string\" description=\"H\"/></Parameters>"
    "<Specifications><Specification id=\"tool\" description=\"Tool\">"
    "<ParameterRef id=\"port\" optional=\"true\"/><ParameterRef id=\"name\" optional=\"true\"/>"
    "<Container id=\"db\" description=\"D\" optional=\"true\">"
    "<ParameterRef id=\"host\" optional=\"true\"/></Container>"
    "</Specification></Specifications></ConfigurationRegistry>";

TEST_F(ConfigurationListenerTest, ListenersKeepTheirPlaceAcrossReloads) {
  zelk::test::InstallationFixture installation;
  installation.writeEtcFile("zelk.crg", RELOAD_REGISTRY);
  ConfigurationManager manager;
  manager.loadDefaultConfigurationRegistry();
  const Specification* first = manager.getSpecification("tool");
  RecordingListener onPort, onDb, onTool;
  onPort.startListeningTo(first->getItemsContainer()->findParameterRef("port"));
  onDb.startListeningTo(first->getItemsContainer()->findContainer("db"));
  onTool.startListeningTo(first);
  const int RELOADS = 100;
  for (int i = 0; i < RELOADS; ++i) {
    // Every way a manager makes its specifications anew; the old objects die each time, so new
    // ones may take their addresses.
    switch (i % 3) {
      case 0:
        manager.reset();
        break;
      case 1:
        manager.enableConfiguration(false, nullptr, 0, nullptr, nullptr);
        break;
      default:
        manager.getImpl()->clearCaches();
        manager.loadDefaultConfigurationRegistry();
    }
    ValueGroup root(manager.getSpecification("tool"));
    root.complete();
    root.addValue("port", std::to_string(i).c_str());
    root.addValue("name", "n");
  }
  EXPECT_EQ(std::vector<std::string>(RELOADS, "added:port"), onPort.events);
  EXPECT_EQ(std::vector<std::string>(RELOADS, "added:name"), onTool.events);
  EXPECT_EQ(std::vector<std::string>(), onDb.events);
  // Stopping by an item of the latest load ends the watch made through the first one.
  const Container* items = manager.getSpecification("tool")->getItemsContainer();
  EXPECT_TRUE(onPort.stopListeningTo(items->findParameterRef("PORT")));
  EXPECT_TRUE(onDb.stopListeningTo(items->findContainer("db")));
  EXPECT_EQ(1u, listeners->getListenerCount());
}

TEST_F(ConfigurationListenerTest, APlaceIsTheSpecificationAndItsContainersDownToTheItem) {
  const struct {
    const GroupItem* item;
    const char* place;
  } cases[] = {
      {model.items, "tool"},
      {model.port, "tool/port"},
      {model.host, "tool/db/host"},
      {model.path, "tool/target/path"},
      {model.alpha, "tool/alpha"},  // one-ofs and logical groups are not places
  };
  for (const auto& c : cases) {
    EXPECT_EQ(c.place, impl::ItemPlace(*c.item).toString());
  }
  // Ids are compared without regard to case, as everywhere else.
  zelk::test::SpecificationBuilder other;
  Specification* upper = other.specification("TOOL");
  ParameterRef* port = other.ref(upper->getItemsContainer(), "PORT", Parameter::INT32, 0);
  RecordingListener listener;
  listener.startListeningTo(model.port);
  EXPECT_FALSE(listener.startListeningTo(port));
  EXPECT_EQ(1u, listeners->getListenerCount(port));
  ValueGroup root(upper);
  root.complete();
  root.addValue("PORT", "1");
  EXPECT_EQ((std::vector<std::string>{"added:PORT"}), listener.events);
}

}  // namespace
}  // namespace zelk::configuration
