#include "RegistryIndex.h"

#include <gtest/gtest.h>

#include "support/TempDir.h"
#include "support/TextFiles.h"

namespace zelk::configtool {
namespace {

// Item ids follow the model's rule: a one-of or logical group is named after its parent and its
// position among all the parent's items (a group reference counts as one item).
TEST(RegistryIndexTest, GivesConstraintsTheIdsTheModelGivesThem) {
  test::TempDir dir;
  const std::string path = dir.file("ids.crg");
  test::writeTextFile(path,
                      "<ConfigurationRegistry>\n"
                      "  <Groups>\n"
                      "    <Group id=\"g\" description=\"G\">\n"
                      "      <OneOf><ParameterRef id=\"x\"/><ParameterRef id=\"y\"/></OneOf>\n"
                      "    </Group>\n"
                      "  </Groups>\n"
                      "  <Specifications>\n"
                      "    <Specification id=\"s\" description=\"S\">\n"
                      "      <ParameterRef id=\"a\"/>\n"
                      "      <OneOf>\n"
                      "        <LogicalGroup><ParameterRef id=\"b\"/><ParameterRef id=\"c\"/></LogicalGroup>\n"
                      "        <ParameterRef id=\"d\"/>\n"
                      "      </OneOf>\n"
                      "      <GroupRef id=\"g\"/>\n"
                      "      <Container id=\"box\" description=\"Box\">\n"
                      "        <ParameterRef id=\"e\"/>\n"
                      "        <LogicalGroup><ParameterRef id=\"f\"/><ParameterRef id=\"h\"/></LogicalGroup>\n"
                      "      </Container>\n"
                      "      <OneOf><ParameterRef id=\"i\"/><ParameterRef id=\"j\"/></OneOf>\n"
                      "    </Specification>\n"
                      "  </Specifications>\n"
                      "</ConfigurationRegistry>\n");
  RegistryIndex index;
  const std::size_t file = index.addFile(path);

  const ElementRecord* groupOneOf = index.findItem("OneOf", "g_oo0");
  ASSERT_NE(groupOneOf, nullptr);
  EXPECT_EQ(groupOneOf->owner, "g");
  EXPECT_EQ(groupOneOf->line, 4u);
  EXPECT_EQ(groupOneOf->column, 7u);

  const ElementRecord* oneOf = index.findItem("OneOf", "s_oo1");
  ASSERT_NE(oneOf, nullptr);
  EXPECT_EQ(oneOf->line, 10u);
  const ElementRecord* nested = index.findItem("LogicalGroup", "s_oo1_lg0");
  ASSERT_NE(nested, nullptr);
  EXPECT_EQ(nested->line, 11u);
  EXPECT_EQ(nested->column, 9u);

  // Inside a container the position restarts; the owner stays the specification.
  const ElementRecord* inBox = index.findItem("LogicalGroup", "box_lg1");
  ASSERT_NE(inBox, nullptr);
  EXPECT_EQ(inBox->owner, "s");
  EXPECT_EQ(inBox->line, 17u);

  // The group reference at position 2 moves the last one-of to position 4.
  EXPECT_EQ(index.findItem("OneOf", "s_oo3"), nullptr);
  ASSERT_NE(index.findItem("OneOf", "s_oo4"), nullptr);
  EXPECT_EQ(index.findItem("OneOf", "s_oo4")->line, 19u);

  // Ids compare without regard to case; owner and file restrict the search.
  EXPECT_EQ(index.findItem("OneOf", "S_OO1"), oneOf);
  const std::string other = "g";
  EXPECT_EQ(index.findItem("OneOf", "s_oo1", file, &other), nullptr);
  EXPECT_EQ(index.findItem("OneOf", "s_oo1", file + 1), nullptr);
  EXPECT_EQ(index.findItem("ParameterRef", "e")->owner, "s");
}

TEST(RegistryIndexTest, FindsElementsByTheirAttributesAndMissingAttributes) {
  test::TempDir dir;
  const std::string first = dir.file("first.crg");
  const std::string second = dir.file("second.crg");
  test::writeTextFile(first,
                      "<?xml version=\"1.0\"?>\n"
                      "<!-- a comment\n"
                      "     over two lines -->\n"
                      "<crg:ConfigurationRegistry xmlns:crg=\"urn:zelk\" crgSchemaVersion='1.1'>\n"
                      "  <Enumerations>\n"
                      "    <Enumeration id=\"mode\"><Value label=\"fast\"/><Value value=\"3\"/></Enumeration>\n"
                      "  </Enumerations>\n"
                      "  <Parameters>\n"
                      "    <Parameter id=\"m\" type=\"enum\" description=\"M\" default=\"a &amp; b\"/>\n"
                      "    <Parameter id=\"n\" type=\"int32\" description=\"\"/>\n"
                      "  </Parameters>\n"
                      "</crg:ConfigurationRegistry>\n");
  test::writeTextFile(second,
                      "<ConfigurationRegistry><Specifications>\n"
                      "  <Specification id=\"s\" description=\"again\"/>\n"
                      "</Specifications></ConfigurationRegistry>\n");
  RegistryIndex index;
  const std::size_t a = index.addFile(first);
  const std::size_t b = index.addFile(second);
  ASSERT_EQ(index.getFileCount(), 2u);
  EXPECT_EQ(index.getPath(b), second);

  // The namespace prefix is dropped from element names; comments move the positions on.
  const ElementRecord* root = index.findRoot(a);
  ASSERT_NE(root, nullptr);
  EXPECT_EQ(root->element, "ConfigurationRegistry");
  EXPECT_EQ(root->line, 4u);
  EXPECT_EQ(*root->attribute("crgSchemaVersion"), "1.1");

  // Attribute values are compared decoded and exactly.
  const ElementRecord* m = index.findByAttribute(a, "Parameter", "default", "a & b");
  ASSERT_NE(m, nullptr);
  EXPECT_EQ(m->itemId, "m");
  EXPECT_EQ(index.findByAttribute(a, "", "default", "A & B"), nullptr);
  EXPECT_EQ(index.findByAttribute(b, "", "default", "a & b"), nullptr);

  // What the loader would call a missing attribute: absent, empty, or required by the type.
  EXPECT_EQ(index.findMissingAttribute(a, "label")->line, 6u);
  EXPECT_EQ(index.findMissingAttribute(a, "enumType"), m);
  EXPECT_EQ(index.findMissingAttribute(a, "description")->itemId, "n");
  EXPECT_EQ(index.findMissingAttribute(a, "id"), nullptr);
  EXPECT_EQ(index.findMissingAttribute(b, "description"), nullptr);
}

TEST(RegistryIndexTest, KeepsWhatItReadBeforeABreakAndSurvivesMissingFiles) {
  test::TempDir dir;
  const std::string broken = dir.file("broken.crg");
  test::writeTextFile(broken,
                      "<ConfigurationRegistry>\n"
                      "  <Specifications>\n"
                      "    <Specification id=\"s\" description=\"S\">\n"
                      "      <ParameterRef id=\"a\" optional=\"true/>\n"
                      "    </Specification>\n");
  RegistryIndex index;
  index.addFile(broken);
  const std::size_t missing = index.addFile(dir.file("nosuch.crg"));
  ASSERT_NE(index.findItem("Specification", "s"), nullptr);
  EXPECT_EQ(index.findItem("Specification", "s")->line, 3u);
  EXPECT_EQ(index.findRoot(missing), nullptr);
  EXPECT_EQ(index.findMissingAttribute(missing, "id"), nullptr);

  // Two declarations of one id are both found, in order.
  const std::string twice = dir.file("twice.crg");
  test::writeTextFile(twice,
                      "<ConfigurationRegistry><Parameters>\n"
                      "<Parameter id=\"p\" type=\"bool\" description=\"1\"/>\n"
                      "<Parameter id=\"P\" type=\"bool\" description=\"2\"/>\n"
                      "</Parameters></ConfigurationRegistry>\n");
  index.addFile(twice);
  const std::vector<const ElementRecord*> both = index.findAll("Parameter", "p");
  ASSERT_EQ(both.size(), 2u);
  EXPECT_EQ(both[0]->line, 2u);
  EXPECT_EQ(both[1]->line, 3u);
}

}  // namespace
}  // namespace zelk::configtool
