// ApplicationValueProvider: the value provider of values set by the application itself (provider
// id "APP_VALUES").
//
// The manager makes it on the first ConfigurationManager::setApplicationValues(); its values take
// precedence over every other provider's. It answers every specification with the group it was
// given; merging keeps only what matches.
//
//   ValueGroup mine(spec);
//   mine.addValue("level", "5");
//   ConfigurationManager::getInstance()->setApplicationValues(mine, 0);
#pragma once

#include <string>

#include "zelk/configuration/ValueProvider.h"

namespace zelk::configuration {

namespace impl {
class ApplicationValueProviderImpl;
}

class ApplicationValueProvider : public ValueProvider {
public:
  // A disabled provider with the given priority and description; its id is "APP_VALUES".
  ApplicationValueProvider(int priority, const std::string& description);
  ~ApplicationValueProvider() override;

  // "APP_VALUES".
  const char* getName() const override;
};

}  // namespace zelk::configuration
