// ConfigurationManagerImpl: the registries, value cache and result buffers behind a
// ConfigurationManager, and the operations that fill and query them.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <shared_mutex>
#include <string>
#include <thread>
#include <unordered_map>
#include <vector>

#include <boost/intrusive_ptr.hpp>
#include <boost/shared_ptr.hpp>

#include "zelk/configuration/ConfigurationManager.h"
#include "zelk/configuration/impl/ObjectMap.h"
#include "zelk/configuration/impl/RegistryGeneration.h"
#include "zelk/configuration/impl/ValueFileSource.h"
#include "zelk/util/CaseInsensitiveLess.h"

namespace zelk::host {
class ExtensionPoint;
}

namespace zelk::configuration::impl {

class ChangeSource;
class ValueFollower;
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
  // One text buffer per calling thread (see composeHelpMessage).
  typedef std::map<std::thread::id, std::string> ThreadTexts;

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

  void registerValidator(Validator* validator);
  Validator* getValidator(const char* name) const;
  bool unregisterValidator(const char* name);
  IEnumerator<Validator*>* getValidatorEnumerator() const;

  void registerGlobalItem(GlobalItem* item);
  GlobalItem* getGlobalItem(const char* name) const;
  bool unregisterGlobalItem(const char* name);
  IEnumerator<GlobalItem*>* getGlobalItemEnumerator() const;

  void registerEnumDefinition(EnumDefinition* enumDefinition);
  EnumDefinition* getEnumDefinition(const char* name) const;
  bool unregisterEnumDefinition(const char* name);
  IEnumerator<EnumDefinition*>* getEnumDefinitionEnumerator() const;

  void registerSpecification(Specification* specification);
  Specification* getSpecification(const char* name) const;
  bool unregisterSpecification(const char* name);
  IEnumerator<Specification*>* getSpecificationEnumerator() const;

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

  // Value retrieval. Once the registries and providers are set up, getValueGroup,
  // getCachedValues, exchangeCachedValues and the two compose operations may be called from
  // several threads at once; everything else (registering, enabling, resetting, clearing the
  // cache) must not run beside them.
  //
  // The cache has its own reader/writer lock, held only to look an id up or to store a tree: a
  // cached tree is handed out under the shared lock alone. A tree that is not cached yet is
  // computed under a separate lock that serialises the calls into the providers (they keep
  // parsed state of their own), never under the cache lock, so readers of cached ids do not wait
  // for it. Concurrent first calls for the same id may each compute a tree; the first one stored
  // wins and every caller gets that one.
  ValueGroup getValueGroup(const char* specificationId, bool required, int flags) const;
  boost::shared_ptr<ValueGroupState> getCachedValues(const char* specificationId, bool required,
                                                     int flags) const;
  // Asks the enabled providers and merges their answers (serialised with the other calls into
  // the providers); not cached.
  ValueGroup getValues(const Specification& specification, int flags) const;
  // Replaces the cached tree of specificationId with values in one step and returns the tree
  // cached before (null when there was none); a null values removes the entry. Readers get
  // either the old tree or the new one, whole; trees handed out earlier are not changed. The old
  // tree is released by the caller, outside the cache lock. Contract: specificationId is neither
  // null nor empty.
  boost::shared_ptr<ValueGroupState> exchangeCachedValues(
      const char* specificationId, const boost::shared_ptr<ValueGroupState>& values);
  // Empties the cache; the trees are released after the cache lock is let go.
  // The same over the given providers, in the given order.
  ValueGroup getValues(const Specification& specification, int flags,
                       const std::vector<ValueProvider*>& providers) const;
  void clearValueCache();
  // Holds the lock under which trees are computed from the providers, so that a caller that
  // replaces providers while readers may be computing trees does so between two computations.
  // Recursive: getValues and getCachedValues may be called while it is held. Take it before the
  // cache lock (that is, before exchangeCachedValues), never after.
  std::unique_lock<std::recursive_mutex> lockProviders() const;
  void setApplicationValues(const ValueGroup& values, int flags);
  void validateValues(const Specification& specification, ValueGroup& values,
                      ValidationErrors* errors) const;

  // Contracts: providerName and specificationId are neither null nor empty. The text is kept in
  // a buffer of the calling thread, valid until the same thread calls the same operation of this
  // manager again: several threads may compose at once without overwriting each other's text.
  // The texts are composed one at a time (providers keep their last text in a buffer of their
  // own). A thread's buffer lives as long as the manager.
  const char* composeUsageMessage(const char* specificationId, const char* providerName) const;
  const char* composeHelpMessage(const char* specificationId, unsigned long screenWidth,
                                 unsigned long maxParameterNameWidth,
                                 const char* providerName) const;

  const char* getRepresentation(const ValueGroupItem& item);
  const char* getRepresentation(const GroupItem& item);
  const char* getRepresentation(const Specification& specification);

  // The size limit of the registry and value files this manager reads (see ConfigurationManager).
  void setMaxFileSize(std::size_t bytes);
  std::size_t getMaxFileSize() const { return mMaxFileSize.load(std::memory_order_relaxed); }

  // Whether loads keep positions, and the registry defaults' places (see ConfigurationManager).
  void setKeepPositions(bool keep) { mKeepPositions.store(keep, std::memory_order_relaxed); }
  bool getKeepPositions() const { return mKeepPositions.load(std::memory_order_relaxed); }
  SourcePosition getDefaultPosition(const ParameterRef& reference) const;
  // Called by the registry loader, when positions are kept, for an item (a Parameter or a
  // ParameterRef) whose "default" attribute stands at position.
  void keepDefaultPosition(const void* item, const SourcePosition& position);

  // The priority for the next provider made for a file or the command line; each call takes one.
  int takeNextPriority() { return mNextPriority++; }

  // Adds a source of values that can change while the application runs (see ChangeSource), for
  // the following started after this call; takes ownership (contract: not null). Sources go with
  // the providers on clearCaches().
  void addChangeSource(ChangeSource* source);
  const std::vector<std::unique_ptr<ChangeSource> >& getChangeSources() const {
    return mChangeSources;
  }

  // Following (see ConfigurationManager::followValues).
  void followValues(const char* specificationId, const FollowOptions& options);
  void stopFollowing();
  bool isFollowing() const { return mFollower != nullptr; }
  // True while the value files are polled rather than watched through inotify.
  bool isPollingValueFiles() const;
  // On the following thread: asks every source for its changes, builds and checks the new tree,
  // and puts it in force (then tells the listeners) or refuses it. Never throws.
  void applyFollowedChange(ValueFollower& follower);
  // The value files loaded by enableConfiguration, in load order.
  const std::vector<ValueFileSource::File>& getValueFiles() const { return mValueFiles; }

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
  std::vector<ValueFileSource::File> mValueFiles;
  std::unique_ptr<ValueFileSource> mValueFileSource;
  std::unique_ptr<ValueFollower> mFollower;
  std::string mRepresentation;
  int32_t mNextPriority;
  // Atomic: the following thread reads it while the application may set a new limit.
  std::atomic<std::size_t> mMaxFileSize;
  std::atomic<bool> mKeepPositions;  // read by the following thread too
  // The place of each registry default, by item, while positions are kept; cleared with the
  // registries.
  std::unordered_map<const void*, SourcePosition> mDefaultPositions;
  // Lists the validator plug-ins; placed in memory from the host's allocator.
  zelk::host::ExtensionPoint* mValidatorExtensionPoint;
  // Guards mValueCache only; std::shared_mutex because a reader takes it on every
  // getValueGroup, and its shared lock is one atomic operation each way.
  mutable std::shared_mutex mValueCacheMutex;
  mutable ValueCache mValueCache;
  // Serialises the calls into the providers that compute trees (recursive: a provider or
  // validator may ask this manager for values of another specification).
  mutable std::recursive_mutex mComputeMutex;
  // Guards the two buffers below and the composing of their texts.
  mutable std::mutex mTextMutex;
  mutable ThreadTexts mHelpMessages;
  mutable ThreadTexts mUsageMessages;
};

}  // namespace zelk::configuration::impl
