// The string and UTF functions, with their properties: well-formed UTF-8 survives the trips
// through UTF-16 and UTF-32 unchanged and the lengths agree; a sequence cut short or starting with
// a continuation byte is reported; trimmed text has no blanks
// at its ends; escaped text is safe as a format; no wrapped line is wider than the width.
#include <cctype>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <locale>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "FuzzSupport.h"
#include "zelk/util/SafeFormat.h"
#include "zelk/util/StringFunctions.h"
#include "zelk/util/StringUtil.h"
#include "zelk/util/UtfUtil.h"

using zelk::StringUtil;
using zelk::UtfUtil;

namespace {

// Well-formed UTF-8 as the standard defines it: shortest forms, no surrogates, at most U+10FFFF.
bool isWellFormed(const unsigned char* s, size_t n) {
  size_t i = 0;
  while (i < n) {
    const unsigned char c = s[i];
    size_t length;
    unsigned int cp;
    if (c < 0x80) {
      ++i;
      continue;
    } else if (c >= 0xC2 && c <= 0xDF) {
      length = 2;
      cp = c & 0x1F;
    } else if (c >= 0xE0 && c <= 0xEF) {
      length = 3;
      cp = c & 0x0F;
    } else if (c >= 0xF0 && c <= 0xF4) {
      length = 4;
      cp = c & 0x07;
    } else {
      return false;
    }
    if (n - i < length) return false;
    for (size_t k = 1; k < length; ++k) {
      if ((s[i + k] & 0xC0) != 0x80) return false;
      cp = (cp << 6) | (s[i + k] & 0x3F);
    }
    if ((length == 3 && cp < 0x800) || (length == 4 && cp < 0x10000) || cp > 0x10FFFF ||
        (cp >= 0xD800 && cp <= 0xDFFF)) {
      return false;
    }
    i += length;
  }
  return true;
}

// A lead byte that is a continuation byte, or a lead byte followed by too few continuation bytes:
// malformed in every reading, so the converters must report it.
bool isStructurallyBroken(const unsigned char* s, size_t n) {
  size_t i = 0;
  while (i < n) {
    const unsigned char c = s[i];
    size_t length = 1;
    if (c >= 0x80 && c <= 0xBF) return true;
    if (c >= 0xC0 && c <= 0xDF) length = 2;
    else if (c >= 0xE0 && c <= 0xEF) length = 3;
    else if (c >= 0xF0 && c <= 0xF7) length = 4;
    else if (c >= 0xF8) return false;  // beyond the forms the decoder knows: either answer is fine
    for (size_t k = 1; k < length; ++k) {
      if (i + k >= n || (s[i + k] & 0xC0) != 0x80) return true;
    }
    i += length;
  }
  return false;
}

void checkUtf8(const std::string& whole) {
  // The functions take C strings: the text ends at the first NUL.
  const std::string text(whole.c_str());
  const unsigned char* bytes = reinterpret_cast<const unsigned char*>(text.c_str());
  const bool wellFormed = isWellFormed(bytes, text.size());
  const bool broken = isStructurallyBroken(bytes, text.size());
  // An exact-size copy, so that reading past the terminator is caught.
  std::vector<char> exact(text.c_str(), text.c_str() + text.size() + 1);
  bool reported = false;
  try {
    const std::basic_string<unsigned short> utf16 = StringUtil::toUtf16(exact.data());
    const std::wstring utf32 = StringUtil::toWString(exact.data());
    if (wellFormed) {
      ZELK_FUZZ_CHECK(StringUtil::toUtf8(utf16.c_str()) == text);
      std::basic_string<unsigned int> units(utf32.begin(), utf32.end());
      ZELK_FUZZ_CHECK(StringUtil::toUtf8(units.c_str()) == text);
      ZELK_FUZZ_CHECK(UtfUtil::length16(exact.data()) == utf16.size());
      ZELK_FUZZ_CHECK(UtfUtil::length32(exact.data()) == utf32.size());
      ZELK_FUZZ_CHECK(UtfUtil::length8(utf16.c_str()) == text.size());
      ZELK_FUZZ_CHECK(UtfUtil::length8(units.c_str()) == text.size());
    }
  } catch (const std::invalid_argument&) {
    reported = true;
  }
  ZELK_FUZZ_CHECK(!(wellFormed && reported));
  ZELK_FUZZ_CHECK(!(broken && !reported));
  UtfUtil::length16(exact.data());
  UtfUtil::length32(exact.data());
}

void checkUtf16And32(const uint8_t* data, size_t size) {
  std::vector<unsigned short> utf16;
  for (size_t i = 0; i + 1 < size; i += 2) {
    utf16.push_back(static_cast<unsigned short>(data[i] | (data[i + 1] << 8)));
  }
  utf16.push_back(0);
  try {
    const std::string utf8 = StringUtil::toUtf8(utf16.data());
    ZELK_FUZZ_CHECK(UtfUtil::length8(utf16.data()) == utf8.size());
  } catch (const std::invalid_argument&) {
  }
  std::vector<char> dest(4 * utf16.size() + 1);
  StringUtil::toUtf8(utf16.data(), dest.data(), false);
  UtfUtil::length8(utf16.data());

  std::vector<unsigned int> utf32;
  for (size_t i = 0; i + 3 < size; i += 4) {
    utf32.push_back(static_cast<unsigned int>(data[i] | (data[i + 1] << 8) | (data[i + 2] << 16) |
                                              (static_cast<unsigned int>(data[i + 3]) << 24)));
  }
  utf32.push_back(0);
  try {
    StringUtil::toUtf8(utf32.data());
  } catch (const std::invalid_argument&) {
  }
  std::vector<char> dest32(4 * utf32.size() + 1);
  StringUtil::toUtf8(utf32.data(), dest32.data(), false);
  UtfUtil::length8(utf32.data());
}

void checkEscapeAndTrim(const std::string& text) {
  const std::string escaped = StringUtil::escapeString(text.c_str());
  // Escaped text is safe as a format: every '%' is one of a pair, so reading it once gives what
  // reading the text once gives (an existing "%%" is kept as it is, on purpose).
  for (const char* p = escaped.c_str(); *p != '\0'; ++p) {
    if (*p == '%') {
      ZELK_FUZZ_CHECK(p[1] == '%');
      ++p;
    }
  }
  ZELK_FUZZ_CHECK(zelk::formatWithoutArguments(escaped.c_str()) ==
                  zelk::formatWithoutArguments(text.c_str()));
  const std::string trimmed = zelk::trim(text);
  ZELK_FUZZ_CHECK(text.find(trimmed) != std::string::npos);
  const std::locale locale;
  if (!trimmed.empty()) {
    ZELK_FUZZ_CHECK(!std::isspace(trimmed.front(), locale));
    ZELK_FUZZ_CHECK(!std::isspace(trimmed.back(), locale));
  }
  ZELK_FUZZ_CHECK(zelk::trim(trimmed) == trimmed);
}

void checkWordWrap(const std::string& text, size_t indent, size_t width, size_t hanging,
                   const std::string& breakChars) {
  std::ostringstream out;
  try {
    StringUtil::wordWrap(out, text, indent, width, hanging, breakChars);
  } catch (const std::invalid_argument&) {
    return;
  }
  // With room for the widest character after the indents, no line is wider than the width.
  if (width < indent + hanging + 5) return;
  const std::string wrapped = out.str();
  size_t start = 0;
  while (start <= wrapped.size()) {
    size_t end = wrapped.find('\n', start);
    if (end == std::string::npos) end = wrapped.size();
    ZELK_FUZZ_CHECK(end - start <= width);
    start = end + 1;
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  zelk::fuzz::InputReader input(data, size);
  const size_t width = input.byte();
  const size_t indent = input.byte() % 32;
  const size_t hanging = input.byte() % 16;
  const uint8_t breakSelector = input.byte();
  const std::string text = input.rest();
  const std::string breakChars = (breakSelector & 1) != 0 ? "/\\" : ((breakSelector & 2) != 0 ? "-,;" : "");

  checkUtf8(text);
  checkUtf16And32(input.data(), input.size());
  checkEscapeAndTrim(text);
  checkWordWrap(text, indent, width, hanging, breakChars);
  return 0;
}
