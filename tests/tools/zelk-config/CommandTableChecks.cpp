// zelk-config's command table against what is written elsewhere about the commands: its own
// registry file (which the usage comes from) and the README.

#include <gtest/gtest.h>

#include <memory>
#include <regex>
#include <set>
#include <string>
#include <vector>

#include "Command.h"
#include "OutputFormat.h"
#include "support/TextFiles.h"
#include "zelk/configuration/ConfigurationManager.h"
#include "zelk/configuration/ConfigurationRegistryLoader.h"
#include "zelk/configuration/EnumDefinition.h"
#include "zelk/configuration/GroupItemCollection.h"
#include "zelk/configuration/Parameter.h"
#include "zelk/configuration/ParameterRef.h"
#include "zelk/configuration/Specification.h"
#include "zelk/configuration/impl/Factory.h"

namespace zelk::configtool {
namespace {

using namespace zelk::configuration;

const std::string SOURCE_DIR = ZELK_TEST_SOURCE_DIR;

std::vector<std::string> labelsOf(const Parameter& parameter) {
  std::vector<std::string> labels;
  const EnumDefinition* definition = parameter.getEnumDefinition();
  for (std::size_t i = 0; definition != nullptr && i < definition->getNumberOfValues(); ++i) {
    labels.push_back(definition->getSymbolicNameInDefinitionOrder(i));
  }
  return labels;
}

class CommandTableTest : public ::testing::Test {
protected:
  CommandTableTest() : mManager(impl::Factory::createManager()) {
    const std::string path = SOURCE_DIR + "/tools/zelk-config/zelk-config.crg";
    ConfigurationRegistryLoader::loadFile(path.c_str(), mManager.get(), 0);
  }

  std::unique_ptr<ConfigurationManager> mManager;
};

// The one-of of zelk-config's specification holds the commands, in the table's order, each a
// switch or an enumeration of exactly the words of its row; the format enumeration names the
// formats there are.
TEST_F(CommandTableTest, MatchesTheToolsRegistry) {
  const Specification* self = mManager->getSpecification("zelk-config");
  ASSERT_NE(self, nullptr);
  const auto* commands =
      dynamic_cast<const GroupItemCollection*>(self->getItemsContainer()->getItem(0));
  ASSERT_NE(commands, nullptr);
  ASSERT_EQ(commands->getNumberOfItems(), commandTable().size());
  for (std::size_t i = 0; i < commandTable().size(); ++i) {
    const Command& command = commandTable()[i];
    const auto* reference = dynamic_cast<const ParameterRef*>(commands->getItem(i));
    ASSERT_NE(reference, nullptr);
    const Parameter& parameter = *reference->getParameter();
    EXPECT_STREQ(parameter.getName(), command.name);
    if (command.takesWord()) {
      EXPECT_EQ(parameter.getValueType(), Parameter::ENUM) << command.name;
      EXPECT_EQ(labelsOf(parameter), command.words) << command.name;
    } else {
      EXPECT_EQ(parameter.getValueType(), Parameter::BOOL) << command.name;
    }
    EXPECT_FALSE(command.formats.empty()) << command.name;
    for (const std::string& format : command.formats) {
      EXPECT_NE(findFormat(format), nullptr) << command.name << " " << format;
    }
    EXPECT_NE(command.run, nullptr) << command.name;
  }
  const auto* format = dynamic_cast<const Parameter*>(mManager->getParameter("format"));
  ASSERT_NE(format, nullptr);
  for (const std::string& label : labelsOf(*format)) {
    EXPECT_NE(findFormat(label), nullptr) << label;
  }
}

// The README's synopsis lists the commands of the table in its order, and its table of commands
// has a row for each command and for no other.
TEST_F(CommandTableTest, MatchesTheReadme) {
  const std::string readme = test::readTextFile(SOURCE_DIR + "/README.md");
  const std::string::size_type section = readme.find("\n## zelk-config\n");
  ASSERT_NE(section, std::string::npos);
  const std::string::size_type end = readme.find("\n## ", section + 1);
  const std::string text = readme.substr(section, end - section);

  std::string synopsis;
  for (const Command& command : commandTable()) {
    synopsis += (synopsis.empty() ? "(-" : " | -") + std::string(command.name);
    if (command.takesWord()) {
      const auto* parameter = dynamic_cast<const Parameter*>(mManager->getParameter(command.name));
      ASSERT_NE(parameter, nullptr);
      synopsis += std::string(" ") + parameter->getValueName();
    }
  }
  EXPECT_NE(text.find("\nzelk-config " + synopsis + ")\n"), std::string::npos) << synopsis;

  // The first cell of each row names one or more commands, each in backquotes.
  std::set<std::string> inReadme;
  const std::regex row("\n\\| ([^|]*) \\|");
  const std::regex flag("`-([A-Za-z]+)");
  for (std::sregex_iterator r(text.begin(), text.end(), row), e; r != e; ++r) {
    const std::string cell = (*r)[1];
    for (std::sregex_iterator f(cell.begin(), cell.end(), flag); f != e; ++f) {
      inReadme.insert((*f)[1]);
    }
  }
  std::set<std::string> inTable;
  for (const Command& command : commandTable()) inTable.insert(command.name);
  EXPECT_EQ(inReadme, inTable);
}

}  // namespace
}  // namespace zelk::configtool
