#include "support/TextFiles.h"

#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace zelk::test {

void writeTextFile(const std::string& path, const std::string& content) {
  const std::filesystem::path parent = std::filesystem::path(path).parent_path();
  if (!parent.empty()) {
    std::filesystem::create_directories(parent);
  }
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out << content;
  if (!out) {
    throw std::runtime_error("cannot write " + path);
  }
}

std::string readTextFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) {
    throw std::runtime_error("cannot read " + path);
  }
  std::ostringstream content;
  content << in.rdbuf();
  return content.str();
}

}  // namespace zelk::test
