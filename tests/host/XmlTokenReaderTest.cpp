#include "zelk/host/XmlTokenReader.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cstdint>
#include <cstring>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/TempDir.h"
#include "support/TextFiles.h"

namespace zelk::host {
namespace {

using ::testing::HasSubstr;

void open(XmlTokenReader& reader, const std::string& text) {
  reader.openBuffer(text.data(), text.size());
}

TEST(XmlTokenReaderTest, MatchesWholeNamesOnly) {
  XmlTokenReader reader;
  open(reader, "<Parameters  ><Parameter id = 'x'/>");
  EXPECT_FALSE(reader.acceptToken("<Parameter"));  // only part of a longer name
  EXPECT_FALSE(reader.acceptNameAndValue("", nullptr, 0));
  EXPECT_TRUE(reader.acceptToken("<Parameters>"));  // white space before '>'
  char id[8];
  EXPECT_TRUE(reader.acceptToken("<Parameter"));
  EXPECT_FALSE(reader.acceptToken(""));
  ASSERT_TRUE(reader.acceptNameAndValue("id", id, sizeof id));
  EXPECT_STREQ("x", id);
  EXPECT_TRUE(reader.acceptToken("/>"));
  EXPECT_TRUE(reader.atEnd());
}

TEST(XmlTokenReaderTest, DecodesValues) {
  XmlTokenReader reader;
  open(reader,
       "<a v1=\"&lt;&gt;&amp;&quot;&apos;\" v3='&#65;&#x42;&#x20AC;&#128512;&#x10FFFF;'"
       " v4=\"one\ttwo\r\nthree\nfour\" v5=\"&#10;\"/>");
  char buffer[64];
  ASSERT_TRUE(reader.acceptToken("<"));
  ASSERT_TRUE(reader.acceptToken("a"));
  ASSERT_TRUE(reader.acceptNameAndValue("v1", buffer, sizeof buffer));
  EXPECT_STREQ("<>&\"'", buffer);
  ASSERT_TRUE(reader.acceptNameAndValue("v3", buffer, sizeof buffer));
  EXPECT_STREQ("AB\xE2\x82\xAC\xF0\x9F\x98\x80\xF4\x8F\xBF\xBF", buffer);
  // Literal tabs and line ends read as spaces (CR LF as one); a reference keeps a real one.
  ASSERT_TRUE(reader.acceptNameAndValue("v4", buffer, sizeof buffer));
  EXPECT_STREQ("one two three four", buffer);
  ASSERT_TRUE(reader.acceptNameAndValue("v5", buffer, sizeof buffer));
  EXPECT_STREQ("\n", buffer);
  EXPECT_TRUE(reader.acceptToken("/>"));
  EXPECT_FALSE(reader.hasError());
}

TEST(XmlTokenReaderTest, CutsLongValuesAndNamesToTheBufferAtACharacterBoundary) {
  XmlTokenReader reader;
  // "abcd" then a 3-byte euro sign: a buffer of 6 holds "abcd" only, never half a character.
  open(reader,
       "<e a=\"abcd\xE2\x82\xAC"
       "ef\" b='x' longelementname/>");
  char buffer[16];
  std::memset(buffer, '#', sizeof buffer);
  ASSERT_TRUE(reader.acceptToken("<"));
  ASSERT_TRUE(reader.acceptValue(buffer, 6));
  EXPECT_STREQ("e", buffer);
  std::memset(buffer, '#', sizeof buffer);
  ASSERT_TRUE(reader.acceptNameAndValue("a", buffer, 6));
  EXPECT_STREQ("abcd", buffer);
  EXPECT_EQ('#', buffer[5]);  // nothing written beyond the given size
  ASSERT_TRUE(reader.acceptNameAndValue("b", buffer, 1));
  EXPECT_STREQ("", buffer);
  ASSERT_TRUE(reader.acceptValue(buffer, 5));
  EXPECT_STREQ("long", buffer);
  // A value that was cut is still consumed whole.
  EXPECT_TRUE(reader.acceptToken("/>"));
  EXPECT_TRUE(reader.atEnd());
  EXPECT_FALSE(reader.hasError());

  // A value just under the text limit is cut to the loaders' 1024 characters.
  const std::string big = "<v x=\"" + std::string(60000, 'y') + "\"/>";
  open(reader, big);
  char value[1025];
  ASSERT_TRUE(reader.acceptToken("<v"));
  ASSERT_TRUE(reader.acceptNameAndValue("x", value, sizeof value));
  EXPECT_EQ(std::string(1024, 'y'), value);
  EXPECT_TRUE(reader.acceptToken("/>"));
}

TEST(XmlTokenReaderTest, SkipsByteOrderMarkAndCountsLinesWithCrLf) {
  XmlTokenReader reader;
  open(reader, "\xEF\xBB\xBF<a>\r\n  <b/>\r\n\r\n \xC3\xA9<c/></a>");
  EXPECT_EQ(1u, reader.getLine());
  EXPECT_EQ(1u, reader.getColumn());
  ASSERT_TRUE(reader.acceptToken("<a>"));
  ASSERT_TRUE(reader.acceptToken("<b/>"));
  EXPECT_EQ("line 2, column 7", reader.describePosition());
  // Columns count characters: the two-byte é is one column.
  reader.warnUnexpected();
  EXPECT_STREQ("Unexpected \"\xC3\xA9\" at line 4, column 2", reader.getErrorText());
}

TEST(XmlTokenReaderTest, SkipsDeclarationsCommentsAndDocumentTypes) {
  XmlTokenReader reader;
  open(reader,
       "<?xml version='1.0'?><!DOCTYPE r [ <!ELEMENT r ANY> <!ATTLIST r a CDATA '>'> ]>"
       "<!-- one --><?pi data?>\n<!----><r/>");
  EXPECT_TRUE(reader.skipComments());
  EXPECT_TRUE(reader.acceptToken("<r/>"));
  open(reader, "<a/><!-- never closed - -> <b/>");
  ASSERT_TRUE(reader.acceptToken("<a/>"));
  EXPECT_FALSE(reader.skipComments());
  EXPECT_STREQ("Unterminated comment starting at line 1, column 5", reader.getErrorText());

  open(reader, "\n\n  <?xml version='1.0'");
  EXPECT_FALSE(reader.skipComments());
  EXPECT_STREQ("Unterminated processing instruction starting at line 3, column 3",
               reader.getErrorText());
}

TEST(XmlTokenReaderTest, AWarningNamesTheTokenAndPositionAndTheFirstErrorIsKept) {
  XmlTokenReader reader;
  open(reader, "<Specifications>\n  <Bogus id=\"x\"/>\n</Specifications>");
  ASSERT_TRUE(reader.acceptToken("<Specifications>"));
  EXPECT_FALSE(reader.acceptToken("<Specification"));
  reader.warnUnexpected("<Specification");
  EXPECT_TRUE(reader.hasError());
  EXPECT_STREQ("Unexpected \"<Bogus\" at line 2, column 3; expected \"<Specification\"",
               reader.getErrorText());
  // A failed reader accepts nothing and is at its end, so that every loop ends.
  EXPECT_FALSE(reader.acceptToken("<Bogus"));
  EXPECT_TRUE(reader.atEnd());

  // A loader's own text replaces the kept one; clearing it lets reading go on.
  reader.setErrorText("missing attribute: id");
  EXPECT_STREQ("missing attribute: id", reader.getErrorText());
  reader.setErrorText(nullptr);
  EXPECT_FALSE(reader.hasError());
  EXPECT_TRUE(reader.acceptToken("<Bogus"));

  open(reader, "  ");
  reader.warnUnexpected();
  EXPECT_STREQ("Unexpected end of file at line 1, column 3", reader.getErrorText());
  open(reader, "<a b='0123456789' />");
  ASSERT_TRUE(reader.acceptToken("<a"));
  ASSERT_TRUE(reader.skipPast("b="));
  reader.warnUnexpected();
  EXPECT_STREQ("Unexpected value \"'0123456789'\" at line 1, column 6", reader.getErrorText());
}

TEST(XmlTokenReaderTest, ReportsMalformedValuesWithTheirPosition) {
  struct Case {
    const char* document;
    const char* error;
  };
  const Case cases[] = {
      {"<a id=\"open", "Unterminated quoted value starting at line 1, column 7"},
      {"<a id=\"x/>\n<b id=\"y\"/>",
       "Unexpected \"<\" in a quoted value at line 2, column 1; the value starts at line 1, "
       "column 7 (is its closing quote missing?)"},
      {"<a id=\"&nbsp;\"/>", "Unknown entity \"&nbsp;\" at line 1, column 8"},
      {"<a id=\"&#0;\"/>", "Invalid character reference \"&#0;\" at line 1, column 8"},
      {"<a id=\"&#x110000;\"/>", "Invalid character reference \"&#x110000;\" at line 1, column 8"},
      {"<a id=\"&#99999999999999;\"/>", "Unterminated entity reference at line 1, column 8"},
      {"<a id=\"a & b\"/>", "Unterminated entity reference at line 1, column 10"},
      {"<a id x=\"1\"/>", "Expected \"=\" after the attribute name \"id\" at line 1, column 7"},
      {"<a id=1/>", "Expected a quoted value for the attribute \"id\" at line 1, column 7"},
  };
  for (const Case& c : cases) {
    XmlTokenReader reader;
    open(reader, c.document);
    char buffer[32];
    ASSERT_TRUE(reader.acceptToken("<a")) << c.document;
    EXPECT_FALSE(reader.acceptNameAndValue("id", buffer, sizeof buffer)) << c.document;
    EXPECT_STREQ(c.error, reader.getErrorText()) << c.document;
    EXPECT_TRUE(reader.atEnd());
  }
}

TEST(XmlTokenReaderTest, RefusesBytesThatAreNotUtf8Text) {
  struct Case {
    std::string document;
    const char* error;
  };
  const Case cases[] = {
      {std::string("<a>\n<b\0/>", 9), "Invalid character 0x00 at line 2, column 3"},
      {"<a \x01/>", "Invalid character 0x01 at line 1, column 4"},
      {"<a x='\xFF'/>", "Invalid UTF-8 byte 0xFF at line 1, column 7"},
      {"<a x='\xC0\xAF'/>", "Invalid UTF-8 byte 0xC0 at line 1, column 7"},  // overlong
      {"<a x='\xED\xA0\x80'/>",
       "Invalid UTF-8 sequence starting with byte 0xED at line 1, column 7"},
      {"<a/>\xF0\x9F", "Invalid UTF-8 sequence starting with byte 0xF0 at line 1, column 5"},
      {"\xFF\xFE<\0a\0/\0>\0", "Unsupported encoding (only UTF-8 is read) at line 1, column 1"},
  };
  for (const Case& c : cases) {
    XmlTokenReader reader;
    open(reader, c.document);
    EXPECT_TRUE(reader.hasError());
    EXPECT_STREQ(c.error, reader.getErrorText());
    EXPECT_TRUE(reader.atEnd());
    EXPECT_FALSE(reader.acceptToken("<"));
  }
}

TEST(XmlTokenReaderTest, OpensFilesAndNamesThemInErrors) {
  zelk::test::TempDir dir;
  XmlTokenReader reader;
  EXPECT_FALSE(reader.openFile(dir.file("missing.xml").c_str()));
  EXPECT_THAT(reader.getErrorText(), HasSubstr("missing.xml\" cannot be opened"));
  EXPECT_TRUE(reader.atEnd());
  EXPECT_FALSE(reader.openFile(dir.path().c_str()));  // a directory is not a document
  EXPECT_FALSE(reader.openFile("/dev/zero"));         // nor is a device
  EXPECT_FALSE(reader.openFile(nullptr));
  // A FIFO is refused before it is opened: opening it would wait for a writer. The reason is
  // kept on its own for messages with a fixed text.
  const std::string fifo = dir.file("fifo.xml");
  ASSERT_EQ(0, mkfifo(fifo.c_str(), 0600));
  alarm(60);  // fails the test instead of hanging it
  EXPECT_FALSE(reader.openFile(fifo.c_str()));
  alarm(0);
  EXPECT_EQ("it is a FIFO, not a regular file", reader.getFailureReason());
  EXPECT_EQ("File \"" + fifo + "\" cannot be opened: it is a FIFO, not a regular file",
            std::string(reader.getErrorText()));
  EXPECT_FALSE(reader.openFile(dir.file("missing.xml").c_str()));
  EXPECT_EQ("No such file or directory", reader.getFailureReason());

  const std::string path = dir.file("values.xml");
  zelk::test::writeTextFile(path, "<values>\n  <x a='1'>\n</values>\n");
  ASSERT_TRUE(reader.openFile(path.c_str()));
  EXPECT_FALSE(reader.hasError());
  EXPECT_STREQ(path.c_str(), reader.getDocumentName());
  ASSERT_TRUE(reader.skipPast("<x a='1'>"));
  reader.warnUnexpected("<");
  EXPECT_EQ("Unexpected \"</values>\" at line 3, column 1 in \"" + path + "\"; expected \"<\"",
            reader.getErrorText());
  // A reader can be used again: opening resets the error and the position.
  ASSERT_TRUE(reader.openFile(path.c_str()));
  EXPECT_TRUE(reader.acceptToken("<values>"));
}

TEST(XmlTokenReaderTest, RefusesFilesAndTextsBeyondTheLimits) {
  zelk::test::TempDir dir;
  XmlTokenReader reader;
  reader.setMaxFileSize(10);
  const std::string path = dir.file("ten.xml");
  zelk::test::writeTextFile(path, "<a b='c'/>");
  EXPECT_TRUE(reader.openFile(path.c_str()));
  zelk::test::writeTextFile(path, "<a b='cd'/>");
  EXPECT_FALSE(reader.openFile(path.c_str()));
  EXPECT_TRUE(reader.wasTooLarge());
  EXPECT_EQ(11u, reader.getRefusedSize());
  EXPECT_EQ("File \"" + path + "\" is 11 bytes long, more than the limit of 10 bytes",
            reader.getErrorText());
  // A file whose size the system does not tell is read no further than one byte past the limit.
  EXPECT_FALSE(reader.openFile("/proc/self/maps"));
  EXPECT_EQ(11u, reader.getRefusedSize());
  EXPECT_STREQ(
      "File \"/proc/self/maps\" is more than the limit of 10 bytes long (it grew while it was "
      "read)",
      reader.getErrorText());
  EXPECT_FALSE(reader.openFile(dir.file("missing.xml").c_str()));
  EXPECT_FALSE(reader.wasTooLarge());
  // The largest limit there is: no byte past it to read, and nothing overflows.
  reader.setMaxFileSize(SIZE_MAX);
  EXPECT_TRUE(reader.openFile(path.c_str()));
  EXPECT_TRUE(reader.acceptToken("<a"));
  reader.setMaxFileSize(10);

  // Texts: decoded bytes count, for values and names alike.
  reader.setMaxTextLength(8);
  char buffer[64];
  open(reader, "<a v='12345&amp;78'/>");
  ASSERT_TRUE(reader.acceptToken("<a"));
  EXPECT_TRUE(reader.acceptNameAndValue("v", buffer, sizeof buffer));
  const struct {
    const char* document;
    const char* error;
  } TOO_LONG[] = {
      {"<a v='123456789'/>", "A value longer than 8 bytes starts at line 1, column 6"},
      {"<a\nv='1234&amp;6789'/>", "A value longer than 8 bytes starts at line 2, column 3"},
      {"<abcdefghi/>", "A name longer than 8 bytes starts at line 1, column 2"},
  };
  for (const auto& c : TOO_LONG) {
    open(reader, c.document);
    EXPECT_FALSE(reader.acceptToken("<a")
                     ? reader.acceptNameAndValue("v", buffer, sizeof buffer)
                     : reader.acceptToken("<") && reader.acceptValue(buffer, sizeof buffer));
    EXPECT_STREQ(c.error, reader.getErrorText()) << c.document;
  }
}

}  // namespace
}  // namespace zelk::host
