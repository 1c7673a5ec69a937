#include "zelk/util/StringUtil.h"

#include <stdexcept>

#include "zelk/util/UtfUtil.h"

namespace zelk {

namespace {

const char* const INVALID_UTF8 = "invalid utf-8 string";

}  // namespace

bool StringUtil::isAscii(const char* s) {
  if (s == nullptr) {
    return true;
  }
  for (const char* p = s; *p != '\0'; ++p) {
    if (static_cast<unsigned char>(*p) >= 0x80) {
      return false;
    }
  }
  return true;
}

bool StringUtil::skipEOL(const char*& p) {
  if (*p != '\r' && *p != '\n') {
    return false;
  }
  while (*p == '\r' || *p == '\n') {
    ++p;
  }
  return true;
}

bool StringUtil::isLineBreak(char c, const std::string& breakChars, const std::locale& locale) {
  return std::isspace(c, locale) || breakChars.find(c) != std::string::npos;
}

size_t StringUtil::distanceToNextLineBreakChar(const char* s, const std::string& breakChars,
                                               const std::locale& locale) {
  const char* p = s;
  while (*p != '\0') {
    unsigned int cp = 0;
    const int n = UtfUtil::getUtf8CodePoint(p, cp);
    if (n == -1) {
      throw std::invalid_argument(INVALID_UTF8);
    }
    if (n == 1 && isLineBreak(*p, breakChars, locale)) {
      break;
    }
    p += n;
  }
  return static_cast<size_t>(p - s);
}

void StringUtil::wordWrap(std::ostream& out, const std::string& text, size_t indent, size_t width,
                          size_t hangingIndent, const std::string& breakChars) {
  const std::locale locale;
  if (indent != 0 && !text.empty()) {
    out << std::string(indent, ' ');
  }
  // Unsigned on purpose: a width smaller than the indents wraps around to an unlimited width.
  size_t lineWidth = width - indent;
  const std::string prefix(indent + hangingIndent, ' ');
  const char* p = text.c_str();
  const char* const end = p + text.size();
  while (p < end) {
    const char* const lineStart = p;
    size_t column = 0;
    while (p < end) {
      unsigned int cp = 0;
      const int n = UtfUtil::getUtf8CodePoint(p, cp);
      if (n == -1) {
        throw std::invalid_argument(INVALID_UTF8);
      }
      if (skipEOL(p)) {
        break;
      }
      if (isLineBreak(*p, breakChars, locale)) {
        const size_t sum = column + distanceToNextLineBreakChar(p + 1, breakChars, locale);
        if (!(lineWidth > sum)) {
          // The next word does not fit on this line.
          if (std::isspace(*p, locale)) {
            ++p;
          } else if (lineWidth > column + n) {
            out.write(p, n);
            p += n;
          }
          break;
        }
      }
      column += n;
      if (lineWidth < column) {
        // A character wider than an empty line is written anyway, so that the text always
        // advances.
        if (p == lineStart) {
          out.write(p, n);
          p += n;
        }
        break;
      }
      out.write(p, n);
      p += n;
    }
    if (p == lineStart && p < end) {
      // Nothing fitted, not even a break character: write one character to advance.
      unsigned int cp = 0;
      const int n = UtfUtil::getUtf8CodePoint(p, cp);
      out.write(p, n);
      p += n;
    }
    if (p < end) {
      out << std::endl << prefix;
      lineWidth = width - indent - hangingIndent;
    }
  }
}

std::string StringUtil::escapeString(const char* s) {
  std::string result;
  if (s == nullptr) {
    return result;
  }
  for (const char* p = s; *p != '\0'; ++p) {
    if (*p == '%') {
      result += '%';
      ++p;
      if (*p != '%') {
        result += '%';
      }
    }
    // After a trailing '%' this writes the terminator itself and the scan ends there, on purpose.
    result += *p;
    if (*p == '\0') {
      break;
    }
  }
  return result;
}

namespace {

// Decodes s code point by code point after measuring it with measure, handing each code point to
// append. Both the measure and the decoder reject invalid UTF-8.
template <typename Result, typename Append>
Result decodeUtf8(const char* s, unsigned int (*measure)(const char*), Append append) {
  Result result;
  if (s == nullptr || *s == '\0') {
    return result;
  }
  const unsigned int length = measure(s);
  if (length == 0xFFFFFFFF) {
    throw std::invalid_argument(INVALID_UTF8);
  }
  result.reserve(length);
  for (const char* p = s; *p != '\0';) {
    unsigned int cp = 0;
    const int n = UtfUtil::getUtf8CodePoint(p, cp);
    if (n == -1) {
      throw std::invalid_argument(INVALID_UTF8);
    }
    append(result, cp);
    p += n;
  }
  return result;
}

}  // namespace

std::basic_string<unsigned short> StringUtil::toUtf16(const char* s) {
  using Utf16 = std::basic_string<unsigned short>;
  return decodeUtf8<Utf16>(s, &UtfUtil::length16, [](Utf16& out, unsigned int cp) {
    unsigned short units[2];
    const int count = UtfUtil::codePointToUtf16(cp, units);
    out.append(units, static_cast<size_t>(count));
  });
}

std::wstring StringUtil::toWString(const char* s) {
  return decodeUtf8<std::wstring>(s, &UtfUtil::length32, [](std::wstring& out, unsigned int cp) {
    out += static_cast<wchar_t>(cp);
  });
}

std::string StringUtil::toUtf8(const unsigned short* s) {
  std::string result;
  if (s == nullptr) {
    return result;
  }
  result.reserve(UtfUtil::length8(s));
  for (const unsigned short* p = s; *p != 0;) {
    char bytes[4];
    int written = 0;
    const int read = UtfUtil::utf16to8(p, bytes, written);
    if (read == UtfUtil::INVALID) {
      throw std::invalid_argument("Not a UTF-16 string");
    }
    result.append(bytes, static_cast<size_t>(written));
    p += read;
  }
  return result;
}

std::string StringUtil::toUtf8(const unsigned int* s) {
  std::string result;
  if (s == nullptr) {
    return result;
  }
  const unsigned int length = UtfUtil::length8(s);
  if (length != 0xFFFFFFFF) {
    result.reserve(length);
  }
  for (const unsigned int* p = s; *p != 0; ++p) {
    char bytes[4];
    const int written = UtfUtil::codePointToUtf8(*p, bytes);
    if (written == UtfUtil::INVALID) {
      throw std::invalid_argument("Not a UTF-32 string");
    }
    result.append(bytes, static_cast<size_t>(written));
  }
  return result;
}

int StringUtil::toUtf8(const unsigned short* s, char* dest, bool throwOnError) {
  if (dest == nullptr) {
    throw std::invalid_argument("Must provide a destination");
  }
  if (s == nullptr) {
    dest[0] = '\0';
    return 0;
  }
  int written = UtfUtil::INVALID;
  if (UtfUtil::utf16to8(s, dest, written) == UtfUtil::INVALID) {
    written = UtfUtil::INVALID;
  }
  if (written == UtfUtil::INVALID) {
    // The UTF-32 wording for a UTF-16 source is kept on purpose.
    if (throwOnError) {
      throw std::invalid_argument("Not a UTF-32 string");
    }
    return -1;
  }
  dest[written] = '\0';
  return written;
}

int StringUtil::toUtf8(const unsigned int* s, char* dest, bool throwOnError) {
  if (dest == nullptr) {
    throw std::invalid_argument("Must provide a destination");
  }
  if (s == nullptr) {
    dest[0] = '\0';
    return 0;
  }
  const int written = UtfUtil::codePointToUtf8(*s, dest);
  if (written == UtfUtil::INVALID) {
    if (throwOnError) {
      throw std::invalid_argument("Not a UTF-32 string");
    }
    return -1;
  }
  dest[written] = '\0';
  return written;
}

}  // namespace zelk
