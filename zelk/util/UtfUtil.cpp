#include "zelk/util/UtfUtil.h"

namespace zelk {

namespace {

inline unsigned char byteAt(const char* s, int i) { return static_cast<unsigned char>(s[i]); }

// Bytes of the sequence that lead starts, by the lead byte alone; 0 when it cannot start one.
inline int leadLength(unsigned char lead) {
  if (lead < 0x80) return 1;
  if ((lead & 0xE0) == 0xC0) return 2;
  if ((lead & 0xF0) == 0xE0) return 3;
  if ((lead & 0xF8) == 0xF0) return 4;
  return 0;
}

// Steps over one sequence of length bytes, stopping at the terminator so that a truncated
// sequence is never read past the end.
inline const char* stepOver(const char* p, int length) {
  ++p;
  for (int i = 1; i < length && *p != '\0'; ++i) {
    ++p;
  }
  return p;
}

}  // namespace

int UtfUtil::getUtf8CodePoint(const char* s, unsigned int& cp) {
  if (s == nullptr) {
    cp = 0;
    return 0;
  }
  const unsigned char lead = byteAt(s, 0);
  if (lead < 0x80) {
    cp = lead;
    return 1;
  }
  const int length = leadLength(lead);
  if (length == 0) {
    return -1;
  }
  unsigned int value = lead & (0xFF >> (length + 1));
  for (int i = 1; i < length; ++i) {
    const unsigned char next = byteAt(s, i);  // a terminator is not a continuation byte
    if ((next & 0xC0) != 0x80) {
      return -1;
    }
    value = (value << 6) | (next & 0x3F);
  }
  cp = value;
  return length;
}

int UtfUtil::codePointToUtf8(unsigned int cp, char* out) {
  if (cp < 0x80) {
    out[0] = static_cast<char>(cp);
    return 1;
  }
  if (cp < 0x800) {
    out[0] = static_cast<char>(0xC0 | (cp >> 6));
    out[1] = static_cast<char>(0x80 | (cp & 0x3F));
    return 2;
  }
  if (cp < 0x10000) {
    out[0] = static_cast<char>(0xE0 | (cp >> 12));
    out[1] = static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
    out[2] = static_cast<char>(0x80 | (cp & 0x3F));
    return 3;
  }
  // Values up to 0x1FFFFF, beyond the Unicode range, are encoded on purpose.
  if (cp <= 0x1FFFFF) {
    out[0] = static_cast<char>(0xF0 | (cp >> 18));
    out[1] = static_cast<char>(0x80 | ((cp >> 12) & 0x3F));
    out[2] = static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
    out[3] = static_cast<char>(0x80 | (cp & 0x3F));
    return 4;
  }
  return INVALID;
}

int UtfUtil::getUtf16CodePoint(const unsigned short* s, unsigned int& cp) {
  if (s == nullptr) {
    cp = 0;
    return 0;
  }
  const unsigned int unit = s[0];
  if (unit >= 0xD800 && unit <= 0xDBFF) {
    const unsigned int low = s[1];  // a terminator is not a low surrogate
    if (low < 0xDC00 || low > 0xDFFF) {
      return INVALID;
    }
    cp = ((unit & 0x3FF) << 10) + (low & 0x3FF) + 0x10000;
    return 2;
  }
  // A lone low surrogate is taken as it is, on purpose.
  cp = unit;
  return 1;
}

int UtfUtil::codePointToUtf16(unsigned int cp, unsigned short* out) {
  if (cp < 0x10000) {
    out[0] = static_cast<unsigned short>(cp);
    return 1;
  }
  if (cp > 0x1FFFFF) {
    return INVALID;
  }
  out[0] = static_cast<unsigned short>(((cp - 0x10000) >> 10) + 0xD800);
  out[1] = static_cast<unsigned short>((cp & 0x3FF) + 0xDC00);
  return 2;
}

int UtfUtil::utf8to16(const char* s, unsigned short* out, int& written) {
  if (byteAt(s, 0) < 0x80) {
    out[0] = byteAt(s, 0);
    written = 1;
    return 1;
  }
  unsigned int cp = 0;
  const int read = getUtf8CodePoint(s, cp);
  if (read == -1) {
    return -1;  // passed on as it is, on purpose: callers check for it
  }
  written = codePointToUtf16(cp, out);
  return written == INVALID ? INVALID : read;
}

int UtfUtil::utf16to8(const unsigned short* s, char* out, int& written) {
  if (s[0] < 0x80) {
    out[0] = static_cast<char>(s[0]);
    written = 1;
    return 1;
  }
  unsigned int cp = 0;
  const int read = getUtf16CodePoint(s, cp);
  if (read == INVALID) {
    return INVALID;
  }
  written = codePointToUtf8(cp, out);
  return written == INVALID ? INVALID : read;
}

unsigned int UtfUtil::length16(const char* s) {
  if (s == nullptr) {
    return 0;
  }
  unsigned int units = 0;
  for (const char* p = s; *p != '\0';) {
    const int length = leadLength(static_cast<unsigned char>(*p));
    if (length == 0) {
      return 0xFFFFFFFF;
    }
    units += length == 4 ? 2 : 1;
    p = stepOver(p, length);
  }
  return units;
}

unsigned int UtfUtil::length32(const char* s) {
  if (s == nullptr) {
    return 0;
  }
  unsigned int count = 0;
  for (const char* p = s; *p != '\0';) {
    const int length = leadLength(static_cast<unsigned char>(*p));
    if (length == 0) {
      return 0xFFFFFFFF;
    }
    ++count;
    p = stepOver(p, length);
  }
  return count;
}

unsigned int UtfUtil::length8(const unsigned short* s) {
  if (s == nullptr) {
    return 0;
  }
  unsigned int bytes = 0;
  for (const unsigned short* p = s; *p != 0; ++p) {
    const unsigned int unit = *p;
    if (unit < 0x80) {
      bytes += 1;
    } else if (unit < 0x800) {
      bytes += 2;
    } else if (unit >= 0xD800 && unit <= 0xDBFF) {
      bytes += 4;
      if (p[1] != 0) {
        ++p;  // the low surrogate; never past the terminator
      }
    } else {
      bytes += 3;
    }
  }
  return bytes;
}

unsigned int UtfUtil::length8(const unsigned int* s) {
  if (s == nullptr) {
    return 0;
  }
  unsigned int bytes = 0;
  for (const unsigned int* p = s; *p != 0; ++p) {
    const unsigned int cp = *p;
    if (cp < 0x80) {
      bytes += 1;
    } else if (cp < 0x800) {
      bytes += 2;
    } else if (cp < 0x10000) {
      bytes += 3;
    } else if (cp <= 0x1FFFFF) {
      bytes += 4;
    } else {
      return 0xFFFFFFFF;
    }
  }
  return bytes;
}

char UtfUtil::getEncoding(std::istream& in, int& markLength) {
  const std::istream::pos_type start = in.tellg();
  const int b0 = in.get();
  if (b0 == 0x00) {
    if (in.get() == 0x00 && in.get() == 0xFE && in.get() == 0xFF) {
      markLength = 4;
      return 1;
    }
  } else if (b0 == 0xFF) {
    if (in.get() == 0xFE) {
      // After FF FE, a third byte is read, and a fourth only when the third is 00. Unless both
      // were 00 the stream goes back two bytes: kept on purpose, so after FF FE 41 00 the next
      // byte read is the FE of the mark.
      if (in.get() == 0x00 && in.get() == 0x00) {
        markLength = 4;
        return 2;
      }
      in.clear();
      in.seekg(-2, std::ios_base::cur);
      markLength = 2;
      return 4;
    }
  } else if (b0 == 0xFE) {
    if (in.get() == 0xFF) {
      markLength = 2;
      return 3;
    }
  } else if (b0 == 0xEF) {
    if (in.get() == 0xBB && in.get() == 0xBF) {
      markLength = 3;
      return 5;
    }
  }
  in.clear();
  in.seekg(start);
  markLength = 0;
  return 0;
}

}  // namespace zelk
