// The value model: values and their typed reads and writes, value groups, look-ups (through the
// name index of large groups), defaults, iteration, visits and the merge of trees.
#include <functional>
#include <gtest/gtest.h>
#include <limits>
#include <stdexcept>

#include "configuration/Models.h"
#include "zelk/configuration/ConfigurationException.h"
#include "zelk/configuration/UnboundedValue.h"
#include "zelk/configuration/Value.h"
#include "zelk/configuration/ValueGroupItemVisitor.h"
#include "zelk/configuration/ValueGroupIterator.h"
#include "zelk/configuration/ValueIterator.h"
#include "zelk/configuration/impl/ValueAccess.h"
#include "zelk/configuration/impl/ValueGroupMerger.h"
#include "zelk/configuration/impl/ValueGroupState.h"
#include "zelk/configuration/impl/ValueItemState.h"
#include "zelk/configuration/impl/ValueState.h"

namespace zelk::configuration {
namespace {

using impl::ValueGroupMerger;
using zelk::test::contractOf;
using zelk::test::messageOf;

class ValueTest : public ::testing::Test {
protected:
  zelk::test::ValueTestModel model;
};

TEST_F(ValueTest, CreationFollowsTheParameterType) {
  EXPECT_EQ("1", Value::create("flag", "").asString());  // a bare name is a true flag
  Value text = Value::create("anything", "abc");
  EXPECT_EQ(-1, text.getValueType());
  EXPECT_FALSE(text.isMatched());
  EXPECT_TRUE(text.isUnbounded());  // an unbound value counts as unbounded

  EXPECT_EQ("\"verbose\" is a boolean parameter and cannot accept a value",
            messageOf<ConfigurationException>([&] { Value::create(model.verbose, "true"); }));
  EXPECT_EQ("true", Value::create(model.verbose, 0).asString());
  EXPECT_EQ("Must provide a value for the \"port\" parameter.",
            messageOf<ConfigurationException>([&] { Value::create(model.port, ""); }));
  EXPECT_EQ("\"abc\" is not a valid Int32",
            messageOf<ValidationException>([&] { Value::create(model.port, "abc"); }));
  EXPECT_FALSE(Value::create(model.port, "42").isUnbounded());
}

TEST_F(ValueTest, TypedReadsConvertAndCheckTheType) {
  EXPECT_EQ(7u, Value::create(model.count, "7").asUInt32());
  EXPECT_EQ(-9000000000LL, Value::create(model.big, "-9000000000").asInt64());
  EXPECT_EQ(std::numeric_limits<uint64_t>::max(),
            Value::create(model.ubig, "18446744073709551615").asUInt64());
  EXPECT_DOUBLE_EQ(2.5, Value::create(model.ratio, "2.5").asDouble());
  EXPECT_EQ(ObjectId(1, 2, 3, 4), Value::create(model.oid, "#1-2-3-4").asOID());

  // The articles of int64 and uint64 are kept as they are.
  const Value text = Value::create(model.name, "5");
  const std::pair<const char*, std::function<void()>> reads[] = {
      {"This value is not an int32", [&] { text.asInt32(); }},
      {"This value is not an uint32", [&] { text.asUInt32(); }},
      {"This value is not a int64", [&] { text.asInt64(); }},
      {"This value is not an uint64", [&] { text.asUInt64(); }},
      {"This value is not a bool", [&] { text.asBool(); }},
      {"This value is not a double", [&] { text.asDouble(); }},
      {"This value is not an OID", [&] { text.asOID(); }},
  };
  for (const auto& read : reads) {
    EXPECT_EQ(read.first, messageOf<ConfigurationException>(read.second));
  }

  // An untyped value accepts every typed read; a text that does not convert is reported.
  EXPECT_DOUBLE_EQ(12.0, Value::create("n", "12").asDouble());
  EXPECT_EQ("\"x\" is not a valid Int32",
            messageOf<ValidationException>([] { Value::create("n", "x").asInt32(); }));
  EXPECT_EQ("Cannot access a value or value group when isNull() returns true",
            messageOf<ConfigurationException>([] { Value::Null.asInt32(); }));
}

TEST_F(ValueTest, EnumerationTextsAreCheckedAgainstTheSymbols) {
  EXPECT_EQ(1, Value::create(model.color, "green").asEnum());
  EXPECT_EQ(
      "The value \"x\" is not valid for the \"color\" parameter. Allowed values for this "
      "parameter are: red, green and blue.",
      messageOf<ValidationException>([&] { Value::create(model.color, "x"); }));
  // A single symbol is preceded by " and " straight after the colon and blank.
  EXPECT_EQ(
      "The value \"x\" is not valid for the \"level\" parameter. Allowed values for this "
      "parameter are:  and only.",
      messageOf<ValidationException>([&] { Value::create(model.level, "x"); }));
  EXPECT_EQ("Unknown enumeration type for value 'abc'",
            messageOf<ConfigurationException>([] { Value::create("e", "abc").asEnum(); }));
}

TEST_F(ValueTest, DefaultValuesCannotBeModifiedOnceTheyHoldAText) {
  Value portDefault = model.port->getDefaultValue();
  EXPECT_TRUE(portDefault.isDefaultValue());
  EXPECT_EQ("'port' is a default value, it cannot be modified",
            messageOf<ConfigurationException>([&] { portDefault.set("1"); }));
  EXPECT_EQ(8080, portDefault.asInt32());

  Value empty(model.port->getParameter());
  empty.set(5);  // the first text of an empty default is allowed
  EXPECT_EQ(5, empty.asInt32());
  EXPECT_EQ("'port' is a default value, it cannot be modified",
            messageOf<ConfigurationException>([&] { empty.set(6); }));
}

TEST_F(ValueTest, WritesStoreTextFormsAndFailedWritesChangeNothing) {
  UnboundedValue numbers(model.port);
  numbers.add("5");
  EXPECT_EQ("\"y\" is not a valid Int32",
            messageOf<ValidationException>([&] { numbers.set(0, "y"); }));
  EXPECT_EQ("This value is not a double",
            messageOf<ConfigurationException>([&] { numbers.add(1.5); }));
  EXPECT_EQ("index out of range@impl/ValueState", contractOf([&] { numbers.set(1, 3); }));
  numbers.add(int32_t(-3));
  ASSERT_EQ(2u, numbers.getValueCount());
  EXPECT_EQ(5, numbers.asInt32(0));
  EXPECT_EQ(-3, numbers.asInt32(1));

  UnboundedValue ratios(model.ratio);
  ratios.add(0.1 + 0.2);
  EXPECT_EQ("0.3", ratios.asString(0));  // the stream's six significant digits
  Value oid(model.oid);
  oid.set(ObjectId(3, 2, 5, 1));
  EXPECT_EQ("3-2-5-1", oid.asString());
  EXPECT_EQ("The database id cannot be zero",
            messageOf<ValidationException>([&] { oid.set("0-1"); }));
  Value flag(model.verbose);
  flag.set(false);
  EXPECT_EQ("false", flag.asString());
  EXPECT_EQ("0", impl::ValueAccess::getState(flag)->getText(0));
  Value huge(model.ubig);
  huge.set(std::numeric_limits<uint64_t>::max());
  EXPECT_EQ("18446744073709551615", huge.asString());
}

TEST_F(ValueTest, AppendsClonesAndSavedOldValues) {
  UnboundedValue untyped("loose");
  untyped.append(Value::create(model.port, "1"));
  untyped.append(untyped);  // a value appended to itself doubles its entries
  EXPECT_EQ(2u, untyped.getValueCount());
  // Type mismatches on append are refused as a merge refuses them (see the merge tests).

  UnboundedValue values = UnboundedValue::create(model.paths, "/a");
  values.add("/b");
  const boost::shared_ptr<impl::ValueState> old = values.saveOldValue(1);
  ASSERT_TRUE(old);
  EXPECT_EQ("/b", old->getText(0));
  EXPECT_EQ(0u, values.saveOldValue(2)->getValueCount());
  UnboundedValue deep(values, 0);
  EXPECT_EQ(0u, UnboundedValue(values, 1).getValueCount());
  deep.add("/c");
  EXPECT_EQ(2u, values.getValueCount());
  Value shared = Value::create(model.port, "1");
  Value(shared).set(2);  // a copy is an alias
  EXPECT_EQ(2, shared.asInt32());
}

TEST_F(ValueTest, ValueIteratorWalksEntriesAndReportsMisuse) {
  UnboundedValue values = UnboundedValue::create(model.paths, "/a");
  values.add("/b");
  ValueIterator it = values.getIterator();
  EXPECT_EQ("Must call next() before dereferencing an iterator",
            messageOf<ConfigurationException>([&] { it.asString(); }));
  ASSERT_TRUE(it.next());
  ValueIterator copy(it);
  ASSERT_TRUE(it.next());
  EXPECT_EQ("/a", copy.asString());
  EXPECT_FALSE(it.next());
  EXPECT_EQ("Dereferencing iterator after next() returns false",
            messageOf<ConfigurationException>([&] { it.asString(); }));
  it.reset();
  ASSERT_TRUE(it.next());
  EXPECT_EQ("/a", it.asString());
  ValueIterator none;
  EXPECT_FALSE(none.next());
  EXPECT_EQ("The value is NULL", messageOf<ConfigurationException>([&] { none.asString(); }));
}

TEST_F(ValueTest, LookupIgnoresCaseAndFollowsTheBinding) {
  ValueGroup group("g");
  group.addValue("port", "1");
  ASSERT_TRUE(group.findItem("PORT"));
  EXPECT_FALSE(group.findItem("por"));

  // Binding renames: the value is found under the reference's id only.
  Value renamed = Value::create("p", "5");
  group.add(renamed);
  renamed.setGroupItem(model.port);
  EXPECT_FALSE(group.findItem("p"));
  EXPECT_EQ(2u, group.getItemCount("PoRt"));
  EXPECT_STREQ("port", renamed.getName());
  EXPECT_NE("<no exception>", contractOf([&] { renamed.setGroupItem(model.name); }));
}

TEST_F(ValueTest, ValuesAreUniqueByNameGroupsRepeat) {
  ValueGroup group("g");
  group.addValue("a", "1");
  group.addValue("A", "2");
  ASSERT_EQ(1u, group.getItemCount());
  EXPECT_EQ("2", group.getUnboundedValue("a").asString(1));

  ValueGroup first = group.addGroup("g");
  ValueGroup second = group.addGroup("g");
  first.addValue("n", "1");
  second.addValue("n", "2");
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

TEST_F(ValueTest, GetValueSeesUnmatchedValuesOnlyWithUseDefault) {
  ValueGroup root(model.spec);
  root.addValue("stray", "1");
  UnboundedValue paths = UnboundedValue::create(model.paths, "/a");
  root.add(paths);
  root.addGroup("db");
  EXPECT_TRUE(root.getValue("stray", 0, false).isNull());
  EXPECT_EQ("1", root.getValue("stray", 0, true).asString());
  EXPECT_TRUE(root.getUnboundedValue("stray", 0, false).isNull());

  ValidationErrors errors;
  EXPECT_TRUE(root.getValue("paths", &errors).isNull());
  ASSERT_EQ(1u, errors.getNumberOfErrors());
  EXPECT_STREQ("\"paths\" is not a bounded value.", errors.getError(0));
  EXPECT_TRUE(root.getUnboundedValue("db", &errors).isNull());
  EXPECT_STREQ("\"db\" is not a unbounded value.", errors.getError(1));
  EXPECT_EQ("\"paths\" is not a bounded value group.",
            messageOf<ConfigurationException>([&] { root.getValueGroup("paths"); }));
  EXPECT_TRUE(root.getValue("db", &errors).isNull());
  EXPECT_FALSE(root.findValueBase("db", &errors));
  EXPECT_FALSE(root.findValueGroup("paths", &errors));
  EXPECT_EQ(5u, errors.getNumberOfErrors());

  // A bounded value is also available as an unbounded one.
  root.addValue("port", "3");
  EXPECT_EQ(3, root.getUnboundedValue("port").asInt32(0));
}

TEST_F(ValueTest, MissingItemsFallBackToDefaults) {
  ValueGroup root(model.spec);
  EXPECT_EQ(8080, root.getValue("port").asInt32());
  EXPECT_TRUE(root.getValue("port", 0, false).isNull());
  EXPECT_TRUE(root.getValue("name").isNull());    // no default
  EXPECT_TRUE(root.getValue("alpha").isNull());   // defaults inside a one-of are not used
  EXPECT_EQ(8080, root.getUnboundedValue("port").asInt32(0));

  EXPECT_EQ("localhost", root.getValueGroup("db").getValue("host").asString());
  EXPECT_EQ(0u, root.getItemCount());  // the default group is not added
  EXPECT_TRUE(root.getValueGroup("db", 0, false).isNull());
  EXPECT_TRUE(ValueGroup("loose").getValue("port").isNull());
}

TEST_F(ValueTest, AddValueAndAddGroupBindWhenTheContainerKnowsTheName) {
  ValueGroup root(model.spec);
  Value port = root.addValue("PORT", "10");
  EXPECT_EQ(model.port, port.getGroupItem());
  EXPECT_EQ(root.getInstanceId(), port.getParent().getInstanceId());
  EXPECT_FALSE(root.addValue("other", "v").isMatched());
  ValueGroup target = root.addGroup("target");
  EXPECT_TRUE(target.isUnbounded());
  EXPECT_FALSE(root.addGroup("elsewhere").isMatched());
  EXPECT_TRUE(root.getValueGroup("elsewhere").isUnbounded());  // unmatched groups count as unbounded
  EXPECT_EQ(model.path, target.addValue("path", "/p").getGroupItem());
  EXPECT_EQ("Must provide a value for the \"port\" parameter.",
            messageOf<ConfigurationException>([&] { root.addValue("port", ""); }));
}

TEST_F(ValueTest, TryGetValueKeepsTheDeliberateIndexTest) {
  ValueGroup group("g");
  group.addValue("n", "42");
  group.addValue("text", "hello");
  group.addValue("oid", "1-2");

  int32_t n = 0;
  EXPECT_TRUE(group.tryGetValue("N", n));
  EXPECT_EQ(42, n);
  ObjectId oid;
  EXPECT_TRUE(group.tryGetValue("oid", oid));
  EXPECT_EQ(ObjectId(1, 2, 0, 0), oid);
  // Identifiers are equal field by field; only 0-0-0-0 is null.
  for (const ObjectId& other : {ObjectId(9, 2, 0, 0), ObjectId(1, 9, 0, 0), ObjectId(1, 2, 9, 0),
                                ObjectId(1, 2, 0, 9)}) {
    EXPECT_FALSE(oid == other);
    EXPECT_FALSE(other.isNull());
  }
  EXPECT_TRUE(ObjectId().isNull());
  uint64_t big = 0;
  EXPECT_TRUE(group.tryGetValue("n", big));
  double d = 0;
  EXPECT_TRUE(group.tryGetValue("n", d));
  EXPECT_DOUBLE_EQ(42.0, d);
  const char* pointer = 0;
  EXPECT_TRUE(group.tryGetValue("text", pointer));
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
  EXPECT_TRUE(root.tryGetValue("verbose", pointer));
  EXPECT_STREQ("true", pointer);
}

TEST_F(ValueTest, RemoveClearAndReset) {
  ValueGroup root(model.spec);
  root.addValue("port", "1");
  ValueGroup db = root.addGroup("db");
  db.addValue("host", "h");
  root.addValue("name", "n");
  EXPECT_TRUE(root.remove("PORT"));
  EXPECT_FALSE(root.remove("port"));
  EXPECT_EQ(2u, root.getItemCount());
  EXPECT_NE("<no exception>", contractOf([&] { root.remove(size_t(2)); }));
  EXPECT_TRUE(root.remove(size_t(1)));
  EXPECT_TRUE(root.getItem(0)->isValueGroup());
  root.reset();
  EXPECT_FALSE(root.isMatched());
  EXPECT_STREQ("", root.getName());  // made for a container: no name of its own
  EXPECT_TRUE(db.getParent().isNull());
  EXPECT_EQ(0u, db.getItemCount());  // the reset reaches every group below
}

TEST_F(ValueTest, ClonesAreDeepOrEmpty) {
  ValueGroup root(model.spec);
  root.addValue("port", "1");
  ValueGroup db = root.addGroup("db");
  db.addValue("host", "h");
  root.complete();

  ValueGroup empty(root, 1);
  EXPECT_EQ(0u, empty.getItemCount());
  EXPECT_TRUE(empty.isComplete());

  const boost::shared_ptr<ValueGroupItem> item = root.clone(0);
  ValueGroup& deep = static_cast<ValueGroup&>(*item);
  ASSERT_EQ(2u, deep.getItemCount());
  const ValueGroup deepDb = deep.getValueGroup("db");
  EXPECT_NE(db.getInstanceId(), deepDb.getInstanceId());
  EXPECT_EQ(deep.getInstanceId(), deepDb.getParent().getInstanceId());
  EXPECT_EQ(deepDb.getInstanceId(), deepDb.getValue("host").getParent().getInstanceId());
  deep.getValue("port").set(2);
  EXPECT_EQ(1, root.getValue("port").asInt32());
}

TEST_F(ValueTest, CompleteMarksEveryGroupBelow) {
  ValueGroup root(model.spec);
  ValueGroup target = root.addGroup("target");
  ValueGroup inner = target.addGroup("inner");
  Value port = root.addValue("port", "1");
  root.complete();
  EXPECT_TRUE(inner.isComplete());
  EXPECT_TRUE(port.isComplete());
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

TEST_F(ValueTest, AcceptWalksInOrderAndStopsWhenTold) {
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
}

TEST_F(ValueTest, GroupIteratorFiltersAndReportsMisuse) {
  ValueGroup root("root");
  root.addGroup("a");
  root.addValue("x", "1");
  root.addGroup("b");
  root.addGroup("A");

  ValueGroupIterator all = root.getValueGroupIterator();
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
  EXPECT_STREQ("a", copy.getCurrent().getName());
  onlyA.reset();

  ValueGroupIterator none;
  EXPECT_FALSE(none.next());
  EXPECT_EQ("Dereferencing iterator after isNull() returns true",
            messageOf<ConfigurationException>([&] { none.getCurrent(); }));

  ValueIterator values = root.getValueIterator("X");
  ASSERT_TRUE(values.next());
  EXPECT_EQ("1", values.asString());
  EXPECT_TRUE(root.getValueIterator("a").isNull());
}

TEST_F(ValueTest, NullGroupsRefuseAccessAliasesShareStateAndMatching) {
  EXPECT_EQ("Cannot access a value or value group when isNull() returns true",
            messageOf<ConfigurationException>([] { ValueGroup::Null.getItemCount(); }));
  ValueGroup group("g");
  ValueGroup alias(group);
  alias.setName("renamed");
  EXPECT_STREQ("renamed", group.getName());
  EXPECT_FALSE(group.matches(*model.port));
  EXPECT_TRUE(ValueGroup("TOOL").matches(*model.items));  // unbound: by name
  EXPECT_FALSE(ValueGroup(model.db).matches(*model.items));
}

TEST_F(ValueTest, MergeBoundedValuesKeepTheFirstUnboundedOnesCollectNewOnesAreShared) {
  ValueGroup target(model.spec);
  target.addValue("port", "1");
  target.addUnboundedValue("paths", "x");
  ValueGroup source(model.spec);
  source.addValue("port", "2");
  Value name = source.addValue("name", "fresh");
  UnboundedValue more = source.addUnboundedValue("paths", "y");
  more.add("z");
  target.merge(*model.spec, source);

  EXPECT_EQ(1, target.getValue("port").asInt32());
  EXPECT_EQ(1u, target.getValue("port").getValueCount());
  UnboundedValue paths = target.getUnboundedValue("paths");
  ASSERT_EQ(3u, paths.getValueCount());
  EXPECT_EQ("y", paths.asString(1));
  EXPECT_EQ("z", paths.asString(2));
  EXPECT_EQ(2u, more.getValueCount());  // the source is only read
  // A value the target lacked joins it with its state: both trees see a change.
  target.getValue("name").set("b");
  EXPECT_EQ("b", name.asString());
  EXPECT_EQ(target.getInstanceId(), name.getParent().getInstanceId());
}

TEST_F(ValueTest, MergeContainersMergeByBoundedness) {
  ValueGroup target(model.spec);
  target.addGroup("db").addValue("host", "one");
  target.addGroup("target").addValue("path", "/1");

  ValueGroup source(model.spec);
  ValueGroup sourceDb = source.addGroup("db");
  sourceDb.addValue("host", "two");
  ValueGroup sourceTarget = source.addGroup("target");
  sourceTarget.addValue("path", "/2");
  source.complete();

  target.merge(*model.spec, source);
  EXPECT_EQ(1u, target.getItemCount("db"));
  EXPECT_EQ("one", target.getValueGroup("db").getValue("host").asString());
  ASSERT_EQ(2u, target.getItemCount("target"));
  std::string paths;
  for (ValueGroupIterator it = target.getValueGroupIterator("target"); it.next();) {
    paths += it.getCurrent().getValue("path").asString();
  }
  EXPECT_EQ("/1/2", paths);
  // A bounded container that the target lacks arrives as a new group.
  ValueGroup empty(model.spec);
  empty.merge(*model.spec, source);
  EXPECT_EQ("two", empty.getValueGroup("db", 0, false).getValue("host").asString());
}

TEST_F(ValueTest, MergeUnmatchedItemsAndForeignGroupsAreDropped) {
  ValueGroup source(model.spec);
  source.addValue("stray", "1");
  ValueGroup foreign = source.addGroup("foreign");
  foreign.addValue("name", "x");
  Value bound = Value::create(model.port, "5");
  foreign.add(bound);  // matched, but below a group outside the specification
  ValueGroup unboundRoot("tool");
  unboundRoot.addValue("port", "7");

  ValueGroup target(model.spec);
  target.merge(*model.spec, source);
  target.merge(*model.spec, unboundRoot);
  EXPECT_EQ(0u, target.getItemCount());
  EXPECT_TRUE(ValueGroupMerger(*model.spec, target, 0).isGroupInSpecification(&source));
  EXPECT_FALSE(ValueGroupMerger(*model.spec, target, 0).isGroupInSpecification(&foreign));
}

TEST_F(ValueTest, MergeUnboundedValuesOfDifferentTypesRefuseToMerge) {
  // An untyped value in the target takes any entries.
  ValueGroup target(model.spec);
  UnboundedValue loose = UnboundedValue::create("paths", "x");
  target.add(loose);
  ValueGroup source(model.spec);
  source.addUnboundedValue("paths", "y");
  target.merge(*model.spec, source);
  EXPECT_EQ(2u, loose.getValueCount());

  // A typed value of another type under the same name refuses them.
  ConfigurationManager elsewhere;
  const Parameter* numbers = impl::Factory::createParameter("paths", "paths", "Numbers",
                                                      Parameter::INT32, 0, 0, 0, &elsewhere);
  {
    ValueGroup typedTarget(model.spec);
    Value ints(numbers);
    ints.set(3);
    typedTarget.add(ints);
    EXPECT_EQ("Values of string type cannot be appended to this int32 type unbounded value",
              messageOf<ConfigurationException>([&] { typedTarget.merge(*model.spec, source); }));
    EXPECT_EQ(1u, ints.getValueCount());
  }
}

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

TEST_F(ValueTest, LargeGroupLookUpsFollowAddsAndRemovals) {
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
  EXPECT_EQ("39", group.getValue("item39").asString());
  EXPECT_EQ(nameOf(2), group.getItem(0)->getName());

  group.clear();
  EXPECT_TRUE(group.getValue("item20").isNull());
}

TEST_F(ValueTest, LargeGroupsFindRenamedItemsUnderTheirNewName) {
  ValueGroup group = largeGroup();
  boost::shared_ptr<ValueGroupItem> item = group.findItem("item5");
  ASSERT_TRUE(item);
  item->setName("renamed");
  EXPECT_TRUE(group.findItem("item5") == nullptr);
  EXPECT_EQ("5", group.getValue("RENAMED").asString());

  // Binding renames an item to the bound item's id, also inside a group that holds it already.
  group.findItem("item6")->setGroupItem(model.port);
  EXPECT_EQ("6", group.getValue("Port").asString());
  EXPECT_TRUE(group.findItem("item6") == nullptr);

  EXPECT_EQ("6", ValueGroup(group, 0).getValue("port").asString());  // a copy has its own index
}

TEST_F(ValueTest, ARenameReachesTheGroupsThatHoldTheItemAndNoOthers) {
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

TEST_F(ValueTest, ContractsAndTypeNames) {
  ValueGroup group("g");
  Value value = group.addValue("v", "1");
  UnboundedValue many = UnboundedValue::create("u", "1");
  const std::function<void()> contracts[] = {
      [] { Value::create(static_cast<const char*>(""), "x"); },
      [] { Value::create(static_cast<const ParameterRef*>(nullptr), "1"); },
      [] { Value(""); },
      [&] { group.findItem(0); },
      [&] { group.remove(""); },
      [&] { group.getItem(2); },
      [&] { value.setGroupItem(0); },
      [&] { value.setName(""); },
      [] { impl::ValueItemState::getItemTypeName(static_cast<ValueGroupItem::ItemType>(3)); },
  };
  for (const auto& call : contracts) {
    EXPECT_THROW(call(), zelk::ContractViolationException);
  }
  EXPECT_STREQ("bounded value group", group.getItemTypeName());
  EXPECT_STREQ("bounded value", value.getItemTypeName());
  EXPECT_STREQ("unbounded value", many.getItemTypeName());
  EXPECT_TRUE(ValueGroup(ValueGroup::Null, 0).isNull());
  EXPECT_TRUE(Value(Value::Null, 0).isNull());
  EXPECT_TRUE(ValueGroupIterator().isNull());
  UnboundedValue flags(model.verbose);
  flags.add(true);
  flags.set(0, false);
  EXPECT_EQ("false", flags.asString(0));
  ValueIterator entries = flags.getIterator();
  ASSERT_TRUE(entries.next());
  EXPECT_EQ(1u, entries.getValueCount());
}

}  // namespace
}  // namespace zelk::configuration
