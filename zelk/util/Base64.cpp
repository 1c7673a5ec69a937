#include "zelk/util/Base64.h"

namespace zelk {

namespace {

const char ALPHABET[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

int sextet(char c) {
  if (c >= 'A' && c <= 'Z') return c - 'A';
  if (c >= 'a' && c <= 'z') return c - 'a' + 26;
  if (c >= '0' && c <= '9') return c - '0' + 52;
  if (c == '+') return 62;
  if (c == '/') return 63;
  return -1;
}

}  // namespace

std::string encodeBase64(const std::string& bytes) {
  std::string text;
  text.reserve((bytes.size() + 2) / 3 * 4);
  size_t i = 0;
  for (; i + 2 < bytes.size(); i += 3) {
    const unsigned long word = (static_cast<unsigned char>(bytes[i]) << 16) |
                               (static_cast<unsigned char>(bytes[i + 1]) << 8) |
                               static_cast<unsigned char>(bytes[i + 2]);
    text += ALPHABET[(word >> 18) & 63];
    text += ALPHABET[(word >> 12) & 63];
    text += ALPHABET[(word >> 6) & 63];
    text += ALPHABET[word & 63];
  }
  if (i < bytes.size()) {
    const bool two = i + 1 < bytes.size();
    const unsigned long word = (static_cast<unsigned char>(bytes[i]) << 16) |
                               (two ? static_cast<unsigned char>(bytes[i + 1]) << 8 : 0);
    text += ALPHABET[(word >> 18) & 63];
    text += ALPHABET[(word >> 12) & 63];
    text += two ? ALPHABET[(word >> 6) & 63] : '=';
    text += '=';
  }
  return text;
}

bool decodeBase64(const std::string& text, std::string& out) {
  if (text.size() % 4 != 0) {
    return false;
  }
  std::string bytes;
  bytes.reserve(text.size() / 4 * 3);
  for (size_t i = 0; i < text.size(); i += 4) {
    const bool last = i + 4 == text.size();
    int s[4];
    int padding = 0;
    for (int k = 0; k < 4; ++k) {
      const char c = text[i + k];
      // Padding only at the end of the last quantum, at most two characters of it.
      if (c == '=' && last && k >= 2 && (k == 3 || text[i + 3] == '=')) {
        s[k] = 0;
        ++padding;
        continue;
      }
      s[k] = sextet(c);
      if (s[k] < 0) {
        return false;
      }
    }
    const unsigned long word = (s[0] << 18) | (s[1] << 12) | (s[2] << 6) | s[3];
    bytes += static_cast<char>((word >> 16) & 255);
    if (padding < 2) bytes += static_cast<char>((word >> 8) & 255);
    if (padding < 1) bytes += static_cast<char>(word & 255);
  }
  out.swap(bytes);
  return true;
}

}  // namespace zelk
