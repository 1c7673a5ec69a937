// ConfigurationManagerImpl: the registries, value cache and result buffers behind a
// ConfigurationManager, and the operations that fill and query them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include <boost/intrusive_ptr.hpp>
#include <boost/shared_ptr.hpp>

#include "zelk/configuration/ConfigurationManager.h"
#include "zelk/configuration/impl/ObjectMap.h"
#include "zelk/configuration/impl/RegistryGeneration.h"
#include "zelk/util/CaseInsensitiveLess.h"

namespace zelk::host {
class ExtensionPoint;
}

namespace zelk::configuration::impl {

class ChangeSource;
class ValueGroupState;

class ConfigurationManagerImpl {
public:
  // Each destroys one registered object through the factory, without unregistering it.
  static void destroy(Specification* specification);
  static void destroy(EnumDefinition* enumDefinition);
  static void destroy(GlobalItem* item);
  static void destroy(Validator* validator);
  static void destroy(ValueProvider* provider);

  typedef ObjectMap<Specification, &ConfigurationManagerImpl::destroy> SpecificationMap;
  typedef ObjectMap<EnumDefinition, &ConfigurationManagerImpl::destroy> EnumDefinitionMap;
  typedef ObjectMap<GlobalItem, &ConfigurationManagerImpl::destroy> GlobalItemMap;
  typedef ObjectMap<Validator, &ConfigurationManagerImpl::destroy> ValidatorMap;
  typedef ObjectMap<ValueProvider, &ConfigurationManagerImpl::destroy> ValueProviderMap;
  // Specification id -> completed values; ids that differ only in case share an entry.
  typedef std::map<std::string, boost::shared_ptr<ValueGroupState>, zelk::CaseInsensitiveLess>
      ValueCache;

  explicit ConfigurationManagerImpl(ConfigurationManager* self);
  // clearCaches(), then the maps are released.
  ~ConfigurationManagerImpl();

  // The public manager (a contract: set).
  ConfigurationManager* getSelf() const;

  // Registries (see ConfigurationManager).
  void registerValueProvider(ValueProvider* provider);
  ValueProvider* getValueProvider(const char* name) const;
  bool unregisterValueProvider(const char* name);
  IEnumerator<ValueProvider*>* getValueProviderEnumerator() const;
  size_t getNumberOfValueProviders() const;

  void registerValidator(Validator* validator);
  Validator* getValidator(const char* name) const;
  bool unregisterValidator(const char* name);
  IEnumerator<Validator*>* getValidatorEnumerator() const;
  size_t getNumberOfValidators() const;

  void registerGlobalItem(GlobalItem* item);
  GlobalItem* getGlobalItem(const char* name) const;
  bool unregisterGlobalItem(const char* name);
  IEnumerator<GlobalItem*>* getGlobalItemEnumerator() const;
  size_t getNumberOfGlobalItems() const;

  void registerEnumDefinition(EnumDefinition* enumDefinition);
  EnumDefinition* getEnumDefinition(const char* name) const;
  bool unregisterEnumDefinition(const char* name);
  IEnumerator<EnumDefinition*>* getEnumDefinitionEnumerator() const;
  size_t getNumberOfEnumDefinitions() const;

  void registerSpecification(Specification* specification);
  Specification* getSpecification(const char* name) const;
  bool unregisterSpecification(const char* name);
  IEnumerator<Specification*>* getSpecificationEnumerator() const;
  size_t getNumberOfSpecifications() const;

  // Start-up and discovery.
  void enableConfiguration(bool allowMachineConfig, const char* applicationConfigFile,
                           unsigned int argc, const char* const* argv,
                           const char* specificationId);
  void loadDefaultConfigurationRegistry();
  // See ConfigurationManager.
  void addEtcdConfiguration(const EtcdSource& source);
  // An etcd provider for each "etcdConfiguration" element of the value files registered, in
  // their order.
  void addEtcdConfigurationsOfFiles();
  bool loadConfigurationFile(const std::string& path, bool ignoreIfMissing);
  void loadAndLogConfigurationFile(const std::string& path, bool ignoreIfMissing);
  void writeFileLogMessage(const std::string& path, bool succeeded);
  // The host's directories with a separator appended, or empty when the host gives none.
  static std::string getConfigurationDir();
  static std::string getPluginDir();
  static std::string getEtcDir();

  void registerDefaultValidators();
  // clearCaches(), the priorities restart at 1, registerDefaultValidators() and
  // loadDefaultConfigurationRegistry().
  void reset();
  // Empties the value cache, destroys the providers, retires the specifications, global items,
  // validators and enumeration definitions into the current registry generation and starts a new
  // one, then empties the representation buffer. The retired objects are destroyed at once unless
  // values handed out are still bound to them; then they go with the last of those.
  void clearCaches();

  // Value retrieval.
  ValueGroup getValueGroup(const char* specificationId, bool required, int flags) const;
  boost::shared_ptr<ValueGroupState> getCachedValues(const char* specificationId, bool required,
                                                     int flags) const;
  ValueGroup getValues(const Specification& specification, int flags) const;
  void clearValueCache();
  void setApplicationValues(const ValueGroup& values, int flags);
  void validateValues(const Specification& specification, ValueGroup& values,
                      ValidationErrors* errors) const;

  // Contracts: providerName and specificationId are neither null nor empty.
  const char* composeUsageMessage(const char* specificationId, const char* providerName) const;
  const char* composeHelpMessage(const char* specificationId, unsigned long screenWidth,
                                 unsigned long maxParameterNameWidth,
                                 const char* providerName) const;

  const char* getRepresentation(const ValueGroupItem& item);
  const char* getRepresentation(const GroupItem& item);
  const char* getRepresentation(const Specification& specification);

  // The size limit of the registry and value files this manager reads (see ConfigurationManager).
  void setMaxFileSize(std::size_t bytes);
  std::size_t getMaxFileSize() const { return mMaxFileSize; }

  // The priority for the next provider made for a file or the command line; each call takes one.
  int takeNextPriority() { return mNextPriority++; }

  // Adds a source of values that can change while the application runs (see ChangeSource), for
  // the following started after this call; takes ownership (contract: not null). Sources go with
  // the providers on clearCaches().
  void addChangeSource(ChangeSource* source);
  const std::vector<std::unique_ptr<ChangeSource> >& getChangeSources() const {
    return mChangeSources;
  }

private:
  ConfigurationManagerImpl(const ConfigurationManagerImpl&) = delete;
  ConfigurationManagerImpl& operator=(const ConfigurationManagerImpl&) = delete;

  ConfigurationManager* mSelf;
  // Owns what the maps below hold once they are cleared (see RegistryGeneration).
  boost::intrusive_ptr<RegistryGeneration> mGeneration;
  SpecificationMap mSpecifications;
  EnumDefinitionMap mEnumDefinitions;
  GlobalItemMap mGlobalItems;
  ValidatorMap mValidators;
  ValueProviderMap mValueProviders;
  std::vector<std::unique_ptr<ChangeSource> > mChangeSources;
  std::string mRepresentation;
  int32_t mNextPriority;
  std::size_t mMaxFileSize;
  // Lists the validator plug-ins; placed in memory from the host's allocator.
  zelk::host::ExtensionPoint* mValidatorExtensionPoint;
  mutable ValueCache mValueCache;
  mutable std::string mHelpMessage;
  mutable std::string mUsageMessage;
};

}  // namespace zelk::configuration::impl
