// MainLogCapture: the host main-log entries written while the object lives.

#pragma once

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace zelk::test {

class MainLogCapture {
public:
  // Empties the host's main log, so that entries() starts from nothing.
  MainLogCapture();
  MainLogCapture(const MainLogCapture&) = delete;
  MainLogCapture& operator=(const MainLogCapture&) = delete;
  // Empties the main log again.
  ~MainLogCapture();

  // Every entry since construction: (category, text).
  std::vector<std::pair<std::string, std::string>> entries() const;
  // The texts of the entries of one category.
  std::vector<std::string> texts(const std::string& category) const;
  // Whether some entry of category (any category when empty) contains part.
  bool contains(const std::string& part, const std::string& category = std::string()) const;
  // The entries, one "[category] text" per line, for failure messages.
  std::string dump() const;
};

}  // namespace zelk::test
