#include "zelk/configuration/impl/Convert.h"

#include <cstdint>
#include <limits>
#include <string>

#include <gtest/gtest.h>

#include "zelk/configuration/ConfigurationManager.h"
#include "zelk/configuration/EnumDefinition.h"
#include "zelk/configuration/ObjectId.h"
#include "zelk/configuration/ValidationErrors.h"
#include "zelk/configuration/ValidationException.h"
#include "zelk/configuration/impl/Factory.h"
#include "zelk/util/ContractViolationException.h"

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

TEST(ConvertTest, Bool) {
  std::string message;
  for (const char* text : {"TRUE", "true", "tRuE", "2", "1", "007", "18446744073709551615", " 3"}) {
    EXPECT_TRUE(convert<bool>(Convert::asBool, text, &message)) << text;
    EXPECT_EQ("", message) << text;
  }
  for (const char* text : {"0", "false", "FALSE", "", "000"}) {
    EXPECT_FALSE(convert<bool>(Convert::asBool, text, &message)) << text;
    EXPECT_EQ("", message) << text;
  }
  EXPECT_FALSE(Convert::asBool(nullptr, nullptr));
  for (const char* text : {"yes", "true ", "1x", "18446744073709551616", "  ", "0x1"}) {
    EXPECT_FALSE(convert<bool>(Convert::asBool, text, &message)) << text;
    EXPECT_EQ("\"" + std::string(text) + "\" is not a valid bool", message);
  }
  // Quoted input keeps its percent signs.
  convert<bool>(Convert::asBool, "50%", &message);
  EXPECT_EQ("\"50%\" is not a valid bool", message);
}

TEST(ConvertTest, SignedIntegersAtTheirLimits) {
  std::string message;
  EXPECT_EQ(std::numeric_limits<int64_t>::max(),
            convert<int64_t>(Convert::asInt64, "9223372036854775807", &message));
  EXPECT_EQ(std::numeric_limits<int64_t>::min(),
            convert<int64_t>(Convert::asInt64, "-9223372036854775808", &message));
  EXPECT_EQ(42, convert<int64_t>(Convert::asInt64, "  +42", &message));
  EXPECT_EQ(0, convert<int64_t>(Convert::asInt64, "", &message));
  EXPECT_EQ("", message);
  for (const char* text :
       {"9223372036854775808", "-9223372036854775809", "0x10", "1e3", "12 ", "-", "+", " ", "a"}) {
    EXPECT_EQ(0, convert<int64_t>(Convert::asInt64, text, &message)) << text;
    EXPECT_EQ("\"" + std::string(text) + "\" is not a valid Int64", message);
  }

  EXPECT_EQ(2147483647, convert<int32_t>(Convert::asInt32, "2147483647", &message));
  EXPECT_EQ(std::numeric_limits<int32_t>::min(),
            convert<int32_t>(Convert::asInt32, "-2147483648", &message));
  EXPECT_EQ("", message);
  EXPECT_EQ(0, convert<int32_t>(Convert::asInt32, nullptr, &message));
  for (const char* text : {"2147483648", "-2147483649", "9223372036854775808", "x"}) {
    EXPECT_EQ(0, convert<int32_t>(Convert::asInt32, text, &message)) << text;
    // Only the 32-bit message, never the 64-bit one.
    EXPECT_EQ("\"" + std::string(text) + "\" is not a valid Int32", message);
  }
}

TEST(ConvertTest, UnsignedIntegersAtTheirLimits) {
  std::string message;
  EXPECT_EQ(std::numeric_limits<uint64_t>::max(),
            convert<uint64_t>(Convert::asUInt64, "18446744073709551615", &message));
  // A minus wraps without a message.
  EXPECT_EQ(std::numeric_limits<uint64_t>::max(),
            convert<uint64_t>(Convert::asUInt64, "-1", &message));
  EXPECT_EQ("", message);
  for (const char* text : {"18446744073709551616", "-18446744073709551616", "0x10", "1.0", " "}) {
    EXPECT_EQ(0u, convert<uint64_t>(Convert::asUInt64, text, &message)) << text;
    EXPECT_EQ("\"" + std::string(text) + "\" is not a valid UInt64", message);
  }

  EXPECT_EQ(4294967295u, convert<uint32_t>(Convert::asUInt32, "4294967295", &message));
  EXPECT_EQ("", message);
  for (const char* text : {"4294967296", "-1", "18446744073709551616", "1 2"}) {
    EXPECT_EQ(0u, convert<uint32_t>(Convert::asUInt32, text, &message)) << text;
    EXPECT_EQ("\"" + std::string(text) + "\" is not a valid UInt32", message);
  }
}

TEST(ConvertTest, Double) {
  std::string message;
  EXPECT_DOUBLE_EQ(1.5, convert<double>(Convert::asDouble, "1.5", &message));
  EXPECT_DOUBLE_EQ(-2e10, convert<double>(Convert::asDouble, " -2e10", &message));
  EXPECT_DOUBLE_EQ(0.0, convert<double>(Convert::asDouble, "", &message));
  EXPECT_EQ("", message);
  // A result too small to represent is not an overflow.
  convert<double>(Convert::asDouble, "1e-400", &message);
  EXPECT_EQ("", message);
  for (const char* text : {"1e999", "-1e999", "1.5x", "abc", " ", "1.5 "}) {
    EXPECT_DOUBLE_EQ(0.0, convert<double>(Convert::asDouble, text, &message)) << text;
    EXPECT_EQ("\"" + std::string(text) + "\" is not a valid double", message);
  }
}

TEST(ConvertTest, ObjectIds) {
  std::string message;
  ObjectId oid = convert<ObjectId>(Convert::asOID, "#1-2-3-4", &message);
  EXPECT_EQ(ObjectId(1, 2, 3, 4), oid);
  EXPECT_EQ("", message);
  EXPECT_EQ(ObjectId(7, 0, 0, 0), convert<ObjectId>(Convert::asOID, "7", &message));
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
      {"123456", "\"123456\" is not a valid OID"},
      {"1-123456", "\"1-123456\" is not a valid OID"},
      {"##1", "\"##1\" is not a valid OID"},
      {"1-", "\"1-\" is not a valid OID"},
      {"-1", "\"-1\" is not a valid OID"},
      {"1.2", "\"1.2\" is not a valid OID"},
      {"%d", "\"%d\" is not a valid OID"},
      {"0-1", "The database id cannot be zero"},
      {"00000", "The database id cannot be zero"},
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
  // A null text reads as empty.
  EXPECT_EQ(ObjectId(), convert<ObjectId>(Convert::asOID, nullptr, &message));
  EXPECT_EQ("\"\" is not a valid OID", message);
}

TEST(ConvertTest, WithoutACollectorTheMessageIsThrown) {
  try {
    Convert::asInt32("2147483648", nullptr);
    ADD_FAILURE() << "no exception";
  } catch (const ValidationException& e) {
    EXPECT_STREQ("\"2147483648\" is not a valid Int32", e.what());
  }
  EXPECT_THROW(Convert::asOID("0", nullptr), ValidationException);
  EXPECT_EQ(5, Convert::asInt32("5", nullptr));
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

  try {
    Convert::asEnum(nullptr, "red", &errors);
    ADD_FAILURE() << "no contract violation";
  } catch (const zelk::ContractViolationException& e) {
    EXPECT_STREQ("Must provide an enumeration definition", e.what());
    EXPECT_STREQ("impl/Convert", e.getFile());
  }
  EXPECT_THROW(Convert::asString(nullptr, 1, &errors), zelk::ContractViolationException);
}

TEST(ConvertTest, TextForms) {
  EXPECT_EQ("-2147483648", Convert::asString(std::numeric_limits<int>::min()));
  EXPECT_EQ("4294967295", Convert::asString(4294967295u));
  EXPECT_EQ("-9223372036854775808", Convert::asString(std::numeric_limits<long>::min()));
  EXPECT_EQ("18446744073709551615", Convert::asString(18446744073709551615ul));
  EXPECT_EQ("1", Convert::asString(true));
  EXPECT_EQ("0", Convert::asString(false));
  EXPECT_EQ("3.14159", Convert::asString(3.14159265));
  EXPECT_EQ("1e+20", Convert::asString(1e20));
  EXPECT_EQ("0.5", Convert::asString(0.5));
  EXPECT_EQ("3-2-5-1", Convert::asString(ObjectId(3, 2, 5, 1)));
  EXPECT_EQ("65535-0-0-65535", Convert::asString(ObjectId(65535, 0, 0, 65535)));

  // What asString writes, the parsers read back.
  ValidationErrors errors;
  EXPECT_EQ(ObjectId(9, 8, 7, 6), Convert::asOID(Convert::asString(ObjectId(9, 8, 7, 6)).c_str(),
                                                 &errors));
  EXPECT_TRUE(Convert::asBool(Convert::asString(true).c_str(), &errors));
  EXPECT_EQ(0u, errors.getNumberOfErrors());
}

}  // namespace
