// Help and usage text for the specifications of a registry file, at the screen widths the first
// bytes choose.
#include <cstddef>
#include <cstdint>
#include <string>

#include "FuzzSupport.h"
#include "zelk/configuration/ConfigurationManager.h"
#include "zelk/configuration/Specification.h"
#include "zelk/configuration/impl/ConfigurationRegistryLoaderImpl.h"
#include "zelk/configuration/impl/Factory.h"
#include "zelk/util/IEnumerator.h"

using namespace zelk::configuration;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  zelk::fuzz::InputReader input(data, size);
  // The caller's contract: a screen at least one column wide, wider than the name limit.
  const unsigned long width = 1 + input.word() % 400;
  const unsigned long nameWidth = input.byte() % width;
  // A manager of its own, beside the process-wide one that the library expects to exist.
  zelk::fuzz::richManager();
  ConfigurationManager* manager = impl::Factory::createManager();
  try {
    impl::ConfigurationRegistryLoaderImpl(manager).loadBuffer(
        reinterpret_cast<const char*>(input.data()), input.size(), "fuzz.crg", 0);
  } catch (const ConfigurationException&) {
    // What loaded before the error stays registered and is described below.
  }
  zelk::IEnumerator<Specification*>* specifications = manager->getSpecificationEnumerator();
  for (; specifications->hasNext(); specifications->moveNext()) {
    const char* id = specifications->getCurrent()->getId();
    try {
      manager->composeUsageMessage(id);
      manager->composeHelpMessage(id, width, nameWidth);
    } catch (const ConfigurationException& e) {
      ZELK_FUZZ_CHECK(*e.what() != '\0');
    }
  }
  delete specifications;
  impl::Factory::destroy(manager);
  return 0;
}
