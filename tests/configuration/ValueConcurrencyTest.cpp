// Several threads read typed values from one shared, complete tree while others add, set and
// remove values and groups, and listeners hear every change. The iteration counts are fixed, so
// the final state and the number of notifications are known exactly.
#include <gtest/gtest.h>

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <thread>

#include "configuration/Models.h"
#include "support/Threads.h"
#include "zelk/configuration/ConfigurationListener.h"
#include "zelk/configuration/ValueGroupIterator.h"
#include "zelk/configuration/ValueIterator.h"
#include "zelk/configuration/impl/ConfigurationManagerImpl.h"
#include "zelk/configuration/impl/Factory.h"
#include "zelk/configuration/impl/ListenerManager.h"
#include "zelk/configuration/impl/ValueAccess.h"
#include "zelk/configuration/impl/ValueGroupItemStringGenerator.h"
#include "zelk/configuration/impl/ValueGroupState.h"

namespace zelk::configuration {
namespace {

using zelk::test::runTogether;

const int ITERATIONS = 1500;

// Counts notifications and reads the value it is told about, while the listener manager's lock
// is held.
class CountingListener : public ConfigurationListener {
public:
  ~CountingListener() override {}
  void onValueAdded(const ParameterRef*, const ValueAddedArguments& args) override {
    touched += args.mValue->getValueCount() > 0 ? 1 : 0;
    ++events;
  }
  void onValueChanged(const ParameterRef*, const ValueChangedArguments& args) override {
    touched += args.mOldValue.isNull() ? 0 : static_cast<int>(args.mValue->getValueCount());
    ++events;
  }
  void onValueRemoved(const ParameterRef*, const ValueRemovedArguments&) override { ++events; }
  void onValueGroupAdded(const Container*, const ValueGroupAddedArguments& args) override {
    touched += static_cast<int>(args.mValueGroup->getItemCount());
    ++events;
  }
  void onValueGroupRemoved(const Container*, const ValueGroupRemovedArguments&) override {
    ++events;
  }

  std::atomic<int> events{0};
  std::atomic<int> touched{0};
};

class ValueConcurrencyTest : public ::testing::Test {
protected:
  ValueConcurrencyTest() { impl::ListenerManager::getInstance()->reset(); }
  ~ValueConcurrencyTest() override { impl::ListenerManager::getInstance()->reset(); }

  zelk::test::ValueTestModel model;
};

TEST_F(ValueConcurrencyTest, ReadersWritersAndListenersShareOneTree) {
  ValueGroup root(model.spec);
  root.addValue("port", "1");
  root.addValue("ratio", "0.5");
  root.addUnboundedValue("paths", "/start");
  root.addGroup("target").addValue("path", "/first");
  root.complete();

  CountingListener onSpec;
  CountingListener onCount;
  onSpec.startListeningTo(model.spec);

  std::atomic<int> readsDone(0);
  auto reader = [&] {
    for (int i = 0; i < ITERATIONS; ++i) {
      const int32_t port = root.getValue("port").asInt32();
      if (port < 1 || port > ITERATIONS) {
        throw std::runtime_error("port out of range: " + std::to_string(port));
      }
      if (root.getValue("ratio").asDouble() != 0.5) {
        throw std::runtime_error("ratio changed");
      }
      // The entries grow with every round: walking them all each time would make the test
      // quadratic.
      if (i % 25 == 0) {
        size_t entries = 0;
        for (ValueIterator it = root.getValueIterator("paths"); it.next();) {
          if (it.asString().empty()) {
            throw std::runtime_error("empty path");
          }
          ++entries;
        }
        if (entries == 0) {
          throw std::runtime_error("paths lost");
        }
      }
      uint32_t count = 0;
      if (root.tryGetValue("count", count) && count != 7) {
        throw std::runtime_error("count is not 7");
      }
      for (ValueGroupIterator it = root.getValueGroupIterator("target"); it.next();) {
        it.getCurrent().getItemCount();
      }
      if (i % 100 == 0) {
        ValueGroup copy(root, 0);
        impl::ValueGroupItemStringGenerator::getString(copy);
      }
      ++readsDone;
    }
  };
  auto setter = [&] {
    Value port = root.getValue("port");
    for (int i = 1; i <= ITERATIONS; ++i) {
      port.set(static_cast<int32_t>(i));
    }
  };
  auto adderRemover = [&] {
    UnboundedValue paths = root.getUnboundedValue("paths");
    for (int i = 0; i < ITERATIONS; ++i) {
      root.addValue("count", "7");
      if (!root.remove("count")) {
        throw std::runtime_error("count was not there");
      }
      ValueGroup target = root.addGroup("target");
      target.addValue("path", "/p");
      if (!root.remove("target")) {
        throw std::runtime_error("no target group");
      }
      paths.add("/more");
    }
  };
  auto listenerToggler = [&] {
    for (int i = 0; i < ITERATIONS; ++i) {
      onCount.startListeningTo(model.count);
      std::this_thread::yield();
      onCount.stopListeningTo(model.count);
    }
  };

  const std::string failure =
      runTogether({reader, reader, setter, adderRemover, listenerToggler});
  EXPECT_EQ("", failure);
  EXPECT_EQ(2 * ITERATIONS, readsDone.load());

  // Each set, add and removal was announced to exactly one of the two listeners: sets of port,
  // and per round: count added and removed, target group added, path added, target removed,
  // paths entry added.
  EXPECT_EQ(ITERATIONS + 6 * ITERATIONS, onSpec.events.load() + onCount.events.load());
  EXPECT_EQ(ITERATIONS, root.getValue("port").asInt32());
  EXPECT_EQ(static_cast<size_t>(1 + ITERATIONS), root.getUnboundedValue("paths").getValueCount());
  EXPECT_EQ(1u, root.getItemCount("target"));
  EXPECT_EQ(0u, root.getItemCount("count"));
}

// Eight threads read, search and append in one large group and one container while another
// renames items of unrelated groups; those renames must not cost the large group its index.
TEST_F(ValueConcurrencyTest, SearchesAndAppendsGoOnWhileUnrelatedItemsAreRenamed) {
  const int INITIAL = 64;
  ValueGroup large("large");
  for (int i = 0; i < INITIAL; ++i) {
    large.addValue(("v" + std::to_string(i)).c_str(), std::to_string(i).c_str());
  }
  std::vector<ValueGroup> unrelated;
  for (int i = 0; i < 4; ++i) {
    unrelated.emplace_back("unrelated");
    unrelated.back().addValue("name0", "x");
  }
  auto reader = [&] {
    for (int i = 0; i < ITERATIONS; ++i) {
      const int k = i % INITIAL;
      if (large.getValue(("V" + std::to_string(k)).c_str()).asInt32() != k) {
        throw std::runtime_error("wrong value");
      }
    }
  };
  auto searcher = [&] {
    for (int i = 0; i < ITERATIONS; ++i) {
      if (model.items->findParameterRef(i % 2 == 0 ? "port" : "PATHS") == nullptr ||
          model.items->findContainer("db") != model.db) {
        throw std::runtime_error("search failed");
      }
    }
  };
  auto appender = [&](const char* prefix) {
    return [&, prefix] {
      for (int i = 0; i < ITERATIONS; ++i) {
        large.addValue((prefix + std::to_string(i)).c_str(), "1");
      }
    };
  };
  auto renamer = [&] {
    for (int i = 1; i <= ITERATIONS; ++i) {
      for (ValueGroup& group : unrelated) {
        group.getItem(0)->setName(("name" + std::to_string(i)).c_str());
      }
    }
  };
  EXPECT_EQ("", runTogether({reader, reader, reader, searcher, searcher, searcher, appender("a"),
                             appender("b"), renamer}));
  EXPECT_EQ(static_cast<size_t>(INITIAL + 2 * ITERATIONS), large.getItemCount());
  unrelated[0].getItem(0)->setName("last");
  EXPECT_TRUE(impl::ValueAccess::peekState(large)->hasCurrentIndex());
  EXPECT_FALSE(large.getValue("b17").isNull());
}

TEST_F(ValueConcurrencyTest, ConcurrentAppendsToOneValueLoseNothing) {
  ValueGroup group("g");
  group.addValue("v", "0");
  auto appender = [&] {
    for (int i = 0; i < ITERATIONS; ++i) {
      group.addValue("v", "1");  // joins the existing value
    }
  };
  auto counter = [&] {
    for (int i = 0; i < ITERATIONS; ++i) {
      group.getItemCount("v");
      group.findValueBase("v")->getValueCount();
    }
  };
  EXPECT_EQ("", runTogether({appender, appender, counter}));
  EXPECT_EQ(1u, group.getItemCount());
  EXPECT_EQ(static_cast<size_t>(1 + 2 * ITERATIONS), group.findValueBase("v")->getValueCount());
}

// Typed reads of a value whose text a writer keeps raising, through every conversion: the value is
// untyped, so integer and floating-point reads alternate on one state and its converted-value
// cache. Each reader must see whole numbers that never go back, and the last one once the writer
// stops.
TEST_F(ValueConcurrencyTest, TypedReadsFollowAWriterWithoutTornOrStaleValues) {
  const int64_t last = 4 * ITERATIONS;
  ValueGroup group("g");
  Value number = group.addValue("n", "0");
  auto writer = [&] {
    for (int64_t i = 1; i <= last; ++i) {
      number.set(std::to_string(i).c_str());
    }
  };
  auto reader = [&](bool alternate) {
    return [&, alternate] {
      const Value held = group.getValue("n");
      double seen = 0;
      for (int i = 0; i < 4 * ITERATIONS; ++i) {
        const bool integral = !alternate || i % 2 == 0;
        const double read = integral ? static_cast<double>(held.asInt64()) : held.asDouble();
        if (read < seen || read > static_cast<double>(last) || read != static_cast<int64_t>(read)) {
          throw std::runtime_error("read " + std::to_string(read) + " after " +
                                   std::to_string(seen));
        }
        seen = read;
        if (i % 64 == 0 && group.getValue("n").asUInt32() > static_cast<uint32_t>(last)) {
          throw std::runtime_error("by name out of range");
        }
      }
    };
  };
  EXPECT_EQ("", runTogether({writer, reader(true), reader(false), reader(true)}));
  EXPECT_EQ(last, number.asInt64());
  EXPECT_EQ(static_cast<double>(last), number.asDouble());
  EXPECT_EQ(static_cast<uint32_t>(last), group.getValue("n").asUInt32());
}

TEST_F(ValueConcurrencyTest, ReadersKeepTheirTreeWhileTheManagerStartsOverAgainAndAgain) {
  std::unique_ptr<ConfigurationManager> manager(impl::Factory::createManager());
  const auto install = [&](const char* port) {
    zelk::test::ArchiveToolModel model(manager.get());
    ValueGroup mine(model.archive);
    mine.addValue("port", port);
    mine.addValue("paths", "/a");
    manager->setApplicationValues(mine, 0);
  };
  install("7");
  const ValueGroup first = manager->getValueGroup("archive", false, 0x14);
  auto reader = [first] {
    for (int i = 0; i < ITERATIONS; ++i) {
      // The default comes from the first registry, which only these trees keep alive.
      if (first.getValue("port").asInt32() != 7 || first.getValue("level").asInt32() != 3 ||
          first.getUnboundedValue("paths").asString(0) != "/a") {
        throw std::runtime_error("the first tree changed");
      }
    }
  };
  auto restarter = [&] {
    for (int i = 0; i < ITERATIONS / 10; ++i) {
      manager->getImpl()->clearCaches();
      install("8");
      if (manager->getValueGroup("archive", false, 0x14).getValue("port").asInt32() != 8) {
        throw std::runtime_error("the new start lost its values");
      }
    }
  };
  EXPECT_EQ("", runTogether({reader, reader, reader, restarter}));
}

}  // namespace
}  // namespace zelk::configuration
