#include <gtest/gtest.h>

#include <limits>
#include <string>

#include "ValueTestModel.h"
#include "zelk/configuration/ConfigurationException.h"
#include "zelk/configuration/UnboundedValue.h"
#include "zelk/configuration/ValidationException.h"
#include "zelk/configuration/Value.h"
#include "zelk/configuration/ValueGroup.h"
#include "zelk/configuration/ValueIterator.h"
#include "zelk/configuration/impl/ValueAccess.h"
#include "zelk/configuration/impl/ValueState.h"

namespace zelk::configuration {
namespace {

using zelk::test::contractOf;
using zelk::test::messageOf;

class ValueTest : public ::testing::Test {
protected:
  zelk::test::ValueTestModel model;
};

TEST_F(ValueTest, CreateFromNameStoresTextOrATrueFlag) {
  Value bare = Value::create("flag", "");
  ASSERT_EQ(1u, bare.getValueCount());
  EXPECT_EQ("1", bare.asString());
  EXPECT_TRUE(bare.asBool());
  EXPECT_EQ("1", Value::create("flag", 0).asString());

  Value text = Value::create("anything", "abc");
  EXPECT_EQ("abc", text.asString());
  EXPECT_EQ(-1, text.getValueType());
  EXPECT_FALSE(text.isMatched());
  EXPECT_TRUE(text.isUnbounded());  // an unbound value counts as unbounded
  EXPECT_EQ(nullptr, text.getParameter());

  EXPECT_EQ("Must provide a value name@impl/ValueState",
            contractOf([] { Value::create(static_cast<const char*>(""), "x"); }));
  EXPECT_EQ("Must provide a name@impl/ValueItemState", contractOf([] { Value v(""); }));
}

TEST_F(ValueTest, CreateFromParameterRefFollowsTheParameterType) {
  EXPECT_EQ("\"verbose\" is a boolean parameter and cannot accept a value",
            messageOf<ConfigurationException>([&] { Value::create(model.verbose, ""); }));
  EXPECT_EQ("\"verbose\" is a boolean parameter and cannot accept a value",
            messageOf<ConfigurationException>([&] { Value::create(model.verbose, "true"); }));
  Value flag = Value::create(model.verbose, 0);
  EXPECT_TRUE(flag.asBool());
  EXPECT_EQ("true", flag.asString());
  EXPECT_EQ(model.verbose, flag.getParameterRef());
  EXPECT_STREQ("verbose", flag.getName());

  EXPECT_EQ("Must provide a value for the \"port\" parameter.",
            messageOf<ConfigurationException>([&] { Value::create(model.port, 0); }));
  EXPECT_EQ("Must provide a value for the \"port\" parameter.",
            messageOf<ConfigurationException>([&] { Value::create(model.port, ""); }));
  EXPECT_EQ("\"abc\" is not a valid Int32",
            messageOf<ValidationException>([&] { Value::create(model.port, "abc"); }));
  EXPECT_EQ(42, Value::create(model.port, "42").asInt32());
  EXPECT_FALSE(Value::create(model.port, "42").isUnbounded());
  EXPECT_TRUE(UnboundedValue::create(model.paths, "/a").isUnbounded());

  EXPECT_EQ("Must provide a ParameterRef@impl/ValueState",
            contractOf([] { Value::create(static_cast<const ParameterRef*>(0), "1"); }));
}

TEST_F(ValueTest, TypedReadsConvertAndCheckTheType) {
  EXPECT_EQ(7u, Value::create(model.count, "7").asUInt32());
  EXPECT_EQ(-9000000000LL, Value::create(model.big, "-9000000000").asInt64());
  EXPECT_EQ(std::numeric_limits<uint64_t>::max(),
            Value::create(model.ubig, "18446744073709551615").asUInt64());
  EXPECT_DOUBLE_EQ(2.5, Value::create(model.ratio, "2.5").asDouble());
  EXPECT_EQ(ObjectId(1, 2, 3, 4), Value::create(model.oid, "#1-2-3-4").asOID());

  Value text = Value::create(model.name, "5");
  EXPECT_EQ("This value is not an int32",
            messageOf<ConfigurationException>([&] { text.asInt32(); }));
  EXPECT_EQ("This value is not an uint32",
            messageOf<ConfigurationException>([&] { text.asUInt32(); }));
  // The articles of int64 and uint64 are kept as they are.
  EXPECT_EQ("This value is not a int64",
            messageOf<ConfigurationException>([&] { text.asInt64(); }));
  EXPECT_EQ("This value is not an uint64",
            messageOf<ConfigurationException>([&] { text.asUInt64(); }));
  EXPECT_EQ("This value is not a bool", messageOf<ConfigurationException>([&] { text.asBool(); }));
  EXPECT_EQ("This value is not a double",
            messageOf<ConfigurationException>([&] { text.asDouble(); }));
  EXPECT_EQ("This value is not an OID", messageOf<ConfigurationException>([&] { text.asOID(); }));
  EXPECT_EQ("5", text.asString());

  // An untyped value accepts every typed read; a text that does not convert is reported.
  Value untyped = Value::create("n", "12");
  EXPECT_EQ(12, untyped.asInt32());
  EXPECT_DOUBLE_EQ(12.0, untyped.asDouble());
  EXPECT_TRUE(untyped.asBool());
  EXPECT_EQ("\"x\" is not a valid Int32",
            messageOf<ValidationException>([] { Value::create("n", "x").asInt32(); }));

  UnboundedValue one = UnboundedValue::create(model.paths, "/a");
  EXPECT_EQ("index out of range@impl/ValueState", contractOf([&] { one.asString(1); }));
  EXPECT_EQ("Cannot access a value or value group when isNull() returns true",
            messageOf<ConfigurationException>([] { Value::Null.asInt32(); }));
}

TEST_F(ValueTest, EnumerationTextsAreCheckedAgainstTheSymbols) {
  Value color = Value::create(model.color, "green");
  EXPECT_EQ("green", color.asString());
  EXPECT_EQ(1, color.asEnum());
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
  ASSERT_FALSE(portDefault.isNull());
  EXPECT_TRUE(portDefault.isDefaultValue());
  EXPECT_FALSE(portDefault.isUnbounded());
  EXPECT_EQ(8080, portDefault.asInt32());
  EXPECT_EQ("'port' is a default value, it cannot be modified",
            messageOf<ConfigurationException>([&] { portDefault.set(1); }));
  EXPECT_EQ("'port' is a default value, it cannot be modified",
            messageOf<ConfigurationException>([&] { portDefault.set("1"); }));
  EXPECT_EQ(8080, portDefault.asInt32());

  Value empty(model.port->getParameter());
  EXPECT_TRUE(empty.isDefaultValue());
  EXPECT_EQ(Parameter::INT32, empty.getValueType());
  empty.set(5);  // the first text of an empty default is allowed
  EXPECT_EQ(5, empty.asInt32());
  EXPECT_EQ("'port' is a default value, it cannot be modified",
            messageOf<ConfigurationException>([&] { empty.set(6); }));
}

TEST_F(ValueTest, FailedWritesLeaveTheTextsUnchanged) {
  UnboundedValue numbers(model.port);
  numbers.add("5");
  EXPECT_EQ("\"x\" is not a valid Int32", messageOf<ValidationException>([&] { numbers.add("x"); }));
  EXPECT_EQ("\"y\" is not a valid Int32",
            messageOf<ValidationException>([&] { numbers.set(0, "y"); }));
  EXPECT_EQ("This value is not a bool",
            messageOf<ConfigurationException>([&] { numbers.set(0, true); }));
  EXPECT_EQ("This value is not a double",
            messageOf<ConfigurationException>([&] { numbers.add(1.5); }));
  EXPECT_EQ("index out of range@impl/ValueState", contractOf([&] { numbers.set(1, 3); }));
  ASSERT_EQ(1u, numbers.getValueCount());
  EXPECT_EQ(5, numbers.asInt32(0));

  numbers.set(0, 9);
  numbers.add(int32_t(-3));
  EXPECT_EQ(9, numbers.asInt32(0));
  EXPECT_EQ(-3, numbers.asInt32(1));
}

TEST_F(ValueTest, TypedWritesAreStoredAsTheirTextForm) {
  UnboundedValue ratios(model.ratio);
  ratios.add(1.5);
  ratios.add(0.1 + 0.2);
  EXPECT_EQ("1.5", ratios.asString(0));
  EXPECT_EQ("0.3", ratios.asString(1));  // the stream's six significant digits

  Value oid(model.oid);
  oid.set(ObjectId(3, 2, 5, 1));
  EXPECT_EQ("3-2-5-1", oid.asString());
  oid.set("7");
  EXPECT_EQ(ObjectId(7, 0, 0, 0), oid.asOID());
  EXPECT_EQ("The database id cannot be zero",
            messageOf<ValidationException>([&] { oid.set("0-1"); }));

  Value flag(model.verbose);
  flag.set(false);
  EXPECT_EQ("false", flag.asString());
  EXPECT_EQ("0", impl::ValueAccess::getState(flag)->getText(0));
  flag.set("TRUE");
  EXPECT_TRUE(flag.asBool());
  EXPECT_EQ(1u, flag.getValueCount());

  Value huge(model.ubig);
  huge.set(std::numeric_limits<uint64_t>::max());
  EXPECT_EQ("18446744073709551615", huge.asString());
}

TEST_F(ValueTest, AppendChecksTypesAndKeepsOrder) {
  UnboundedValue collected(model.paths);
  collected.add("/a");
  UnboundedValue more = UnboundedValue::create(model.paths, "/b");
  more.add("/c");
  collected.append(more);
  ASSERT_EQ(3u, collected.getValueCount());
  EXPECT_EQ("/c", collected.asString(2));

  EXPECT_EQ("Values of int32 type cannot be appended to this string type unbounded value",
            messageOf<ConfigurationException>(
                [&] { collected.append(Value::create(model.port, "1")); }));
  EXPECT_EQ(3u, collected.getValueCount());

  UnboundedValue untyped("loose");
  untyped.append(Value::create(model.port, "1"));
  EXPECT_EQ(1u, untyped.getValueCount());
  untyped.append(untyped);  // a value appended to itself doubles its entries
  EXPECT_EQ(2u, untyped.getValueCount());
}

TEST_F(ValueTest, SaveOldValueCopiesOneEntryOfAMatchedValue) {
  EXPECT_FALSE(Value::create("loose", "1").saveOldValue(0));

  UnboundedValue values = UnboundedValue::create(model.paths, "/a");
  values.add("/b");
  const boost::shared_ptr<impl::ValueState> old = values.saveOldValue(1);
  ASSERT_TRUE(old);
  EXPECT_EQ(model.paths, old->getGroupItem());
  ASSERT_EQ(1u, old->getValueCount());
  EXPECT_EQ("/b", old->getText(0));
  EXPECT_NE(values.getInstanceId(), old->getInstanceId());
  EXPECT_EQ(0u, values.saveOldValue(2)->getValueCount());
}

TEST_F(ValueTest, ClonesGetNewIdsAndCopyTextsOnlyWhenDeep) {
  UnboundedValue original = UnboundedValue::create(model.paths, "/a");
  UnboundedValue deep(original, 0);
  UnboundedValue shallow(original, 1);
  EXPECT_NE(original.getInstanceId(), deep.getInstanceId());
  EXPECT_NE(deep.getInstanceId(), shallow.getInstanceId());
  EXPECT_EQ("/a", deep.asString(0));
  EXPECT_EQ(0u, shallow.getValueCount());
  EXPECT_EQ(model.paths, shallow.getGroupItem());
  deep.add("/b");
  EXPECT_EQ(1u, original.getValueCount());

  Value shared = Value::create(model.port, "1");
  Value alias(shared);
  alias.set(2);
  EXPECT_EQ(2, shared.asInt32());
  EXPECT_TRUE(Value(Value::Null, 0).isNull());
}

TEST_F(ValueTest, ValueIteratorWalksEntriesAndReportsMisuse) {
  UnboundedValue values = UnboundedValue::create(model.paths, "/a");
  values.add("/b");
  ValueIterator it = values.getIterator();
  EXPECT_EQ("Must call next() before dereferencing an iterator",
            messageOf<ConfigurationException>([&] { it.asString(); }));
  ASSERT_TRUE(it.next());
  EXPECT_EQ("/a", it.asString());
  ValueIterator copy(it);
  ASSERT_TRUE(it.next());
  EXPECT_EQ("/b", it.asString());
  EXPECT_EQ("/a", copy.asString());
  EXPECT_EQ(2u, it.getValueCount());
  EXPECT_FALSE(it.next());
  EXPECT_FALSE(it.next());
  EXPECT_EQ("Dereferencing iterator after next() returns false",
            messageOf<ConfigurationException>([&] { it.asString(); }));
  it.reset();
  ASSERT_TRUE(it.next());
  EXPECT_EQ("/a", it.asString());

  ValueIterator none;
  EXPECT_TRUE(none.isNull());
  EXPECT_FALSE(none.next());
  EXPECT_EQ("The value is NULL", messageOf<ConfigurationException>([&] { none.asString(); }));
  EXPECT_TRUE(ValueIterator(Value::Null).isNull());

  Value numbers = Value::create(model.port, "3");
  ValueIterator typed(numbers);
  ASSERT_TRUE(typed.next());
  EXPECT_EQ(3, typed.asInt32());
  EXPECT_EQ("This value is not a bool",
            messageOf<ConfigurationException>([&] { typed.asBool(); }));
}

}  // namespace
}  // namespace zelk::configuration
