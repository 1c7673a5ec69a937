#include "zelk/configuration/impl/Convert.h"

#include <cstdint>
#include <functional>
#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "zelk/configuration/ConfigurationManager.h"
#include "zelk/configuration/EnumDefinition.h"
#include "zelk/configuration/ObjectId.h"
#include "zelk/configuration/ValidationErrors.h"
#include "zelk/configuration/ValidationException.h"
#include "zelk/configuration/impl/Factory.h"

using namespace zelk::configuration;
using zelk::configuration::impl::Convert;
using zelk::configuration::impl::Factory;

namespace {

// Runs one conversion with a fresh collector; records the single message (or "" when none).
template <typename T, typename Conversion>
T convert(Conversion conversion, const char* text, std::string* message) {
  ValidationErrors errors;
  T result = conversion(text, &errors);
  EXPECT_LE(errors.getNumberOfErrors(), 1u) << text;
  *message = errors.getNumberOfErrors() == 1 ? errors.getError(0) : "";
  return result;
}

TEST(ConvertTest, NumbersAndFlagsAtTheirLimits) {
  std::string message;
  for (const char* text : {"TRUE", "tRuE", "2", "007", "18446744073709551615", " 3"}) {
    EXPECT_TRUE(convert<bool>(Convert::asBool, text, &message)) << text;
  }
  for (const char* text : {"0", "FALSE", "", "000"}) {
    EXPECT_FALSE(convert<bool>(Convert::asBool, text, &message)) << text;
  }
  EXPECT_EQ("", message);
  EXPECT_EQ(std::numeric_limits<int64_t>::min(),
            convert<int64_t>(Convert::asInt64, "-9223372036854775808", &message));
  EXPECT_EQ(2147483647, convert<int32_t>(Convert::asInt32, "2147483647", &message));
  EXPECT_EQ(std::numeric_limits<int32_t>::min(),
            convert<int32_t>(Convert::asInt32, "-2147483648", &message));
  // A minus wraps without a message.
  EXPECT_EQ(std::numeric_limits<uint64_t>::max(),
            convert<uint64_t>(Convert::asUInt64, "-1", &message));
  EXPECT_EQ(4294967295u, convert<uint32_t>(Convert::asUInt32, "4294967295", &message));
  convert<double>(Convert::asDouble, "1e-400", &message);  // too small is not an overflow
  EXPECT_EQ("", message);

  // Each rejected text gives exactly one message, of its own type (never the 64-bit one for a
  // 32-bit type), with the text quoted as written.
  const struct {
    std::function<void(const char*, ValidationErrors*)> conversion;
    const char* type;
    std::vector<const char*> texts;
  } rejected[] = {
      {Convert::asBool, "bool", {"yes", "true ", "18446744073709551616", "  ", "0x1", "50%"}},
      {Convert::asInt64, "Int64", {"9223372036854775808", "-9223372036854775809", "1e3", "-", " "}},
      {Convert::asInt32, "Int32", {"2147483648", "-2147483649", "9223372036854775808", "x"}},
      {Convert::asUInt64, "UInt64", {"18446744073709551616", "-18446744073709551616", "1.0"}},
      {Convert::asUInt32, "UInt32", {"4294967296", "-1", "1 2"}},
      {Convert::asDouble, "double", {"1e999", "-1e999", "1.5x", " ", "1.5 "}},
  };
  for (const auto& type : rejected) {
    for (const char* text : type.texts) {
      ValidationErrors errors;
      type.conversion(text, &errors);
      ASSERT_EQ(1u, errors.getNumberOfErrors()) << text;
      EXPECT_EQ("\"" + std::string(text) + "\" is not a valid " + type.type, errors.getError(0));
    }
  }
}

TEST(ConvertTest, ObjectIds) {
  std::string message;
  ObjectId oid = convert<ObjectId>(Convert::asOID, "#1-2-3-4", &message);
  EXPECT_EQ(ObjectId(1, 2, 3, 4), oid);
  EXPECT_EQ("", message);
  EXPECT_EQ(ObjectId(3, 2, 0, 0), convert<ObjectId>(Convert::asOID, "3-2", &message));
  EXPECT_EQ(ObjectId(65534, 65525, 65535, 65535),
            convert<ObjectId>(Convert::asOID, "65534-65525-65535-65535", &message));
  EXPECT_EQ(ObjectId(1, 0, 0, 9), convert<ObjectId>(Convert::asOID, "00001-0-00000-9", &message));
  EXPECT_EQ("", message);

  struct Case {
    const char* text;
    const char* message;
  };
  const Case failures[] = {
      {"", "\"\" is not a valid OID"},
      {"1-2-3-4-5", "\"1-2-3-4-5\" is not a valid OID"},
      {"1-123456", "\"1-123456\" is not a valid OID"},
      {"##1", "\"##1\" is not a valid OID"},
      {"-1", "\"-1\" is not a valid OID"},
      {"%d", "\"%d\" is not a valid OID"},
      {"0-1", "The database id cannot be zero"},
      {"65535", "The value 65535 is not a valid value for database id. The database id cannot "
                "be more than \"65534\""},
      {"1-65526", "The value 65526 is not a valid value for container id. The container id "
                  "cannot be more than \"65525\""},
      {"1-2-65536", "The value 65536 is not a valid value for page id. The page id cannot be "
                    "more than \"65535\""},
      {"1-2-3-99999", "The value 99999 is not a valid value for slot id. The slot id cannot be "
                      "more than \"65535\""},
      // The fields are checked in order; the first failure is the only one reported.
      {"99999-99999-99999-99999", "The value 99999 is not a valid value for database id. The "
                                  "database id cannot be more than \"65534\""},
  };
  for (const Case& c : failures) {
    EXPECT_EQ(ObjectId(), convert<ObjectId>(Convert::asOID, c.text, &message)) << c.text;
    EXPECT_EQ(c.message, message);
  }
}

TEST(ConvertTest, WithoutACollectorTheMessageIsThrown) {
  try {
    Convert::asInt32("2147483648", nullptr);
    ADD_FAILURE() << "no exception";
  } catch (const ValidationException& e) {
    EXPECT_STREQ("\"2147483648\" is not a valid Int32", e.what());
  }
}

TEST(ConvertTest, Enumerations) {
  std::unique_ptr<ConfigurationManager> manager(Factory::createManager());
  EnumDefinition* colours = Factory::createEnumDefinition("colours", manager.get());
  Factory::addEnumValue(colours, "red");
  Factory::addEnumValue(colours, "green", 5);

  ValidationErrors errors;
  EXPECT_EQ(5, Convert::asEnum(colours, "green", &errors));
  EXPECT_EQ(0, Convert::asEnum(colours, "Green", &errors));
  EXPECT_EQ("green", Convert::asString(colours, 5, &errors));
  EXPECT_EQ("", Convert::asString(colours, 4, &errors));
  ASSERT_EQ(2u, errors.getNumberOfErrors());
  EXPECT_STREQ("Symbol \"Green\" was not found", errors.getError(0));
  EXPECT_STREQ("Value 4 was not found", errors.getError(1));

}

}  // namespace
