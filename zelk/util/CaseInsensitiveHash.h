// CaseInsensitiveHash: a hash of a text that ignores ASCII case, so that names equal under
// strcasecmp hash alike. Indexes keyed by it verify each candidate with a real comparison, so
// collisions cost time, never correctness.
//
//   std::unordered_map<uint64_t, std::vector<size_t>> positions;
//   positions[zelk::caseInsensitiveHash("Backup")].push_back(0);
//   positions.count(zelk::caseInsensitiveHash("BACKUP")) == 1;
#pragma once

#include <cstdint>

namespace zelk {

// The 64-bit FNV-1a hash of text with 'A'..'Z' folded to lower case; 0 for a null text.
uint64_t caseInsensitiveHash(const char* text);

}  // namespace zelk
