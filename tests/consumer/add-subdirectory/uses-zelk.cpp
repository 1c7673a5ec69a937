// Our headers need C++17; the parent's C++14 target gets it through the library's usage
// requirements.
#if __cplusplus < 201703L
#error "zelk::configuration did not bring C++17 to its user"
#endif
#include "zelk/configuration/ConfigurationManager.h"
#include "zelk/configuration/ValueGroup.h"

zelk::configuration::ConfigurationManager* manager() {
  return zelk::configuration::ConfigurationManager::getInstance();
}
