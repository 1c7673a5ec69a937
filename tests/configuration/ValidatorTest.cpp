#include "zelk/configuration/Validator.h"

#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "zelk/configuration/UnboundedValue.h"
#include "zelk/configuration/Value.h"
#include "zelk/configuration/impl/StorageLocationValidator.h"
#include "zelk/configuration/impl/ValidatorImpl.h"
#include "zelk/util/ContractViolationException.h"
#include "zelk/util/StringFunctions.h"

using namespace zelk::configuration;
using zelk::configuration::impl::StorageLocationValidator;

namespace {

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
  EXPECT_STREQ("storageLocation", validator.getName());
  EXPECT_EQ("<null>", result(validator.validate("host::/data")));
  EXPECT_EQ("<null>", result(validator.validate("plainpath")));
  EXPECT_EQ("<null>", result(validator.validate("")));
  EXPECT_EQ("<null>", result(validator.validate("a::b::")));
  EXPECT_EQ("<null>", result(validator.validate("a:b:")));
  EXPECT_EQ("<null>", result(validator.validate("h:::")));
  for (const char* bad : {"::/data", "host::", "::", ":::", "::a::b"}) {
    EXPECT_EQ("Value is not properly formatted", result(validator.validate(bad))) << bad;
  }
  try {
    validator.validate(static_cast<const char*>(nullptr));
    ADD_FAILURE() << "no contract violation";
  } catch (const zelk::ContractViolationException& e) {
    EXPECT_STREQ("Contract violation: \"value != 0\"", e.what());
    EXPECT_STREQ("impl/StorageLocationValidator", e.getFile());
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
  EXPECT_EQ("<null>", result(validator.validate(UnboundedValue("empty"))));

  DigitsValidator digits;
  EXPECT_EQ("not digits: 12a\n", result(digits.validate(Value::create("n", "12a"))));
  EXPECT_EQ("<null>", result(digits.validate(Value::create("n", "12"))));
}

TEST(ValidatorTest, NamesAreRequired) {
  struct Unnamed : Validator {
    Unnamed() : Validator("") {}
    char* validate(const char*) const override { return nullptr; }
  };
  try {
    Unnamed unnamed;
    ADD_FAILURE() << "no contract violation";
  } catch (const zelk::ContractViolationException& e) {
    EXPECT_STREQ("Contract violation: \"name != 0 && *name != '\\0'\"", e.what());
  }
  struct FromImpl : Validator {
    FromImpl() : Validator(static_cast<impl::ValidatorImpl*>(nullptr)) {}
    char* validate(const char*) const override { return nullptr; }
  };
  try {
    FromImpl fromImpl;
    ADD_FAILURE() << "no contract violation";
  } catch (const zelk::ContractViolationException& e) {
    EXPECT_STREQ("Contract violation: \"mImpl != 0\"", e.what());
  }
}

}  // namespace
