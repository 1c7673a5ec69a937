#include "zelk/util/CaseInsensitiveHash.h"

namespace zelk {

uint64_t caseInsensitiveHash(const char* text) {
  if (text == 0) {
    return 0;
  }
  uint64_t hash = 14695981039346656037ULL;
  for (; *text != '\0'; ++text) {
    unsigned char c = static_cast<unsigned char>(*text);
    if (c >= 'A' && c <= 'Z') {
      c = static_cast<unsigned char>(c - 'A' + 'a');
    }
    hash = (hash ^ c) * 1099511628211ULL;
  }
  return hash;
}

}  // namespace zelk
