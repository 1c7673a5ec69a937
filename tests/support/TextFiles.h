// Writing and reading small text files in tests.

#pragma once

#include <string>

namespace zelk::test {

// Writes content to path (replacing it), creating missing parent directories. Throws
// std::runtime_error when the file cannot be written.
void writeTextFile(const std::string& path, const std::string& content);

// The whole content of path; throws std::runtime_error when it cannot be read.
std::string readTextFile(const std::string& path);

}  // namespace zelk::test
