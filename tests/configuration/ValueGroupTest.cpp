#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "ValueTestModel.h"
#include "zelk/configuration/ConfigurationException.h"
#include "zelk/configuration/ValidationErrors.h"
#include "zelk/configuration/ValueGroup.h"
#include "zelk/configuration/ValueGroupItemVisitor.h"
#include "zelk/configuration/ValueGroupIterator.h"
#include "zelk/configuration/ValueIterator.h"
#include "zelk/configuration/impl/ValueAccess.h"
#include "zelk/configuration/impl/ValueGroupState.h"
#include "zelk/configuration/impl/ValueItemState.h"

namespace zelk::configuration {
namespace {

using zelk::test::contractOf;
using zelk::test::messageOf;

class ValueGroupTest : public ::testing::Test {
protected:
  zelk::test::ValueTestModel model;
};

TEST_F(ValueGroupTest, LookupIgnoresCaseAndFollowsTheBinding) {
  ValueGroup group("g");
  group.addValue("port", "1");
  ASSERT_TRUE(group.findItem("PORT"));
  EXPECT_STREQ("port", group.findItem("PORT")->getName());
  EXPECT_FALSE(group.findItem("por"));
  EXPECT_EQ("Contract violation: \"name != 0\"@impl/ValueGroupState",
            contractOf([&] { group.findItem(0); }));

  // Binding renames: the value is found under the reference's id only.
  Value renamed = Value::create("p", "5");
  group.add(renamed);
  renamed.setGroupItem(model.port);
  EXPECT_FALSE(group.findItem("p"));
  EXPECT_EQ(2u, group.getItemCount("PoRt"));
  EXPECT_STREQ("port", renamed.getName());
  EXPECT_EQ("Contract violation: \"mGroupItem == 0 || mGroupItem == groupItem\"@impl/ValueItemState",
            contractOf([&] { renamed.setGroupItem(model.name); }));
  renamed.setGroupItem(model.port);  // binding again to the same item is harmless
  EXPECT_EQ("Contract violation: \"groupItem != 0\"@impl/ValueItemState",
            contractOf([&] { renamed.setGroupItem(0); }));
}

TEST_F(ValueGroupTest, ValuesAreUniqueByNameGroupsRepeat) {
  ValueGroup group("g");
  group.addValue("a", "1");
  group.addValue("A", "2");
  ASSERT_EQ(1u, group.getItemCount());
  const boost::shared_ptr<ValueBase> a = group.findValueBase("a");
  ASSERT_TRUE(a);
  ASSERT_EQ(2u, a->getValueCount());
  EXPECT_EQ("2", group.getUnboundedValue("a").asString(1));

  ValueGroup first = group.addGroup("g");
  ValueGroup second = group.addGroup("g");
  first.addValue("n", "1");
  second.addValue("n", "2");
  EXPECT_EQ(3u, group.getItemCount());
  EXPECT_EQ(2u, group.getItemCount("G"));
  std::vector<std::string> seen;
  for (ValueGroupIterator it = group.getValueGroupIterator("g"); it.next();) {
    seen.push_back(it.getCurrent().getValue("n").asString());
  }
  EXPECT_EQ((std::vector<std::string>{"1", "2"}), seen);

  // A group and a value may share a name.
  group.addGroup("a");
  EXPECT_EQ(2u, group.getItemCount("a"));
}

TEST_F(ValueGroupTest, GetValueSeesUnmatchedValuesOnlyWithUseDefault) {
  ValueGroup root(model.spec);
  root.addValue("stray", "1");
  UnboundedValue paths = UnboundedValue::create(model.paths, "/a");
  root.add(paths);
  ValueGroup db = root.addGroup("db");
  EXPECT_EQ(model.db, db.getContainer());

  EXPECT_TRUE(root.getValue("stray", 0, false).isNull());
  EXPECT_EQ("1", root.getValue("stray", 0, true).asString());
  EXPECT_TRUE(root.getUnboundedValue("stray", 0, false).isNull());
  EXPECT_FALSE(root.getUnboundedValue("stray", 0, true).isNull());

  ValidationErrors errors;
  EXPECT_TRUE(root.getValue("paths", &errors).isNull());
  ASSERT_EQ(1u, errors.getNumberOfErrors());
  EXPECT_STREQ("\"paths\" is not a bounded value.", errors.getError(0));
  EXPECT_EQ("\"paths\" is not a bounded value.",
            messageOf<ConfigurationException>([&] { root.getValue("paths"); }));
  EXPECT_EQ("/a", root.getUnboundedValue("paths").asString(0));

  EXPECT_TRUE(root.getValue("db", &errors).isNull());
  EXPECT_STREQ("\"db\" is not a bounded value.", errors.getError(1));
  EXPECT_TRUE(root.getUnboundedValue("db", &errors).isNull());
  EXPECT_STREQ("\"db\" is not a unbounded value.", errors.getError(2));
  EXPECT_EQ("\"paths\" is not a bounded value group.",
            messageOf<ConfigurationException>([&] { root.getValueGroup("paths"); }));
  EXPECT_FALSE(root.findValueGroup("paths", &errors));
  EXPECT_STREQ("\"paths\" is not a bounded value group.", errors.getError(3));
  EXPECT_FALSE(root.findValueBase("db", &errors));
  EXPECT_EQ(5u, errors.getNumberOfErrors());

  // A bounded value is also available as an unbounded one.
  root.addValue("port", "3");
  EXPECT_EQ(3, root.getUnboundedValue("port").asInt32(0));
}

TEST_F(ValueGroupTest, MissingItemsFallBackToDefaults) {
  ValueGroup root(model.spec);
  Value port = root.getValue("port");
  ASSERT_FALSE(port.isNull());
  EXPECT_TRUE(port.isDefaultValue());
  EXPECT_EQ(8080, port.asInt32());
  EXPECT_TRUE(root.getValue("port", 0, false).isNull());
  EXPECT_TRUE(root.getValue("name").isNull());    // no default
  EXPECT_TRUE(root.getValue("alpha").isNull());   // defaults inside a one-of are not used
  EXPECT_EQ(1, model.alpha->getDefaultValue().asInt32());
  EXPECT_EQ(8080, root.getUnboundedValue("port").asInt32(0));

  ValueGroup db = root.getValueGroup("db");
  ASSERT_FALSE(db.isNull());
  EXPECT_EQ(model.db, db.getContainer());
  EXPECT_EQ(0u, root.getItemCount());  // the default group is not added
  EXPECT_EQ("localhost", db.getValue("host").asString());
  EXPECT_TRUE(root.getValueGroup("db", 0, false).isNull());
  EXPECT_TRUE(root.getValueGroup("nosuch").isNull());

  ValueGroup loose("loose");
  EXPECT_TRUE(loose.getValue("port").isNull());
  EXPECT_TRUE(loose.getValueGroup("db").isNull());
}

TEST_F(ValueGroupTest, AddValueAndAddGroupBindWhenTheContainerKnowsTheName) {
  ValueGroup root(model.spec);
  Value port = root.addValue("PORT", "10");
  EXPECT_EQ(model.port, port.getGroupItem());
  EXPECT_EQ(root.getInstanceId(), port.getParent().getInstanceId());
  UnboundedValue paths = root.addUnboundedValue("paths", "/x");
  EXPECT_EQ(model.paths, paths.getGroupItem());
  EXPECT_FALSE(root.addValue("other", "v").isMatched());
  ValueGroup target = root.addGroup("target");
  EXPECT_EQ(model.target, target.getGroupItem());
  EXPECT_TRUE(target.isUnbounded());
  EXPECT_FALSE(root.addGroup("elsewhere").isMatched());
  EXPECT_TRUE(root.getValueGroup("elsewhere").isUnbounded());  // unmatched groups count as unbounded
  EXPECT_EQ(model.path, target.addValue("path", "/p").getGroupItem());
  EXPECT_EQ("Must provide a value for the \"port\" parameter.",
            messageOf<ConfigurationException>([&] { root.addValue("port", ""); }));
}

TEST_F(ValueGroupTest, TryGetValueKeepsTheDeliberateIndexTest) {
  ValueGroup group("g");
  group.addValue("n", "42");
  group.addValue("text", "hello");
  group.addValue("oid", "1-2");

  int32_t n = 0;
  EXPECT_TRUE(group.tryGetValue("N", n));
  EXPECT_EQ(42, n);
  uint64_t big = 0;
  EXPECT_TRUE(group.tryGetValue("n", big));
  EXPECT_EQ(42u, big);
  double d = 0;
  EXPECT_TRUE(group.tryGetValue("n", d));
  EXPECT_DOUBLE_EQ(42.0, d);
  ObjectId oid;
  EXPECT_TRUE(group.tryGetValue("oid", oid));
  EXPECT_EQ(ObjectId(1, 2, 0, 0), oid);
  std::string s;
  EXPECT_TRUE(group.tryGetValue("text", s));
  EXPECT_EQ("hello", s);
  const char* pointer = 0;
  EXPECT_TRUE(group.tryGetValue("text", pointer));
  EXPECT_STREQ("hello", pointer);
  char* copy = 0;
  EXPECT_TRUE(group.tryGetValue("text", copy));
  EXPECT_STREQ("hello", copy);
  delete[] copy;
  EXPECT_FALSE(group.tryGetValue("missing", n));

  // One entry: index 1 equals the count and passes the look-up, failing in the read; index 2 is
  // refused by the look-up.
  EXPECT_EQ("index out of range@impl/ValueState", contractOf([&] { group.tryGetValue("n", n, 1); }));
  EXPECT_EQ("Index 2 is out of range",
            messageOf<std::out_of_range>([&] { group.tryGetValue("n", n, 2); }));

  ValueGroup root(model.spec);
  root.addValue("verbose", 0);
  bool flag = false;
  EXPECT_TRUE(root.tryGetValue("verbose", flag));
  EXPECT_TRUE(flag);
  EXPECT_TRUE(root.tryGetValue("verbose", pointer));
  EXPECT_STREQ("true", pointer);
}

TEST_F(ValueGroupTest, RemoveClearAndReset) {
  ValueGroup root(model.spec);
  Value port = root.addValue("port", "1");
  ValueGroup db = root.addGroup("db");
  db.addValue("host", "h");
  root.addValue("name", "n");

  EXPECT_TRUE(root.remove("PORT"));
  EXPECT_FALSE(root.remove("port"));
  EXPECT_EQ(2u, root.getItemCount());
  EXPECT_EQ("Contract violation: \"name != 0 && *name != '\\0'\"@impl/ValueGroupState",
            contractOf([&] { root.remove(""); }));
  EXPECT_EQ("Contract violation: \"index < mItems.size()\"@impl/ValueGroupState",
            contractOf([&] { root.remove(size_t(2)); }));
  EXPECT_EQ("Contract violation: \"index < getItemCount()\"@impl/ValueGroupState",
            contractOf([&] { root.getItem(2); }));
  EXPECT_TRUE(root.remove(size_t(1)));
  EXPECT_TRUE(root.getItem(0)->isValueGroup());

  root.reset();
  EXPECT_EQ(0u, root.getItemCount());
  EXPECT_FALSE(root.isMatched());
  EXPECT_STREQ("", root.getName());  // made for a container: no name of its own
  EXPECT_FALSE(db.isMatched());
  EXPECT_TRUE(db.getParent().isNull());
  EXPECT_EQ(0u, db.getItemCount());  // the reset reaches every group below

  ValueGroup named("named");
  named.addValue("x", "1");
  named.clear();
  EXPECT_EQ(0u, named.getItemCount());
  EXPECT_STREQ("named", named.getName());
}

TEST_F(ValueGroupTest, ClonesAreDeepOrEmpty) {
  ValueGroup root(model.spec);
  root.addValue("port", "1");
  ValueGroup db = root.addGroup("db");
  db.addValue("host", "h");
  root.complete();

  ValueGroup empty(root, 1);
  EXPECT_EQ(0u, empty.getItemCount());
  EXPECT_EQ(model.items, empty.getGroupItem());
  EXPECT_TRUE(empty.isComplete());
  EXPECT_NE(root.getInstanceId(), empty.getInstanceId());

  const boost::shared_ptr<ValueGroupItem> item = root.clone(0);
  ValueGroup& deep = static_cast<ValueGroup&>(*item);
  ASSERT_EQ(2u, deep.getItemCount());
  const ValueGroup deepDb = deep.getValueGroup("db");
  EXPECT_NE(db.getInstanceId(), deepDb.getInstanceId());
  EXPECT_EQ(deep.getInstanceId(), deepDb.getParent().getInstanceId());
  EXPECT_EQ(deepDb.getInstanceId(), deepDb.getValue("host").getParent().getInstanceId());
  EXPECT_NE(root.getValue("port").getInstanceId(), deep.getValue("port").getInstanceId());
  deep.getValue("port").set(2);
  EXPECT_EQ(1, root.getValue("port").asInt32());
  EXPECT_TRUE(ValueGroup(ValueGroup::Null, 0).isNull());
}

TEST_F(ValueGroupTest, CompleteMarksEveryGroupBelow) {
  ValueGroup root(model.spec);
  ValueGroup target = root.addGroup("target");
  ValueGroup inner = target.addGroup("inner");
  Value port = root.addValue("port", "1");
  EXPECT_FALSE(port.isComplete());
  root.complete();
  EXPECT_TRUE(root.isComplete());
  EXPECT_TRUE(inner.isComplete());
  EXPECT_TRUE(port.isComplete());
  EXPECT_FALSE(Value::create("loose", "1").isComplete());

  // A matched group added to a complete group is completed; an unmatched one is not.
  ValueGroup db(model.db);
  root.add(db);
  EXPECT_TRUE(db.isComplete());
  ValueGroup loose("loose");
  root.add(loose);
  EXPECT_FALSE(loose.isComplete());
}

// Records the walk as text.
class Recorder : public ValueGroupItemVisitor {
public:
  bool visitValue(Value& value) override { return note("V:", value.getName()); }
  bool visitUnboundedValue(UnboundedValue& value) override {
    return note("U:", value.getName());
  }
  bool visitValueGroupStart(ValueGroup& group) override { return note("<", group.getName()); }
  bool visitValueGroupEnd(ValueGroup& group) override {
    trace += std::string(">") + group.getName() + " ";
    return true;
  }
  std::string stopAt;
  std::string trace;

private:
  bool note(const char* kind, const char* name) {
    trace += std::string(kind) + name + " ";
    return stopAt != name;
  }
};

TEST_F(ValueGroupTest, AcceptWalksInOrderAndStopsWhenTold) {
  ValueGroup root(model.spec);
  root.addValue("port", "1");
  ValueGroup db = root.addGroup("db");
  db.addValue("host", "h");
  root.addUnboundedValue("paths", "/a");
  root.addValue("stray", "s");

  Recorder all;
  EXPECT_TRUE(root.accept(all));
  EXPECT_EQ("<tool V:port <db V:host >db U:paths U:stray >tool ", all.trace);

  Recorder stopped;
  stopped.stopAt = "host";
  EXPECT_FALSE(root.accept(stopped));
  EXPECT_EQ("<tool V:port <db V:host >db >tool ", stopped.trace);

  Recorder refused;
  refused.stopAt = "db";
  EXPECT_FALSE(root.accept(refused));
  EXPECT_EQ("<tool V:port <db >tool ", refused.trace);  // no end call for the refusing group

  // By default values reach visitValueBase.
  class Counter : public ValueGroupItemVisitor {
  public:
    bool visitValueBase(ValueBase&) override {
      ++count;
      return true;
    }
    int count = 0;
  } counter;
  root.accept(counter);
  EXPECT_EQ(4, counter.count);
}

TEST_F(ValueGroupTest, GroupIteratorFiltersAndReportsMisuse) {
  ValueGroup root("root");
  root.addGroup("a");
  root.addValue("x", "1");
  root.addGroup("b");
  root.addGroup("A");

  ValueGroupIterator all = root.getValueGroupIterator();
  EXPECT_EQ("Dereferencing iterator after next() returns false",
            messageOf<ConfigurationException>([&] { all.getCurrent(); }));
  std::string names;
  while (all.next()) {
    names += all.getCurrent().getName();
  }
  EXPECT_EQ("abA", names);
  EXPECT_FALSE(all.next());
  EXPECT_EQ("Dereferencing iterator after next() returns false",
            messageOf<ConfigurationException>([&] { all.getCurrent(); }));

  ValueGroupIterator onlyA = root.getValueGroupIterator("a");
  ASSERT_TRUE(onlyA.next());
  ValueGroupIterator copy(onlyA);
  ASSERT_TRUE(onlyA.next());
  EXPECT_STREQ("A", onlyA.getCurrent().getName());
  EXPECT_STREQ("a", copy.getCurrent().getName());
  EXPECT_FALSE(onlyA.next());
  onlyA.reset();
  ASSERT_TRUE(onlyA.next());
  EXPECT_STREQ("a", onlyA.getCurrent().getName());

  ValueGroupIterator none;
  EXPECT_TRUE(none.isNull());
  EXPECT_FALSE(none.next());
  EXPECT_EQ("Dereferencing iterator after isNull() returns true",
            messageOf<ConfigurationException>([&] { none.getCurrent(); }));

  ValueIterator values = root.getValueIterator("X");
  ASSERT_TRUE(values.next());
  EXPECT_EQ("1", values.asString());
  EXPECT_TRUE(root.getValueIterator("a").isNull());
  EXPECT_TRUE(root.getValueIterator("missing").isNull());
}

TEST_F(ValueGroupTest, HandlesNamesAndIds) {
  EXPECT_EQ("Cannot access a value or value group when isNull() returns true",
            messageOf<ConfigurationException>([] { ValueGroup::Null.getName(); }));
  EXPECT_EQ("Cannot access a value or value group when isNull() returns true",
            messageOf<ConfigurationException>([] { ValueGroup::Null.getItemCount(); }));
  EXPECT_TRUE(UnboundedValue::Null.isNull());

  ValueGroup group("g");
  Value value = group.addValue("v", "1");
  UnboundedValue many = UnboundedValue::create("u", "1");
  EXPECT_STREQ("bounded value group", group.getItemTypeName());
  EXPECT_STREQ("bounded value", value.getItemTypeName());
  EXPECT_STREQ("unbounded value", many.getItemTypeName());
  EXPECT_EQ("Contract violation: \"type >= ValueGroupItem::VALUE && type <= "
            "ValueGroupItem::VALUE_GROUP\"@impl/ValueItemState",
            contractOf([] {
              impl::ValueItemState::getItemTypeName(static_cast<ValueGroupItem::ItemType>(3));
            }));

  EXPECT_LT(group.getInstanceId(), value.getInstanceId());
  EXPECT_LT(value.getInstanceId(), many.getInstanceId());
  ValueGroup alias(group);
  EXPECT_EQ(group.getInstanceId(), alias.getInstanceId());
  alias.setName("renamed");
  EXPECT_STREQ("renamed", group.getName());
  EXPECT_EQ("Must provide a name@impl/ValueItemState", contractOf([&] { alias.setName(""); }));

  EXPECT_TRUE(group.matches(*model.port) == false);
  ValueGroup tool("TOOL");
  EXPECT_TRUE(tool.matches(*model.items));  // unbound: by name
  ValueGroup bound(model.db);
  EXPECT_TRUE(bound.matches(*model.db));
  EXPECT_FALSE(bound.matches(*model.items));

  const boost::shared_ptr<impl::ValueGroupState> state = impl::ValueAccess::getState(group);
  EXPECT_EQ(group.getInstanceId(), ValueGroup(state).getInstanceId());
  EXPECT_FALSE(impl::ValueAccess::peekState(ValueGroup::Null));
}

}  // namespace
}  // namespace zelk::configuration
