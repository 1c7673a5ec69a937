#include "zelk/configuration/ConfigurationRegistryLoader.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "configuration/Models.h"
#include "support/TempDir.h"
#include "support/TextFiles.h"
#include "zelk/configuration/ConfigurationException.h"
#include "zelk/configuration/ConfigurationManager.h"
#include "zelk/configuration/Container.h"
#include "zelk/configuration/EnumDefinition.h"
#include "zelk/configuration/Group.h"
#include "zelk/configuration/OneOf.h"
#include "zelk/configuration/Parameter.h"
#include "zelk/configuration/ParameterRef.h"
#include "zelk/configuration/Specification.h"
#include "zelk/configuration/ValidationException.h"
#include "zelk/configuration/Value.h"
#include "zelk/configuration/impl/ConfigurationRegistryLoaderImpl.h"
#include "zelk/configuration/impl/Factory.h"
#include "zelk/configuration/impl/ValueTypeTable.h"
#include "zelk/configuration/impl/Version.h"

namespace zelk::configuration {
namespace {

using impl::Version;

std::string registry(const std::string& body, const std::string& version = "1.1") {
  return "<?xml version=\"1.0\"?>\n<ConfigurationRegistry crgSchemaVersion=\"" + version +
         "\">\n" + body + "\n</ConfigurationRegistry>\n";
}

const char* const MODE_AND_LEVEL =
    "<Enumerations><Enumeration id=\"mode\"><Value label=\"fast\"/><Value label=\"safe\"/>"
    "</Enumeration></Enumerations>"
    "<Parameters>"
    "<Parameter id=\"level\" type=\"uint32\" description=\"The level\"/>"
    "<Parameter id=\"mode\" type=\"enum\" enumType=\"mode\" description=\"The mode\" "
    "default=\"safe\"/>"
    "</Parameters>";

class ConfigurationRegistryLoaderTest : public ::testing::Test {
protected:
  void load(const std::string& text, const std::string& name = "test.crg") {
    const std::string path = mDir.file(name);
    test::writeTextFile(path, text);
    ConfigurationRegistryLoader::loadFile(path.c_str(), &mManager, 0);
  }

  // The message that loading text throws, "" when it loads; validation tells which kind.
  std::string failure(const std::string& text, bool* validation = nullptr) {
    try {
      load(text);
    } catch (const ValidationException& e) {
      if (validation != nullptr) *validation = true;
      return e.what();
    } catch (const ConfigurationException& e) {
      if (validation != nullptr) *validation = false;
      return e.what();
    }
    return "";
  }

  test::TempDir mDir;
  ConfigurationManager mManager;
};

TEST_F(ConfigurationRegistryLoaderTest, LoadsEveryElementOfTheFormat) {
  mManager.registerDefaultValidators();
  load(registry(
      "<Enumerations><Enumeration id=\"mode\"><Value label=\"fast\"/><Value label=\"safe\"/>"
      "</Enumeration></Enumerations>"
      "<!-- comments may come between elements -->"
      "<Parameters><Parameter id=\"level\" type=\"uint32\" description=\"The level\"/>"
      "<Parameter id=\"mode\" name=\"Mode\" type=\"enum\" enumType=\"mode\" description=\"M\" "
      "valueName=\"how\" default=\"safe\"/>"
      "<Parameter id=\"where\" type=\"string\" description=\"W\" validator=\"storageLocation\"/>"
      "</Parameters>"
      "<Groups><Group id=\"common\" name=\"ignored\">"
      "<ParameterRef id=\"level\" description=\"Level here\" default=\"7\"/>"
      "<Container id=\"inner\" description=\"Inner\"/></Group></Groups>"
      "<Specifications><Specification id=\"tool\" title=\"The tool\" description=\"A tool\">"
      "<Container id=\"main\" name=\"Main\" description=\"Main part\">"
      "<OneOf><ParameterRef id=\"level\"/><ParameterRef id=\"mode\"/></OneOf>"
      "<LogicalGroup><ParameterRef id=\"level\"/><ParameterRef id=\"where\"/></LogicalGroup>"
      "</Container><GroupRef id=\"common\"/></Specification></Specifications>"));

  const Parameter* modeParameter = dynamic_cast<const Parameter*>(mManager.getParameter("mode"));
  ASSERT_NE(nullptr, modeParameter);
  EXPECT_STREQ("how", modeParameter->getValueName());
  EXPECT_EQ("safe", modeParameter->getDefaultValue().asString());
  EXPECT_EQ(mManager.getValidator("storageLocation"),
            dynamic_cast<const Parameter&>(*mManager.getParameter("where")).getValidator());

  // The group's id is its name; without a description the id stands in.
  GlobalItem* common = mManager.getGroup("common");
  ASSERT_NE(nullptr, common);
  EXPECT_STREQ("common", common->getDescription());

  const Specification* tool = mManager.getSpecification("tool");
  ASSERT_NE(nullptr, tool);
  const Container* main = tool->findContainer("main");
  ASSERT_NE(nullptr, main);
  ASSERT_EQ(2u, main->getNumberOfItems());
  EXPECT_STREQ("main_lg1", main->getItem(1)->getId());
  EXPECT_STREQ("mode",
               dynamic_cast<const GroupItemCollection&>(*main->getItem(0)).getItem(1)->getId());

  // The copy of the group's items belongs to the specification and is found by its searches.
  const Container* copy = tool->findContainer("common");
  ASSERT_NE(nullptr, copy);
  const ParameterRef* copiedLevel = copy->findParameterRef("LEVEL");
  ASSERT_NE(nullptr, copiedLevel);
  EXPECT_EQ(7u, copiedLevel->getDefaultValue().asUInt32());
}

// Every type word of the value-type table, and the short forms, loads as its type; the schema
// that zelk-config installs for registry files accepts exactly those words.
TEST_F(ConfigurationRegistryLoaderTest, EveryTypeWordLoadsAndTheRegistrySchemaKnowsTheSameWords) {
  std::vector<std::pair<std::string, Parameter::ValueType>> words = {{"int", Parameter::INT32},
                                                                     {"uint", Parameter::UINT32}};
  for (const impl::ValueTypeInfo* row = impl::ValueTypeTable::begin();
       row != impl::ValueTypeTable::end(); ++row) {
    words.emplace_back(row->word, row->type);
  }
  ASSERT_EQ(11u, words.size());
  std::string parameters;
  for (const auto& word : words) {
    parameters += "<Parameter id=\"p_" + word.first + "\" type=\"" + word.first +
                  "\" enumType=\"mode\" description=\"d\"/>";
  }
  load(registry(
      "<Enumerations><Enumeration id=\"mode\"><Value label=\"fast\"/></Enumeration>"
      "</Enumerations><Parameters>" + parameters + "</Parameters>"));
  for (const auto& word : words) {
    const auto* parameter =
        dynamic_cast<const Parameter*>(mManager.getGlobalItem(("p_" + word.first).c_str()));
    ASSERT_NE(nullptr, parameter) << word.first;
    EXPECT_EQ(word.second, parameter->getValueType()) << word.first;
  }

  const std::string schema = test::readTextFile(std::string(ZELK_TEST_SOURCE_DIR) +
                                                "/tools/zelk-config/schema/registry.xsd");
  const std::string begin = "<xs:simpleType name=\"type\">";
  const size_t start = schema.find(begin);
  ASSERT_NE(std::string::npos, start);
  const std::string types = schema.substr(start, schema.find("</xs:simpleType>", start) - start);
  std::vector<std::string> inSchema;
  const std::string tag = "<xs:enumeration value=\"";
  for (size_t at = types.find(tag); at != std::string::npos; at = types.find(tag, at + 1)) {
    const size_t from = at + tag.size();
    inSchema.push_back(types.substr(from, types.find('"', from) - from));
  }
  std::vector<std::string> inTable;
  for (const auto& word : words) inTable.push_back(word.first);
  std::sort(inSchema.begin(), inSchema.end());
  std::sort(inTable.begin(), inTable.end());
  EXPECT_EQ(inTable, inSchema);
}

TEST_F(ConfigurationRegistryLoaderTest, ReadsBooleanAttributesAndNumbersEnumerations) {
  load(registry(
      "<Enumerations><Enumeration id=\"e\"><Value label=\"a\"/><Value label=\"b\"/>"
      "<Value label=\"c\" value=\"10\"/><Value label=\"d\"/><Value value=\"-3\" label=\"m\"/>"
      "</Enumeration></Enumerations>"
      "<Parameters><Parameter id=\"p\" type=\"int\" description=\"P\"/></Parameters>"
      "<Specifications><Specification id=\"s\" description=\"S\" optional=\"1\">"
      "<Container id=\"c1\" description=\"C\" optional=\"TRUE\" unbounded=\"True\">"
      "<ParameterRef id=\"p\" optional=\"yes\" unbounded=\"1\" hidden=\"tRuE\"/></Container>"
      "<Container id=\"c2\" description=\"C\" optional=\"false\" unbounded=\"2\"/>"
      "</Specification></Specifications>"));
  const EnumDefinition* e = mManager.getEnumDefinition("e");
  ASSERT_NE(nullptr, e);
  EXPECT_EQ(1, e->getValue("b", nullptr));
  EXPECT_EQ(11, e->getValue("d", nullptr));
  EXPECT_EQ(-3, e->getValue("m", nullptr));

  const Specification* s = mManager.getSpecification("s");
  ASSERT_NE(nullptr, s);
  EXPECT_TRUE(s->isOptional());
  const Container* c1 = s->findContainer("c1");
  const Container* c2 = s->findContainer("c2");
  ASSERT_TRUE(c1 != nullptr && c2 != nullptr);
  EXPECT_TRUE(c1->isOptional() && c1->isUnbounded());
  EXPECT_FALSE(c2->isOptional() || c2->isUnbounded());
  const ParameterRef* p = c1->findParameterRef("p");
  ASSERT_NE(nullptr, p);
  EXPECT_FALSE(p->isOptional());  // "yes" is not true
  EXPECT_TRUE(p->isHidden());
}

TEST_F(ConfigurationRegistryLoaderTest, AcceptsSchemaVersionsUpToTheCurrentOne) {
  EXPECT_EQ("", failure(registry("", "1.0")));
  // Other root attributes and a namespace prefix are passed over.
  EXPECT_EQ("", failure("<crg:ConfigurationRegistry xmlns:crg=\"urn:zelk\" crgSchemaVersion=\"1\">"
                        "<Parameters><Parameter id=\"x\" type=\"bool\" description=\"X\"/>"
                        "</Parameters></crg:ConfigurationRegistry>"));
  EXPECT_NE(nullptr, mManager.getParameter("x"));

  bool validation = true;
  EXPECT_EQ("Unsupported CRG schema version 1.2. Current version: 1.1.",
            failure(registry("", "1.2"), &validation));
  EXPECT_FALSE(validation);
  try {
    load(registry("", "2.0"));
  } catch (const ConfigurationException& e) {
    EXPECT_EQ(2u, e.getPosition().line);
    EXPECT_EQ(1u, e.getPosition().column);
    EXPECT_EQ("ConfigurationRegistry", e.getPosition().element);
    EXPECT_EQ("crgSchemaVersion", e.getPosition().attribute);
  }
}

TEST(VersionTest, ParsesAndComparesMajorThenMinor) {
  EXPECT_EQ("0.5", Version::parse("x.5").asString());  // a bad number counts 0
  // The difference is cut to 32 bits: a huge major reads as older.
  EXPECT_LT(Version(4294967295u, 0).compareTo(Version(1, 1)), 0);
}

// Each error keeps its message and carries its place as data: the file, the line and column of
// the element, its name and the attribute concerned.
TEST_F(ConfigurationRegistryLoaderTest, RejectsBadContentWithItsMessageAndPosition) {
  load(registry(MODE_AND_LEVEL));
  struct Case {
    const char* body;
    const char* message;
    bool validation;  // a ValidationException rather than a plain ConfigurationException
    const char* at;   // where the element starts in body
    const char* element;
    const char* attribute;
  } cases[] = {
      {"<Enumerations><Enumeration id=\"mode\"/></Enumerations>",
       "The \"mode\" enumeration has already been defined", false, "<Enumeration id", "Enumeration",
       "id"},
      {"<Enumerations><Enumeration id=\"n\"><Value label=\"a\" value=\"1x\"/></Enumeration>"
       "</Enumerations>",
       "\"1x\" is not a valid integer value", false, "<Value", "Value", "value"},
      // Numbered automatically past the 32-bit range, a symbol would wrap to -2147483648.
      {"<Enumerations><Enumeration id=\"w\"><Value label=\"top\" value=\"2147483647\"/>"
       "<Value label=\"over\"/></Enumeration></Enumerations>",
       "The value of \"over\" in the \"w\" enumeration would be 2147483648, beyond the 32-bit "
       "range",
       false, "<Value label=\"over\"", "Value", "label"},
      {"<Enumerations><Enumeration id=\"x\"><Value label=\"a\" value=\"2147483648\"/>"
       "</Enumeration></Enumerations>",
       "\"2147483648\" is not a valid integer value", false, "<Value", "Value", "value"},
      {"<Parameters><Parameter id=\"v\" type=\"string\" description=\"V\" validator=\"no\"/>"
       "</Parameters>",
       "The \"no\" validator was not found", false, "<Parameter ", "Parameter", "validator"},
      {"<Parameters><Parameter id=\"t\" type=\"Int\" description=\"T\"/></Parameters>",
       "\"Int\" is not a recognized type", false, "<Parameter ", "Parameter", "type"},
      {"<Parameters><Parameter id=\"c\" type=\"enum\" enumType=\"colour\" description=\"C\"/>"
       "</Parameters>",
       "The \"colour\" enumeration was not found", false, "<Parameter ", "Parameter", "enumType"},
      {"<Parameters>\n  <Parameter id=\"d\" type=\"uint32\" description=\"D\" default=\"-1\"/>"
       "</Parameters>",
       "\"-1\" is not a valid UInt32", true, "<Parameter ", "Parameter", "default"},
      {"<Specifications><Specification id=\"s\" description=\"S\"><GroupRef id=\"g\"/>"
       "</Specification></Specifications>",
       "Group \"g\" was not found", false, "<GroupRef", "GroupRef", "id"},
      // A group is not visible to its own items.
      {"<Groups><Group id=\"self\"><ParameterRef id=\"level\"/><GroupRef id=\"self\"/></Group>"
       "</Groups>",
       "Group \"self\" was not found", false, "<GroupRef", "GroupRef", "id"},
      {"<Specifications><Specification id=\"s1\" description=\"S\">\n"
       "  <OneOf><ParameterRef id=\"nosuch\"/></OneOf></Specification></Specifications>",
       "Parameter \"nosuch\" was not found", false, "<ParameterRef", "ParameterRef", "id"},
      {"<Enumerations><Enumeration><Value label=\"a\"/></Enumeration></Enumerations>",
       "missing attribute: id", true, "<Enumeration>", "Enumeration", "id"},
      {"<Enumerations><Enumeration id=\"v\"><Value value=\"1\"/></Enumeration></Enumerations>",
       "missing attribute: label", true, "<Value", "Value", "label"},
      {"<Parameters><Parameter id=\"p\" type=\"int\" description=\"\"/></Parameters>",
       "missing attribute: description", true, "<Parameter ", "Parameter", "description"},
      {"<Specifications><Specification id=\"s2\" description=\"S\">"
       "<Container id=\"c\"></Container></Specification></Specifications>",
       "missing attribute: description", true, "<Container", "Container", "description"},
  };
  for (const Case& c : cases) {
    const std::string body = c.body;
    // The body starts on line 3 of the file.
    const std::size_t at = body.find(c.at);
    const std::size_t lineStart = body.rfind('\n', at);
    const unsigned int line = 3 + static_cast<unsigned int>(
                                      std::count(body.begin(), body.begin() + at, '\n'));
    const unsigned int column =
        static_cast<unsigned int>(lineStart == std::string::npos ? at + 1 : at - lineStart);
    try {
      load(registry(body));
      ADD_FAILURE() << "loaded: " << body;
    } catch (const ConfigurationException& e) {
      EXPECT_EQ(c.message, std::string(e.what())) << body;
      const auto* validation = dynamic_cast<const ValidationException*>(&e);
      EXPECT_EQ(c.validation, validation != nullptr) << body;
      const SourcePosition& where = e.getPosition();
      EXPECT_EQ(mDir.file("test.crg"), where.file) << body;
      EXPECT_EQ(line, where.line) << body;
      EXPECT_EQ(column, where.column) << body;
      EXPECT_EQ(c.element, where.element) << body;
      EXPECT_EQ(c.attribute, where.attribute) << body;
      if (validation != nullptr && std::string(c.message).rfind("missing", 0) == 0) {
        // The loader's own errors are placed one by one in the list as well.
        EXPECT_EQ(line, validation->getErrors().getPosition(0).line) << body;
        EXPECT_EQ(c.attribute, validation->getErrors().getPosition(0).attribute) << body;
      }
    }
  }
}

TEST_F(ConfigurationRegistryLoaderTest, MalformedFilesReportWhereTheyGoWrong) {
  bool validation = false;
  EXPECT_EQ(
      "Unexpected \"bogus\" at line 4, column 46 in \"" + mDir.file("test.crg") + "\"",
      failure(registry("<Parameters>\n"
                       "<Parameter id=\"p\" type=\"int\" description=\"P\" bogus=\"1\"/>"
                       "</Parameters>"),
              &validation));
  EXPECT_TRUE(validation);
  try {
    load(registry("<Parameters>\n<Parameter id=\"p\" type=\"int\" description=\"P\" bogus=\"1\"/>"
                  "</Parameters>"));
  } catch (const ValidationException& e) {
    // A syntax error stands where the reader stopped, in the element being read.
    const SourcePosition& where = e.getErrors().getPosition(0);
    EXPECT_EQ(4u, where.line);
    EXPECT_EQ(46u, where.column);
    EXPECT_EQ("Parameter", where.element);
    EXPECT_EQ("", where.attribute);
    EXPECT_EQ(4u, e.getPosition().line);
  }
  // Sections out of order: the Parameters section is not where the end tag is expected.
  EXPECT_NE(std::string::npos,
            failure(registry("<Groups/><Parameters/>"))
                .find("Unexpected \"<Parameters\" at line 3, column 10"));
  EXPECT_NE(std::string::npos,
            failure(registry("<Parameters><Parameter id=\"q\" type=\"int\" description=\"Q\">"
                             "</Parameters>"))
                .find("; expected \"/>\""));
  // Truncated files end with a warning, never a hang.
  EXPECT_NE(std::string::npos, failure("").find("expected \"<ConfigurationRegistry\""));
  EXPECT_EQ("Unexpected \"<Registry\" at line 1, column 1 in \"" + mDir.file("test.crg") +
                "\"; expected \"<ConfigurationRegistry\"",
            failure("<Registry></Registry>"));
  EXPECT_NE(std::string::npos,
            failure(registry("<Groups><Group id=\"g\"><Value/></Group></Groups>")).find("<Value"));

  // A registry held in memory is named as given; a missing file is not a validation error.
  const std::string unclosed = "<ConfigurationRegistry><Groups>";
  impl::ConfigurationRegistryLoaderImpl loader(&mManager);
  EXPECT_EQ("Unexpected end of file at line 1, column 32 in \"memory\"; expected \"</Groups>\"",
            test::messageOf<ValidationException>(
                [&] { loader.loadBuffer(unclosed.data(), unclosed.size(), "memory", 0); }));
  const std::string missing = mDir.file("missing.crg");
  try {
    ConfigurationRegistryLoader::loadFile(missing.c_str(), &mManager, 0);
    ADD_FAILURE() << "a missing file loaded";
  } catch (const ConfigurationException& e) {
    EXPECT_EQ("File \"" + missing + "\" was not found", e.what());
    EXPECT_EQ(-700, e.get_kind());
    EXPECT_EQ(missing, e.getPosition().file);
    EXPECT_FALSE(e.getPosition().isKnown());
  }
}

TEST_F(ConfigurationRegistryLoaderTest, BoundsNestingCopiesAndLongValues) {
  load(registry(MODE_AND_LEVEL));
  // Containers nested far too deep are refused with the position, without using up the stack.
  std::string deep;
  for (int i = 0; i < 10000; ++i) deep += "<Container id=\"c\" description=\"C\">";
  const std::string tooDeep = failure(
      registry("<Specifications><Specification id=\"deep\" description=\"D\">" + deep));
  EXPECT_NE(std::string::npos, tooDeep.find("Elements are nested deeper than 256 levels at line"))
      << tooDeep;

  // A group copied at a depth where its own nesting goes past the bound is refused too.
  std::string nested;
  std::string closing;
  for (int i = 0; i < 200; ++i) {
    nested += "<Container id=\"n\" description=\"N\">";
    closing += "</Container>";
  }
  load(registry("<Groups><Group id=\"tall\">" + nested + "<ParameterRef id=\"level\"/>" +
                closing + "</Group></Groups>"),
       "tall.crg");
  const std::string tooTall =
      failure(registry("<Specifications><Specification id=\"t\" description=\"T\">" + nested +
                       "<GroupRef id=\"tall\"/>" + closing + "</Specification>"
                       "</Specifications>"));
  EXPECT_NE(std::string::npos, tooTall.find("nested deeper than 256 levels")) << tooTall;

  // Groups that copy each other many times over cannot make the copies grow without end.
  std::string groups = "<Groups><Group id=\"g0\">";
  for (int i = 0; i < 100; ++i) groups += "<ParameterRef id=\"level\"/>";
  groups += "</Group>";
  for (int g = 1; g <= 3; ++g) {
    groups += "<Group id=\"g" + std::to_string(g) + "\">";
    for (int i = 0; i < 100; ++i) groups += "<GroupRef id=\"g" + std::to_string(g - 1) + "\"/>";
    groups += "</Group>";
  }
  const std::string tooMany = failure(registry(groups + "</Groups>"));
  EXPECT_NE(std::string::npos, tooMany.find("copy more than 1000000 items")) << tooMany;

  // Values longer than 1024 characters are cut.
  const std::string longText(5000, 'd');
  load(registry("<Parameters><Parameter id=\"long\" type=\"string\" description=\"" + longText +
                "\" default=\"" + longText + "\"/></Parameters>"),
       "long.crg");
  GlobalItem* parameter = mManager.getParameter("long");
  ASSERT_NE(nullptr, parameter);
  EXPECT_EQ(std::string(1024, 'd'), parameter->getDescription());
  EXPECT_EQ(1024u, dynamic_cast<Parameter*>(parameter)->getDefaultValue().asString().size());
  // Past the reader's text limit a value is refused where it starts.
  const std::string huge = failure(registry("<Parameters><Parameter id=\"huge\" description=\"" +
                                            std::string(70000, 'd') + "\"/>"));
  EXPECT_NE(std::string::npos, huge.find("A value longer than 65536 bytes starts at line "))
      << huge;
}

TEST_F(ConfigurationRegistryLoaderTest, FormatDirectivesInTheFileAreQuotedAsWritten) {
  load(registry(MODE_AND_LEVEL));
  const std::string unknown = failure(registry(
      "<Specifications><Specification id=\"s\" description=\"%s%s%s%n\">"
      "<ParameterRef id=\"%999999999d\"/></Specification></Specifications>"));
  EXPECT_NE(std::string::npos, unknown.find("\"%999999999d\"")) << unknown;
  EXPECT_EQ(std::string::npos, unknown.find("%%")) << unknown;
  EXPECT_EQ("Unexpected \"%\" at line 3, column 13 in \"" + mDir.file("test.crg") + "\"",
            failure(registry("<Parameters>%s%s%s%n</Parameters>")));
  const std::string badDefault = failure(registry(
      "<Parameters><Parameter id=\"n\" type=\"int32\" default=\"%999999999d\" "
      "description=\"%n\"/></Parameters>"));
  EXPECT_NE(std::string::npos, badDefault.find("\"%999999999d\" is not a valid Int32"))
      << badDefault;
}

}  // namespace
}  // namespace zelk::configuration
