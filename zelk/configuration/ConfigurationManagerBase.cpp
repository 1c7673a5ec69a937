#include "zelk/configuration/ConfigurationManagerBase.h"

namespace zelk::configuration {

ConfigurationManagerBase::~ConfigurationManagerBase() {}

}  // namespace zelk::configuration
