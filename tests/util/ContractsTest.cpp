#include "zelk/util/Contracts.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "zelk/util/ContractViolationException.h"

namespace zelk {
namespace {

const unsigned int CHECK_LINE = __LINE__ + 1;
void checkPositive(int value) { ZELK_CONTRACT(value > 0); }

void checkNamed(const char* name) { ZELK_CONTRACT_MESSAGE(name && *name, "Must provide a name"); }

TEST(ContractsTest, AFailedCheckThrowsTheConditionAsWrittenWithItsSource) {
  checkPositive(1);
  checkNamed("x");
  try {
    checkPositive(0);
    FAIL() << "no exception";
  } catch (const ContractViolationException& e) {
    EXPECT_STREQ("Contract violation: \"value > 0\"", e.what());
    // Outside the library's folders the tag is the path without its extension.
    const std::string file = e.getFile();
    EXPECT_EQ("tests/util/ContractsTest", file.substr(file.size() - 24));
    EXPECT_EQ(CHECK_LINE, e.getLine());
  }
  try {
    checkNamed("");
    FAIL() << "no exception";
  } catch (const std::exception& e) {
    EXPECT_STREQ("Must provide a name", e.what());
  }
}

TEST(ContractsTest, SourceTagsAreRelativeToTheLibraryRoots) {
  using zelk::impl::contractSourceTag;
  EXPECT_EQ("impl/ObjectMap", contractSourceTag("/src/zelk/configuration/impl/ObjectMap.h"));
  EXPECT_EQ("ValidationErrors", contractSourceTag("zelk/configuration/ValidationErrors.cpp"));
  EXPECT_EQ("RegEx", contractSourceTag("/w/zelk/util/RegEx.cpp"));
  EXPECT_EQ("other/File", contractSourceTag("other/File.cpp"));
  EXPECT_EQ("dir.d/File", contractSourceTag("dir.d/File"));
  EXPECT_EQ("", contractSourceTag(nullptr));
}

TEST(ContractsTest, TheExceptionOwnsCopiesOfItsTexts) {
  std::string message = "Contract violation: \"mImpl\"";
  std::string file = "impl/ValueGroupState";
  ContractViolationException original(message.c_str(), file.c_str(), 42);
  message.assign(message.size(), 'x');
  file.assign(file.size(), 'y');
  EXPECT_STREQ("Contract violation: \"mImpl\"", original.what());
  EXPECT_STREQ("impl/ValueGroupState", original.getFile());

  ContractViolationException copy(original);
  EXPECT_STREQ(original.what(), copy.what());
  EXPECT_NE(original.what(), copy.what());
  ContractViolationException other("other", "elsewhere", 1);
  other = copy;
  EXPECT_STREQ("Contract violation: \"mImpl\"", other.what());
  EXPECT_EQ(42u, other.getLine());
  other = other;
  EXPECT_STREQ("impl/ValueGroupState", other.getFile());

  ContractViolationException empty(nullptr, nullptr, 0);
  EXPECT_EQ(nullptr, empty.what());
  try {
    zelk::impl::__ContractViolated("Contract violation: \"x\"", "Tag", 7);
  } catch (const ContractViolationException& e) {
    EXPECT_STREQ("Tag", e.getFile());
    EXPECT_EQ(7u, e.getLine());
  }
}

}  // namespace
}  // namespace zelk
