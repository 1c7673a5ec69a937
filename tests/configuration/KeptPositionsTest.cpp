// Positions kept for explaining values (ConfigurationManager::setKeepPositions): where each entry
// of a value file's values was written, which word of the command line gave each flag's entries,
// and where each registry default stands; nothing of it unless asked for. On a real installation
// tree, through enableConfiguration, as a tool meets it.
#include <map>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/InstallationFixture.h"
#include "zelk/configuration/ConfigurationManager.h"
#include "zelk/configuration/Container.h"
#include "zelk/configuration/ParameterRef.h"
#include "zelk/configuration/Specification.h"
#include "zelk/configuration/ValidationErrors.h"
#include "zelk/configuration/ValidationException.h"
#include "zelk/configuration/ValueBase.h"
#include "zelk/configuration/ValueGroup.h"
#include "zelk/configuration/ValueProvider.h"
#include "zelk/configuration/XmlFileValueProvider.h"
#include "zelk/configuration/impl/CommandLineValueProvider.h"
#include "zelk/configuration/impl/CommandLineValueProviderImpl.h"
#include "zelk/configuration/impl/XmlFileValueProviderImpl.h"

namespace zelk::configuration {
namespace {

// "level" has its default on a line of its own, "name" takes the parameter's default, "mode"
// overrides it in the reference; "paths" is unbounded; "db" a container.
const char* const REGISTRY =
    "<ConfigurationRegistry crgSchemaVersion=\"1.1\">\n"
    "<Parameters>\n"
    "  <Parameter id=\"name\" type=\"string\" description=\"N\" default=\"anon\"/>\n"
    "  <Parameter id=\"level\" type=\"int32\" description=\"L\"\n"
    "             default=\"3\"/>\n"
    "  <Parameter id=\"mode\" type=\"string\" description=\"M\" default=\"slow\"/>\n"
    "  <Parameter id=\"paths\" type=\"string\" description=\"P\"/>\n"
    "  <Parameter id=\"port\" type=\"uint32\" description=\"T\"/>\n"
    "</Parameters>\n"
    "<Specifications><Specification id=\"tool\" description=\"Tool\">\n"
    "  <ParameterRef id=\"name\" optional=\"true\"/><ParameterRef id=\"level\" "
    "optional=\"true\"/>\n"
    "  <ParameterRef id=\"mode\" optional=\"true\" default=\"fast\"/>\n"
    "  <ParameterRef id=\"paths\" optional=\"true\" unbounded=\"true\"/>\n"
    "  <Container id=\"db\" description=\"D\" optional=\"true\"><ParameterRef id=\"port\" "
    "optional=\"true\"/>"
    "</Container>\n"
    "</Specification></Specifications>\n"
    "</ConfigurationRegistry>\n";

// Multi-byte characters before "level": columns count characters, not bytes.
const char* const VALUES =
    "<tool name=\"\xC3\xA9t\xC3\xA9\" level=\"7\">\n"
    "  <paths value=\"/a\"/>\n"
    "\t<paths value=\"/b\"/>\n"
    "  <db port=\"9\"/>\n"
    "</tool>\n";

class KeptPositionsTest : public ::testing::Test {
protected:
  KeptPositionsTest() {
    mRegistry = mInstallation.writeEtcFile("zelk.crg", REGISTRY);
    mValues = mInstallation.writeConfigFile("values.xml", VALUES);
    mManager = ConfigurationManager::getInstance();
  }
  ~KeptPositionsTest() override { ConfigurationManager::shutdown(); }

  // Enables the tool with the value file loaded among its words, keeping positions or not.
  void enable(bool keep) {
    mManager->setKeepPositions(keep);
    const char* argv[] = {"tool", "-paths", "/c", "-loadConfiguration", "values.xml", "-mode",
                          "m",    "-paths", "/d"};
    mManager->enableConfiguration(false, nullptr, 9, argv, "tool");
    mSpec = mManager->getSpecification("tool");
    ASSERT_NE(mSpec, nullptr);
  }

  // The first enabled provider of that name.
  ValueProvider* provider(const std::string& name) const {
    std::unique_ptr<IEnumerator<ValueProvider*>> providers(mManager->getValueProviderEnumerator());
    for (; providers->hasNext(); providers->moveNext()) {
      if (providers->getCurrent()->getName() == name) return providers->getCurrent();
    }
    ADD_FAILURE() << name;
    return nullptr;
  }

  // "line:column" of each entry of the value named name in group, as the file provider places
  // them.
  std::vector<std::string> filePlaces(const ValueGroup& answer, const ValueGroup& group,
                                      const char* name) const {
    const auto* file = dynamic_cast<XmlFileValueProvider*>(provider("XML_FILE"));
    const auto placed = file->getXmlFileImpl()->placeEntries(*mSpec, answer);
    std::vector<std::string> places;
    const boost::shared_ptr<ValueBase> value = group.findValueBase(name);
    if (!value) return places;
    const auto found = placed.find(value->getInstanceId());
    if (found == placed.end()) return places;
    for (const SourcePosition& position : found->second) {
      EXPECT_EQ(position.file, mValues);
      places.push_back(std::to_string(position.line) + ":" + std::to_string(position.column) + " " +
                       position.element + "/" + position.attribute);
    }
    return places;
  }

  std::string defaultAt(const char* id) const {
    const SourcePosition position = mManager->getDefaultPosition(*mSpec->findParameterRef(id));
    if (position.isKnown()) {
      EXPECT_EQ(position.file, mRegistry);
    }
    return std::to_string(position.line) + ":" + std::to_string(position.column);
  }

  test::InstallationFixture mInstallation;
  std::string mRegistry;
  std::string mValues;
  ConfigurationManager* mManager = nullptr;
  const Specification* mSpec = nullptr;
};

TEST_F(KeptPositionsTest, ValueFileEntriesAreAtTheirAttributes) {
  enable(true);
  const ValueGroup answer = provider("XML_FILE")->getValues(*mSpec, 0x14);
  EXPECT_EQ(filePlaces(answer, answer, "name"), std::vector<std::string>{"1:7 tool/name"});
  EXPECT_EQ(filePlaces(answer, answer, "level"), std::vector<std::string>{"1:18 tool/level"});
  // A parameter written as elements: each entry at the element's "value" attribute.
  EXPECT_EQ(filePlaces(answer, answer, "paths"),
            (std::vector<std::string>{"2:10 paths/value", "3:9 paths/value"}));
  const boost::shared_ptr<ValueGroup> db = answer.findValueGroup("db");
  ASSERT_TRUE(db);
  EXPECT_EQ(filePlaces(answer, *db, "port"), std::vector<std::string>{"4:7 db/port"});
}

TEST_F(KeptPositionsTest, CommandLineEntriesAreAtTheirWords) {
  enable(true);
  auto* words = dynamic_cast<impl::CommandLineValueProvider*>(provider("CLI"));
  const ValueGroup answer = words->getValues(*mSpec, 0x14);
  const auto placed = words->getCommandLineImpl()->placeEntries(answer);
  // Counted in the words the tool was given, the -loadConfiguration pair included.
  const auto at = [&](const char* name) {
    const boost::shared_ptr<ValueBase> value = answer.findValueBase(name);
    return value && placed.count(value->getInstanceId()) != 0 ? placed.at(value->getInstanceId())
                                                              : std::vector<int>();
  };
  EXPECT_EQ(at("paths"), (std::vector<int>{1, 7}));
  EXPECT_EQ(at("mode"), std::vector<int>{5});
}

TEST_F(KeptPositionsTest, DefaultsAreAtTheirAttributeInTheReferenceOrTheParameter) {
  enable(true);
  EXPECT_EQ(defaultAt("name"), "3:54");   // the parameter's
  EXPECT_EQ(defaultAt("level"), "5:14");  // on the line after the element's start
  EXPECT_EQ(defaultAt("mode"), "12:43");  // the reference's own
  EXPECT_EQ(defaultAt("paths"), "0:0");   // none
}

TEST_F(KeptPositionsTest, NothingIsKeptUnlessAskedFor) {
  enable(false);
  const ValueGroup answer = provider("XML_FILE")->getValues(*mSpec, 0x14);
  EXPECT_TRUE(filePlaces(answer, answer, "level").empty());
  auto* words = dynamic_cast<impl::CommandLineValueProvider*>(provider("CLI"));
  EXPECT_TRUE(words->getCommandLineImpl()->placeEntries(words->getValues(*mSpec, 0x14)).empty());
  EXPECT_EQ(defaultAt("level"), "0:0");
}

// An unknown item and an item given twice are placed where a value file wrote them (the second
// of two), only while positions are kept.
TEST_F(KeptPositionsTest, ValueFileErrorsArePlacedAtTheirItems) {
  const struct {
    const char* text;
    const char* error;
    unsigned int line, column;
  } cases[] = {
      {"<tool>\n  <db port=\"1\" colour=\"red\"/>\n</tool>\n",
       "\"colour\" is not a recognized parameter", 2, 16},
      {"<tool>\n  <nowhere/>\n</tool>\n", "\"nowhere\" is not a recognized container", 2, 3},
      {"<tool level=\"1\"\n      LEVEL=\"2\"/>\n",
       "The \"level\" parameter cannot be provided more than once", 2, 7},
      {"<tool><db port=\"1\"/>\n<db port=\"2\"/></tool>\n",
       "The \"db\" container cannot be provided more than once", 2, 1},
  };
  for (const auto& c : cases) {
    mValues = mInstallation.writeConfigFile("values.xml", c.text);
    for (bool keep : {true, false}) {
      enable(keep);
      try {
        provider("XML_FILE")->getValues(*mSpec, 0x14);
        ADD_FAILURE() << c.text;
      } catch (const ValidationException& e) {
        ASSERT_EQ(e.getErrors().getNumberOfErrors(), 1u) << c.text;
        EXPECT_STREQ(e.getErrors().getError(0), c.error);
        const SourcePosition& where = e.getErrors().getPosition(0);
        EXPECT_EQ(where.line, keep ? c.line : 0u) << c.text;
        EXPECT_EQ(where.column, keep ? c.column : 0u) << c.text;
        if (keep) {
          EXPECT_EQ(where.file, mValues);
        }
      }
    }
  }
}

}  // namespace
}  // namespace zelk::configuration
