// Error lists, the two exceptions of the library and validators: formatting, size bounds, and user
// text that is never read as a format.
#include <cstring>
#include <gtest/gtest.h>
#include <memory>
#include <string>

#include "zelk/configuration/UnboundedValue.h"
#include "zelk/configuration/ValidationErrors.h"
#include "zelk/configuration/ValidationException.h"
#include "zelk/configuration/Validator.h"
#include "zelk/configuration/Value.h"
#include "zelk/configuration/impl/StorageLocationValidator.h"
#include "zelk/host/HostErrorReporter.h"
#include "zelk/util/ContractViolationException.h"
#include "zelk/util/StringFunctions.h"

namespace zelk::configuration {
namespace {

ValidationErrors listOf(std::initializer_list<const char*> texts) {
  ValidationErrors errors;
  for (const char* text : texts) {
    errors.addErrorAsFormat(text);
  }
  return errors;
}

TEST(ValidationErrorsTest, CollectsFormattedErrorsInOrderAndCopiesDeeply) {
  ValidationErrors errors;
  errors.throwIfErrors();  // nothing to throw
  errors.addError("\"%s\" is not a valid %s", "x", "bool");
  errors.addError("second");
  ASSERT_EQ(2u, errors.getNumberOfErrors());
  EXPECT_STREQ("\"x\" is not a valid bool", errors.getError(0));
  errors.addError("%s", std::string(5000, 'e').c_str());
  EXPECT_EQ(std::string(4095, 'e'), errors.getError(2));
  EXPECT_THROW(errors.getError(3), zelk::ContractViolationException);
  // A format that formats to nothing is refused, through the second formatting.
  EXPECT_THROW(ValidationErrors::processError(&errors, "%s", ""), zelk::ContractViolationException);

  ValidationErrors copy(errors);
  copy.addError("more");
  EXPECT_EQ(3u, errors.getNumberOfErrors());
  errors = copy;
  copy.clear();
  EXPECT_STREQ("more", errors.getError(3));
}

TEST(ValidationErrorsTest, ProcessErrorFormatsTwiceWithoutReadingUserText) {
  ValidationErrors errors;
  ValidationErrors::processError(&errors, nullptr);  // ignored
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

  // Without a list, just that error is thrown.
  try {
    ValidationErrors::processError(nullptr, "value %s", "%s%s%s%n");
    FAIL() << "no exception";
  } catch (const ValidationException& e) {
    ASSERT_EQ(1u, e.getErrors().getNumberOfErrors());
    EXPECT_STREQ("value %s%s%s%n", e.what());
  }
}

TEST(ValidationErrorsTest, ThrowIfErrorsThrowsEveryErrorCatchableAsEachBase) {
  ValidationErrors errors = listOf({"a", "b"});
  try {
    errors.throwIfErrors();
    FAIL() << "no exception";
  } catch (const zelk::host::HostErrorReporter& e) {
    EXPECT_EQ(-701, e.get_kind());
    EXPECT_STREQ("a\nb", e.what());
    EXPECT_NE(nullptr, dynamic_cast<const ValidationException*>(&e));
  }
  EXPECT_THROW(errors.throwIfErrors(), ConfigurationException);
}

TEST(ValidationExceptionTest, MessagesJoinTheErrorsOrFormatTheGivenTextOnce) {
  EXPECT_STREQ("%s%s%s%n\n%999999999d",
               ValidationException(listOf({"%s%s%s%n", "%999999999d"})).what());
  // Kept on purpose: escaping leaves "%%" as it is, so a stored "%%" reads back as "%".
  EXPECT_STREQ("50% off", ValidationException(listOf({"50%%%% off"})).what());
  EXPECT_STREQ("", ValidationException(ValidationErrors()).what());
  const ValidationErrors errors = listOf({"x"});
  EXPECT_STREQ("100% done %s", ValidationException(errors, "100%% done %s").what());
  const ValidationException created = ValidationException::Create(errors, "%d problems", 3);
  EXPECT_STREQ("3 problems", created.what());
  EXPECT_STREQ("", ValidationException::Create(errors, nullptr).what());
  ValidationException copy(created);
  EXPECT_NE(created.what(), copy.what());
  EXPECT_STREQ("x", copy.getErrors().getError(0));
}

TEST(ConfigurationExceptionTest, FormatsBoundsAndOwnsItsMessage) {
  const ConfigurationException e("Duplicate %s \"%s\"", "parameter", "level");
  EXPECT_STREQ("Duplicate parameter \"level\"", e.what());
  EXPECT_EQ(-700, e.get_kind());
  EXPECT_EQ(4095u, std::strlen(ConfigurationException("%s", std::string(5000, 'c').c_str()).what()));
  // A user text is an argument, never the format.
  EXPECT_STREQ("File \"%s%s%s%n\" was not found",
               ConfigurationException("File \"%s\" was not found", "%s%s%s%n").what());
  EXPECT_EQ(nullptr, ConfigurationException(nullptr).what());

  ConfigurationException copy(e);
  EXPECT_NE(e.what(), copy.what());
  ConfigurationException other("other");
  other = e;
  other = other;
  EXPECT_STREQ("Duplicate parameter \"level\"", other.what());
  other = ConfigurationException(nullptr);
  EXPECT_EQ(nullptr, other.what());
}


using zelk::configuration::impl::StorageLocationValidator;

// Takes ownership of a validator result and turns it into a comparable string.
std::string result(char* text) {
  std::unique_ptr<char[]> owner(text);
  return text == nullptr ? std::string("<null>") : std::string(text);
}

// Rejects every text that is not all digits, naming it.
class DigitsValidator : public Validator {
public:
  DigitsValidator() : Validator("digits") {}
  using Validator::validate;
  char* validate(const char* value) const override {
    for (const char* p = value; *p != '\0'; ++p) {
      if (*p < '0' || *p > '9') {
        return zelk::cloneString((std::string("not digits: ") + value).c_str());
      }
    }
    return nullptr;
  }
};

TEST(ValidatorTest, StorageLocationsNeedTextOnBothSidesOfTheFirstSeparator) {
  StorageLocationValidator validator;
  EXPECT_EQ("<null>", result(validator.validate("host::/data")));
  for (const char* good : {"plainpath", "", "a::b::", "a:b:", "h:::"}) {
    EXPECT_EQ("<null>", result(validator.validate(good))) << good;
  }
  for (const char* bad : {"::/data", "host::", "::", ":::", "::a::b"}) {
    EXPECT_EQ("Value is not properly formatted", result(validator.validate(bad))) << bad;
  }
}

TEST(ValidatorTest, EveryTextOfAValueIsCheckedAndEachErrorEndsWithANewline) {
  StorageLocationValidator validator;
  UnboundedValue locations("locations");
  locations.add("x::");
  locations.add("host::/ok");
  locations.add("y::");
  EXPECT_EQ("Value is not properly formatted\nValue is not properly formatted\n",
            result(validator.validate(locations)));

  UnboundedValue good("locations");
  good.add("a::b");
  good.add("c");
  EXPECT_EQ("<null>", result(validator.validate(good)));

  DigitsValidator digits;
  EXPECT_EQ("not digits: 12a\n", result(digits.validate(Value::create("n", "12a"))));
  EXPECT_EQ("<null>", result(digits.validate(Value::create("n", "12"))));
}

}  // namespace
}  // namespace zelk::configuration
