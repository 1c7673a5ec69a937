#include "zelk/util/SafeFormat.h"

#include <gtest/gtest.h>

#include <string>

namespace zelk {
namespace {

TEST(SafeFormatTest, FormatWithoutArgumentsReadsNothing) {
  EXPECT_EQ("100% of %s", formatWithoutArguments("100%% of %s"));
  EXPECT_EQ("%s%s%s%n", formatWithoutArguments("%s%s%s%n"));
  EXPECT_EQ("%999999999d", formatWithoutArguments("%999999999d"));
  EXPECT_EQ("%", formatWithoutArguments("%"));
  EXPECT_EQ("%%", formatWithoutArguments("%%%%"));
  EXPECT_EQ("%%", formatWithoutArguments("%%%"));
  EXPECT_EQ("", formatWithoutArguments(""));
  EXPECT_EQ("", formatWithoutArguments(nullptr));
  const std::string longText(6000, 'a');
  EXPECT_EQ(kFormatBufferSize - 1, formatWithoutArguments(longText.c_str()).size());
}

TEST(SafeFormatTest, FormatMessageIsBoundedToTheBuffer) {
  EXPECT_EQ("Duplicate parameter \"x\"", formatMessage("Duplicate %s \"%s\"", "parameter", "x"));
  const std::string longText(5000, 'b');
  EXPECT_EQ(std::string(4095, 'b'), formatMessage("%s", longText.c_str()));
  // A user text passed as an argument is copied as it is.
  EXPECT_EQ("flag %s%s%s%n", formatMessage("flag %s", "%s%s%s%n"));
}

}  // namespace
}  // namespace zelk
