// ConfigurationManagerBase: the plug-in object type of the "Configuration Manager" extension point.
//
// The host receives the configuration manager through createPlugin() as an object of this empty
// polymorphic base and casts it back to ConfigurationManager.
//
//   auto* base = static_cast<ConfigurationManagerBase*>(createPlugin());
//   auto* manager = dynamic_cast<ConfigurationManager*>(base);
#pragma once

namespace zelk::configuration {

class ConfigurationManagerBase {
public:
  virtual ~ConfigurationManagerBase();
};

}  // namespace zelk::configuration
