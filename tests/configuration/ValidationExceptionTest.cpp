#include "zelk/configuration/ValidationException.h"

#include <gtest/gtest.h>

#include <string>

namespace zelk::configuration {
namespace {

ValidationErrors listOf(std::initializer_list<const char*> texts) {
  ValidationErrors errors;
  for (const char* text : texts) {
    errors.addErrorAsFormat(text);
  }
  return errors;
}

TEST(ValidationExceptionTest, MessageJoinsTheErrorsExactly) {
  EXPECT_STREQ("a\nb", ValidationException(listOf({"a", "b"})).what());
  EXPECT_STREQ("100%", ValidationException(listOf({"100%"})).what());
  EXPECT_STREQ("%s%s%s%n\n%999999999d",
               ValidationException(listOf({"%s%s%s%n", "%999999999d"})).what());
  // Kept on purpose: escaping leaves "%%" as it is, so a stored "%%" reads back as "%".
  EXPECT_STREQ("50% off", ValidationException(listOf({"50%%%% off"})).what());
  EXPECT_STREQ("", ValidationException(ValidationErrors()).what());
}

TEST(ValidationExceptionTest, GivenMessagesAndCreate) {
  const ValidationErrors errors = listOf({"x"});
  // The given message is read as a format once: "%%" becomes "%", nothing else is read.
  const ValidationException given(errors, "100%% done %s");
  EXPECT_STREQ("100% done %s", given.what());
  EXPECT_EQ(1u, given.getErrors().getNumberOfErrors());

  const ValidationException created = ValidationException::Create(errors, "%d problems", 3);
  EXPECT_STREQ("3 problems", created.what());
  EXPECT_STREQ("x", created.getErrors().getError(0));
  EXPECT_STREQ("", ValidationException::Create(errors, nullptr).what());

  // Copies carry their own list.
  ValidationException copy(created);
  EXPECT_STREQ("3 problems", copy.what());
  EXPECT_NE(created.what(), copy.what());
  EXPECT_EQ(-701, copy.get_kind());
}

}  // namespace
}  // namespace zelk::configuration
