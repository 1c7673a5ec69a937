#include "zelk/configuration/impl/HelpGenerator.h"

#include <stdexcept>
#include <string>

#include <gtest/gtest.h>

#include "configuration/impl/BackupToolModel.h"
#include "zelk/configuration/Parameter.h"

using namespace zelk::configuration;
using zelk::configuration::impl::HelpGenerator;
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
  EXPECT_EQ(68u, help.getDescriptionWidth());
  // An empty description still gives the flag its line, padded to the full width.
  EXPECT_EQ(pad("-a", 79) + "\n" + pad("-longname", 79) + "\n", help.getHelp());

  Specification* hidden = builder.specification("hidden");
  builder.ref(hidden->getItemsContainer(), "h", Parameter::STRING, SpecificationBuilder::HIDDEN);
  HelpGenerator empty(80, 0);
  hidden->accept(empty);
  EXPECT_EQ("", empty.getHelp());

  Specification* broken = builder.specification("broken");
  builder.ref(broken->getItemsContainer(), "b", Parameter::BOOL, 0, 0, "bad \xC3 byte");
  HelpGenerator invalid(80, 0);
  try {
    broken->accept(invalid);
    ADD_FAILURE() << "no exception";
  } catch (const std::invalid_argument& e) {
    EXPECT_STREQ("invalid utf-8 string", e.what());
  }
}

}  // namespace
