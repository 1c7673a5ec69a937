// Several threads use one manager at once after set-up: trees computed and served from the value
// cache, help and usage texts in per-thread buffers, and cached trees exchanged while readers
// read.
#include <gtest/gtest.h>

#include <chrono>
#include <future>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "configuration/Models.h"
#include "support/Threads.h"
#include "zelk/configuration/ConfigurationListener.h"
#include "zelk/configuration/ConfigurationManager.h"
#include "zelk/configuration/Value.h"
#include "zelk/configuration/ValueGroup.h"
#include "zelk/configuration/impl/ConfigurationManagerImpl.h"
#include "zelk/configuration/impl/Factory.h"
#include "zelk/configuration/impl/ListenerManager.h"
#include "zelk/configuration/impl/ValueAccess.h"
#include "zelk/configuration/impl/ValueGroupState.h"

namespace zelk::configuration {
namespace {

using zelk::test::runTogether;
typedef boost::shared_ptr<impl::ValueGroupState> State;

const int SPECIFICATIONS = 6;
const int ROUNDS = 200;

std::string idOf(int i) { return "tool" + std::to_string(i); }

// Specifications "tool0".. in a manager of their own; in "toolN" the default of "port" is N and
// the parameter names differ, so that every specification has its own help and usage text.
class ManagerConcurrencyTest : public ::testing::Test {
protected:
  typedef zelk::test::SpecificationBuilder Builder;

  ManagerConcurrencyTest()
      : mManager(impl::Factory::createManager()), mBuilder(mManager.get()) {
    for (int i = 0; i < SPECIFICATIONS; ++i) {
      Specification* spec = mBuilder.specification(idOf(i).c_str());
      Collection* items = spec->getItemsContainer();
      const std::string port = "port" + std::to_string(i);
      ParameterRef* ref = mBuilder.ref(items, port.c_str(), Parameter::INT32, Builder::OPTIONAL);
      impl::Factory::setDefaultValueFor(ref, std::to_string(i).c_str());
      mBuilder.ref(items, ("name" + std::to_string(i)).c_str(), Parameter::STRING,
                   Builder::OPTIONAL);
      mSpecs.push_back(spec);
    }
  }

  typedef GroupItemCollection Collection;

  // A complete tree of spec "tool0" whose port and name both say n.
  State treeSaying(int n) const {
    ValueGroup values(mSpecs[0]);
    values.addValue("port0", std::to_string(n).c_str());
    values.addValue("name0", std::to_string(n).c_str());
    values.complete();
    return impl::ValueAccess::peekState(values);
  }

  std::unique_ptr<ConfigurationManager> mManager;
  Builder mBuilder;
  std::vector<Specification*> mSpecs;
};

TEST_F(ManagerConcurrencyTest, FourThreadsShareTheCacheAndKeepTheirOwnTexts) {
  ConfigurationManager& manager = *mManager;
  // The texts one thread alone gets; composing them caches no values.
  std::vector<std::string> help, usage;
  for (int i = 0; i < SPECIFICATIONS; ++i) {
    help.push_back(manager.composeHelpMessage(idOf(i).c_str(), 80, 30));
    usage.push_back(manager.composeUsageMessage(idOf(i).c_str()));
    ASSERT_TRUE(i == 0 || help[i] != help[0]);
  }
  std::vector<std::map<std::string, const void*>> seen(4);
  auto worker = [&](int thread) {
    return [&, thread] {
      for (int round = 0; round < ROUNDS; ++round) {
        const int i = (round + thread) % SPECIFICATIONS;
        const std::string id = idOf(i);
        // The first rounds compute the trees, racing the other threads for each id.
        const ValueGroup values = manager.getValueGroup(id.c_str(), false, 0);
        if (values.getValue(("port" + std::to_string(i)).c_str()).asInt32() != i) {
          throw std::runtime_error("wrong tree for " + id);
        }
        const void* state = impl::ValueAccess::peekState(values).get();
        const void*& first = seen[thread][id];
        if (first == nullptr) {
          first = state;
        } else if (first != state) {
          throw std::runtime_error("the cached tree of " + id + " changed");
        }
        // Both texts are checked after both calls: another thread's call in between must not
        // change what this thread was given.
        const char* helpText = manager.composeHelpMessage(id.c_str(), 80, 30);
        const char* usageText = manager.composeUsageMessage(id.c_str());
        if (help[i] != helpText || usage[i] != usageText) {
          throw std::runtime_error("the texts of " + id + " were overwritten");
        }
      }
    };
  };
  EXPECT_EQ("", runTogether({worker(0), worker(1), worker(2), worker(3)}));
  // Trees computed beside each other: the first one stored is the one every thread got.
  for (int i = 0; i < SPECIFICATIONS; ++i) {
    const void* cached =
        impl::ValueAccess::peekState(manager.getValueGroup(idOf(i).c_str(), false, 0)).get();
    for (const auto& threadSeen : seen) {
      EXPECT_EQ(cached, threadSeen.at(idOf(i))) << idOf(i);
    }
  }
}

TEST_F(ManagerConcurrencyTest, ExchangingACachedTreeGivesBackTheOldOne) {
  impl::ConfigurationManagerImpl& impl = *mManager->getImpl();
  // Nothing cached: the new tree goes in, nothing comes back. Ids are cache keys in any case.
  const State first = treeSaying(1);
  EXPECT_FALSE(impl.exchangeCachedValues("TOOL0", first));
  EXPECT_EQ(first, impl::ValueAccess::peekState(mManager->getValueGroup("tool0", true, 0)));
  const State second = treeSaying(2);
  EXPECT_EQ(first, impl.exchangeCachedValues("Tool0", second));
  EXPECT_EQ(second, impl::ValueAccess::peekState(mManager->getValueGroup("tool0", true, 0)));
  // A null tree takes the entry out: the next read computes afresh from the providers.
  EXPECT_EQ(second, impl.exchangeCachedValues("tool0", State()));
  EXPECT_FALSE(impl.exchangeCachedValues("tool0", State()));
  EXPECT_EQ(0, mManager->getValueGroup("tool0", false, 0).getValue("port0").asInt32());
  EXPECT_EQ(
      "Contract violation: \"specificationId != 0 && *specificationId != '\\0'\"@"
      "impl/ConfigurationManagerImpl",
      zelk::test::contractOf([&] { impl.exchangeCachedValues("", first); }));
}

TEST_F(ManagerConcurrencyTest, ReadersSeeOneWholeTreeWhileTreesAreExchanged) {
  impl::ConfigurationManagerImpl& impl = *mManager->getImpl();
  impl.exchangeCachedValues("tool0", treeSaying(0));
  const int EXCHANGES = 2000;
  auto reader = [&] {
    int last = 0;
    for (int round = 0; round < EXCHANGES; ++round) {
      const ValueGroup values = mManager->getValueGroup("tool0", true, 0);
      const int port = values.getValue("port0").asInt32();
      if (values.getValue("name0").asString() != std::to_string(port) || port < last) {
        throw std::runtime_error("a mixed or older tree");
      }
      last = port;
    }
  };
  auto exchanger = [&] {
    for (int n = 1; n <= EXCHANGES; ++n) {
      const State next = treeSaying(n);
      const State previous = impl.exchangeCachedValues("tool0", next);
      ValueGroup old(previous);
      if (old.getValue("port0").asInt32() != n - 1) {
        throw std::runtime_error("the exchange gave back the wrong tree");
      }
    }
  };
  EXPECT_EQ("", runTogether({reader, reader, reader, exchanger}));
  EXPECT_EQ(EXCHANGES, mManager->getValueGroup("tool0", true, 0).getValue("port0").asInt32());
}

// In every notification, asks another thread to read what readers read (the tree told about, the
// cached tree, a tree not cached yet, the help text) and waits for it: this returns only if the
// notification runs with no lock held that those readers need.
class WaitingListener : public ConfigurationListener {
public:
  explicit WaitingListener(ConfigurationManager& manager) : mManager(manager) {}
  ~WaitingListener() override { stopListeningAndWait(); }

  void onValueAdded(const ParameterRef*, const ValueAddedArguments& args) override {
    waitForReader(args.mValue->getName());
  }
  void onValueChanged(const ParameterRef*, const ValueChangedArguments& args) override {
    waitForReader(args.mValue->getName());
  }
  void onValueRemoved(const ParameterRef*, const ValueRemovedArguments& args) override {
    waitForReader(args.mValue->getName());
  }

  std::vector<std::string> heard;
  std::vector<std::string> failures;

private:
  void waitForReader(const std::string& name) {
    heard.push_back(name);
    std::shared_ptr<std::promise<void>> done(new std::promise<void>);
    std::future<void> read = done->get_future();
    ConfigurationManager& manager = mManager;
    std::thread([&manager, done] {
      const ValueGroup cached = manager.getValueGroup("tool0", false, 0);
      cached.getValue("port0").asInt32();
      cached.getValue("name0");
      manager.getValueGroup("tool1", false, 0).getValue("port1").asInt32();
      manager.composeHelpMessage("tool0", 80, 30);
      done->set_value();
    }).detach();
    // A reader blocked by a lock held here would never finish.
    if (read.wait_for(std::chrono::seconds(10)) != std::future_status::ready) {
      failures.push_back("a reader was blocked during the notification for " + name);
    }
  }

  ConfigurationManager& mManager;
};

TEST_F(ManagerConcurrencyTest, NotificationsOfChangesOnAnotherThreadLetReadersIn) {
  impl::ListenerManager::getInstance()->reset();
  WaitingListener listener(*mManager);
  listener.startListeningTo(mSpecs[0]);
  ValueGroup cached = mManager->getValueGroup("tool0", false, 0);
  std::thread changer([&cached] {
    cached.addValue("port0", "5");
    cached.getValue("port0").set(6);
    cached.addValue("name0", "n");
    cached.remove("name0");
  });
  changer.join();
  EXPECT_EQ((std::vector<std::string>{"port0", "port0", "name0", "name0"}), listener.heard);
  EXPECT_EQ(std::vector<std::string>(), listener.failures);
  impl::ListenerManager::getInstance()->reset();
}

}  // namespace
}  // namespace zelk::configuration
