// Name look-ups of large value groups and container searches, which answer from indexes: every
// change that moves, renames or adds an item must be seen by the next look-up.
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

#include <gtest/gtest.h>

#include "zelk/configuration/ConfigurationManager.h"
#include "zelk/configuration/Container.h"
#include "zelk/configuration/LogicalGroup.h"
#include "zelk/configuration/OneOf.h"
#include "zelk/configuration/Parameter.h"
#include "zelk/configuration/ParameterRef.h"
#include "zelk/configuration/Value.h"
#include "zelk/configuration/ValueGroup.h"
#include "zelk/configuration/ValueGroupIterator.h"
#include "zelk/configuration/impl/Factory.h"
#include "zelk/configuration/impl/ValueAccess.h"
#include "zelk/configuration/impl/ValueGroupState.h"

using namespace zelk::configuration;
using zelk::configuration::impl::Factory;

namespace {

// Enough items that look-ups go through the index.
const int LARGE = 40;

std::string nameOf(int i) { return "item" + std::to_string(i); }

ValueGroup largeGroup() {
  ValueGroup group("root");
  for (int i = 0; i < LARGE; ++i) {
    group.addValue(nameOf(i).c_str(), std::to_string(i).c_str());
  }
  return group;
}

TEST(ValueGroupNameIndexTest, LookUpsFollowAddsAndRemovals) {
  ValueGroup group = largeGroup();
  EXPECT_EQ("17", group.getValue("ITEM17").asString());
  EXPECT_TRUE(group.getValue("item40").isNull());

  // A value of a name already present joins it instead of being appended.
  group.addValue("Item3", "again");
  EXPECT_EQ(static_cast<size_t>(LARGE), group.getItemCount());
  EXPECT_EQ(2u, group.getUnboundedValue("item3").getValueCount());

  // Removing shifts the positions of every later item.
  EXPECT_TRUE(group.remove("item0"));
  EXPECT_TRUE(group.remove(static_cast<size_t>(0)));  // item1
  EXPECT_TRUE(group.getValue("item1").isNull());
  EXPECT_EQ("39", group.getValue("item39").asString());
  EXPECT_EQ(nameOf(2), group.getItem(0)->getName());

  group.clear();
  EXPECT_TRUE(group.getValue("item20").isNull());
  group.addValue("item20", "back");
  EXPECT_EQ("back", group.getValue("item20").asString());
}

TEST(ValueGroupNameIndexTest, GroupsOfOneNameAreCountedAndWalkedInOrder) {
  ValueGroup group = largeGroup();
  for (int i = 0; i < 3; ++i) {
    ValueGroup column = group.addGroup(i == 1 ? "COLUMN" : "column");
    column.addValue("n", std::to_string(i).c_str());
    group.addValue(("after" + std::to_string(i)).c_str(), "x");
  }
  EXPECT_EQ(3u, group.getItemCount("Column"));
  std::string seen;
  ValueGroupIterator it = group.getValueGroupIterator("column");
  while (it.next()) {
    seen += it.getCurrent().getValue("n").asString();
  }
  EXPECT_EQ("012", seen);
}

TEST(ValueGroupNameIndexTest, RenamedItemsAreFoundUnderTheirNewName) {
  ValueGroup group = largeGroup();
  boost::shared_ptr<ValueGroupItem> item = group.findItem("item5");
  ASSERT_TRUE(item);
  item->setName("renamed");
  EXPECT_TRUE(group.findItem("item5") == nullptr);
  ASSERT_TRUE(group.findItem("RENAMED") != nullptr);
  EXPECT_EQ("5", group.getValue("renamed").asString());

  // Binding renames an item to the bound item's id, also inside a group that holds it already.
  std::unique_ptr<ConfigurationManager> manager(Factory::createManager());
  Parameter* parameter =
      Factory::createParameter("port", "", "A port", Parameter::STRING, 0, 0, 0, manager.get());
  std::unique_ptr<ParameterRef> ref(Factory::createParameterRef(parameter, 0, ""));
  group.findItem("item6")->setGroupItem(ref.get());
  EXPECT_EQ("6", group.getValue("Port").asString());
  EXPECT_TRUE(group.findItem("item6") == nullptr);

  // A copy answers look-ups of its own.
  ValueGroup copy(group, 0);
  EXPECT_EQ("6", copy.getValue("port").asString());
  EXPECT_EQ("39", copy.getValue("item39").asString());
}

TEST(ValueGroupNameIndexTest, ARenameReachesTheGroupsThatHoldTheItemAndNoOthers) {
  ValueGroup group = largeGroup();
  const boost::shared_ptr<impl::ValueGroupState> state = impl::ValueAccess::peekState(group);
  ASSERT_TRUE(state->hasCurrentIndex());
  ValueGroup other("other");
  other.addValue("x", "1");
  other.findItem("x")->setName("y");
  EXPECT_TRUE(state->hasCurrentIndex());  // an unrelated rename leaves the index as it is

  // An item that another group holds as well is found under its new name in both.
  ValueGroup second = largeGroup();
  ValueGroup moved("moved");
  group.add(moved);
  second.add(moved);
  moved.setName("renamedTwice");
  EXPECT_TRUE(group.findItem("renamedTwice") != nullptr);
  EXPECT_TRUE(second.findItem("renamedTwice") != nullptr);
  // So is an item whose group was reset on its own, which leaves it in its parent.
  ValueGroup inner = second.addGroup("inner");
  inner.reset();
  inner.setName("afterReset");
  EXPECT_TRUE(second.findItem("afterReset") != nullptr);
}

class ContainerSearchIndexTest : public ::testing::Test {
protected:
  ContainerSearchIndexTest() : mManager(Factory::createManager()) {
    mRoot = Factory::createContainer("root", "", "Root", 0);
  }
  ~ContainerSearchIndexTest() override { Factory::destroy(mRoot); }

  ParameterRef* ref(const char* id) {
    Parameter* p = mManager->getParameter(id) != nullptr
                       ? static_cast<Parameter*>(mManager->getParameter(id))
                       : Factory::createParameter(id, "", "A parameter", Parameter::STRING, 0, 0,
                                                  0, mManager.get());
    return Factory::createParameterRef(p, 0, "");
  }

  std::unique_ptr<ConfigurationManager> mManager;
  Container* mRoot;
};

TEST_F(ContainerSearchIndexTest, SearchesSeeItemsAddedBelowAfterAnEarlierSearch) {
  Factory::addItemToGroupItem(mRoot, ref("a"));
  LogicalGroup* group = Factory::createLogicalGroup(0);
  Factory::addItemToGroupItem(mRoot, group);
  EXPECT_TRUE(mRoot->findParameterRef("b") == nullptr);

  // Added to a logical group the container already holds.
  Factory::addItemToGroupItem(group, ref("b"));
  ASSERT_TRUE(mRoot->findParameterRef("B") != nullptr);

  // Added to a one-of nested in that group, and a nested container with its own contents.
  OneOf* choice = Factory::createOneOf(0);
  Factory::addItemToGroupItem(group, choice);
  Factory::addItemToGroupItem(choice, ref("c"));
  Container* nested = Factory::createContainer("inner", "", "Inner", 0);
  Factory::addItemToGroupItem(choice, nested);
  EXPECT_TRUE(mRoot->findParameterRef("c") != nullptr);
  EXPECT_EQ(nested, mRoot->findContainer("INNER"));
  EXPECT_TRUE(mRoot->findItem(choice->getId()) == choice);

  // The nested container's contents belong to its own searches only.
  Factory::addItemToGroupItem(nested, ref("d"));
  EXPECT_TRUE(mRoot->findParameterRef("d") == nullptr);
  EXPECT_TRUE(nested->findParameterRef("d") != nullptr);
}

// A reference whose id, once armed, waits until another search of the same container is done.
class WaitingRef : public ParameterRef {
public:
  explicit WaitingRef(const Parameter* parameter) : ParameterRef(parameter, 0, "") {}
  const char* getId() const override {
    if (armed.exchange(false)) {
      std::unique_lock<std::mutex> lock(mutex);
      otherSearchDone = done.wait_for(lock, std::chrono::seconds(10), [this] { return finished; });
    }
    return ParameterRef::getId();
  }
  void finish() const {
    std::lock_guard<std::mutex> lock(mutex);
    finished = true;
    done.notify_all();
  }

  mutable std::atomic<bool> armed{false};
  mutable bool otherSearchDone = false;

private:
  mutable std::mutex mutex;
  mutable std::condition_variable done;
  mutable bool finished = false;
};

TEST_F(ContainerSearchIndexTest, SearchesOfOneContainerRunSideBySide) {
  Factory::addItemToGroupItem(mRoot, ref("fast"));
  Parameter* slow = Factory::createParameter("slow", "", "A parameter", Parameter::STRING, 0, 0, 0,
                                             mManager.get());
  WaitingRef* waiting = new WaitingRef(slow);
  Factory::addItemToGroupItem(mRoot, waiting);
  ASSERT_TRUE(mRoot->findParameterRef("fast") != nullptr);  // builds the index

  waiting->armed = true;
  std::thread first([&] { mRoot->findParameterRef("slow"); });
  while (waiting->armed) {
    std::this_thread::yield();
  }
  // The first search now waits inside the container; this one must not wait for it.
  EXPECT_TRUE(mRoot->findParameterRef("FAST") != nullptr);
  waiting->finish();
  first.join();
  EXPECT_TRUE(waiting->otherSearchDone);
}

TEST_F(ContainerSearchIndexTest, TheFirstItemInWalkOrderWinsAndTypesAreKeptApart) {
  LogicalGroup* group = Factory::createLogicalGroup(0);
  Factory::addItemToGroupItem(mRoot, group);
  ParameterRef* first = ref("dup");
  Factory::addItemToGroupItem(group, first);
  Container* sameName = Factory::createContainer("dup", "", "A container", 0);
  Factory::addItemToGroupItem(mRoot, sameName);
  ParameterRef* second = ref("dup");
  Factory::addItemToGroupItem(mRoot, second);

  EXPECT_EQ(first, mRoot->findParameterRef("DUP"));
  EXPECT_EQ(sameName, mRoot->findContainer("dup"));
  EXPECT_EQ(static_cast<const GroupItem*>(first), mRoot->findItem("dup"));
  EXPECT_TRUE(mRoot->findContainer("missing") == nullptr);
}

}  // namespace
