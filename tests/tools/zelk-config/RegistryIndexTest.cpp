#include "RegistryIndex.h"

#include <gtest/gtest.h>

#include "support/TempDir.h"
#include "support/TextFiles.h"
#include "zelk/host/XmlTokenReader.h"

namespace zelk::configtool {
namespace {

// Item ids follow the model's rule: a one-of or logical group is named after its parent and its
// position among all the parent's items (a group reference counts as one item).
TEST(RegistryIndexTest, GivesConstraintsTheIdsTheModelGivesThem) {
  test::TempDir dir;
  const std::string path = dir.file("ids.crg");
  test::writeTextFile(path,
                      "<ConfigurationRegistry><Groups><Group id=\"g\" description=\"G\">\n"
                      "<OneOf><ParameterRef id=\"x\"/><ParameterRef id=\"y\"/></OneOf></Group>\n"
                      "</Groups><Specifications><Specification id=\"s\" description=\"S\">\n"
                      "<ParameterRef id=\"a\"/><OneOf><LogicalGroup/></OneOf><GroupRef id=\"g\"/>\n"
                      "<Container id=\"box\" description=\"B\"><ParameterRef id=\"e\"/>\n"
                      "  <LogicalGroup/></Container><OneOf/></Specification></Specifications>\n"
                      "</ConfigurationRegistry>\n");
  RegistryIndex index;
  const std::size_t file = index.addFile(path);
  EXPECT_EQ(index.findItem("OneOf", "g_oo0")->owner, "g");
  const ElementRecord* oneOf = index.findItem("OneOf", "s_oo1");
  ASSERT_NE(index.findItem("LogicalGroup", "s_oo1_lg0"), nullptr);
  // Inside a container the position restarts; the owner stays the specification.
  const ElementRecord* inBox = index.findItem("LogicalGroup", "box_lg1");
  ASSERT_NE(inBox, nullptr);
  EXPECT_EQ(inBox->owner, "s");
  EXPECT_EQ(inBox->line, 6u);
  EXPECT_EQ(inBox->column, 3u);
  // The group reference at position 2 moves the last one-of to position 4.
  EXPECT_EQ(index.findItem("OneOf", "s_oo3"), nullptr);
  EXPECT_NE(index.findItem("OneOf", "s_oo4"), nullptr);
  // Ids compare without regard to case; owner and file restrict the search.
  EXPECT_EQ(index.findItem("OneOf", "S_OO1"), oneOf);
  const std::string other = "g";
  EXPECT_EQ(index.findItem("OneOf", "s_oo1", file, &other), nullptr);
}

// Positions survive a file that breaks off; values are kept decoded; a file that cannot be read
// is indexed empty.
TEST(RegistryIndexTest, KeepsWhatItReadBeforeABreak) {
  test::TempDir dir;
  const std::string broken = dir.file("broken.crg");
  test::writeTextFile(broken,
                      "<crg:ConfigurationRegistry xmlns:crg=\"urn:zelk\">\n"
                      "  <Parameters>\n"
                      "    <Parameter id=\"m\" type=\"enum\" description=\"M\" default=\"a &amp; b\"/>\n"
                      "    <Parameter id=\"M\" type=\"bool\" description=\"M\"/>\n"
                      "    <Parameter id=\"x\" type=\"bool\" optional=\"true/>\n");
  RegistryIndex index;
  index.addFile(broken);
  const std::size_t records = index.getRecords().size();
  index.addFile(dir.file("nosuch.crg"));
  EXPECT_EQ(index.getRecords().size(), records);
  EXPECT_EQ(index.getRecords().front().element, "ConfigurationRegistry");
  const std::vector<const ElementRecord*> m = index.findAll("Parameter", "m");
  ASSERT_EQ(m.size(), 2u);
  EXPECT_EQ(m[0]->line, 3u);
  EXPECT_EQ(m[0]->column, 5u);
  EXPECT_EQ(m[1]->line, 4u);
  ASSERT_NE(m[0]->attribute("default"), nullptr);
  EXPECT_EQ(*m[0]->attribute("default"), "a & b");
  EXPECT_NE(index.findItem("Parameter", "x"), nullptr);
}

// Nested one-ofs get ids that grow with their depth; indexing below the depth the loader reads
// would take time and memory in the square of the depth.
TEST(RegistryIndexTest, StopsAtTheDepthTheLoaderReads) {
  test::TempDir dir;
  const std::string path = dir.file("deep.crg");
  const std::size_t depth = 2000;
  std::string text = "<ConfigurationRegistry><Specifications><Specification id=\"s\">";
  for (std::size_t i = 0; i < depth; ++i) text += "<OneOf>";
  for (std::size_t i = 0; i < depth; ++i) text += "</OneOf>";
  test::writeTextFile(path, text + "</Specification></Specifications></ConfigurationRegistry>");
  RegistryIndex index;
  index.addFile(path);
  EXPECT_LE(index.getRecords().size(), host::XmlTokenReader::MAX_NESTING_DEPTH + 2);
  EXPECT_NE(index.findItem("OneOf", "s_oo0_oo0"), nullptr);
}

}  // namespace
}  // namespace zelk::configtool
