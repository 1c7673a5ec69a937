// The manager's help, usage, representation and validation services.
#include <string>

#include <gtest/gtest.h>

#include "configuration/impl/BackupToolModel.h"
#include "zelk/configuration/ValidationException.h"
#include "zelk/configuration/ValueProvider.h"
#include "zelk/configuration/impl/GroupItemStringGenerator.h"
#include "zelk/configuration/impl/HelpGenerator.h"
#include "zelk/configuration/impl/UsageGenerator.h"
#include "zelk/configuration/impl/ValueProviderImpl.h"

using namespace zelk::configuration;
using zelk::test::BackupToolModel;

namespace {

class NamingProviderImpl : public impl::ValueProviderImpl {
public:
  explicit NamingProviderImpl(const char* id) : ValueProviderImpl("CLI", 1, id) {}
  ValueGroup getSpecificationValues(const Specification&, int) const override {
    return ValueGroup::Null;
  }
  const char* composeUsageMessage(const Specification& spec) const override {
    mUsageText = std::string(getId()) + " usage of " + spec.getId();
    return mUsageText.c_str();
  }
  const char* composeHelpMessage(const Specification& spec, size_t screenWidth,
                                 size_t nameWidth) const override {
    mHelpText = std::string(getId()) + " help of " + spec.getId() + " " +
                std::to_string(screenWidth) + " " + std::to_string(nameWidth);
    return mHelpText.c_str();
  }
};

class NamingProvider : public ValueProvider {
public:
  explicit NamingProvider(const char* id) : ValueProvider(new NamingProviderImpl(id)) {}
  const char* getName() const override { return "CLI"; }
};

TEST(ConfigurationManagerTextTest, HelpAndUsageThroughTheNamedOrATemporaryProvider) {
  BackupToolModel model;
  ConfigurationManager& manager = *model.manager();
  impl::UsageGenerator usage;
  model.spec->accept(usage);
  impl::HelpGenerator help(72, 20);
  model.spec->accept(help);
  // No "CLI" provider is registered: a temporary command-line provider composes the texts.
  EXPECT_EQ(usage.getUsage(), manager.composeUsageMessage("backup"));
  EXPECT_EQ(help.getHelp(), manager.composeHelpMessage("backup", 72, 20));
  // An unknown specification is not an error: there is nothing to describe.
  EXPECT_STREQ("", manager.composeUsageMessage("nosuch"));

  manager.registerValueProvider(new NamingProvider("CLI"));
  manager.registerValueProvider(new NamingProvider("OTHER"));
  EXPECT_STREQ("CLI usage of backup", manager.composeUsageMessage("backup", ""));
  EXPECT_STREQ("CLI help of backup 80 30", manager.composeHelpMessage("backup", 80, 30));
  EXPECT_STREQ("OTHER usage of backup", manager.composeUsageMessage("backup", "OTHER"));
  manager.registerValueProvider(new NamingProvider("CLI"));
  EXPECT_THROW(manager.composeUsageMessage("backup"), ConfigurationException);
}

TEST(ConfigurationManagerTextTest, ValidationAndRepresentations) {
  BackupToolModel model;
  ConfigurationManager& manager = *model.manager();
  ValueGroup raw("backup");
  BackupToolModel::add(raw, {"full", "incremental"});
  ValidationErrors errors;
  manager.validateValues(*model.spec, raw, &errors);
  ASSERT_EQ(1u, errors.getNumberOfErrors());
  EXPECT_STREQ("A required flag was not specified. You must provide one of the following flags: "
               "target",
               errors.getError(0));
  EXPECT_TRUE(raw.isMatched());
  BackupToolModel::add(raw, {"target=/b"});
  EXPECT_THROW(manager.validateValues(*model.spec, raw, nullptr), ValidationException);
  raw.remove("incremental");
  EXPECT_NO_THROW(manager.validateValues(*model.spec, raw, nullptr));

  EXPECT_EQ(impl::GroupItemStringGenerator::getString(*model.spec->getItemsContainer()),
            manager.getRepresentation(*model.spec));
  EXPECT_EQ(impl::GroupItemStringGenerator::getString(*model.db),
            manager.getRepresentation(static_cast<const GroupItem&>(*model.db)));
}

}  // namespace
