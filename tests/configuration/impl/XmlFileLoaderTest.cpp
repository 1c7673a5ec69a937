// Reading value files into generic value trees: names as written, document order, and clear
// errors for files that are malformed, truncated, too deep or too long.
#include "zelk/configuration/impl/XmlFileLoader.h"

#include <gtest/gtest.h>

#include <string>

#include "zelk/configuration/Value.h"
#include "zelk/configuration/ValueGroup.h"
#include "zelk/host/XmlTokenReader.h"

using zelk::configuration::ValueGroup;
using zelk::configuration::impl::XmlFileLoader;

namespace {

// The root group of text (null after an error, whose message goes to *message).
ValueGroup load(const std::string& text, std::string* message = 0) {
  zelk::host::XmlTokenReader reader;
  reader.openBuffer(text.data(), text.size(), "values.xml");
  XmlFileLoader loader(reader);
  ValueGroup root = loader.loadDocument();
  if (message != 0) *message = loader.getMessage();
  EXPECT_EQ(root.isNull(), !loader.getMessage().empty());
  if (root.isNull()) {
    // The position as data is the one the message names.
    const zelk::configuration::SourcePosition& where = loader.getPosition();
    EXPECT_EQ("values.xml", where.file);
    EXPECT_NE(std::string::npos,
              loader.getMessage().find("line " + std::to_string(where.line) + ", column " +
                                       std::to_string(where.column)))
        << loader.getMessage();
  }
  return root;
}

std::string text(const ValueGroup& group, const char* name) {
  return group.getValue(name, 0, true).asString();
}

std::string errorOf(const std::string& text) {
  std::string message;
  EXPECT_TRUE(load(text, &message).isNull()) << text;
  return message;
}

TEST(XmlFileLoaderTest, ElementsBecomeGroupsAndAttributesValues) {
  ValueGroup root = load(
      "<?xml version=\"1.0\"?>\n<!-- values -->\n"
      "<x:archive xmlns:x=\"urn:zelk\" x:level='3' name=\"a &lt;b&gt; &amp; c\">\n"
      "  <x:db x:dbname=\"main\"/><!-- two mirrors --><mirror host=\"one\"></mirror>\n"
      "  <mirror host=\"two\" ><deeper/></mirror >\n"
      "</x:archive>\n<!-- done -->\n");
  ASSERT_FALSE(root.isNull());
  // Prefixes are kept; attributes come first, in order, then child elements in document order.
  EXPECT_STREQ("x:archive", root.getName());
  ASSERT_EQ(6u, root.getItemCount());
  EXPECT_STREQ("x:level", root.getItem(1)->getName());
  EXPECT_EQ("a <b> & c", text(root, "name"));
  EXPECT_EQ("main", text(root.getValueGroup("x:db"), "x:dbname"));
  EXPECT_EQ(2u, root.getItemCount("mirror"));
  ValueGroup second = *boost::static_pointer_cast<ValueGroup>(root.getItem(5));
  EXPECT_EQ("two", text(second, "host"));
  EXPECT_FALSE(second.getValueGroup("deeper", 0, false).isNull());
}

TEST(XmlFileLoaderTest, MalformedDocumentsNameTheirPosition) {
  const char* const documents[] = {"",
                                   "just text",
                                   "<archive name=\"x\">",
                                   "<archive name=\"x",
                                   "<archive name",
                                   "<archive name=>",
                                   "<archive \"name\"=\"x\"/>",
                                   "<archive><db></archive>",
                                   "<archive>text</archive>",
                                   "<archive/><restore/>",
                                   "<archive><!-- open </archive>",
                                   "<archive a=\"1\" \xff=\"2\"/>"};
  for (const char* document : documents) {
    const std::string message = errorOf(document);
    EXPECT_NE(std::string::npos, message.find("line 1, column ")) << document << ": " << message;
  }
  EXPECT_NE(std::string::npos, errorOf("<archive>\n  <db>\n</archive>").find("line 3, column 1"));

  // Every truncation of a document is reported with a position, never read past its end.
  const std::string document =
      "<?xml version='1.0'?>\n<!-- values -->\n<root a=\"1\" b='&amp;2'>\n"
      "  <child name=\"x\"><leaf value=\"\xE2\x82\xAC\"/></child>\n  <!-- c -->\n</root>";
  EXPECT_FALSE(load(document).isNull());
  for (std::size_t length = 0; length < document.rfind('>'); ++length) {
    // Through a heap copy of exactly this length, so that a read past the end is caught.
    const std::string message = errorOf(document.substr(0, length));
    EXPECT_NE(std::string::npos, message.find(" at line ")) << length << ": " << message;
  }
}

TEST(XmlFileLoaderTest, NestingAndLengthsAreBounded) {
  auto nested = [](size_t depth, bool closed) {
    std::string document;
    for (size_t i = 0; i < depth; ++i) document += "<g a=\"1\">";
    for (size_t i = 0; closed && i < depth; ++i) document += "</g>";
    return document;
  };
  EXPECT_FALSE(load(nested(256, true)).isNull());
  EXPECT_EQ(
      0u, errorOf(nested(257, true)).find("Elements are nested deeper than 256 levels at line 1"));
  EXPECT_NE(std::string::npos, errorOf(nested(100000, false)).find("nested deeper"));

  // Texts of up to 1024 bytes (after entities are decoded) are read whole; longer ones refused.
  const std::string fits(1024, 'v');
  ValueGroup root = load("<archive name=\"" + fits + "\" " + std::string(1024, 'n') + "=\"1\"/>");
  EXPECT_EQ(fits, text(root, "name"));
  std::string wide;  // 341 three-byte characters
  for (int i = 0; i < 341; ++i) wide += "\xe2\x82\xac";
  EXPECT_FALSE(load("<a v=\"" + wide + "x\"/>").isNull());
  EXPECT_TRUE(load("<a v=\"" + wide + "xy\"/>").isNull());
  EXPECT_EQ(
      "The value of the attribute \"name\" is longer than 1024 bytes; it ends at line 2, "
      "column 5012 in \"values.xml\"",
      errorOf("<archive>\n<db name=\"" + std::string(5000, 'v') + "\"/></archive>"));
  // Past the reader's own limit the reader stops at the value's start.
  EXPECT_EQ("A value longer than 65536 bytes starts at line 2, column 10 in \"values.xml\"",
            errorOf("<archive>\n<db name=\"" + std::string(5000000, 'v') + "\"/></archive>"));
  EXPECT_EQ("A name longer than 1024 bytes ends at line 1, column 1027 in \"values.xml\"",
            errorOf("<" + std::string(1025, 'e') + "/>"));
}

}  // namespace
