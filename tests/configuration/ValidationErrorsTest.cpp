#include "zelk/configuration/ValidationErrors.h"

#include <gtest/gtest.h>

#include <string>

#include "zelk/configuration/ValidationException.h"
#include "zelk/host/HostErrorReporter.h"
#include "zelk/util/ContractViolationException.h"

namespace zelk::configuration {
namespace {

template <typename Call>
std::string contractText(Call call, std::string* file = nullptr) {
  try {
    call();
  } catch (const zelk::ContractViolationException& e) {
    if (file != nullptr) {
      *file = e.getFile();
    }
    return e.what();
  }
  return "(no exception)";
}

TEST(ValidationErrorsTest, CollectsFormattedErrorsInOrder) {
  ValidationErrors errors;
  EXPECT_EQ(0u, errors.getNumberOfErrors());
  errors.throwIfErrors();  // nothing to throw
  errors.addError("\"%s\" is not a valid %s", "x", "bool");
  errors.addError("second");
  errors.addError("second");
  ASSERT_EQ(3u, errors.getNumberOfErrors());
  EXPECT_STREQ("\"x\" is not a valid bool", errors.getError(0));
  EXPECT_STREQ("second", errors.getError(2));

  const std::string longText(5000, 'e');
  errors.addError("%s", longText.c_str());
  EXPECT_EQ(std::string(4095, 'e'), errors.getError(3));

  errors.clear();
  EXPECT_EQ(0u, errors.getNumberOfErrors());
}

TEST(ValidationErrorsTest, ContractsOnFormatsAndIndexes) {
  ValidationErrors errors;
  std::string file;
  const char* empty = "";
  EXPECT_EQ("Contract violation: \"format != 0 && strlen(format) > 0\"",
            contractText([&] { errors.addError(empty); }, &file));
  EXPECT_EQ("ValidationErrors", file);
  EXPECT_EQ("Contract violation: \"format != 0 && strlen(format) > 0\"",
            contractText([&] { errors.addError(nullptr); }));
  EXPECT_EQ("Contract violation: \"index < mErrors.size()\"",
            contractText([&] { errors.getError(errors.getNumberOfErrors()); }, &file));
  EXPECT_EQ("impl/ValidationErrorsImpl", file);
  // A format that formats to nothing ends in the same contract, through the second formatting.
  EXPECT_EQ("Contract violation: \"format != 0 && strlen(format) > 0\"",
            contractText([&] { ValidationErrors::processError(&errors, "%s", ""); }));
}

TEST(ValidationErrorsTest, ProcessErrorFormatsTwiceWithoutReadingUserText) {
  ValidationErrors errors;
  ValidationErrors::processError(&errors, nullptr);  // ignored
  EXPECT_EQ(0u, errors.getNumberOfErrors());
  ValidationErrors::processError(&errors, "\"%s\" is not a valid int32", "12%%");
  ValidationErrors::processError(&errors, "\"%s\" is not a valid int32", "%s%s%s%n");
  ValidationErrors::processError(&errors, "Unknown flag %s", "-%999999999d");
  ASSERT_EQ(3u, errors.getNumberOfErrors());
  // The second formatting turns "%%" into "%" and copies any other conversion as written.
  EXPECT_STREQ("\"12%\" is not a valid int32", errors.getError(0));
  EXPECT_STREQ("\"%s%s%s%n\" is not a valid int32", errors.getError(1));
  EXPECT_STREQ("Unknown flag -%999999999d", errors.getError(2));
  errors.addErrorAsFormat("%s%s%s%n");
  EXPECT_STREQ("%s%s%s%n", errors.getError(3));
}

TEST(ValidationErrorsTest, ProcessErrorWithoutAListThrowsJustThatError) {
  try {
    ValidationErrors::processError(nullptr, "\"%s\" is not a valid bool", "x");
    FAIL() << "no exception";
  } catch (const ValidationException& e) {
    ASSERT_EQ(1u, e.getErrors().getNumberOfErrors());
    EXPECT_STREQ("\"x\" is not a valid bool", e.getErrors().getError(0));
    EXPECT_STREQ("\"x\" is not a valid bool", e.what());
    EXPECT_EQ(-701, e.get_kind());
  }
  try {
    ValidationErrors::processError(nullptr, "value %s", "%s%s%s%n");
    FAIL() << "no exception";
  } catch (const ValidationException& e) {
    EXPECT_STREQ("value %s%s%s%n", e.what());
  }
}

TEST(ValidationErrorsTest, ThrowIfErrorsThrowsEveryErrorCatchableAsEachBase) {
  ValidationErrors errors;
  errors.addError("a");
  errors.addError("b");
  try {
    errors.throwIfErrors();
    FAIL() << "no exception";
  } catch (const zelk::host::HostErrorReporter& e) {
    EXPECT_EQ(-701, e.get_kind());
    EXPECT_STREQ("a\nb", e.what());
    const auto* validation = dynamic_cast<const ValidationException*>(&e);
    ASSERT_NE(nullptr, validation);
    EXPECT_EQ(2u, validation->getErrors().getNumberOfErrors());
  }
  EXPECT_THROW(errors.throwIfErrors(), ConfigurationException);
  EXPECT_THROW(errors.throwIfErrors(), std::exception);
}

TEST(ValidationErrorsTest, CopiesAreDeep) {
  ValidationErrors original;
  original.addError("one");
  ValidationErrors copy(original);
  copy.addError("two");
  EXPECT_EQ(1u, original.getNumberOfErrors());
  EXPECT_EQ(2u, copy.getNumberOfErrors());
  original = copy;
  copy.clear();
  EXPECT_EQ(2u, original.getNumberOfErrors());
  EXPECT_STREQ("two", original.getError(1));
  ValidationErrors& self = original;
  original = self;
  EXPECT_EQ(2u, original.getNumberOfErrors());
}

}  // namespace
}  // namespace zelk::configuration
