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

// The eight bytes of text at offset, zero-padded past length; whole words are one load.
uint64_t wordAt(const char* text, size_t offset, size_t length) {
  uint64_t word = 0;
  if (length - offset >= 8) {
    std::memcpy(&word, text + offset, 8);
  } else {
    std::memcpy(&word, text + offset, length - offset);
  }
  return word;
}

}  // namespace

uint64_t caseInsensitiveHash(const char* text) {
  if (text == 0) {
    return 0;
  }
  const size_t length = std::strlen(text);
  uint64_t hash = 14695981039346656037ULL ^ length;
  for (size_t offset = 0; offset < length; offset += 8) {
    hash = (hash ^ foldWord(wordAt(text, offset, length))) * 0x9E3779B97F4A7C15ULL;
    hash ^= hash >> 29;
  }
  return hash;
}

bool caseInsensitiveEqual(const char* a, const char* b) {
  if (a == 0 || b == 0) {
    return a == b;
  }
  const size_t length = std::strlen(a);
  if (std::strlen(b) != length) {
    return false;
  }
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
