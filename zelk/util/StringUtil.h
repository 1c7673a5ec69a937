// StringUtil: line breaking and word wrapping for help text, escaping for printf-style formats,
// and conversions between UTF-8, UTF-16 and UTF-32 strings.
//
//   std::ostringstream out;
//   zelk::StringUtil::wordWrap(out, description, 0, 40, 3, "/\\");
//   std::string safe = zelk::StringUtil::escapeString("100%");   // "100%%"
//
// Invalid input raises std::invalid_argument with texts such as "invalid utf-8 string".
#pragma once

#include <cstddef>
#include <locale>
#include <ostream>
#include <string>

namespace zelk {

class StringUtil {
public:
  StringUtil() = delete;

  static bool isAscii(const char* s);
  static bool skipEOL(const char*& p);
  static bool isLineBreak(char c, const std::string& breakChars, const std::locale& locale);
  static size_t distanceToNextLineBreakChar(const char* s, const std::string& breakChars,
                                            const std::locale& locale);
  static void wordWrap(std::ostream& out, const std::string& text, size_t indent, size_t width,
                       size_t hangingIndent, const std::string& breakChars);
  static std::string escapeString(const char* s);

  static std::basic_string<unsigned short> toUtf16(const char* s);
  static std::wstring toWString(const char* s);
  static std::string toUtf8(const unsigned short* s);
  static std::string toUtf8(const unsigned int* s);
  static int toUtf8(const unsigned short* s, char* dest, bool throwOnError);
  static int toUtf8(const unsigned int* s, char* dest, bool throwOnError);
};

}  // namespace zelk
