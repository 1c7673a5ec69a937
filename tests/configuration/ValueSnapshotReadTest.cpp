// Look-ups by name that a group answers from its published snapshot, without its lock: each
// change of the group's items or names must be seen by the next look-up, typed reads through the
// snapshot keep their errors, and readers on several threads read consistent values while a
// writer changes the group (this file also runs under ThreadSanitizer).
#include <atomic>
#include <cstdint>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "configuration/Models.h"
#include "support/Threads.h"
#include "zelk/configuration/ConfigurationException.h"
#include "zelk/configuration/Value.h"
#include "zelk/configuration/ValueGroup.h"
#include "zelk/configuration/impl/ValueAccess.h"
#include "zelk/configuration/impl/ValueGroupState.h"
#include "zelk/util/ContractViolationException.h"
#include "zelk/util/ReadEpoch.h"

namespace zelk::configuration {
namespace {

std::string nameOf(int i) { return "item" + std::to_string(i); }

// A group of count values item<i> = i, read by name until it answers without its lock.
ValueGroup publishedGroup(int count) {
  ValueGroup group("root");
  for (int i = 0; i < count; ++i) {
    group.addValue(nameOf(i).c_str(), std::to_string(i).c_str());
  }
  for (int read = 0; read < 2 * count + 8; ++read) {
    group.getValue(nameOf(read % count).c_str());
  }
  return group;
}

bool published(const ValueGroup& group) {
  return impl::ValueAccess::peekState(group)->hasCurrentSnapshot();
}

// Each change of a published group, for a small group (scanned) and a large one (hashed): the
// snapshot is withdrawn or stale at once, and look-ups give what the change left.
TEST(ValueSnapshotReadTest, EveryChangeIsSeenByTheNextLookUp) {
  struct Change {
    const char* what;
    std::function<void(ValueGroup&)> change;
    std::function<void(const ValueGroup&)> check;
  };
  auto absent = [](const char* name) {
    return [name](const ValueGroup& g) {
      EXPECT_TRUE(g.findItem(name) == nullptr) << name;
      int32_t out = -1;
      EXPECT_FALSE(g.tryGetValue(name, out)) << name;
    };
  };
  auto holds = [](const char* name, const char* text) {
    return [name, text](const ValueGroup& g) {
      std::string out;
      EXPECT_TRUE(g.tryGetValue(name, out)) << name;
      EXPECT_EQ(text, out);
      EXPECT_EQ(text, g.getValue(name).asString());
    };
  };
  const std::vector<Change> changes = {
      {"remove by name", [](ValueGroup& g) { g.remove("item3"); }, absent("item3")},
      {"remove by index", [](ValueGroup& g) { g.remove(static_cast<size_t>(0)); }, absent("item0")},
      {"add", [](ValueGroup& g) { g.addValue("extra", "x"); }, holds("EXTRA", "x")},
      {"add a group", [](ValueGroup& g) { g.addGroup("inner"); },
       [](const ValueGroup& g) { EXPECT_FALSE(g.getValueGroup("inner", 0, false).isNull()); }},
      {"clear", [](ValueGroup& g) { g.clear(); }, absent("item1")},
      {"reset", [](ValueGroup& g) { g.reset(); }, absent("item1")},
      {"rename", [](ValueGroup& g) { g.findItem("item2")->setName("renamed"); },
       [&](const ValueGroup& g) {
         absent("item2")(g);
         holds("Renamed", "2")(g);
       }},
      {"remove and add back",
       [](ValueGroup& g) {
         g.remove("item5");
         g.addValue("item5", "again");
       },
       holds("item5", "again")},
  };
  for (int count : {6, 40}) {
    for (const Change& c : changes) {
      SCOPED_TRACE(std::string(c.what) + " in a group of " + std::to_string(count));
      ValueGroup group = publishedGroup(count);
      ASSERT_TRUE(published(group));
      c.change(group);
      c.check(group);
      // Again once the group answers without its lock once more.
      for (int read = 0; read < 2 * count + 8; ++read) {
        group.findItem(nameOf(read % count).c_str());
      }
      c.check(group);
    }
  }
  // Renaming an item that two groups hold reaches both snapshots.
  ValueGroup first = publishedGroup(40);
  ValueGroup second = publishedGroup(40);
  ValueGroup shared("shared");
  first.add(shared);
  second.add(shared);
  for (int read = 0; read < 100; ++read) {
    first.findItem("shared");
    second.findItem("shared");
  }
  shared.setName("moved");
  EXPECT_TRUE(first.findItem("moved") != nullptr);
  EXPECT_TRUE(second.findItem("moved") != nullptr);
  EXPECT_TRUE(first.findItem("shared") == nullptr);
}

// Reads through the snapshot give the same answers and errors as reads under the lock.
TEST(ValueSnapshotReadTest, ReadsThroughTheSnapshotKeepTheirErrors) {
  zelk::test::ValueTestModel model;
  ValueGroup group = publishedGroup(40);
  Value port = Value::create(model.port, "8081");
  group.add(port);
  group.addValue("several", "a");
  group.addValue("several", "b");
  group.addGroup("inner");
  for (int read = 0; read < 200; ++read) {
    group.findItem("port");
  }
  ASSERT_TRUE(published(group));

  int32_t number = 0;
  EXPECT_TRUE(group.tryGetValue("PORT", number));
  EXPECT_EQ(8081, number);
  EXPECT_EQ(8081, group.getValue("port").asInt32());
  double ratio = 0;
  EXPECT_THROW(group.tryGetValue("port", ratio), ConfigurationException);
  std::string text;
  EXPECT_TRUE(group.tryGetValue("several", text, 1));
  EXPECT_EQ("b", text);
  // An index equal to the count passes the look-up and fails in the read, as under the lock.
  EXPECT_THROW(group.tryGetValue("several", text, 2), ContractViolationException);
  EXPECT_THROW(group.tryGetValue("several", text, 3), std::out_of_range);
  EXPECT_FALSE(group.tryGetValue("inner", text));  // a group is no value
  EXPECT_THROW(group.getValue("inner"), ConfigurationException);
  EXPECT_TRUE(published(group));  // reading changes nothing
}

// Four readers read by name, by tryGetValue and through held values while a writer sets values
// and adds and removes items, so that the snapshot is withdrawn and published again many times.
// Every value a reader sees is one the writer wrote; afterwards nothing retired stays pending.
TEST(ValueSnapshotReadTest, ReadersSeeConsistentValuesWhileAWriterChangesTheGroup) {
  const int COUNT = 40;
  const int WRITES = 3000;
  ValueGroup group = publishedGroup(COUNT);
  std::atomic<bool> writing{true};
  std::atomic<int64_t> reads{0};
  // The writer keeps item<i> at a multiple of COUNT plus i.
  auto writer = [&] {
    for (int w = 1; w <= WRITES; ++w) {
      const int i = w % COUNT;
      group.getValue(nameOf(i).c_str()).set((std::to_string(w * COUNT + i)).c_str());
      if (w % 10 == 0) {
        group.addValue("transient", std::to_string(w).c_str());
      } else if (w % 10 == 5) {
        group.remove("transient");
      }
    }
    writing = false;
  };
  auto reader = [&](int id) {
    const Value held = group.getValue(nameOf(id).c_str());
    int64_t done = 0;
    while (writing || done < 1000) {
      const int i = static_cast<int>(done % COUNT);
      int32_t viaTry = -1;
      if (!group.tryGetValue(nameOf(i).c_str(), viaTry) || viaTry % COUNT != i) {
        throw std::runtime_error("tryGetValue of " + nameOf(i) + " gave " + std::to_string(viaTry));
      }
      const int32_t byName = group.getValue(nameOf(i).c_str()).asInt32();
      const int32_t viaHeld = held.asInt32();
      if (byName % COUNT != i || viaHeld % COUNT != id) {
        throw std::runtime_error("read " + std::to_string(byName) + " / " +
                                 std::to_string(viaHeld));
      }
      int32_t transient = -1;
      if (group.tryGetValue("transient", transient) && transient % 10 != 0) {
        throw std::runtime_error("transient holds " + std::to_string(transient));
      }
      ++done;
    }
    reads += done;
  };
  EXPECT_EQ("", zelk::test::runTogether({writer, [&] { reader(1); }, [&] { reader(2); },
                                         [&] { reader(3); }, [&] { reader(4); }}));
  EXPECT_GE(reads.load(), 4000);
  for (int i = 0; i < COUNT; ++i) {
    const int last = WRITES - (WRITES - i) % COUNT;  // the writer's last w with w % COUNT == i
    EXPECT_EQ(last * COUNT + i, group.getValue(nameOf(i).c_str()).asInt32()) << i;
  }
  // A change with no reader left frees what the readers held back.
  group.addValue("last", "1");
  EXPECT_EQ(0u, ReadEpoch::pendingCount());
}

}  // namespace
}  // namespace zelk::configuration
