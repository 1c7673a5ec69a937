// An XML value file read by the value-file provider for the rich specification, then retrieved
// through a manager (merged, validated, completed) and read in every typed way.
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <string>

#include "FuzzSupport.h"
#include "ValueReads.h"
#include "zelk/configuration/ConfigurationManager.h"
#include "zelk/configuration/ValidationErrors.h"
#include "zelk/configuration/XmlFileValueProvider.h"
#include "zelk/configuration/impl/ConfigurationRegistryLoaderImpl.h"
#include "zelk/configuration/impl/Factory.h"

using namespace zelk::configuration;

namespace {

// The provider reads files: each input is written to one file of this process, removed at exit.
struct ValueFile {
  ValueFile()
      : path(std::string(P_tmpdir) + "/zelk-value-fuzz-" + std::to_string(getpid()) + ".xml") {}
  ~ValueFile() { std::remove(path.c_str()); }
  std::string path;
};

const std::string& valueFilePath() {
  static const ValueFile file;
  return file.path;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  zelk::fuzz::InputReader input(data, size);
  const int checks = input.byte();
  {
    std::ofstream out(valueFilePath(), std::ios::binary | std::ios::trunc);
    out.write(reinterpret_cast<const char*>(input.data()), static_cast<std::streamsize>(input.size()));
  }
  // A manager of its own, beside the process-wide one that the library expects to exist.
  zelk::fuzz::richManager();
  ConfigurationManager* manager = impl::Factory::createManager();
  impl::ConfigurationRegistryLoaderImpl(manager).loadBuffer(
      zelk::fuzz::richRegistryText().data(), zelk::fuzz::richRegistryText().size(), "rich.crg", 0);
  const Specification* rich = manager->getSpecification("rich");
  ZELK_FUZZ_CHECK(rich != nullptr);

  XmlFileValueProvider* provider = new XmlFileValueProvider(3, "fuzz");
  bool loaded = false;
  try {
    provider->enableProvider(valueFilePath().c_str(), 0);
    loaded = true;
  } catch (const ConfigurationException& e) {
    ZELK_FUZZ_CHECK(*e.what() != '\0');
  }
  if (loaded) {
    // The provider on its own, with the checks the input chose.
    for (const char* id : {"rich", "small"}) {
      try {
        ValueGroup values = provider->getValues(*manager->getSpecification(id), checks);
        zelk::fuzz::readAll(manager, values);
        ValidationErrors errors;
        manager->validateValues(*manager->getSpecification(id), values, &errors);
        for (size_t i = 0; i < errors.getNumberOfErrors(); ++i) errors.getError(i);
      } catch (const ConfigurationException&) {
      }
    }
    // Through the manager, which merges the provider's values with the defaults.
    manager->registerValueProvider(provider);
    provider = nullptr;
    try {
      ValueGroup values = manager->getValueGroup("rich", false, checks & 0x3);
      zelk::fuzz::readAll(manager, values);
    } catch (const ConfigurationException&) {
    }
  }
  delete provider;
  impl::Factory::destroy(manager);
  return 0;
}
