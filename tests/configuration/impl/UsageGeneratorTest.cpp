#include "zelk/configuration/impl/UsageGenerator.h"

#include <string>

#include <gtest/gtest.h>

#include "configuration/impl/BackupToolModel.h"
#include "zelk/configuration/Parameter.h"
#include "zelk/configuration/ParameterRef.h"

using namespace zelk::configuration;
using zelk::configuration::impl::UsageGenerator;
using zelk::test::BackupToolModel;
using zelk::test::SpecificationBuilder;

namespace {

std::string usageOf(const Specification& spec) {
  UsageGenerator usage;
  spec.accept(usage);
  return usage.getUsage();
}

// Writes flags the way some other tools do.
class SlashUsageGenerator : public UsageGenerator {
public:
  std::string getParameterName(const ParameterRef& ref) const override {
    return std::string("/") + ref.getParameter()->getName();
  }
};

TEST(UsageGeneratorTest, ARealisticSpecification) {
  BackupToolModel model;
  EXPECT_EQ("\t[-help]\n"
            "\t[-verbose]\n"
            "\t(-full | -incremental | (-since date | -days days))\n"
            "\t-user user -password password [-domain domain]\n"
            "\t-target path\n"
            "\t[{-exclude pattern}]\n"
            // The hidden "secret" gets no line; the optional container's brackets enclose its
            // children's lines.
            "\t[-dbname name\n"
            "\t[-port port]]\n"
            "\t[{-host host}]",
            usageOf(*model.spec));
}

TEST(UsageGeneratorTest, HiddenItems) {
  SpecificationBuilder builder;
  const int32_t hidden = SpecificationBuilder::HIDDEN;

  Specification* quiet = builder.specification("quiet");
  builder.ref(quiet->getItemsContainer(), "a", Parameter::STRING, hidden);
  builder.ref(quiet->getItemsContainer(), "b", Parameter::BOOL, hidden);
  EXPECT_EQ("\t", usageOf(*quiet));

  // The break after a hidden child is dropped, the one before it is not.
  Specification* mixed = builder.specification("mixed");
  builder.ref(mixed->getItemsContainer(), "x", Parameter::BOOL, hidden);
  builder.ref(mixed->getItemsContainer(), "y", Parameter::BOOL, 0);
  builder.ref(mixed->getItemsContainer(), "z", Parameter::BOOL, hidden);
  EXPECT_EQ("\t-y\n\t", usageOf(*mixed));

}

TEST(UsageGeneratorTest, FlagsAndValueNames) {
  SpecificationBuilder builder;
  Specification* spec = builder.specification("tool");
  builder.ref(spec->getItemsContainer(), "host", Parameter::STRING,
              SpecificationBuilder::OPTIONAL | SpecificationBuilder::UNBOUNDED, "name");
  builder.ref(spec->getItemsContainer(), "verbose", Parameter::BOOL, 0, "never-shown");
  OneOf* oneOf = builder.oneOf(spec->getItemsContainer(), 0);
  builder.ref(oneOf, "x", Parameter::BOOL, 0);
  builder.ref(oneOf, "y", Parameter::DOUBLE, 0, "ratio");
  EXPECT_EQ("\t[{-host name}]\n\t-verbose\n\t(-x | -y ratio)", usageOf(*spec));

  SlashUsageGenerator slash;
  spec->accept(slash);
  EXPECT_EQ("\t[{/host name}]\n\t/verbose\n\t(/x | /y ratio)", slash.getUsage());

  // An optional specification brackets its whole usage.
  Specification* optional = builder.specification("optional", true);
  builder.ref(optional->getItemsContainer(), "a", Parameter::BOOL, 0);
  builder.ref(optional->getItemsContainer(), "b", Parameter::BOOL, 0);
  EXPECT_EQ("\t[-a\n\t-b]", usageOf(*optional));
}

}  // namespace
