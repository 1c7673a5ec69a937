// ConfigurationRegistryLoader: reads one configuration registry file (".crg") and registers the
// enumerations, parameters, groups and specifications it declares in a configuration manager.
//
// The manager loads "zelk.crg" and the other registry files of the installation by itself when
// it starts; tools call the loader for files of their own, or to fill an independent manager:
//
//   ConfigurationManager* manager = impl::Factory::createManager();
//   ConfigurationRegistryLoader::loadFile("/opt/tool/tool.crg", manager, 0);
//   Specification* tool = manager->getSpecification("tool");
//
// References in a file resolve against what the manager holds already, so a file may use
// anything defined earlier in itself or in a file loaded before it.
#pragma once

namespace zelk::configuration {

class ConfigurationManager;

class ConfigurationRegistryLoader {
public:
  ConfigurationRegistryLoader() = delete;

  // Loads the registry file at path into manager (the process-wide manager when null); flags are
  // not used. Throws ConfigurationException "File "%s" was not found" when the file cannot be
  // opened, ConfigurationException "File "<path>" is <size> bytes long, more than the limit of
  // <limit> bytes" when it is larger than manager->getMaxFileSize(), ConfigurationException for a
  // look-up failure, an unknown type word, a bad integer, a duplicate enumeration or a newer
  // schema version, and ValidationException for malformed content ("missing attribute: <name>",
  // "Unexpected ... at line L, column C ...", "A value longer than 65536 bytes starts at ...").
  // Objects registered before a failure stay registered.
  static void loadFile(const char* path, ConfigurationManager* manager, int flags);
};

}  // namespace zelk::configuration
