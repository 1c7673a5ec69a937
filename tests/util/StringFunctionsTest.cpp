#include "zelk/util/StringFunctions.h"

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

#include "zelk/util/CaseInsensitiveLess.h"
#include "zelk/util/VectorWrapper.h"

namespace zelk {
namespace {

TEST(StringFunctionsTest, TrimHasEndingAndAppendSuffix) {
  EXPECT_EQ("a b", trim("  a b \t\n"));
  EXPECT_EQ("", trim("   "));
  EXPECT_EQ("", trim(""));
  EXPECT_EQ("x", trim("x"));
  EXPECT_TRUE(hasEnding("/etc/zelk/", "/"));
  EXPECT_TRUE(hasEnding("abc", ""));
  EXPECT_FALSE(hasEnding("c", "abc"));
  EXPECT_FALSE(hasEnding("abC", "bc"));
  EXPECT_EQ("/etc/", appendSuffix("/etc", "/"));
  EXPECT_EQ("/etc/", appendSuffix("/etc/", "/"));
  EXPECT_EQ("/", appendSuffix("", "/"));
}

TEST(StringFunctionsTest, CloneStringAndToVector) {
  EXPECT_EQ(nullptr, cloneString(nullptr));
  const char* original = "copy me";
  char* copy = cloneString(original);
  ASSERT_NE(nullptr, copy);
  EXPECT_NE(original, copy);
  EXPECT_STREQ(original, copy);
  delete[] copy;
  char* empty = cloneString("");
  EXPECT_STREQ("", empty);
  delete[] empty;

  const char* items[] = {"tool", "-a", "", "v"};
  EXPECT_EQ((std::vector<std::string>{"tool", "-a", "", "v"}), toVector(4, items));
  EXPECT_EQ((std::vector<std::string>{"tool"}), toVector(1, items));
  EXPECT_TRUE(toVector(0, nullptr).empty());
}

TEST(StringFunctionsTest, CaseInsensitiveLessMakesIdsThatDifferInCaseOneKey) {
  const CaseInsensitiveLess less;
  EXPECT_FALSE(less("Backup", "BACKUP"));
  EXPECT_FALSE(less("BACKUP", "Backup"));
  EXPECT_TRUE(less("alpha", "BETA"));
  EXPECT_TRUE(less("ab", "abc"));
  std::map<std::string, int, CaseInsensitiveLess> cache;
  cache["Backup"] = 1;
  cache["BACKUP"] = 2;
  cache["restore"] = 3;
  EXPECT_EQ(2u, cache.size());
  EXPECT_EQ(2, cache.at("backup"));
}

TEST(StringFunctionsTest, VectorWrapperLendsTheVectorsOwnCharacters) {
  const std::vector<std::string> arguments = {"tool", "-verbose", ""};
  const VectorWrapper wrapped(arguments);
  ASSERT_EQ(3u, wrapped.size());
  for (size_t i = 0; i < arguments.size(); ++i) {
    EXPECT_EQ(arguments[i].c_str(), wrapped.data()[i]) << i;
  }
  EXPECT_STREQ("-verbose", wrapped[1]);
  EXPECT_EQ(nullptr, wrapped.data()[3]);

  const std::vector<std::string> none;
  const VectorWrapper empty(none);
  EXPECT_EQ(0u, empty.size());
  EXPECT_EQ(nullptr, empty.data()[0]);
}

}  // namespace
}  // namespace zelk
