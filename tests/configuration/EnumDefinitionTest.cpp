#include "zelk/configuration/EnumDefinition.h"

#include <memory>

#include <gtest/gtest.h>

#include "zelk/configuration/ConfigurationManager.h"
#include "zelk/configuration/ValidationErrors.h"
#include "zelk/configuration/ValidationException.h"
#include "zelk/configuration/impl/Factory.h"
#include "zelk/util/ContractViolationException.h"

using namespace zelk::configuration;
using zelk::configuration::impl::Factory;

namespace {

class EnumDefinitionTest : public ::testing::Test {
protected:
  EnumDefinitionTest() : mManager(Factory::createManager()) {}
  std::unique_ptr<ConfigurationManager> mManager;
};

TEST_F(EnumDefinitionTest, AutomaticNumberingContinuesAfterExplicitValues) {
  EnumDefinition* e = Factory::createEnumDefinition("letters", mManager.get());
  EXPECT_EQ(e, mManager->getEnumDefinition("letters"));
  EXPECT_STREQ("letters", e->getName());
  EXPECT_EQ(1, Factory::addEnumValue(e, "b"));
  EXPECT_EQ(2, Factory::addEnumValue(e, "a"));
  EXPECT_EQ(11, Factory::addEnumValue(e, "c", 10));
  EXPECT_EQ(12, Factory::addEnumValue(e, "d"));
  // A repeated symbol keeps its value but still moves the counter.
  EXPECT_EQ(6, Factory::addEnumValue(e, "a", 5));
  EXPECT_EQ(7, Factory::addEnumValue(e, "e"));

  ValidationErrors errors;
  EXPECT_EQ(0, e->getValue("b", &errors));
  EXPECT_EQ(1, e->getValue("a", &errors));
  EXPECT_EQ(10, e->getValue("c", &errors));
  EXPECT_EQ(11, e->getValue("d", &errors));
  EXPECT_EQ(6, e->getValue("e", &errors));
  EXPECT_EQ(0u, errors.getNumberOfErrors());

  ASSERT_EQ(5u, e->getNumberOfValues());
  EXPECT_STREQ("a", e->getSymbolicNameByIndex(0));
  EXPECT_STREQ("e", e->getSymbolicNameByIndex(4));
  EXPECT_STREQ("b", e->getSymbolicNameInDefinitionOrder(0));
  EXPECT_STREQ("a", e->getSymbolicNameInDefinitionOrder(1));
  EXPECT_STREQ("e", e->getSymbolicNameInDefinitionOrder(4));
  EXPECT_STREQ("c", e->getSymbolicName(10, &errors));
  EXPECT_EQ(0u, errors.getNumberOfErrors());
}

TEST_F(EnumDefinitionTest, LookUpsAreExactAndReportWhatIsMissing) {
  EnumDefinition* e = Factory::createEnumDefinition("mode", mManager.get());
  Factory::addEnumValue(e, "fast");
  Factory::addEnumValue(e, "safe");
  Factory::addEnumValue(e, "zeta", 0);

  ValidationErrors errors;
  EXPECT_EQ(0, e->getValue("FAST", &errors));
  EXPECT_EQ(0, e->getValue("100%", &errors));
  EXPECT_EQ(nullptr, e->getSymbolicName(7, &errors));
  ASSERT_EQ(3u, errors.getNumberOfErrors());
  EXPECT_STREQ("Symbol \"FAST\" was not found", errors.getError(0));
  EXPECT_STREQ("Symbol \"100%\" was not found", errors.getError(1));
  EXPECT_STREQ("Value 7 was not found", errors.getError(2));
  // The first symbol in symbol order with the value wins.
  EXPECT_STREQ("fast", e->getSymbolicName(0, &errors));

  try {
    e->getValue("nosuch", nullptr);
    ADD_FAILURE() << "no exception";
  } catch (const ValidationException& ex) {
    EXPECT_STREQ("Symbol \"nosuch\" was not found", ex.what());
  }
  try {
    e->getSymbolicNameByIndex(3);
    ADD_FAILURE() << "no contract violation";
  } catch (const zelk::ContractViolationException& ex) {
    EXPECT_STREQ("Contract violation: \"index < mNameValues.size()\"", ex.what());
  }
}

TEST_F(EnumDefinitionTest, Contracts) {
  ConfigurationManager* manager = mManager.get();
  try {
    Factory::createEnumDefinition("", manager);
    ADD_FAILURE() << "no contract violation";
  } catch (const zelk::ContractViolationException& ex) {
    EXPECT_STREQ("Contract violation: \"name != 0 && *name != '\\0'\"", ex.what());
  }
  try {
    Factory::addEnumValue(nullptr, "x");
    ADD_FAILURE() << "no contract violation";
  } catch (const zelk::ContractViolationException& ex) {
    EXPECT_STREQ("Contract violation: \"enumDef != 0\"", ex.what());
  }
  EnumDefinition* e = Factory::createEnumDefinition("e", manager);
  try {
    Factory::addEnumValue(e, "", 3);
    ADD_FAILURE() << "no contract violation";
  } catch (const zelk::ContractViolationException& ex) {
    EXPECT_STREQ("Contract violation: \"symbolicName != 0 && *symbolicName != '\\0'\"",
                 ex.what());
  }
  EXPECT_EQ(0u, e->getNumberOfValues());
}

}  // namespace
