// What every provider shares: getValues (gather, match, validate) and the help and usage texts.
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "configuration/impl/BackupToolModel.h"
#include "zelk/configuration/ValidationException.h"
#include "zelk/configuration/ValueProvider.h"
#include "zelk/configuration/impl/HelpGenerator.h"
#include "zelk/configuration/impl/UsageGenerator.h"
#include "zelk/configuration/impl/ValueAccess.h"
#include "zelk/configuration/impl/ValueProviderImpl.h"
#include "zelk/configuration/impl/ValueState.h"
#include "zelk/util/ContractViolationException.h"

using namespace zelk::configuration;
using zelk::test::BackupToolModel;

namespace {

typedef std::vector<std::string> Texts;

// Hands out a raw tree that the test fills in.
class RawTreeProviderImpl : public impl::ValueProviderImpl {
public:
  RawTreeProviderImpl() : ValueProviderImpl("APP_VALUES", 0, "raw"), mTree("backup") {}
  ValueGroup getSpecificationValues(const Specification&, int) const override { return mTree; }
  ValueGroup mTree;
};

class RawTreeProvider : public ValueProvider {
public:
  RawTreeProvider() : ValueProvider(new RawTreeProviderImpl()) {}
  const char* getName() const override { return "APP_VALUES"; }
  ValueGroup& tree() { return static_cast<RawTreeProviderImpl*>(getImpl())->mTree; }
};

class ValueProviderPipelineTest : public ::testing::Test {
protected:
  // The errors that getValues throws, or "<none>".
  Texts failure(int options) {
    try {
      provider.getValues(*model.spec, options);
    } catch (const ValidationException& e) {
      return zelk::test::texts(e.getErrors());
    }
    return Texts{"<none>"};
  }
  std::string contractOf(size_t screenWidth, size_t maxParameterNameWidth) {
    try {
      provider.composeHelpMessage(*model.spec, screenWidth, maxParameterNameWidth);
    } catch (const zelk::ContractViolationException& e) {
      return e.what();
    }
    return "<none>";
  }

  BackupToolModel model;
  RawTreeProvider provider;
};

TEST_F(ValueProviderPipelineTest, GathersMatchesAndValidates) {
  BackupToolModel::add(provider.tree(), {"full", "TARGET=/b"});
  provider.tree().addGroup("db").addValue("dbname", "sales");
  ValueGroup values = provider.getValues(*model.spec, 0);
  EXPECT_EQ(model.spec->getItemsContainer(), values.getGroupItem());
  EXPECT_EQ("/b", values.getValue("target").asString());
  EXPECT_EQ("sales", values.getValueGroup("db").getValue("dbname").asString());

  // Each call checks again, with its own options.
  BackupToolModel::add(provider.tree(), {"bogus=1", "incremental"});
  EXPECT_EQ(Texts{"\"bogus\" is not a recognized parameter"}, failure(0));
  EXPECT_EQ(Texts{"The \"full\" and \"incremental\" parameters are mutually exclusive, you can "
                  "only specify one."},
            failure(2));
  EXPECT_EQ(Texts{"<none>"}, failure(2 | 16));

  // Matching errors are thrown before any validation.
  Value unnamed = Value::create(model.spec->findParameterRef("days"), "3");
  impl::ValueAccess::getState(unnamed)->reset();
  provider.tree().add(unnamed);
  EXPECT_EQ(Texts{"An unnamed value was found"}, failure(0));
}

TEST_F(ValueProviderPipelineTest, HelpAndUsageTexts) {
  impl::UsageGenerator usage;
  model.spec->accept(usage);
  const char* usageText = provider.composeUsageMessage(*model.spec);
  EXPECT_EQ(usage.getUsage(), usageText);
  impl::HelpGenerator help(60, 59);
  model.spec->accept(help);
  EXPECT_EQ(help.getHelp(), provider.composeHelpMessage(*model.spec, 60, 59));
  EXPECT_EQ(usage.getUsage(), usageText) << "each text has its own buffer";

  EXPECT_EQ("Contract violation: \"screenWidth > 0\"", contractOf(0, 0));
  EXPECT_EQ("Contract violation: \"maxParameterNameWidth < screenWidth\"", contractOf(80, 80));
}

}  // namespace
