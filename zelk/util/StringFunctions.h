// Small free functions on strings used throughout the library.
//
//   zelk::trim("  a b ")                   == "a b"
//   zelk::appendSuffix("/etc", "/")        == "/etc/"
//   char* copy = zelk::cloneString("x");   // release with delete[]
#pragma once

#include <string>
#include <vector>

namespace zelk {

// Removes leading and trailing characters that the default locale classifies as white space.
std::string trim(const std::string& s);
// True when s is at least as long as suffix and ends with it, compared exactly.
bool hasEnding(const std::string& s, const std::string& suffix);
// s itself when it already ends with suffix, else s + suffix.
std::string appendSuffix(const std::string& s, const std::string& suffix);
// A new array (released by the caller with delete[]) holding a copy of s; null for null.
char* cloneString(const char* s);
// A vector of count strings copied from items.
std::vector<std::string> toVector(unsigned long count, const char* const* items);

}  // namespace zelk
