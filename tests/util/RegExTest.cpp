#include "zelk/util/RegEx.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

#include "zelk/host/FormattedHostException.h"
#include "zelk/util/ContractViolationException.h"

namespace zelk {
namespace {

using ::testing::HasSubstr;
using ::testing::StartsWith;

// The object-identifier pattern that conversions use: four numbers joined by hyphens.
const char* const OID_PATTERN = "^(\\d+)-(\\d+)-(\\d+)-(\\d+)$";

TEST(RegExTest, MatchesAndCapturesAnObjectIdentifier) {
  const RegEx oid(OID_PATTERN, true, false);
  const char* subject = "12-0-345-6";
  RegExMatch m[5];
  ASSERT_TRUE(oid.matches(subject, m, 5));
  EXPECT_EQ(0, m[0].start);
  EXPECT_EQ(10, m[0].end);
  EXPECT_EQ("12", RegEx::extractMatch(subject, m[1]));
  EXPECT_EQ("0", RegEx::extractMatch(subject, m[2]));
  EXPECT_EQ("345", RegEx::extractMatch(subject, m[3]));
  EXPECT_EQ("6", RegEx::extractMatch(subject, m[4]));
  EXPECT_TRUE(oid.match(subject));
  EXPECT_FALSE(oid.match("12-0-345"));
  EXPECT_FALSE(oid.match("12-0-345-6x"));
}

TEST(RegExTest, FillsUnusedEntriesAndLeavesThemAloneOnNoMatch) {
  const RegEx twoGroups("(a+)(b)?", false, false);
  RegExMatch m[5];
  ASSERT_TRUE(twoGroups.matches("xaac", m, 5));
  EXPECT_EQ("aa", RegEx::extractMatch("xaac", m[1]));
  // The optional group did not take part; the entries beyond the groups are not set either.
  for (int i = 2; i < 5; ++i) {
    EXPECT_EQ(-1, m[i].start) << i;
    EXPECT_EQ(-1, m[i].end) << i;
  }
  EXPECT_EQ("", RegEx::extractMatch("xaac", m[2]));

  RegExMatch untouched[2];
  untouched[0] = {7, 8};
  untouched[1] = {9, 10};
  EXPECT_FALSE(twoGroups.matches("xyz", untouched, 2));
  EXPECT_EQ(7, untouched[0].start);
  EXPECT_EQ(10, untouched[1].end);

  // A pattern that matches the empty string at offset 0.
  const RegEx anything("x*", false, false);
  EXPECT_TRUE(anything.match(""));
  RegExMatch whole[1];
  ASSERT_TRUE(anything.matches("abc", whole, 1));
  EXPECT_EQ(0, whole[0].start);
  EXPECT_EQ(0, whole[0].end);
}

TEST(RegExTest, ManyEntriesGiveTheSameResultsAsFew) {
  const RegEx pattern("(\\w)(\\w)(\\w)(\\w)(\\w)(\\w)(\\w)(\\w)(\\w)(\\w)(\\w)(\\w)", false, false);
  const char* subject = "abcdefghijklmn";
  RegExMatch few[10];
  RegExMatch many[16];
  ASSERT_TRUE(pattern.matches(subject, few, 10));
  ASSERT_TRUE(pattern.matches(subject, many, 16));
  for (int i = 0; i < 10; ++i) {
    EXPECT_EQ(few[i].start, many[i].start) << i;
    EXPECT_EQ(few[i].end, many[i].end) << i;
  }
  EXPECT_EQ("l", RegEx::extractMatch(subject, many[12]));
  EXPECT_EQ(-1, many[13].start);
  EXPECT_EQ(-1, many[15].end);
  // With fewer entries than groups, every entry given is filled.
  RegExMatch three[3];
  ASSERT_TRUE(pattern.matches(subject, three, 3));
  EXPECT_EQ("b", RegEx::extractMatch(subject, three[2]));
  // With no entries at all there is nothing to confirm the match with.
  RegExMatch none[1];
  EXPECT_FALSE(pattern.matches(subject, none, 0));
}

TEST(RegExTest, CaselessAndUtf8Options) {
  EXPECT_TRUE(RegEx("^abc$", true, false).match("ABC"));
  EXPECT_FALSE(RegEx(std::string("^abc$"), false, false).match("ABC"));
  // In UTF-8 mode '.' takes a whole character.
  EXPECT_TRUE(RegEx("^.$", false, true).match("\xC3\xA9"));
  EXPECT_FALSE(RegEx("^.$", false, false).match("\xC3\xA9"));
}

TEST(RegExTest, ABadPatternThrowsTheHostsFormattedException) {
  try {
    RegEx broken("(ab", false, false);
    FAIL() << "no exception";
  } catch (const zelk::host::FormattedHostException& e) {
    EXPECT_THAT(e.what(), StartsWith("REGEX ERROR #"));
    EXPECT_THAT(e.what(), HasSubstr(": missing )"));
    EXPECT_THAT(e.what(), HasSubstr(" at offset 3"));
  }
  // A percent sign in the pattern is not read as a format.
  try {
    RegEx broken("%s%n(", false, false);
    FAIL() << "no exception";
  } catch (const zelk::host::FormattedHostException& e) {
    EXPECT_THAT(e.what(), StartsWith("REGEX ERROR #"));
  }
}

TEST(RegExTest, ContractsAndOutOfRangeExtraction) {
  const RegEx pattern("a", false, false);
  try {
    pattern.matches("a", nullptr, 1);
    FAIL() << "no exception";
  } catch (const zelk::ContractViolationException& e) {
    EXPECT_STREQ("Contract violation: \"matches != 0\"", e.what());
    EXPECT_STREQ("RegEx", e.getFile());
  }
  RegExMatch beyond;
  beyond.start = 10;
  beyond.end = 12;
  try {
    RegEx::extractMatch("short", beyond);
    FAIL() << "no exception";
  } catch (const std::out_of_range& e) {
    EXPECT_THAT(e.what(), HasSubstr("basic_string::substr"));
  }
}

}  // namespace
}  // namespace zelk
