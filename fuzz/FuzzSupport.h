// Helpers shared by the fuzz targets: the rich specification of the seed corpus loaded into the
// process-wide manager, and a reader that takes choices off the front of an input.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>

#include "zelk/configuration/ConfigurationException.h"
#include "zelk/configuration/ConfigurationManager.h"
#include "zelk/configuration/Specification.h"
#include "zelk/configuration/impl/ConfigurationRegistryLoaderImpl.h"
#include "zelk/host/HostDirectories.h"

namespace zelk::fuzz {

// Stops the run so that the fuzzer (or the replay program) reports the input.
inline void fail(const char* what) {
  std::fprintf(stderr, "property violated: %s\n", what);
  std::abort();
}

#define ZELK_FUZZ_CHECK(cond) \
  do {                        \
    if (!(cond)) ::zelk::fuzz::fail(#cond); \
  } while (0)

// The registry that declares the rich specification "rich" (and a second one, "small").
inline std::string richRegistryPath() {
  return std::string(ZELK_FUZZ_DIR) + "/corpus/registry/rich.crg";
}

// The text of that registry, read once.
inline const std::string& richRegistryText() {
  static const std::string text = [] {
    std::ifstream in(richRegistryPath(), std::ios::binary);
    return std::string((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  }();
  return text;
}

// The process-wide manager with the rich registry loaded; made on first use. The host gives no
// directories, so nothing else is loaded.
inline zelk::configuration::ConfigurationManager* richManager() {
  static zelk::configuration::ConfigurationManager* manager = [] {
    using zelk::configuration::ConfigurationManager;
    zelk::host::hostSetDirectories(nullptr, nullptr, nullptr);
    try {
      ConfigurationManager::getInstance();
    } catch (const std::exception&) {
      // No default registry: the manager stays, empty.
    }
    ConfigurationManager* m = ConfigurationManager::getInstance();
    zelk::configuration::impl::ConfigurationRegistryLoaderImpl loader(m);
    loader.loadFile(richRegistryPath().c_str(), 0);
    if (m->getSpecification("rich") == nullptr) fail("the rich specification did not load");
    return m;
  }();
  return manager;
}

// Takes bytes off the front of the input as choices; what is left is the payload.
class InputReader {
public:
  InputReader(const uint8_t* data, size_t size) : mData(data), mSize(size) {}

  uint8_t byte() {
    if (mSize == 0) return 0;
    --mSize;
    return *mData++;
  }
  uint16_t word() { return static_cast<uint16_t>(byte() | (byte() << 8)); }
  // The rest of the input as text.
  std::string rest() const { return std::string(reinterpret_cast<const char*>(mData), mSize); }
  const uint8_t* data() const { return mData; }
  size_t size() const { return mSize; }

private:
  const uint8_t* mData;
  size_t mSize;
};

}  // namespace zelk::fuzz
