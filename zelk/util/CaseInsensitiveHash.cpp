#include "zelk/util/CaseInsensitiveHash.h"

#include <cstddef>
#include <cstring>

namespace zelk {

namespace {

const uint64_t ONES = 0x0101010101010101ULL;
const uint64_t HIGH_BITS = 0x8080808080808080ULL;

// Folds the ASCII capitals among the eight bytes of word to lower case, all bytes at once: a
// byte gets 0x20 added when it is below 0x80, at least 'A' and not above 'Z'. Adding to the low
// seven bits never carries into the next byte.
uint64_t foldWord(uint64_t word) {
  const uint64_t low = word & ~HIGH_BITS;
  const uint64_t atLeastA = low + (0x80 - 'A') * ONES;
  const uint64_t aboveZ = low + (0x80 - 'Z' - 1) * ONES;
  const uint64_t capitals = atLeastA & ~aboveZ & ~word & HIGH_BITS;
  return word | (capitals >> 2);
}

// The eight bytes of text at offset, zero-padded past length, the first byte lowest. Every load
// stays inside the text: a short tail of a text of eight bytes or more is the end of the text's
// last eight bytes, a shorter one two overlapping loads (a memcpy of a variable length would be a
// library call, costlier than the rest of a short name's hash).
inline uint64_t wordAt(const char* text, size_t offset, size_t length) {
  const size_t left = length - offset;
  uint64_t word = 0;
  if (left >= 8) {
    std::memcpy(&word, text + offset, 8);
    return word;
  }
  if (length >= 8) {
    std::memcpy(&word, text + length - 8, 8);
    return word >> (8 * (8 - left));
  }
  if (left >= 4) {
    uint32_t low = 0;
    uint32_t high = 0;
    std::memcpy(&low, text + offset, 4);
    std::memcpy(&high, text + offset + left - 4, 4);
    // The overlapping bytes are the same bytes in the same places.
    return low | (static_cast<uint64_t>(high) << (8 * (left - 4)));
  }
  for (size_t i = 0; i < left; ++i) {
    word |= static_cast<uint64_t>(static_cast<unsigned char>(text[offset + i])) << (8 * i);
  }
  return word;
}

}  // namespace

uint64_t caseInsensitiveHash(const char* text) {
  if (text == 0) {
    return 0;
  }
  return caseInsensitiveHash(text, std::strlen(text));
}

uint64_t caseInsensitiveHash(const char* text, size_t length) {
  uint64_t hash = 14695981039346656037ULL ^ length;
  for (size_t offset = 0; offset < length; offset += 8) {
    // Setting every byte's 0x20 bit folds 'A'..'Z' to lower case in two operations; the few other
    // bytes it pairs (such as '-' with '\r') only collide, and the comparison tells them apart.
    hash = (hash ^ (wordAt(text, offset, length) | 0x20 * ONES)) * 0x9E3779B97F4A7C15ULL;
    hash ^= hash >> 29;
  }
  return hash;
}

bool caseInsensitiveEqual(const char* a, const char* b) {
  if (a == 0 || b == 0) {
    return a == b;
  }
  const size_t length = std::strlen(a);
  return std::strlen(b) == length && caseInsensitiveEqual(a, b, length);
}

bool caseInsensitiveEqual(const char* a, const char* b, size_t length) {
  for (size_t offset = 0; offset < length; offset += 8) {
    const uint64_t x = wordAt(a, offset, length);
    const uint64_t y = wordAt(b, offset, length);
    if (x != y && foldWord(x) != foldWord(y)) {
      return false;
    }
  }
  return true;
}

}  // namespace zelk
