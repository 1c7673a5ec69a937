#include "zelk/util/UtfUtil.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>

namespace zelk {
namespace {

TEST(UtfUtilTest, DecodesAndEncodesUtf8) {
  unsigned int cp = 0;
  EXPECT_EQ(3, UtfUtil::getUtf8CodePoint("\xE2\x82\xAC", cp));
  EXPECT_EQ(0x20ACu, cp);
  EXPECT_EQ(-1, UtfUtil::getUtf8CodePoint("\xE2\x82", cp));  // missing continuation byte
  EXPECT_EQ(-1, UtfUtil::getUtf8CodePoint("\x80", cp));
  EXPECT_EQ(-1, UtfUtil::getUtf8CodePoint("\xF8\x80\x80\x80\x80", cp));
  EXPECT_EQ(1, UtfUtil::getUtf8CodePoint("", cp));
  EXPECT_EQ(0u, cp);
  EXPECT_EQ(0, UtfUtil::getUtf8CodePoint(nullptr, cp));
  // Overlong forms and surrogates are not checked.
  EXPECT_EQ(2, UtfUtil::getUtf8CodePoint("\xC0\xAF", cp));
  EXPECT_EQ(0x2Fu, cp);
  EXPECT_EQ(3, UtfUtil::getUtf8CodePoint("\xED\xA0\x80", cp));
  EXPECT_EQ(0xD800u, cp);

  char out[5] = {};
  EXPECT_EQ(1, UtfUtil::codePointToUtf8(0x41, out));
  EXPECT_EQ(2, UtfUtil::codePointToUtf8(0x7FF, out));
  EXPECT_EQ(3, UtfUtil::codePointToUtf8(0xFFFF, out));
  EXPECT_EQ(4, UtfUtil::codePointToUtf8(0x110000, out));
  EXPECT_EQ(4, UtfUtil::codePointToUtf8(0x1FFFFF, out));
  EXPECT_EQ(4, UtfUtil::getUtf8CodePoint(out, cp));
  EXPECT_EQ(0x1FFFFFu, cp);
  std::string untouched = "zzzz";
  EXPECT_EQ(99, UtfUtil::codePointToUtf8(0x200000, &untouched[0]));
  EXPECT_EQ("zzzz", untouched);
}

TEST(UtfUtilTest, DecodesAndEncodesUtf16) {
  unsigned int cp = 0;
  const unsigned short pair[] = {0xD83D, 0xDE00, 0};
  EXPECT_EQ(2, UtfUtil::getUtf16CodePoint(pair, cp));
  EXPECT_EQ(0x1F600u, cp);
  const unsigned short broken[] = {0xD83D, 0x0041, 0};
  EXPECT_EQ(99, UtfUtil::getUtf16CodePoint(broken, cp));
  const unsigned short atEnd[] = {0xD83D, 0};
  EXPECT_EQ(99, UtfUtil::getUtf16CodePoint(atEnd, cp));
  const unsigned short low[] = {0xDC00, 0};
  EXPECT_EQ(1, UtfUtil::getUtf16CodePoint(low, cp));
  EXPECT_EQ(0xDC00u, cp);

  unsigned short units[2] = {};
  EXPECT_EQ(1, UtfUtil::codePointToUtf16(0xD800, units));
  EXPECT_EQ(0xD800, units[0]);
  EXPECT_EQ(2, UtfUtil::codePointToUtf16(0x1F600, units));
  EXPECT_EQ(0xD83D, units[0]);
  EXPECT_EQ(0xDE00, units[1]);
  EXPECT_EQ(99, UtfUtil::codePointToUtf16(0x200000, units));
}

TEST(UtfUtilTest, ConvertsOneCodePointBetweenEncodings) {
  unsigned short units[2] = {};
  int written = -5;
  EXPECT_EQ(1, UtfUtil::utf8to16("A", units, written));
  EXPECT_EQ(1, written);
  EXPECT_EQ(4, UtfUtil::utf8to16("\xF0\x9F\x98\x80", units, written));
  EXPECT_EQ(2, written);
  // An invalid sequence is passed on as -1, not 99, and written is left alone.
  written = -5;
  EXPECT_EQ(-1, UtfUtil::utf8to16("\xE2\x82", units, written));
  EXPECT_EQ(-5, written);

  char bytes[4] = {};
  const unsigned short euro[] = {0x20AC, 0};
  EXPECT_EQ(1, UtfUtil::utf16to8(euro, bytes, written));
  EXPECT_EQ(3, written);
  const unsigned short pair[] = {0xD83D, 0xDE00, 0};
  EXPECT_EQ(2, UtfUtil::utf16to8(pair, bytes, written));
  EXPECT_EQ(4, written);
  const unsigned short broken[] = {0xD83D, 0x41, 0};
  written = -5;
  EXPECT_EQ(99, UtfUtil::utf16to8(broken, bytes, written));
  EXPECT_EQ(-5, written);
}

TEST(UtfUtilTest, MeasuresLengthsWithoutReadingPastTheEnd) {
  EXPECT_EQ(0u, UtfUtil::length16(nullptr));
  EXPECT_EQ(0u, UtfUtil::length16(""));
  EXPECT_EQ(5u, UtfUtil::length16("a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80"));
  EXPECT_EQ(4u, UtfUtil::length32("a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80"));
  EXPECT_EQ(0xFFFFFFFFu, UtfUtil::length16("a\x80"));
  EXPECT_EQ(0xFFFFFFFFu, UtfUtil::length32("\xFF"));
  // Sequences are stepped over by their lead byte, but never past the terminator.
  const std::string truncated = "ab\xF0";
  EXPECT_EQ(4u, UtfUtil::length16(truncated.c_str()));
  EXPECT_EQ(3u, UtfUtil::length32(truncated.c_str()));
  EXPECT_EQ(2u, UtfUtil::length32("\xE2zzq"));  // continuation bytes are not looked at

  const unsigned short utf16[] = {0x41, 0xE9, 0x20AC, 0xD83D, 0xDE00, 0};
  EXPECT_EQ(10u, UtfUtil::length8(utf16));
  const unsigned short trailingHigh[] = {0x41, 0xD83D, 0};
  EXPECT_EQ(5u, UtfUtil::length8(trailingHigh));
  const unsigned int utf32[] = {0x41, 0xE9, 0x20AC, 0x1F600, 0x1FFFFF, 0};
  EXPECT_EQ(14u, UtfUtil::length8(utf32));
  const unsigned int tooBig[] = {0x41, 0x200000, 0};
  EXPECT_EQ(0xFFFFFFFFu, UtfUtil::length8(tooBig));
  EXPECT_EQ(0u, UtfUtil::length8(static_cast<const unsigned int*>(nullptr)));
}

struct EncodingCase {
  std::string bytes;
  int code;
  int markLength;
  int nextByte;  // -1: end of stream
};

TEST(UtfUtilTest, DetectsByteOrderMarks) {
  const EncodingCase cases[] = {
      {"\xEF\xBB\xBF\x41", 5, 3, 0x41},
      {"\x41\x42", 0, 0, 0x41},
      {std::string("\xFF\xFE\x00\x41", 4), 4, 2, 0x00},
      {std::string("\xFF\xFE\x41\x00", 4), 4, 2, 0xFE},  // kept on purpose: back on the FE
      {std::string("\xFF\xFE\x00\x00\x41", 5), 2, 4, 0x41},
      {std::string("\x00\x00\xFE\xFF\x41", 5), 1, 4, 0x41},
      {"\xFE\xFF\x41", 3, 2, 0x41},
      {"\xEF\xBB\x41", 0, 0, 0xEF},
      {"", 0, 0, -1},
  };
  for (const EncodingCase& c : cases) {
    std::istringstream in(c.bytes);
    int markLength = -1;
    EXPECT_EQ(c.code, UtfUtil::getEncoding(in, markLength)) << c.code;
    EXPECT_EQ(c.markLength, markLength) << c.code;
    const int next = in.get();
    EXPECT_EQ(c.nextByte, next == std::char_traits<char>::eof() ? -1 : next) << c.code;
  }
  // Detection starts at the stream's position.
  std::istringstream in("xx\xEF\xBB\xBFy");
  in.get();
  in.get();
  int markLength = 0;
  EXPECT_EQ(5, UtfUtil::getEncoding(in, markLength));
  EXPECT_EQ('y', in.get());
}

}  // namespace
}  // namespace zelk
