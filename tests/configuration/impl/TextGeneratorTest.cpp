// Help, usage and representation texts: the generators, and the manager's services that use
// them (through the named provider or a temporary command-line one).
#include <gtest/gtest.h>
#include <cstdint>
#include <stdexcept>

#include "configuration/Models.h"
#include "zelk/configuration/ValueProvider.h"
#include "zelk/configuration/impl/GroupItemStringGenerator.h"
#include "zelk/configuration/impl/HelpGenerator.h"
#include "zelk/configuration/impl/RepresentationPrinter.h"
#include "zelk/configuration/impl/UsageGenerator.h"
#include "zelk/configuration/impl/ValueProviderImpl.h"

using namespace zelk::configuration;
using zelk::configuration::impl::HelpGenerator;
using zelk::configuration::impl::UsageGenerator;
using zelk::test::BackupToolModel;
using zelk::test::SpecificationBuilder;

namespace {

std::string pad(const std::string& text, size_t width) {
  return text + std::string(width - text.size(), ' ');
}

// One help line with both columns padded: 18 for names, 21 for descriptions.
std::string line(const std::string& name, const std::string& description) {
  return pad(name, 18) + pad(description, 21) + "\n";
}

class HelpGeneratorTest : public ::testing::Test {
protected:
  HelpGeneratorTest() {
    spec = builder.specification("copy");
    Container* items = spec->getItemsContainer();
    builder.ref(items, "source", Parameter::STRING, 0, "path",
                "The file or directory to copy. Paths may use / or \\ as separators.");
    // A boolean's value name widens the column but is never shown.
    builder.ref(items, "verbose", Parameter::BOOL, SpecificationBuilder::OPTIONAL, "level",
                "Tells what is being copied");
    builder.ref(items, "averyveryverylongsecretname", Parameter::STRING,
                SpecificationBuilder::HIDDEN, 0, "Never shown");
    Container* target = builder.container(items, "target", SpecificationBuilder::OPTIONAL);
    builder.ref(target, "retries", Parameter::INT32, SpecificationBuilder::OPTIONAL, 0, "");
    builder.ref(target, "host", Parameter::STRING, 0, 0, "Where to copy to");
  }

  std::string helpOf(size_t screenWidth, HelpGenerator* generator = nullptr) {
    HelpGenerator local(screenWidth, 0);
    HelpGenerator& help = generator != nullptr ? *generator : local;
    spec->accept(help);
    return help.getHelp();
  }

  SpecificationBuilder builder;
  Specification* spec;
};

TEST_F(HelpGeneratorTest, TwoPaddedColumnsWithWrappedDescriptions) {
  // The widest visible flag is "retries retries" (15): names get 18 columns, descriptions
  // 40 - 18 - 1 = 21. Containers add nothing: their parameters are listed flat.
  HelpGenerator help(40, 12);
  EXPECT_EQ(line("-source path", "The file or directory") +
                line("", "to copy. Paths may") +
                line("", "use / or \\ as") +
                line("", "separators.") +
                line("-verbose", "Tells what is being") +
                line("", "copied") +
                line("-retries retries", "") +
                line("-host host", "Where to copy to"),
            helpOf(40, &help));
  EXPECT_EQ(18u, help.getNameColumnWidth());
  EXPECT_EQ(21u, help.getDescriptionWidth());
}

TEST_F(HelpGeneratorTest, AScreenNarrowerThanTheNameColumnLeavesDescriptionsWhole) {
  EXPECT_EQ(pad("-source path", 18) +
                "The file or directory to copy. Paths may use / or \\ as separators.\n" +
                pad("-verbose", 18) + "Tells what is being copied\n" + pad("-retries retries", 18) +
                "\n" + pad("-host host", 18) + "Where to copy to\n",
            helpOf(10));
}

TEST(HelpGeneratorWidthTest, ColumnWidthsAndEdgeCases) {
  SpecificationBuilder builder;
  Specification* spec = builder.specification("short");
  builder.ref(spec->getItemsContainer(), "a", Parameter::BOOL, 0, 0, "");
  builder.ref(spec->getItemsContainer(), "longname", Parameter::BOOL, 0, 0, "");
  HelpGenerator help(80, 0);
  spec->accept(help);
  EXPECT_EQ(11u, help.getNameColumnWidth());
  // An empty description still gives the flag its line, padded to the full width.
  EXPECT_EQ(pad("-a", 79) + "\n" + pad("-longname", 79) + "\n", help.getHelp());

  Specification* broken = builder.specification("broken");
  builder.ref(broken->getItemsContainer(), "b", Parameter::BOOL, 0, 0, "bad \xC3 byte");
  HelpGenerator invalid(80, 0);
  EXPECT_EQ("invalid utf-8 string",
            zelk::test::messageOf<std::invalid_argument>([&] { broken->accept(invalid); }));
}


std::string usageOf(const Specification& spec) {
  UsageGenerator usage;
  spec.accept(usage);
  return usage.getUsage();
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


  // An optional specification brackets its whole usage; the break after a hidden child is
  // dropped, the one before it is not.
  Specification* optional = builder.specification("optional", true);
  builder.ref(optional->getItemsContainer(), "x", Parameter::BOOL, SpecificationBuilder::HIDDEN);
  builder.ref(optional->getItemsContainer(), "a", Parameter::BOOL, 0);
  builder.ref(optional->getItemsContainer(), "b", Parameter::BOOL, 0);
  builder.ref(optional->getItemsContainer(), "z", Parameter::BOOL, SpecificationBuilder::HIDDEN);
  EXPECT_EQ("\t[-a\n\t-b\n\t]", usageOf(*optional));
}


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
  EXPECT_EQ("Container: \n{\n  id: \"db\"\n  name: \"db\"\n  description: \"A container\"\n"
            "  optional: true\n  unbounded: false\n  items: \n  {\n    ParameterRef: \n    {\n"
            "      id: \"dbname\"\n      description: \"A parameter\"\n      optional: false\n",
            std::string(manager.getRepresentation(static_cast<const GroupItem&>(*model.db)))
                .substr(0, 216));
}

// The printer behind the representations: scopes indent two blanks per level, and pointers stay
// hexadecimal until the next integer.
TEST(RepresentationPrinterTest, ScopesKeysAndValuesInTheirForms) {
  impl::RepresentationPrinter printer;
  printer.enterScope("A");
  printer.printKeyInt32Value("n", 5);
  printer.printKeyStringValue(0, "ab");
  printer.printKeyStringValue("s", 0);
  printer.printKeyLiteralValue("l", 0);
  printer.printKeyBoolValue("b", false);
  printer.printKeyDoubleValue("d", 1.5);
  printer.printKeyUInt64Value("u", UINT64_MAX);
  printer.printKeyInt64Value("i", INT64_MIN);
  printer.printKeyPointerValue("p", reinterpret_cast<const void*>(uintptr_t(0xff)));
  printer.printKeyInt32Value("n", -16);
  printer.leaveScope("B");
  EXPECT_EQ("A\n  n: 5\n  <<null>>: \"ab\"\n  s: null\n  l: null\n  b: false\n  d: 1.500000\n"
            "  u: 18446744073709551615\n  i: -9223372036854775808\n  p: ff\n  n: -16\nB\n",
            printer.getRepresentation());
}

}  // namespace
