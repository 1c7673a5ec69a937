#include "zelk/util/StringUtil.h"

#include <gtest/gtest.h>

#include <locale>
#include <sstream>
#include <stdexcept>
#include <string>

#include "zelk/util/CaseInsensitiveHash.h"

namespace zelk {
namespace {

std::string wrap(const std::string& text, size_t indent, size_t width, size_t hangingIndent,
                 const std::string& breakChars = "") {
  std::ostringstream out;
  StringUtil::wordWrap(out, text, indent, width, hangingIndent, breakChars);
  return out.str();
}

std::string invalidArgumentText(void (*call)()) {
  try {
    call();
  } catch (const std::invalid_argument& e) {
    return e.what();
  }
  return "(no exception)";
}

TEST(StringUtilTest, WordWrapBreaksBetweenWordsWithIndents) {
  EXPECT_EQ("hello world\nfoo", wrap("hello world foo", 0, 11, 0));
  // A line may be exactly as long as its width.
  EXPECT_EQ("hello worl", wrap("hello worl", 0, 10, 0));
  EXPECT_EQ("  aaa bbb\n     ccc ddd", wrap("aaa bbb ccc ddd", 2, 12, 3));
  EXPECT_EQ("", wrap("", 4, 20, 2));
  EXPECT_EQ("short", wrap("short", 0, 80, 8));
  // No break is added after the last word, even when a dropped space ends the text.
  EXPECT_EQ("abc", wrap("abc ", 0, 3, 0));
}

TEST(StringUtilTest, WordWrapCutsLongWordsAndHonoursLineEnds) {
  EXPECT_EQ("abcd\nefgh\nij", wrap("abcdefghij", 0, 4, 0));
  EXPECT_EQ("  abcd\n    ef", wrap("abcdef", 2, 6, 2));
  // CR and LF runs end the line and are not written.
  EXPECT_EQ("ab\ncd", wrap("ab\r\ncd", 0, 80, 0));
  EXPECT_EQ("ab\n  cd\n  ef", wrap("ab\n\n\ncd\ref", 0, 80, 2));
  EXPECT_EQ("ab", wrap("ab\r\n", 0, 80, 0));
  // Widths count bytes: each é is two.
  EXPECT_EQ("\xC3\xA9\xC3\xA9\n\xC3\xA9", wrap("\xC3\xA9\xC3\xA9\xC3\xA9", 0, 4, 0));
}

TEST(StringUtilTest, WordWrapBreaksAfterBreakCharacters) {
  // The '/' that does not leave room for the next word moves to the next line...
  EXPECT_EQ("path/to\n/file", wrap("path/to/file", 0, 8, 0, "/"));
  // ...unless it still fits on this one.
  EXPECT_EQ("pat/to/\nfile", wrap("pat/to/file", 0, 8, 0, "/"));
  EXPECT_EQ("path/to/file", wrap("path/to/file", 0, 80, 0, "/"));
}

TEST(StringUtilTest, WordWrapWithDegenerateWidths) {
  // A width below the indent wraps around to an unlimited width; kept on purpose.
  EXPECT_EQ("    a b c d e f", wrap("a b c d e f", 4, 2, 0));
  EXPECT_EQ(" a b c", wrap("a b c", 1, 0, 5));
  // A line with no room at all still advances one character at a time.
  EXPECT_EQ("a\n b", wrap("ab", 0, 1, 1));
  EXPECT_EQ("\xE2\x82\xAC\nx", wrap("\xE2\x82\xAC"
                                    "x",
                                    0, 2, 0));
  EXPECT_EQ("invalid utf-8 string", invalidArgumentText([] {
              std::ostringstream out;
              StringUtil::wordWrap(out, "ok \xFF", 0, 80, 0, "");
            }));
  EXPECT_EQ("invalid utf-8 string", invalidArgumentText([] {
              std::ostringstream out;
              StringUtil::wordWrap(out, "a \xE2\x82", 0, 80, 0, "");
            }));
}

TEST(StringUtilTest, LineBreakHelpers) {
  const std::locale locale;
  EXPECT_TRUE(StringUtil::isLineBreak(' ', "", locale));
  EXPECT_TRUE(StringUtil::isLineBreak('\t', "", locale));
  EXPECT_TRUE(StringUtil::isLineBreak('/', "/\\", locale));
  EXPECT_FALSE(StringUtil::isLineBreak('a', "/\\", locale));
  EXPECT_FALSE(StringUtil::isLineBreak('\0', "/", locale));
  EXPECT_EQ(3u, StringUtil::distanceToNextLineBreakChar("abc def", "", locale));
  EXPECT_EQ(5u, StringUtil::distanceToNextLineBreakChar("\xC3\xA9"
                                                        "abc/d",
                                                        "/", locale));
  EXPECT_EQ(4u, StringUtil::distanceToNextLineBreakChar("abcd", "", locale));
  EXPECT_EQ(0u, StringUtil::distanceToNextLineBreakChar("", "", locale));
  EXPECT_THROW(StringUtil::distanceToNextLineBreakChar("a\x80", "", locale), std::invalid_argument);

  const char* text = "\r\n\n\rx";
  EXPECT_TRUE(StringUtil::skipEOL(text));
  EXPECT_STREQ("x", text);
  EXPECT_FALSE(StringUtil::skipEOL(text));
  EXPECT_STREQ("x", text);

  EXPECT_TRUE(StringUtil::isAscii(""));
  EXPECT_TRUE(StringUtil::isAscii("plain text\x7F"));
  EXPECT_FALSE(StringUtil::isAscii("caf\xC3\xA9"));
}

TEST(StringUtilTest, EscapeStringDoublesPercentSigns) {
  EXPECT_EQ("100%%", StringUtil::escapeString("100%").substr(0, 5));
  // A trailing '%' gives two '%' and one NUL, and the scan stops at the terminator.
  EXPECT_EQ(std::string("100%%\0", 6), StringUtil::escapeString("100%"));
  EXPECT_EQ("a%%b", StringUtil::escapeString("a%%b"));
  EXPECT_EQ("%%d and %%s", StringUtil::escapeString("%d and %s"));
  EXPECT_EQ("%%%%", StringUtil::escapeString("%%%%"));
  EXPECT_EQ(std::string("%%%%\0", 5), StringUtil::escapeString("%%%"));
  EXPECT_EQ("", StringUtil::escapeString(""));
  EXPECT_EQ("", StringUtil::escapeString(nullptr));
}

TEST(StringUtilTest, ConvertsBetweenUtf8Utf16AndUtf32) {
  const char* text = "a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80";  // a é € 😀
  const std::basic_string<unsigned short> utf16 = StringUtil::toUtf16(text);
  EXPECT_EQ((std::basic_string<unsigned short>{0x61, 0xE9, 0x20AC, 0xD83D, 0xDE00}), utf16);
  const std::wstring wide = StringUtil::toWString(text);
  EXPECT_EQ((std::wstring{L'a', static_cast<wchar_t>(0xE9), static_cast<wchar_t>(0x20AC),
                          static_cast<wchar_t>(0x1F600)}),
            wide);
  EXPECT_EQ(text, StringUtil::toUtf8(utf16.c_str()));
  std::basic_string<unsigned int> utf32(wide.begin(), wide.end());
  EXPECT_EQ(text, StringUtil::toUtf8(utf32.c_str()));

  EXPECT_TRUE(StringUtil::toUtf16(nullptr).empty());
  EXPECT_TRUE(StringUtil::toUtf16("").empty());
  EXPECT_TRUE(StringUtil::toWString(nullptr).empty());
  EXPECT_EQ("", StringUtil::toUtf8(static_cast<const unsigned short*>(nullptr)));

  EXPECT_EQ("invalid utf-8 string", invalidArgumentText([] { StringUtil::toUtf16("a\xFF"); }));
  EXPECT_EQ("invalid utf-8 string", invalidArgumentText([] { StringUtil::toUtf16("a\xE2\x82"); }));
  EXPECT_EQ("invalid utf-8 string", invalidArgumentText([] { StringUtil::toWString("\xF0\x9F"); }));
  EXPECT_EQ("Not a UTF-16 string", invalidArgumentText([] {
              const unsigned short broken[] = {0x41, 0xD83D, 0x41, 0};
              StringUtil::toUtf8(broken);
            }));
  EXPECT_EQ("Not a UTF-32 string", invalidArgumentText([] {
              const unsigned int broken[] = {0x41, 0x200000, 0};
              StringUtil::toUtf8(broken);
            }));
}

TEST(StringUtilTest, ConvertsSingleCharactersIntoADestination) {
  char dest[8];
  const unsigned short euro16[] = {0x20AC, 0x41, 0};
  EXPECT_EQ(3, StringUtil::toUtf8(euro16, dest, true));
  EXPECT_STREQ("\xE2\x82\xAC", dest);
  const unsigned int smile32[] = {0x1F600, 0};
  EXPECT_EQ(4, StringUtil::toUtf8(smile32, dest, true));
  EXPECT_STREQ("\xF0\x9F\x98\x80", dest);
  EXPECT_EQ(0, StringUtil::toUtf8(static_cast<const unsigned int*>(nullptr), dest, true));
  EXPECT_STREQ("", dest);

  const unsigned short lone[] = {0xD83D, 0};
  EXPECT_EQ(-1, StringUtil::toUtf8(lone, dest, false));
  // The UTF-32 wording is used for a UTF-16 source too.
  EXPECT_EQ("Not a UTF-32 string", invalidArgumentText([] {
              char d[8];
              const unsigned short s[] = {0xD83D, 0};
              StringUtil::toUtf8(s, d, true);
            }));
  const unsigned int tooBig[] = {0x200000, 0};
  EXPECT_EQ(-1, StringUtil::toUtf8(tooBig, dest, false));
  EXPECT_EQ("Must provide a destination", invalidArgumentText([] {
              const unsigned int s[] = {0x41, 0};
              StringUtil::toUtf8(s, nullptr, false);
            }));
}

}  // namespace
}  // namespace zelk

namespace zelk {
namespace {

// Every byte at every position of names around the 8-byte word size, against a byte-at-a-time
// reference: equal (and hashed alike) exactly when equal after folding 'A'..'Z' only.
TEST(CaseInsensitiveHashTest, AgreesWithByteWiseFolding) {
  auto fold = [](unsigned char c) { return c >= 'A' && c <= 'Z' ? c + 32 : c; };
  for (size_t length : {1, 7, 8, 9, 17}) {
    for (size_t at = 0; at < length; ++at) {
      for (int c = 1; c < 256; ++c) {
        std::string a(length, 'q');
        std::string b = a;
        a[at] = static_cast<char>(c);
        for (int d : {c, static_cast<int>(fold(static_cast<unsigned char>(c))), c ^ 0x20, c ^ 0x80}) {
          if (d == 0 || d > 255) continue;
          b[at] = static_cast<char>(d);
          const bool same = fold(static_cast<unsigned char>(c)) == fold(static_cast<unsigned char>(d));
          ASSERT_EQ(caseInsensitiveEqual(a.c_str(), b.c_str()), same) << c << ' ' << d << ' ' << at;
          if (same) {
            ASSERT_EQ(caseInsensitiveHash(a.c_str()), caseInsensitiveHash(b.c_str()));
          }
        }
      }
    }
  }
  EXPECT_FALSE(caseInsensitiveEqual("name", "names"));
  EXPECT_FALSE(caseInsensitiveEqual("name", 0));
  EXPECT_TRUE(caseInsensitiveEqual(0, 0));
  EXPECT_NE(caseInsensitiveHash("retries"), caseInsensitiveHash("retriez"));
}

}  // namespace
}  // namespace zelk
