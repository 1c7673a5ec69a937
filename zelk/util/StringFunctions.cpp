#include "zelk/util/StringFunctions.h"

#include <cstring>
#include <locale>

namespace zelk {

std::string trim(const std::string& s) {
  const std::locale locale;
  std::string::size_type begin = 0;
  std::string::size_type end = s.size();
  while (begin < end && std::isspace(s[begin], locale)) {
    ++begin;
  }
  while (end > begin && std::isspace(s[end - 1], locale)) {
    --end;
  }
  return s.substr(begin, end - begin);
}

bool hasEnding(const std::string& s, const std::string& suffix) {
  return s.size() >= suffix.size() && s.compare(s.size() - suffix.size(), suffix.size(), suffix) == 0;
}

std::string appendSuffix(const std::string& s, const std::string& suffix) {
  return hasEnding(s, suffix) ? s : s + suffix;
}

char* cloneString(const char* s) {
  if (s == nullptr) {
    return nullptr;
  }
  const std::size_t length = std::strlen(s);
  char* copy = new char[length + 1];
  std::memcpy(copy, s, length + 1);
  return copy;
}

std::vector<std::string> toVector(unsigned long count, const char* const* items) {
  std::vector<std::string> result;
  result.reserve(count);
  for (unsigned long i = 0; i < count; ++i) {
    result.emplace_back(items[i] != nullptr ? items[i] : "");
  }
  return result;
}

}  // namespace zelk
