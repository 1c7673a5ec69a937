// CaseInsensitiveHash: a hash of a text that ignores ASCII case, so that names equal under
// strcasecmp hash alike, and the matching comparison. Indexes keyed by the hash verify each
// candidate with a real comparison, so collisions cost time, never correctness.
//
//   std::unordered_map<uint64_t, std::vector<size_t>> positions;
//   positions[zelk::caseInsensitiveHash("Backup")].push_back(0);
//   positions.count(zelk::caseInsensitiveHash("BACKUP")) == 1;
//   zelk::caseInsensitiveEqual("Backup", "BACKUP");   // true
#pragma once

#include <cstdint>

namespace zelk {

// A 64-bit hash of text with 'A'..'Z' folded to lower case; 0 for a null text.
uint64_t caseInsensitiveHash(const char* text);
// Whether a and b are equal with 'A'..'Z' folded to lower case (null equals only null).
bool caseInsensitiveEqual(const char* a, const char* b);

}  // namespace zelk
