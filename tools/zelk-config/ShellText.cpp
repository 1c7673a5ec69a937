#include "ShellText.h"

#include <cstdio>

namespace zelk::configtool {

std::string shellWord(const std::string& text) {
  std::string word = "'";
  for (char c : text) {
    if (c == '\'') {
      word += "'\\''";
    } else {
      word += c;
    }
  }
  return word + "'";
}

std::string fishWord(const std::string& text) {
  std::string word = "'";
  for (char c : text) {
    if (c == '\'' || c == '\\') word += '\\';
    word += c;
  }
  return word + "'";
}

std::string printable(const std::string& text) {
  std::string result;
  result.reserve(text.size());
  for (char c : text) {
    const unsigned char byte = static_cast<unsigned char>(c);
    if (byte >= 0x20 && byte != 0x7F) {
      result += c;
      continue;
    }
    switch (c) {
      case '\n': result += "\\n"; break;
      case '\r': result += "\\r"; break;
      case '\t': result += "\\t"; break;
      default: {
        char escaped[5];
        std::snprintf(escaped, sizeof escaped, "\\x%02x", static_cast<unsigned int>(byte));
        result += escaped;
      }
    }
  }
  return result;
}

std::string shellArray(const char* name, const std::vector<std::string>& words) {
  std::string line = std::string(name) + "=(";
  for (std::size_t i = 0; i < words.size(); ++i) {
    line += (i > 0 ? " " : "") + shellWord(words[i]);
  }
  return line + ")";
}

}  // namespace zelk::configtool
