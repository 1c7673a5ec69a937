// CaseInsensitiveHash: a hash of a text that ignores ASCII case, so that names equal under
// strcasecmp hash alike, and the matching comparison. Indexes keyed by the hash verify each
// candidate with a real comparison, so collisions cost time, never correctness.
//
//   std::unordered_map<uint64_t, std::vector<size_t>> positions;
//   positions[zelk::caseInsensitiveHash("Backup")].push_back(0);
//   positions.count(zelk::caseInsensitiveHash("BACKUP")) == 1;
//   zelk::caseInsensitiveEqual("Backup", "BACKUP");   // true
#pragma once

#include <cstddef>
#include <cstdint>

namespace zelk {

// A 64-bit hash of text in which texts equal under caseInsensitiveEqual agree; 0 for a null text.
// It ignores bit 0x20 of every byte, so a few texts that are not equal (such as "a-b" and "a\rb")
// collide as well.
uint64_t caseInsensitiveHash(const char* text);
// The same hash of the length bytes at text (not null), for a caller that knows the length.
uint64_t caseInsensitiveHash(const char* text, size_t length);
// Whether a and b are equal with 'A'..'Z' folded to lower case (null equals only null).
bool caseInsensitiveEqual(const char* a, const char* b);
// Whether the first length bytes of a and b (neither null, both that long) are equal so.
bool caseInsensitiveEqual(const char* a, const char* b, size_t length);

}  // namespace zelk
