// The zelk utilities: word wrapping, UTF conversions, string helpers, safe formatting, contracts,
// regular expressions and directory walks.
#include <filesystem>
#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <locale>
#include <map>
#include <set>
#include <sstream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "support/TempDir.h"
#include "support/TextFiles.h"
#include "zelk/host/FormattedHostException.h"
#include "zelk/util/CaseInsensitiveHash.h"
#include "zelk/util/CaseInsensitiveLess.h"
#include "zelk/util/ContractViolationException.h"
#include "zelk/util/Contracts.h"
#include "zelk/util/FileSystemVisitor.h"
#include "zelk/util/RegEx.h"
#include "zelk/util/SafeFormat.h"
#include "zelk/util/StringFunctions.h"
#include "zelk/util/StringUtil.h"
#include "zelk/util/UtfUtil.h"
#include "zelk/util/VectorWrapper.h"

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

TEST(StringUtilTest, WordWrap) {
  const struct {
    const char* text;
    size_t indent, width, hangingIndent;
    const char* breakChars;
    const char* wrapped;
  } cases[] = {
      {"hello world foo", 0, 11, 0, "", "hello world\nfoo"},
      {"hello worl", 0, 10, 0, "", "hello worl"},  // a line may be exactly as long as its width
      {"aaa bbb ccc ddd", 2, 12, 3, "", "  aaa bbb\n     ccc ddd"},
      {"abc ", 0, 3, 0, "", "abc"},  // no break after the last word, even before a dropped space
      {"abcdefghij", 0, 4, 0, "", "abcd\nefgh\nij"},  // long words are cut
      {"ab\n\n\ncd\ref", 0, 80, 2, "", "ab\n  cd\n  ef"},  // CR and LF runs end the line
      {"ab\r\n", 0, 80, 0, "", "ab"},
      {"\xC3\xA9\xC3\xA9\xC3\xA9", 0, 4, 0, "", "\xC3\xA9\xC3\xA9\n\xC3\xA9"},  // widths count bytes
      // The '/' that leaves no room for the next word moves on, unless it still fits.
      {"path/to/file", 0, 8, 0, "/", "path/to\n/file"},
      {"pat/to/file", 0, 8, 0, "/", "pat/to/\nfile"},
      // A width below the indent wraps around to an unlimited width; kept on purpose.
      {"a b c d e f", 4, 2, 0, "", "    a b c d e f"},
      // A line with no room at all still advances one character at a time.
      {"ab", 0, 1, 1, "", "a\n b"},
      {"\xE2\x82\xAC" "x", 0, 2, 0, "", "\xE2\x82\xAC\nx"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(c.wrapped, wrap(c.text, c.indent, c.width, c.hangingIndent, c.breakChars)) << c.text;
  }
  EXPECT_EQ("invalid utf-8 string", invalidArgumentText([] {
              std::ostringstream out;
              StringUtil::wordWrap(out, "ok \xFF", 0, 80, 0, "");
            }));
}

TEST(StringUtilTest, LineBreakHelpers) {
  const std::locale locale;
  EXPECT_TRUE(StringUtil::isLineBreak('\t', "", locale));
  EXPECT_TRUE(StringUtil::isLineBreak('/', "/\\", locale));
  EXPECT_FALSE(StringUtil::isLineBreak('\0', "/", locale));
  EXPECT_EQ(3u, StringUtil::distanceToNextLineBreakChar("abc def", "", locale));
  EXPECT_EQ(5u, StringUtil::distanceToNextLineBreakChar("\xC3\xA9"
                                                        "abc/d",
                                                        "/", locale));
  EXPECT_THROW(StringUtil::distanceToNextLineBreakChar("a\x80", "", locale), std::invalid_argument);

  const char* text = "\r\n\n\rx";
  EXPECT_TRUE(StringUtil::skipEOL(text));
  EXPECT_STREQ("x", text);
  EXPECT_FALSE(StringUtil::skipEOL(text));

  EXPECT_TRUE(StringUtil::isAscii("plain text\x7F"));
  EXPECT_FALSE(StringUtil::isAscii("caf\xC3\xA9"));
}

TEST(StringUtilTest, EscapeStringDoublesPercentSigns) {
  // A trailing '%' gives two '%' and one NUL, and the scan stops at the terminator.
  EXPECT_EQ(std::string("100%%\0", 6), StringUtil::escapeString("100%"));
  EXPECT_EQ("a%%b", StringUtil::escapeString("a%%b"));
  EXPECT_EQ("%%d and %%s", StringUtil::escapeString("%d and %s"));
  EXPECT_EQ(std::string("%%%%\0", 5), StringUtil::escapeString("%%%"));
  EXPECT_EQ("", StringUtil::escapeString(nullptr));
}

TEST(StringUtilTest, ConvertsBetweenUtf8Utf16AndUtf32) {
  // Round trips are checked by the strings fuzz target over its corpus; here the encodings.
  const char* text = "a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80";  // a é € 😀
  EXPECT_EQ((std::basic_string<unsigned short>{0x61, 0xE9, 0x20AC, 0xD83D, 0xDE00}),
            StringUtil::toUtf16(text));
  EXPECT_EQ(static_cast<wchar_t>(0x1F600), StringUtil::toWString(text)[3]);
  EXPECT_TRUE(StringUtil::toUtf16(nullptr).empty());
  EXPECT_TRUE(StringUtil::toWString(nullptr).empty());
  char dest[8];
  EXPECT_EQ(0, StringUtil::toUtf8(static_cast<const unsigned int*>(nullptr), dest, true));
  const unsigned short lone[] = {0xD83D, 0};
  EXPECT_EQ(-1, StringUtil::toUtf8(lone, dest, false));


  EXPECT_EQ("invalid utf-8 string", invalidArgumentText([] { StringUtil::toUtf16("a\xFF"); }));
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


TEST(UtfUtilTest, DecodesAndEncodesUtf8) {
  unsigned int cp = 0;
  EXPECT_EQ(3, UtfUtil::getUtf8CodePoint("\xE2\x82\xAC", cp));
  EXPECT_EQ(0x20ACu, cp);
  EXPECT_EQ(-1, UtfUtil::getUtf8CodePoint("\xE2\x82", cp));  // missing continuation byte
  EXPECT_EQ(-1, UtfUtil::getUtf8CodePoint("\xF8\x80\x80\x80\x80", cp));
  EXPECT_EQ(0, UtfUtil::getUtf8CodePoint(nullptr, cp));
  // Overlong forms and surrogates are not checked.
  EXPECT_EQ(3, UtfUtil::getUtf8CodePoint("\xED\xA0\x80", cp));
  EXPECT_EQ(0xD800u, cp);

  char out[5] = {};
  EXPECT_EQ(2, UtfUtil::codePointToUtf8(0x7FF, out));
  EXPECT_EQ(3, UtfUtil::codePointToUtf8(0x800, out));
  EXPECT_EQ(4, UtfUtil::codePointToUtf8(0x1FFFFF, out));
  EXPECT_EQ(4, UtfUtil::getUtf8CodePoint(out, cp));
  EXPECT_EQ(0x1FFFFFu, cp);
  EXPECT_EQ(99, UtfUtil::codePointToUtf8(0x200000, out));
}

TEST(UtfUtilTest, DecodesAndEncodesUtf16) {
  unsigned int cp = 0;
  const unsigned short pair[] = {0xD83D, 0xDE00, 0};
  EXPECT_EQ(2, UtfUtil::getUtf16CodePoint(pair, cp));
  EXPECT_EQ(0x1F600u, cp);
  const unsigned short broken[] = {0xD83D, 0x0041, 0};
  EXPECT_EQ(99, UtfUtil::getUtf16CodePoint(broken, cp));

  unsigned short units[2] = {};
  EXPECT_EQ(2, UtfUtil::codePointToUtf16(0x1F600, units));
  EXPECT_EQ(0xDE00, units[1]);
  EXPECT_EQ(99, UtfUtil::codePointToUtf16(0x200000, units));
}

TEST(UtfUtilTest, ConvertsOneCodePointBetweenEncodings) {
  unsigned short units[2] = {};
  int written = -5;
  EXPECT_EQ(1, UtfUtil::utf8to16("A", units, written));
  EXPECT_EQ(4, UtfUtil::utf8to16("\xF0\x9F\x98\x80", units, written));
  EXPECT_EQ(2, written);
  // An invalid sequence is passed on as -1, not 99, and written is left alone.
  EXPECT_EQ(-1, UtfUtil::utf8to16("\xE2\x82", units, written));
  EXPECT_EQ(2, written);
}

TEST(UtfUtilTest, MeasuresLengthsWithoutReadingPastTheEnd) {
  EXPECT_EQ(0u, UtfUtil::length16(nullptr));
  EXPECT_EQ(0u, UtfUtil::length8(static_cast<const unsigned int*>(nullptr)));
  EXPECT_EQ(5u, UtfUtil::length16("a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80"));
  EXPECT_EQ(4u, UtfUtil::length32("a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80"));
  EXPECT_EQ(0xFFFFFFFFu, UtfUtil::length32("\xFF"));
  // Sequences are stepped over by their lead byte, but never past the terminator.
  const std::string truncated = "ab\xF0";
  EXPECT_EQ(4u, UtfUtil::length16(truncated.c_str()));
  EXPECT_EQ(3u, UtfUtil::length32(truncated.c_str()));
  EXPECT_EQ(2u, UtfUtil::length32("\xE2zzq"));  // continuation bytes are not looked at

  const unsigned int utf32[] = {0x41, 0xE9, 0x20AC, 0x1F600, 0x1FFFFF, 0};
  EXPECT_EQ(14u, UtfUtil::length8(utf32));
  const unsigned int tooBig[] = {0x41, 0x200000, 0};
  EXPECT_EQ(0xFFFFFFFFu, UtfUtil::length8(tooBig));
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
}


TEST(StringFunctionsTest, TrimHasEndingAndAppendSuffix) {
  EXPECT_EQ("a b", trim("  a b \t\n"));
  EXPECT_EQ("", trim("   "));
  EXPECT_EQ("x", trim("x"));
  EXPECT_TRUE(hasEnding("/etc/zelk/", "/"));
  EXPECT_FALSE(hasEnding("c", "abc"));
  EXPECT_FALSE(hasEnding("abC", "bc"));
  EXPECT_EQ("/etc/", appendSuffix("/etc", "/"));
  EXPECT_EQ("/etc/", appendSuffix("/etc/", "/"));
}

TEST(StringFunctionsTest, CloneStringAndToVector) {
  EXPECT_EQ(nullptr, cloneString(nullptr));
  const char* original = "copy me";
  char* copy = cloneString(original);
  ASSERT_NE(nullptr, copy);
  EXPECT_NE(original, copy);
  EXPECT_STREQ(original, copy);
  delete[] copy;

  const char* items[] = {"tool", "-a", "", "v"};
  EXPECT_EQ((std::vector<std::string>{"tool", "-a", "", "v"}), toVector(4, items));
  EXPECT_TRUE(toVector(0, nullptr).empty());
}

TEST(StringFunctionsTest, CaseInsensitiveLessMakesIdsThatDifferInCaseOneKey) {
  const CaseInsensitiveLess less;
  EXPECT_TRUE(less("ab", "ABC"));
  std::map<std::string, int, CaseInsensitiveLess> cache;
  cache["Backup"] = 1;
  cache["BACKUP"] = 2;
  EXPECT_EQ(1u, cache.size());
  EXPECT_EQ(2, cache.at("backup"));
}

TEST(StringFunctionsTest, VectorWrapperLendsTheVectorsOwnCharacters) {
  const std::vector<std::string> arguments = {"tool", "-verbose", ""};
  const VectorWrapper wrapped(arguments);
  ASSERT_EQ(3u, wrapped.size());
  EXPECT_EQ(arguments[1].c_str(), wrapped[1]);
  EXPECT_EQ(nullptr, wrapped.data()[3]);
}


TEST(SafeFormatTest, FormatWithoutArgumentsReadsNothing) {
  EXPECT_EQ("100% of %s", formatWithoutArguments("100%% of %s"));
  EXPECT_EQ("%s%s%s%n", formatWithoutArguments("%s%s%s%n"));
  EXPECT_EQ("%%", formatWithoutArguments("%%%"));
  EXPECT_EQ("", formatWithoutArguments(nullptr));
  const std::string longText(6000, 'a');
  EXPECT_EQ(kFormatBufferSize - 1, formatWithoutArguments(longText.c_str()).size());
}

TEST(SafeFormatTest, FormatMessageIsBoundedToTheBuffer) {
  EXPECT_EQ(std::string(4095, 'b'), formatMessage("%s", std::string(5000, 'b').c_str()));
  // A user text passed as an argument is copied as it is.
  EXPECT_EQ("flag %s%s%s%n", formatMessage("flag %s", "%s%s%s%n"));
}


const unsigned int CHECK_LINE = __LINE__ + 1;
void checkPositive(int value) { ZELK_CONTRACT(value > 0); }

void checkNamed(const char* name) { ZELK_CONTRACT_MESSAGE(name && *name, "Must provide a name"); }

TEST(ContractsTest, AFailedCheckThrowsTheConditionAsWrittenWithItsSource) {
  checkPositive(1);
  checkNamed("x");
  try {
    checkPositive(0);
    FAIL() << "no exception";
  } catch (const ContractViolationException& e) {
    EXPECT_STREQ("Contract violation: \"value > 0\"", e.what());
    // Outside the library's folders the tag is the path without its extension.
    const std::string file = e.getFile();
    EXPECT_EQ("tests/util/UtilTest", file.substr(file.size() - 19));
    EXPECT_EQ(CHECK_LINE, e.getLine());
  }
  try {
    checkNamed("");
    FAIL() << "no exception";
  } catch (const std::exception& e) {
    EXPECT_STREQ("Must provide a name", e.what());
  }
}

TEST(ContractsTest, SourceTagsAreRelativeToTheLibraryRoots) {
  using zelk::impl::contractSourceTag;
  EXPECT_EQ("impl/ObjectMap", contractSourceTag("/src/zelk/configuration/impl/ObjectMap.h"));
  EXPECT_EQ("dir.d/File", contractSourceTag("dir.d/File"));
  EXPECT_EQ("", contractSourceTag(nullptr));
}

TEST(ContractsTest, TheExceptionOwnsCopiesOfItsTexts) {
  std::string message = "Contract violation: \"mImpl\"";
  std::string file = "impl/ValueGroupState";
  ContractViolationException original(message.c_str(), file.c_str(), 42);
  message.assign(message.size(), 'x');
  file.assign(file.size(), 'y');
  EXPECT_STREQ("impl/ValueGroupState", original.getFile());

  ContractViolationException other("other", "elsewhere", 1);
  other = original;
  EXPECT_EQ(42u, other.getLine());
  other = other;
  EXPECT_STREQ("impl/ValueGroupState", other.getFile());

  EXPECT_EQ(nullptr, ContractViolationException(nullptr, nullptr, 0).what());
}


using ::testing::HasSubstr;
using ::testing::StartsWith;

// The object-identifier pattern that conversions use: four numbers joined by hyphens.
const char* const OID_PATTERN = "^(\\d+)-(\\d+)-(\\d+)-(\\d+)$";

TEST(RegExTest, MatchesAndCapturesAnObjectIdentifier) {
  const RegEx oid(OID_PATTERN, true, false);
  const char* subject = "12-0-345-6";
  RegExMatch m[5];
  ASSERT_TRUE(oid.matches(subject, m, 5));
  EXPECT_EQ(0, m[0].start);
  EXPECT_EQ(10, m[0].end);
  EXPECT_EQ("12", RegEx::extractMatch(subject, m[1]));
  EXPECT_EQ("6", RegEx::extractMatch(subject, m[4]));
  EXPECT_FALSE(oid.match("12-0-345"));
  EXPECT_FALSE(oid.match("12-0-345-6x"));
}

TEST(RegExTest, FillsUnusedEntriesAndLeavesThemAloneOnNoMatch) {
  const RegEx twoGroups("(a+)(b)?", false, false);
  RegExMatch m[5];
  ASSERT_TRUE(twoGroups.matches("xaac", m, 5));
  EXPECT_EQ("aa", RegEx::extractMatch("xaac", m[1]));
  // The optional group did not take part; the entries beyond the groups are not set either.
  EXPECT_EQ(-1, m[2].start);
  EXPECT_EQ(-1, m[4].end);
  EXPECT_EQ("", RegEx::extractMatch("xaac", m[2]));

  RegExMatch untouched[2];
  untouched[0] = {7, 8};
  untouched[1] = {9, 10};
  EXPECT_FALSE(twoGroups.matches("xyz", untouched, 2));
  EXPECT_EQ(7, untouched[0].start);
  EXPECT_EQ(10, untouched[1].end);
}

TEST(RegExTest, ManyEntriesGiveTheSameResultsAsFew) {
  const RegEx pattern("(\\w)(\\w)(\\w)(\\w)(\\w)(\\w)(\\w)(\\w)(\\w)(\\w)(\\w)(\\w)", false, false);
  const char* subject = "abcdefghijklmn";
  RegExMatch few[10];
  RegExMatch many[16];
  ASSERT_TRUE(pattern.matches(subject, few, 10));
  ASSERT_TRUE(pattern.matches(subject, many, 16));
  EXPECT_EQ(few[9].start, many[9].start);
  EXPECT_EQ("l", RegEx::extractMatch(subject, many[12]));
  EXPECT_EQ(-1, many[15].end);
  // With fewer entries than groups, every entry given is filled.
  RegExMatch three[3];
  ASSERT_TRUE(pattern.matches(subject, three, 3));
  EXPECT_EQ("b", RegEx::extractMatch(subject, three[2]));
  // With no entries at all there is nothing to confirm the match with.
  RegExMatch none[1];
  EXPECT_FALSE(pattern.matches(subject, none, 0));
}

TEST(RegExTest, CaselessAndUtf8Options) {
  EXPECT_TRUE(RegEx("^abc$", true, false).match("ABC"));
  // In UTF-8 mode '.' takes a whole character.
  EXPECT_TRUE(RegEx("^.$", false, true).match("\xC3\xA9"));
  EXPECT_FALSE(RegEx("^.$", false, false).match("\xC3\xA9"));
}

TEST(RegExTest, ABadPatternThrowsTheHostsFormattedException) {
  try {
    RegEx broken("(ab", false, false);
    FAIL() << "no exception";
  } catch (const zelk::host::FormattedHostException& e) {
    EXPECT_THAT(e.what(), StartsWith("REGEX ERROR #"));
    EXPECT_THAT(e.what(), HasSubstr(": missing ) at offset 3"));
  }
  // A percent sign in the pattern is not read as a format.
  try {
    RegEx broken("%s%n(", false, false);
    FAIL() << "no exception";
  } catch (const zelk::host::FormattedHostException& e) {
    EXPECT_THAT(e.what(), StartsWith("REGEX ERROR #"));
  }
}


class Recorder : public FileSystemVisitor {
public:
  bool visitDirectory(const char* path) override {
    directories.insert(path);
    return path != stopAtDirectory;
  }
  bool visitFile(const char* path) override {
    files.insert(path);
    if (path == throwAtFile) {
      throw std::runtime_error("visitor failed");
    }
    return path != stopAtFile;
  }

  std::set<std::string> directories;
  std::set<std::string> files;
  std::string stopAtDirectory;
  std::string stopAtFile;
  std::string throwAtFile;
};

class FileSystemVisitorTest : public ::testing::Test {
protected:
  void SetUp() override {
    zelk::test::writeTextFile(dir.file("a.crg"), "");
    zelk::test::writeTextFile(dir.file("B.CRG"), "");
    dir.makeDirectory("sub/deeper");
    zelk::test::writeTextFile(dir.file("sub/c.crg"), "");
    zelk::test::writeTextFile(dir.file("sub/deeper/d.txt"), "");
  }

  zelk::test::TempDir dir;
};

TEST_F(FileSystemVisitorTest, FlatScansSeeFilesOnlyRecursiveScansEveryLevel) {
  Recorder flat;
  // Kept on purpose: a complete non-recursive scan returns false.
  EXPECT_FALSE(flat.scan(dir.path().c_str(), false));
  EXPECT_EQ((std::set<std::string>{dir.file("B.CRG"), dir.file("a.crg")}), flat.files);
  EXPECT_TRUE(flat.directories.empty());
  Recorder recorder;
  // A trailing '/' on the directory is not doubled.
  EXPECT_TRUE(recorder.scan((dir.path() + "/").c_str(), true));
  EXPECT_EQ((std::set<std::string>{dir.file("B.CRG"), dir.file("a.crg"), dir.file("sub/c.crg"),
                                   dir.file("sub/deeper/d.txt")}),
            recorder.files);
  EXPECT_EQ((std::set<std::string>{dir.file("sub"), dir.file("sub/deeper")}), recorder.directories);
}

TEST_F(FileSystemVisitorTest, ACallbackReturningFalseStopsTheWalk) {
  Recorder byFile;
  byFile.stopAtFile = dir.file("sub/deeper/d.txt");
  EXPECT_FALSE(byFile.scan(dir.path().c_str(), true));
  EXPECT_TRUE(byFile.files.count(byFile.stopAtFile));

  Recorder byDirectory;
  byDirectory.stopAtDirectory = dir.file("sub");
  EXPECT_FALSE(byDirectory.scan(dir.path().c_str(), true));
  EXPECT_EQ(0u, byDirectory.files.count(dir.file("sub/c.crg")));  // not entered
  // A missing directory returns the recursive flag.
  EXPECT_TRUE(byFile.scan(dir.file("missing").c_str(), true));
  EXPECT_FALSE(byFile.scan(dir.file("missing").c_str(), false));
}

TEST_F(FileSystemVisitorTest, AThrowingCallbackPropagatesAndLaterScansStillWork) {
  Recorder recorder;
  recorder.throwAtFile = dir.file("sub/c.crg");
  EXPECT_THROW(recorder.scan(dir.path().c_str(), true), std::runtime_error);
  recorder.throwAtFile.clear();
  EXPECT_TRUE(recorder.scan(dir.path().c_str(), true));
}

TEST_F(FileSystemVisitorTest, LoopsOfSymbolicLinksEndAtTheDepthBound) {
  std::filesystem::create_directory_symlink(dir.file("sub"), dir.file("sub/deeper/loop"));
  Recorder recorder;
  EXPECT_TRUE(recorder.scan(dir.path().c_str(), true));
  EXPECT_LE(recorder.directories.size(), 2u * FileSystemVisitor::MAX_DEPTH + 2);
  EXPECT_GT(recorder.directories.size(), 3u);
}

TEST(FileSystemVisitorEndsWithTest, ComparesTheExactSuffixAndKeepsItsContracts) {
  EXPECT_TRUE(FileSystemVisitor::endsWith("/etc/zelk.crg", ".crg"));
  EXPECT_FALSE(FileSystemVisitor::endsWith("/etc/zelk.CRG", ".crg"));
  EXPECT_FALSE(FileSystemVisitor::endsWith("crg", ".crg"));
  const std::function<void()> contracts[] = {
      [] { FileSystemVisitor().scan("", false); },
      [] { FileSystemVisitor::endsWith(nullptr, "x"); },
      [] { FileSystemVisitor::endsWith("x", nullptr); },
      [] { RegEx("a", false, false).matches("a", nullptr, 1); },
  };
  for (const auto& call : contracts) {
    EXPECT_THROW(call(), ContractViolationException);
  }
  EXPECT_TRUE(RegEx(std::string("^a$"), false, false).match("a"));
}

// Every byte at every position of names of each length up to past two 8-byte words, against a
// byte-at-a-time reference: equal exactly when equal after folding 'A'..'Z' only, and hashed
// alike exactly when equal but for bit 0x20 of a byte (so a byte the hash leaves out, in any way
// of reading a word's tail, is caught).
TEST(CaseInsensitiveHashTest, AgreesWithByteWiseFolding) {
  auto fold = [](unsigned char c) { return c >= 'A' && c <= 'Z' ? c + 32 : c; };
  for (size_t length : {1, 2, 3, 4, 5, 6, 7, 8, 9, 12, 15, 17}) {
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
          ASSERT_EQ(caseInsensitiveHash(a.c_str()) == caseInsensitiveHash(b.c_str()),
                    (c | 0x20) == (d | 0x20))
              << c << ' ' << d << ' ' << at;
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
