// Runs a fuzz target over files instead of under a fuzzer: every regular file below each path
// given (a file or a directory) is fed once to LLVMFuzzerTestOneInput. Used by CTest to replay the
// seed corpora and the regression inputs in ordinary and sanitizer builds.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

namespace {

void collect(const std::filesystem::path& path, std::vector<std::filesystem::path>& files) {
  if (std::filesystem::is_directory(path)) {
    for (const auto& entry : std::filesystem::recursive_directory_iterator(path)) {
      if (entry.is_regular_file()) files.push_back(entry.path());
    }
  } else if (std::filesystem::is_regular_file(path)) {
    files.push_back(path);
  }
}

}  // namespace

int main(int argc, char** argv) {
  std::vector<std::filesystem::path> files;
  for (int i = 1; i < argc; ++i) collect(argv[i], files);
  std::sort(files.begin(), files.end());
  for (const auto& file : files) {
    std::ifstream in(file, std::ios::binary);
    const std::vector<char> bytes((std::istreambuf_iterator<char>(in)),
                                  std::istreambuf_iterator<char>());
    std::printf("%s (%zu bytes)\n", file.string().c_str(), bytes.size());
    std::fflush(stdout);
    // An exact-size heap copy, so that a read past the end is caught by AddressSanitizer.
    std::vector<uint8_t> copy(bytes.begin(), bytes.end());
    LLVMFuzzerTestOneInput(copy.empty() ? nullptr : copy.data(), copy.size());
  }
  std::printf("%zu inputs replayed\n", files.size());
  return 0;
}
