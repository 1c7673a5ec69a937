// UtfUtil: code-point-level UTF-8, UTF-16 and UTF-32 encoding and decoding, and byte-order-mark
// detection. The functions return status codes and never throw.
//
//   unsigned int cp;
//   int n = zelk::UtfUtil::getUtf8CodePoint("\xE2\x82\xAC", cp);   // 3, cp == 0x20AC
//   char out[4];
//   n = zelk::UtfUtil::codePointToUtf8(0x1F600, out);              // 4
//
// Status codes: 1 to 4, the number of units read or written; 99, invalid input; -1, an invalid
// UTF-8 sequence (getUtf8CodePoint, and utf8to16 which passes it on).
#pragma once

#include <istream>

namespace zelk {

class UtfUtil {
public:
  UtfUtil() = delete;

  // The status code for invalid input.
  static constexpr int INVALID = 99;

  // Decodes the code point at s: 1 for a byte below 0x80 (the terminator included), 2 to 4 for a
  // complete multi-byte sequence, -1 for an invalid or incomplete one; 0 (cp 0) for a null s.
  // Overlong forms, surrogates and values above 0x10FFFF are not checked.
  static int getUtf8CodePoint(const char* s, unsigned int& cp);
  // Encodes cp into out (up to 4 bytes, no terminator); 99 above 0x1FFFFF, writing nothing.
  static int codePointToUtf8(unsigned int cp, char* out);
  // Decodes a unit or a surrogate pair: 1 or 2; 99 for a high surrogate without a low one.
  static int getUtf16CodePoint(const unsigned short* s, unsigned int& cp);
  // Encodes cp into out as 1 or 2 units; 99 above 0x1FFFFF.
  static int codePointToUtf16(unsigned int cp, unsigned short* out);
  // Converts one code point; returns the bytes read (or -1 / 99) and sets written to the units
  // written.
  static int utf8to16(const char* s, unsigned short* out, int& written);
  // Converts one code point; returns the units read (or 99) and sets written to the bytes written.
  static int utf16to8(const unsigned short* s, char* out, int& written);

  // Lengths in the other encoding; 0 for null or empty input, 0xFFFFFFFF for a byte that cannot
  // start a UTF-8 sequence (or, for length8 of UTF-32, a value above 0x1FFFFF).
  static unsigned int length16(const char* s);
  static unsigned int length32(const char* s);
  static unsigned int length8(const unsigned short* s);
  static unsigned int length8(const unsigned int* s);

  // Detects a byte-order mark at the stream position: 0 none, 1 UTF-32 BE, 2 UTF-32 LE,
  // 3 UTF-16 BE, 4 UTF-16 LE, 5 UTF-8. Leaves the stream after the mark (see the source for the
  // UTF-16 LE case) or, with no mark, where it was; markLength is the mark's length.
  static char getEncoding(std::istream& in, int& markLength);
};

}  // namespace zelk
