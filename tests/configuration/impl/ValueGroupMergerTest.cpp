#include <gtest/gtest.h>

#include <string>

#include "../ValueTestModel.h"
#include "zelk/configuration/ConfigurationManager.h"
#include "zelk/configuration/ConfigurationException.h"
#include "zelk/configuration/ValueGroup.h"
#include "zelk/configuration/ValueGroupIterator.h"
#include "zelk/configuration/impl/ValueGroupMerger.h"

namespace zelk::configuration::impl {
namespace {

using zelk::test::messageOf;

class ValueGroupMergerTest : public ::testing::Test {
protected:
  zelk::test::ValueTestModel model;
};

TEST_F(ValueGroupMergerTest, BoundedValuesKeepTheFirstTreesValue) {
  ValueGroup target(model.spec);
  target.addValue("port", "1");
  ValueGroup source(model.spec);
  source.addValue("port", "2");
  source.addValue("name", "fresh");
  target.merge(*model.spec, source);
  EXPECT_EQ(1, target.getValue("port").asInt32());
  EXPECT_EQ(1u, target.getValue("port").getValueCount());
  EXPECT_EQ("fresh", target.getValue("name").asString());
}

TEST_F(ValueGroupMergerTest, UnboundedValuesCollectEntriesInOrder) {
  ValueGroup target(model.spec);
  target.addUnboundedValue("paths", "x");
  ValueGroup source(model.spec);
  UnboundedValue more = source.addUnboundedValue("paths", "y");
  more.add("z");
  target.merge(*model.spec, source);
  UnboundedValue paths = target.getUnboundedValue("paths");
  ASSERT_EQ(3u, paths.getValueCount());
  EXPECT_EQ("x", paths.asString(0));
  EXPECT_EQ("y", paths.asString(1));
  EXPECT_EQ("z", paths.asString(2));
  EXPECT_EQ(2u, more.getValueCount());  // the source is only read
}

TEST_F(ValueGroupMergerTest, AddedValuesShareTheirStateWithTheSource) {
  ValueGroup target(model.spec);
  ValueGroup source(model.spec);
  Value name = source.addValue("name", "a");
  target.merge(*model.spec, source);
  Value merged = target.getValue("name");
  EXPECT_EQ(name.getInstanceId(), merged.getInstanceId());
  merged.set("b");
  EXPECT_EQ("b", source.getValue("name").asString());
  EXPECT_EQ(target.getInstanceId(), name.getParent().getInstanceId());
}

TEST_F(ValueGroupMergerTest, ContainersMergeByBoundedness) {
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
  // The new group is an empty copy of the source group, filled by the merge.
  ValueGroupIterator it = target.getValueGroupIterator("target");
  it.next();
  it.next();
  EXPECT_NE(sourceTarget.getInstanceId(), it.getCurrent().getInstanceId());
  EXPECT_TRUE(it.getCurrent().isComplete());

  // A bounded container that the target lacks arrives as a new group.
  ValueGroup empty(model.spec);
  empty.merge(*model.spec, source);
  EXPECT_EQ("two", empty.getValueGroup("db", 0, false).getValue("host").asString());
}

TEST_F(ValueGroupMergerTest, UnmatchedItemsAndForeignGroupsAreDropped) {
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
  EXPECT_FALSE(ValueGroupMerger(*model.spec, target, 0).isGroupInSpecification(0));
}

TEST_F(ValueGroupMergerTest, UnboundedValuesOfDifferentTypesRefuseToMerge) {
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
  const Parameter* numbers = Factory::createParameter("paths", "paths", "Numbers",
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

}  // namespace
}  // namespace zelk::configuration::impl
