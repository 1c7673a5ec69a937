// A registry file loaded into a fresh manager, on its own and as the second file after the rich
// registry of the seed corpus (so that its references reach items of another file). Whatever
// loads is then described, which walks every item it created.
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

namespace {

void describeAll(ConfigurationManager* manager) {
  zelk::IEnumerator<Specification*>* specifications = manager->getSpecificationEnumerator();
  for (; specifications->hasNext(); specifications->moveNext()) {
    manager->getRepresentation(*specifications->getCurrent());
  }
  delete specifications;
}

void load(const uint8_t* data, size_t size, bool afterRich) {
  // A manager of its own, beside the process-wide one that the library expects to exist.
  zelk::fuzz::richManager();
  ConfigurationManager* manager = impl::Factory::createManager();
  if (afterRich) {
    impl::ConfigurationRegistryLoaderImpl(manager).loadBuffer(
        zelk::fuzz::richRegistryText().data(), zelk::fuzz::richRegistryText().size(), "rich.crg", 0);
  }
  try {
    impl::ConfigurationRegistryLoaderImpl(manager).loadBuffer(
        reinterpret_cast<const char*>(data), size, "fuzz.crg", 0);
  } catch (const ConfigurationException& e) {
    ZELK_FUZZ_CHECK(e.what() != nullptr && *e.what() != '\0');
  }
  describeAll(manager);
  impl::Factory::destroy(manager);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  load(data, size, false);
  load(data, size, true);
  return 0;
}
