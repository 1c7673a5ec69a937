#include "zelk/configuration/impl/ConfigurationManagerImpl.h"

#include <strings.h>

#include <algorithm>
#include <exception>
#include <iterator>
#include <memory>
#include <new>
#include <set>
#include <string>
#include <vector>

#include <boost/scoped_ptr.hpp>

#include "zelk/configuration/ApplicationValueProvider.h"
#include "zelk/configuration/ConfigurationException.h"
#include "zelk/configuration/ConfigurationRegistryLoader.h"
#include "zelk/configuration/EnumDefinition.h"
#include "zelk/configuration/EtcdSource.h"
#include "zelk/configuration/EtcdValueProvider.h"
#include "zelk/configuration/GlobalItem.h"
#include "zelk/configuration/Parameter.h"
#include "zelk/configuration/ParameterRef.h"
#include "zelk/configuration/Specification.h"
#include "zelk/configuration/ValidationErrors.h"
#include "zelk/configuration/ValidationException.h"
#include "zelk/configuration/Validator.h"
#include "zelk/configuration/Value.h"
#include "zelk/configuration/ValueBase.h"
#include "zelk/configuration/ValueGroup.h"
#include "zelk/configuration/ValueProvider.h"
#include "zelk/configuration/XmlFileValueProvider.h"
#include "zelk/configuration/impl/ChangeSource.h"
#include "zelk/configuration/impl/CommandLineValueProvider.h"
#include "zelk/configuration/impl/CommandLineValueProviderImpl.h"
#include "zelk/configuration/impl/ConfigurationRegistryFilesFinder.h"
#include "zelk/configuration/impl/ContextManager.h"
#include "zelk/configuration/impl/EtcdChangeSource.h"
#include "zelk/configuration/impl/Factory.h"
#include "zelk/configuration/impl/FileOpener.h"
#include "zelk/configuration/impl/GroupItemStringGenerator.h"
#include "zelk/configuration/impl/ObjectMapEnumeratorAdapter.h"
#include "zelk/configuration/impl/SpecificationMatcher.h"
#include "zelk/configuration/impl/StorageLocationValidator.h"
#include "zelk/configuration/impl/ValueAccess.h"
#include "zelk/configuration/impl/ValueFollower.h"
#include "zelk/configuration/impl/ValueGroupItemStringGenerator.h"
#include "zelk/configuration/impl/ValueGroupState.h"
#include "zelk/configuration/impl/ValueGroupValidator.h"
#include "zelk/configuration/impl/ValueProviderImpl.h"
#include "zelk/configuration/impl/ValueState.h"
#include "zelk/configuration/impl/ValueTreeDiff.h"
#include "zelk/configuration/impl/XmlFileValueProviderImpl.h"
#include "zelk/host/ExtensionPoint.h"
#include "zelk/host/HostDirectories.h"
#include "zelk/host/HostFileSystem.h"
#include "zelk/host/HostMainLog.h"
#include "zelk/host/HostProcess.h"
#include "zelk/host/XmlTokenReader.h"
#include "zelk/util/CaseInsensitiveHash.h"
#include "zelk/util/Contracts.h"
#include "zelk/util/StringFunctions.h"
#include "zelk/util/VectorWrapper.h"

namespace zelk::configuration::impl {

void ConfigurationManagerImpl::destroy(Specification* specification) {
  Factory::destroy(specification, false, 0);
}

void ConfigurationManagerImpl::destroy(EnumDefinition* enumDefinition) {
  Factory::destroy(enumDefinition, false, 0);
}

void ConfigurationManagerImpl::destroy(GlobalItem* item) { Factory::destroy(item, false, 0); }

void ConfigurationManagerImpl::destroy(Validator* validator) {
  Factory::destroy(validator, false, 0);
}

void ConfigurationManagerImpl::destroy(ValueProvider* provider) {
  Factory::destroy(provider, false, 0);
}

namespace {

// The caller owns the objects of name it takes back from map: values bound to them from now on
// hold nothing of generation. (A null name is left to the map's own contract check.)
template <typename Map>
void unstamp(const Map& map, const char* name, const RegistryGeneration* generation) {
  if (name == 0) {
    return;
  }
  const auto entries = map.findAll(name);
  for (typename Map::ConstIterator it = entries.first; it != entries.second; ++it) {
    if (RegistryGeneration::of(*it->second) == generation) {
      RegistryGeneration::stamp(*it->second, 0);
    }
  }
}

}  // namespace

ConfigurationManagerImpl::ConfigurationManagerImpl(ConfigurationManager* self)
    : mSelf(self),
      mGeneration(new RegistryGeneration),
      mNextPriority(1),
      mMaxFileSize(zelk::host::XmlTokenReader::DEFAULT_MAX_FILE_SIZE),
      mKeepPositions(false),
      mValidatorExtensionPoint(0) {
  ZELK_CONTRACT(mSelf != 0);
  void* memory = zelk::host::hostMalloc(sizeof(zelk::host::ExtensionPoint));
  try {
    mValidatorExtensionPoint = new (memory) zelk::host::ExtensionPoint("ParameterValidator", 1, 1);
  } catch (...) {
    zelk::host::hostFree(memory);
    throw;
  }
}

ConfigurationManagerImpl::~ConfigurationManagerImpl() {
  try {
    stopFollowing();
  } catch (...) {
    // Destroyed from a following callback: the following thread cannot be joined from itself.
  }
  clearCaches();
  if (mValidatorExtensionPoint != 0) {
    mValidatorExtensionPoint->~ExtensionPoint();
    zelk::host::hostFree(mValidatorExtensionPoint);
  }
}

ConfigurationManager* ConfigurationManagerImpl::getSelf() const {
  ZELK_CONTRACT(mSelf != 0);
  return mSelf;
}

// Value providers.

void ConfigurationManagerImpl::registerValueProvider(ValueProvider* provider) {
  ZELK_CONTRACT(provider != 0);
  std::lock_guard<std::recursive_mutex> lock(mComputeMutex);
  mValueProviders.add(provider->getId(), provider);
  // The provider resolves specifications in the manager that holds it.
  provider->getImpl()->setManager(mSelf);
}

ValueProvider* ConfigurationManagerImpl::getValueProvider(const char* name) const {
  return mValueProviders.get(name, "provider");
}

bool ConfigurationManagerImpl::unregisterValueProvider(const char* name) {
  // The providers taken back no longer look specifications up here. (A null name is left to the
  // map's own contract check.)
  if (name != 0) {
    const auto entries = mValueProviders.findAll(name);
    for (ValueProviderMap::ConstIterator it = entries.first; it != entries.second; ++it) {
      impl::ValueProviderImpl* provider = it->second->getImpl();
      if (provider->getManager() == mSelf) {
        provider->setManager(0);
      }
      // A value file taken back by the application is no longer one of this manager's.
      for (auto file = mValueFiles.begin(); file != mValueFiles.end();) {
        file = file->provider == it->second ? mValueFiles.erase(file) : file + 1;
      }
    }
  }
  std::lock_guard<std::recursive_mutex> lock(mComputeMutex);
  return mValueProviders.remove(name);
}

IEnumerator<ValueProvider*>* ConfigurationManagerImpl::getValueProviderEnumerator() const {
  return new ObjectMapEnumeratorAdapter<ValueProviderMap>(mValueProviders);
}

void ConfigurationManagerImpl::addChangeSource(ChangeSource* source) {
  ZELK_CONTRACT(source != 0);
  mChangeSources.push_back(std::unique_ptr<ChangeSource>(source));
}

// Validators.

void ConfigurationManagerImpl::registerValidator(Validator* validator) {
  ZELK_CONTRACT(validator != 0);
  mValidators.add(validator->getName(), validator);
}

Validator* ConfigurationManagerImpl::getValidator(const char* name) const {
  return mValidators.get(name, "validator");
}

bool ConfigurationManagerImpl::unregisterValidator(const char* name) {
  return mValidators.remove(name);
}

IEnumerator<Validator*>* ConfigurationManagerImpl::getValidatorEnumerator() const {
  return new ObjectMapEnumeratorAdapter<ValidatorMap>(mValidators);
}

// Global items.

void ConfigurationManagerImpl::registerGlobalItem(GlobalItem* item) {
  ZELK_CONTRACT(item != 0);
  mGlobalItems.add(item->getId(), item);
  RegistryGeneration::stamp(*item, mGeneration.get());
}

GlobalItem* ConfigurationManagerImpl::getGlobalItem(const char* name) const {
  return mGlobalItems.get(name, "item");
}

bool ConfigurationManagerImpl::unregisterGlobalItem(const char* name) {
  unstamp(mGlobalItems, name, mGeneration.get());
  return mGlobalItems.remove(name);
}

IEnumerator<GlobalItem*>* ConfigurationManagerImpl::getGlobalItemEnumerator() const {
  return new ObjectMapEnumeratorAdapter<GlobalItemMap>(mGlobalItems);
}

// Enumeration definitions.

void ConfigurationManagerImpl::registerEnumDefinition(EnumDefinition* enumDefinition) {
  ZELK_CONTRACT(enumDefinition != 0);
  mEnumDefinitions.add(enumDefinition->getName(), enumDefinition);
}

EnumDefinition* ConfigurationManagerImpl::getEnumDefinition(const char* name) const {
  return mEnumDefinitions.get(name, "enumeration definition");
}

bool ConfigurationManagerImpl::unregisterEnumDefinition(const char* name) {
  return mEnumDefinitions.remove(name);
}

IEnumerator<EnumDefinition*>* ConfigurationManagerImpl::getEnumDefinitionEnumerator() const {
  return new ObjectMapEnumeratorAdapter<EnumDefinitionMap>(mEnumDefinitions);
}

// Specifications.

void ConfigurationManagerImpl::registerSpecification(Specification* specification) {
  ZELK_CONTRACT(specification != 0);
  mSpecifications.add(specification->getId(), specification);
  RegistryGeneration::stamp(*specification, mGeneration.get());
}

Specification* ConfigurationManagerImpl::getSpecification(const char* name) const {
  return mSpecifications.get(name, "specification");
}

bool ConfigurationManagerImpl::unregisterSpecification(const char* name) {
  unstamp(mSpecifications, name, mGeneration.get());
  return mSpecifications.remove(name);
}

IEnumerator<Specification*>* ConfigurationManagerImpl::getSpecificationEnumerator() const {
  return new ObjectMapEnumeratorAdapter<SpecificationMap>(mSpecifications);
}

// Start-up and discovery.

namespace {

// The host's directory separator, for joining directories with file names and for finding the
// file-name part of a path.
const std::string DIRECTORY_SEPARATOR(1, zelk::host::hostGetDirSeparator(nullptr));
const char* const MACHINE_CONFIGURATION_FILE_NAME = "machine.config";
const char* const LOAD_CONFIGURATION_SWITCH = "-loadConfiguration";
const char* const ETCD_CONFIGURATION_SWITCH = "-etcdConfiguration";
// The value-file element that names a cluster source; its attributes are EtcdSource's settings.
const char* const ETCD_CONFIGURATION_ELEMENT = "etcdConfiguration";
const char* const LOG_CATEGORY = MAIN_LOG_CATEGORY;

// The host directory that lookup gives, with a separator at its end; empty when there is none.
std::string hostDirectory(bool (*lookup)(char*)) {
  char buffer[zelk::host::HOST_PATH_BUFFER_SIZE];
  if (!lookup(buffer)) {
    return std::string();
  }
  return zelk::appendSuffix(buffer, DIRECTORY_SEPARATOR);
}

// A null argument is read as an empty one.
const char* argumentAt(const char* const* argv, unsigned int index) {
  return argv[index] != 0 ? argv[index] : "";
}

}  // namespace

void ConfigurationManagerImpl::enableConfiguration(bool allowMachineConfig,
                                                   const char* applicationConfigFile,
                                                   unsigned int argc, const char* const* argv,
                                                   const char* specificationId) {
  reset();

  std::string log = "enableConfiguration:\n [allow machine config = ";
  log += allowMachineConfig ? "true" : "false";
  log += "]\n [application config file = \"";
  if (applicationConfigFile != 0) {
    log += applicationConfigFile;
  }
  log += "\"]\n [command line = ";
  for (unsigned int i = 0; argv != 0 && i < argc; ++i) {
    log += i == 0 ? "\"" : ", \"";
    log += argumentAt(argv, i);
    log += "\"";
  }
  log += "]";
  zelk::host::hostAddToMainLog(LOG_CATEGORY, log.c_str());

  ContextManager scope;
  mValueProviders.clear();

  if (argc != 0 && argv != 0) {
    std::vector<std::string> arguments;
    arguments.reserve(argc);
    arguments.push_back(argumentAt(argv, 0));
    // Where each word kept stands in argv, for explaining values (only when positions are kept).
    const bool keepWords = getKeepPositions();
    std::vector<int> wordNumbers;
    if (keepWords) wordNumbers.push_back(0);
    for (unsigned int i = 1; i < argc; ++i) {
      const char* argument = argumentAt(argv, i);
      const char* value = 0;
      if (argument[0] == '-' && i + 1 < argc &&
          CommandLineValueProvider::isFlagValue(argumentAt(argv, i + 1))) {
        value = argumentAt(argv, ++i);
      }
      if (strcasecmp(argument, LOAD_CONFIGURATION_SWITCH) == 0) {
        if (value == 0 || *value == '\0') {
          throw ConfigurationException("Missing value for the -loadConfiguration parameter");
        }
        loadAndLogConfigurationFile(value, false);
        continue;
      }
      if (strcasecmp(argument, ETCD_CONFIGURATION_SWITCH) == 0) {
        if (value == 0 || *value == '\0') {
          throw ConfigurationException("Missing value for the -etcdConfiguration parameter");
        }
        addEtcdConfiguration(EtcdSource::parse(value));
        continue;
      }
      arguments.push_back(argument);
      if (keepWords) wordNumbers.push_back(static_cast<int>(value != 0 ? i - 1 : i));
      if (value != 0) {
        arguments.push_back(value);
        if (keepWords) wordNumbers.push_back(static_cast<int>(i));
      }
    }
    // Without a specification id the command line has nothing to be matched to: it is dropped.
    if (specificationId != 0 && *specificationId != '\0') {
      CommandLineValueProvider* provider =
          Factory::registerOrDelete(new CommandLineValueProvider(takeNextPriority(), ""),
                                    [this](ValueProvider* p) { registerValueProvider(p); });
      provider->getCommandLineImpl()->setWordNumbers(wordNumbers);
      zelk::VectorWrapper wrapped(arguments);
      provider->enableProvider(static_cast<int>(wrapped.size()), wrapped.data(), specificationId,
                               0);
    }
  }

  if (applicationConfigFile != 0 && *applicationConfigFile != '\0') {
    loadAndLogConfigurationFile(applicationConfigFile, false);
  }
  if (allowMachineConfig) {
    loadAndLogConfigurationFile(getConfigurationDir() + MACHINE_CONFIGURATION_FILE_NAME, true);
  }
  addEtcdConfigurationsOfFiles();
}

void ConfigurationManagerImpl::addEtcdConfiguration(const EtcdSource& source) {
  ContextManager scope;
  std::unique_ptr<EtcdValueProvider> provider(new EtcdValueProvider(takeNextPriority(), ""));
  // Read under this manager's size limit, and registered only once the read succeeded.
  provider->getImpl()->setManager(mSelf);
  provider->enableProvider(source);
  registerValueProvider(provider.get());
  // Followed with the other sources when the application follows its values.
  addChangeSource(new EtcdChangeSource(provider.release()));
}

void ConfigurationManagerImpl::addEtcdConfigurationsOfFiles() {
  std::vector<EtcdSource> sources;
  std::unique_ptr<IEnumerator<ValueProvider*>> providers(getValueProviderEnumerator());
  for (; providers->hasNext(); providers->moveNext()) {
    const XmlFileValueProvider* file =
        dynamic_cast<const XmlFileValueProvider*>(providers->getCurrent());
    if (file == 0) {
      continue;
    }
    for (const auto& settings : file->getXmlFileImpl()->findTopElements(ETCD_CONFIGURATION_ELEMENT)) {
      EtcdSource source;
      for (const auto& setting : settings) {
        source.set(setting.first, setting.second);
      }
      source.check();
      sources.push_back(source);
    }
  }
  for (const EtcdSource& source : sources) {
    addEtcdConfiguration(source);
  }
}

void ConfigurationManagerImpl::loadDefaultConfigurationRegistry() {
  ContextManager scope;
  ConfigurationRegistryFilesFinder finder;
  const std::string etcDir = getEtcDir();
  if (!etcDir.empty()) {
    finder.scan(etcDir.c_str(), false);  // the result is not a success flag
  }
  const std::string pluginDir = getPluginDir();
  if (!pluginDir.empty()) {
    finder.scan(pluginDir.c_str(), true);
  }
  std::string mainRegistry;
  if (!finder.takeMainRegistry(DIRECTORY_SEPARATOR, mainRegistry)) {
    throw ConfigurationException(
        "Unable to find the %s file.",
        ConfigurationRegistryFilesFinder::MAIN_CONFIGURATION_REGISTRY_FILE_NAME);
  }
  // Into this manager: for the default manager that is the instance the loader would fall back
  // to, and an independent manager keeps its registries to itself. A failure stops the files
  // that come after.
  ConfigurationRegistryLoader::loadFile(mainRegistry.c_str(), mSelf, 0);
  const std::set<std::string>& files = finder.getFiles();
  for (std::set<std::string>::const_iterator file = files.begin(); file != files.end(); ++file) {
    ConfigurationRegistryLoader::loadFile(file->c_str(), mSelf, 0);
  }
}

void ConfigurationManagerImpl::setMaxFileSize(std::size_t bytes) {
  ZELK_CONTRACT(bytes > 0);
  mMaxFileSize.store(bytes, std::memory_order_relaxed);
}

SourcePosition ConfigurationManagerImpl::getDefaultPosition(const ParameterRef& reference) const {
  auto found = mDefaultPositions.find(&reference);
  if (found == mDefaultPositions.end()) found = mDefaultPositions.find(reference.getParameter());
  return found != mDefaultPositions.end() ? found->second : SourcePosition();
}

void ConfigurationManagerImpl::keepDefaultPosition(const void* item,
                                                   const SourcePosition& position) {
  mDefaultPositions[item] = position;
}

bool ConfigurationManagerImpl::loadConfigurationFile(const std::string& path,
                                                     bool ignoreIfMissing) {
  std::string file = path;
  // A bare file name that is not in the working directory is looked up in the configuration
  // directory.
  if (zelk::host::hostFileExists(file.c_str()) == zelk::host::HOST_FILE_NOT_FOUND &&
      file.find(DIRECTORY_SEPARATOR) == std::string::npos) {
    file = getConfigurationDir() + file;
  }
  if (zelk::host::hostFileExists(file.c_str()) != zelk::host::HOST_FILE_NOT_FOUND) {
    XmlFileValueProvider* provider =
        Factory::registerOrDelete(new XmlFileValueProvider(takeNextPriority(), ""),
                                  [this](ValueProvider* p) { registerValueProvider(p); });
    provider->enableProvider(file.c_str(), 0);
    mValueFiles.push_back(ValueFileSource::File{file, provider, provider->getPriority(),
                                                ignoreIfMissing});
    return true;
  }
  if (ignoreIfMissing) {
    // Followed all the same: it may be created while the application runs.
    mValueFiles.push_back(ValueFileSource::File{file, 0, mNextPriority, true});
    return false;
  }
  throwFileNotFound(file, std::string());
}

void ConfigurationManagerImpl::loadAndLogConfigurationFile(const std::string& path,
                                                           bool ignoreIfMissing) {
  ContextManager scope;
  bool loaded;
  try {
    loaded = loadConfigurationFile(path, ignoreIfMissing);
  } catch (const std::exception&) {
    writeFileLogMessage(path, false);
    throw;
  }
  // A missing file that may be missing leaves no trace in the log.
  if (loaded) {
    writeFileLogMessage(path, true);
  }
}

void ConfigurationManagerImpl::writeFileLogMessage(const std::string& path, bool succeeded) {
  std::string text = "loadConfigurationFile: [";
  text += succeeded ? "succeeded" : "failed";
  text += "]\n [file = \"";
  text += path;
  text += "\"]";
  zelk::host::hostAddToMainLog(LOG_CATEGORY, text.c_str());
}

std::string ConfigurationManagerImpl::getConfigurationDir() {
  return hostDirectory(&zelk::host::hostGetConfigDir);
}

std::string ConfigurationManagerImpl::getPluginDir() {
  return hostDirectory(&zelk::host::hostGetPluginsDir);
}

std::string ConfigurationManagerImpl::getEtcDir() {
  return hostDirectory(&zelk::host::hostGetEtcDir);
}

void ConfigurationManagerImpl::registerDefaultValidators() {
  ContextManager scope;
  Factory::registerOrDelete(new StorageLocationValidator(),
                            [this](Validator* v) { registerValidator(v); });
  const size_t count = mValidatorExtensionPoint->pluginCount();
  for (size_t i = 0; i < count; ++i) {
    void* object = mValidatorExtensionPoint->plugin(i)->createImplementation();
    // A plug-in that makes nothing is skipped silently.
    if (object != 0) {
      registerValidator(static_cast<Validator*>(object));
    }
  }
}

void ConfigurationManagerImpl::reset() {
  clearCaches();
  mNextPriority = 1;
  registerDefaultValidators();
  loadDefaultConfigurationRegistry();
}

void ConfigurationManagerImpl::clearCaches() {
  // Following reads the providers and sources cleared here.
  stopFollowing();
  // Values first: they point into the specifications, which point to the global items. Trees
  // handed out may still hold the generation; the objects then live on with them.
  clearValueCache();
  mChangeSources.clear();
  mValueFiles.clear();
  mValueProviders.clear();
  mGeneration->retire(mSpecifications.release(), mGlobalItems.release(), mValidators.release(),
                      mEnumDefinitions.release());
  mGeneration = new RegistryGeneration;
  mDefaultPositions.clear();
  mRepresentation.clear();
}

// Value retrieval.

namespace {

// True when values hold a true "help" value: a help request must never fail because required
// values are missing. Only a boolean (or untyped) "help" holding a text is read, so that no other
// kind of "help" makes the read throw.
bool isHelpRequest(const ValueGroup& values) {
  ValidationErrors ignored;
  Value help = values.getValue("help", &ignored, false);
  if (help.isNull() || !help.hasValue()) {
    return false;
  }
  const int type = help.getValueType();
  return (type == Parameter::BOOL || type == -1) && help.asBool();
}

}  // namespace

ValueGroup ConfigurationManagerImpl::getValueGroup(const char* specificationId, bool required,
                                                   int flags) const {
  return ValueGroup(getCachedValues(specificationId, required, flags));
}

boost::shared_ptr<ValueGroupState> ConfigurationManagerImpl::getCachedValues(
    const char* specificationId, bool required, int flags) const {
  const Specification* specification = getSpecification(specificationId);
  if (specification == 0) {
    throw ConfigurationException("The \"%s\" specification was not found", specificationId);
  }
  // Neither the flags nor required are part of the key: a later call with others gets the values
  // computed first, and a cached null stays null.
  {
    std::shared_lock<std::shared_mutex> lock(mValueCacheMutex);
    ValueCache::const_iterator cached = mValueCache.find(specificationId);
    if (cached != mValueCache.end()) {
      return cached->second;
    }
  }
  boost::shared_ptr<ValueGroupState> state;
  {
    std::lock_guard<std::recursive_mutex> compute(mComputeMutex);
    ValueGroup values = getValues(*specification, flags);
    if (values.isNull()) {
      if (required) {
        throw ConfigurationException("The \"%s\" group was not found", specificationId);
      }
      values = ValueGroup(specification);
    }
    values.complete();
    state = ValueAccess::peekState(values);
  }
  // The first tree stored wins: a caller that computed beside another gets the stored one.
  std::unique_lock<std::shared_mutex> lock(mValueCacheMutex);
  return mValueCache.insert(ValueCache::value_type(specificationId, state)).first->second;
}

boost::shared_ptr<ValueGroupState> ConfigurationManagerImpl::exchangeCachedValues(
    const char* specificationId, const boost::shared_ptr<ValueGroupState>& values) {
  ZELK_CONTRACT(specificationId != 0 && *specificationId != '\0');
  boost::shared_ptr<ValueGroupState> previous;
  std::unique_lock<std::shared_mutex> lock(mValueCacheMutex);
  const ValueCache::iterator entry = mValueCache.find(specificationId);
  if (entry != mValueCache.end()) {
    previous.swap(entry->second);
    if (values) {
      entry->second = values;
    } else {
      mValueCache.erase(entry);
    }
  } else if (values) {
    mValueCache.insert(ValueCache::value_type(specificationId, values));
  }
  return previous;
}

ValueGroup ConfigurationManagerImpl::getValues(const Specification& specification,
                                               int flags) const {
  // Registry key order: "APP_VALUES", then "CLI", then the "XML_FILE"s in registration order, so
  // that the first answer for a bounded value wins in that order.
  std::lock_guard<std::recursive_mutex> compute(mComputeMutex);
  std::vector<ValueProvider*> providers;
  providers.reserve(mValueProviders.size());
  for (ValueProviderMap::ConstIterator it = mValueProviders.begin(); it != mValueProviders.end();
       ++it) {
    providers.push_back(it->second);
  }
  return getValues(specification, flags, providers);
}

ValueGroup ConfigurationManagerImpl::getValues(const Specification& specification, int flags,
                                               const std::vector<ValueProvider*>& providers) const {
  // Each provider skips the required and one-of checks: only the merged tree can be judged on
  // those.
  const int PROVIDER_FLAGS = 0x14;
  std::lock_guard<std::recursive_mutex> compute(mComputeMutex);
  ValueGroup result(&specification);
  for (ValueProvider* provider : providers) {
    if (!provider->getEnabled()) {
      continue;
    }
    ValueGroup answer = provider->getValues(specification, flags | PROVIDER_FLAGS);
    result.merge(specification, answer);
  }
  if (result.getItemCount() == 0) {
    return ValueGroup::Null;
  }
  if (!isHelpRequest(result)) {
    ValidationErrors errors;
    ValueGroupValidator::validate(specification, result, errors, flags);
    errors.throwIfErrors();
  }
  return result;
}

std::unique_lock<std::recursive_mutex> ConfigurationManagerImpl::lockProviders() const {
  return std::unique_lock<std::recursive_mutex>(mComputeMutex);
}

void ConfigurationManagerImpl::clearValueCache() {
  ValueCache dropped;
  {
    std::unique_lock<std::shared_mutex> lock(mValueCacheMutex);
    dropped.swap(mValueCache);
  }
}

void ConfigurationManagerImpl::setApplicationValues(const ValueGroup& values, int flags) {
  std::lock_guard<std::recursive_mutex> lock(mComputeMutex);
  ValueProvider* provider = getValueProvider(ConfigurationManager::APPLICATION_PROVIDER_NAME);
  if (provider == 0) {
    provider = Factory::registerOrDelete(new ApplicationValueProvider(0, ""),
                                         [this](ValueProvider* p) { registerValueProvider(p); });
  } else {
    provider->reset();
  }
  provider->enableProvider(values, flags);
  clearValueCache();
}

void ConfigurationManagerImpl::validateValues(const Specification& specification,
                                              ValueGroup& values,
                                              ValidationErrors* errors) const {
  ValidationErrors local;
  ValidationErrors& collector = errors != 0 ? *errors : local;
  SpecificationMatcher::match(values, specification, collector);
  ValueGroupValidator::validate(specification, values, collector, 0);
  if (errors == 0) {
    local.throwIfErrors();
  }
}

// Help, usage and representations.

namespace {

// The calling thread's buffer in texts; the caller holds the lock that guards texts. Map nodes
// do not move, so a text handed out stays where it is while other threads add theirs.
std::string& bufferOfThisThread(ConfigurationManagerImpl::ThreadTexts& texts) {
  return texts[std::this_thread::get_id()];
}

}  // namespace

const char* ConfigurationManagerImpl::composeUsageMessage(const char* specificationId,
                                                          const char* providerName) const {
  ZELK_CONTRACT(providerName != 0 && *providerName != '\0');
  ZELK_CONTRACT(specificationId != 0 && *specificationId != '\0');
  // A missing specification is not an error here.
  const Specification* specification = getSpecification(specificationId);
  const ValueProvider* provider = getValueProvider(providerName);
  std::lock_guard<std::mutex> lock(mTextMutex);
  std::string& text = bufferOfThisThread(mUsageMessages);
  text.clear();
  if (specification == 0) {
    // Nothing to describe: the text stays empty.
  } else if (provider != 0) {
    text = provider->composeUsageMessage(*specification);
  } else {
    CommandLineValueProvider temporary(1, "");
    text = temporary.composeUsageMessage(*specification);
  }
  return text.c_str();
}

const char* ConfigurationManagerImpl::composeHelpMessage(const char* specificationId,
                                                         unsigned long screenWidth,
                                                         unsigned long maxParameterNameWidth,
                                                         const char* providerName) const {
  ZELK_CONTRACT(providerName != 0 && *providerName != '\0');
  ZELK_CONTRACT(specificationId != 0 && *specificationId != '\0');
  // A missing specification is not an error here.
  const Specification* specification = getSpecification(specificationId);
  const ValueProvider* provider = getValueProvider(providerName);
  std::lock_guard<std::mutex> lock(mTextMutex);
  std::string& text = bufferOfThisThread(mHelpMessages);
  text.clear();
  if (specification == 0) {
    // Nothing to describe: the text stays empty.
  } else if (provider != 0) {
    text = provider->composeHelpMessage(*specification, screenWidth, maxParameterNameWidth);
  } else {
    CommandLineValueProvider temporary(1, "");
    text = temporary.composeHelpMessage(*specification, screenWidth, maxParameterNameWidth);
  }
  return text.c_str();
}

const char* ConfigurationManagerImpl::getRepresentation(const ValueGroupItem& item) {
  mRepresentation = ValueGroupItemStringGenerator::getString(item);
  return mRepresentation.c_str();
}

const char* ConfigurationManagerImpl::getRepresentation(const GroupItem& item) {
  mRepresentation = GroupItemStringGenerator::getString(item);
  return mRepresentation.c_str();
}

const char* ConfigurationManagerImpl::getRepresentation(const Specification& specification) {
  return getRepresentation(*specification.getItemsContainer());
}

// Following.

namespace {

// Appends the conversion and validator errors of every value of group to errors.
void checkTexts(const ValueGroup& group, ValidationErrors& errors) {
  for (size_t i = 0; i < group.getItemCount(); ++i) {
    const boost::shared_ptr<ValueGroupItem> item = group.getItem(i);
    if (item->isValueGroup()) {
      checkTexts(static_cast<const ValueGroup&>(*item), errors);
    } else if (const boost::shared_ptr<ValueState> state =
                   ValueAccess::peekState(static_cast<const ValueBase&>(*item))) {
      state->checkTexts(errors);
    }
  }
}

void addErrors(const ValidationErrors& from, std::vector<std::string>& to) {
  for (size_t i = 0; i < from.getNumberOfErrors(); ++i) {
    to.push_back(from.getError(i));
  }
}

std::string joined(const std::vector<std::string>& texts, const char* separator) {
  std::string result;
  for (size_t i = 0; i < texts.size(); ++i) {
    result += i == 0 ? "" : separator;
    result += texts[i];
  }
  return result;
}

}  // namespace

void ConfigurationManagerImpl::followValues(const char* specificationId,
                                            const FollowOptions& options) {
  ZELK_CONTRACT(specificationId != 0 && *specificationId != '\0');
  stopFollowing();
  // The tree in force when following starts: changes are told against it.
  getCachedValues(specificationId, false, options.flags);
  mValueFileSource.reset(new ValueFileSource(*this, mValueFiles, options.forcePolling,
                                             options.pollInterval));
  std::vector<ChangeSource*> sources(1, mValueFileSource.get());
  for (const std::unique_ptr<ChangeSource>& source : mChangeSources) {
    sources.push_back(source.get());
  }
  mFollower.reset(new ValueFollower(*this, specificationId, options, sources));
  try {
    mFollower->start();
  } catch (...) {
    mFollower.reset();
    mValueFileSource.reset();
    throw;
  }
  std::vector<std::string> paths;
  for (const ValueFileSource::File& file : mValueFiles) {
    paths.push_back("\"" + file.path + "\"");
  }
  const std::string text = std::string("followValues:\n [specification = \"") + specificationId +
                           "\"]\n [files = " + joined(paths, ", ") + "]";
  zelk::host::hostAddToMainLog(LOG_CATEGORY, text.c_str());
}

void ConfigurationManagerImpl::stopFollowing() {
  if (mFollower) {
    mFollower->stop();
    mFollower.reset();
  }
  mValueFileSource.reset();
}

bool ConfigurationManagerImpl::isPollingValueFiles() const {
  return mValueFileSource && mValueFileSource->isPolling();
}

void ConfigurationManagerImpl::applyFollowedChange(ValueFollower& follower) {
  const FollowOptions& options = follower.getOptions();
  const char* specificationId = follower.getSpecificationId().c_str();
  ProviderChanges changes;
  ValidationErrors errors;
  std::vector<std::string> problems;
  ValueGroup after;
  std::vector<ValueProvider*> replaced;
  boost::shared_ptr<ValueGroupState> before;
  try {
    for (ChangeSource* source : follower.getSources()) {
      source->reread(changes, errors);
    }
    addErrors(errors, problems);
    if (problems.empty() && changes.empty()) {
      return;
    }
    const Specification* specification = getSpecification(specificationId);
    if (specification == 0) {
      throw ConfigurationException("The \"%s\" specification was not found", specificationId);
    }
    std::lock_guard<std::recursive_mutex> providersLock(mComputeMutex);
    // The registered providers with the proposed ones in their places.
    std::vector<ValueProvider*> providers;
    if (problems.empty()) {
      for (ValueProviderMap::ConstIterator it = mValueProviders.begin();
           it != mValueProviders.end(); ++it) {
        providers.push_back(it->second);
      }
      for (const ProviderChanges::Change& change : changes.get()) {
        auto place = std::find(providers.begin(), providers.end(), change.current);
        if (change.current != 0 && place != providers.end()) {
          replaced.push_back(change.current);
          if (change.replacement != 0) {
            *place = change.replacement;
          } else {
            providers.erase(place);
          }
        } else if (change.replacement != 0) {
          // After the last provider whose id sorts at or before the new one's.
          const std::string id = change.replacement->getId();
          auto next = providers.begin();
          while (next != providers.end() && std::string((*next)->getId()) <= id) {
            ++next;
          }
          providers.insert(next, change.replacement);
        }
      }
      ValidationErrors checks;
      try {
        after = getValues(*specification, options.flags, providers);
        if (after.isNull()) {
          after = ValueGroup(specification);
        }
        after.complete();
        checkTexts(after, checks);
      } catch (const ValidationException& e) {
        addErrors(e.getErrors(), problems);
      }
      addErrors(checks, problems);
    }
    if (problems.empty()) {
      // In force from here: the providers and the cache change together. Re-added in the order
      // of providers, a replacement keeps the place of the provider it replaces among those of
      // its id.
      mValueProviders.release();
      for (ValueProvider* provider : providers) {
        mValueProviders.add(provider->getId(), provider);
      }
      changes.release();
      before = exchangeCachedValues(specificationId, ValueAccess::peekState(after));
      // Other specifications are gathered again from the new providers when next asked.
      std::unique_lock<std::shared_mutex> cacheLock(mValueCacheMutex);
      for (ValueCache::iterator entry = mValueCache.begin(); entry != mValueCache.end();) {
        entry = zelk::caseInsensitiveEqual(entry->first.c_str(), specificationId)
                    ? std::next(entry)
                    : mValueCache.erase(entry);
      }
    }
  } catch (const std::exception& e) {
    problems.push_back(e.what());
  }
  if (!problems.empty()) {
    replaced.clear();
  }
  const std::vector<std::string> sources = changes.getSources();
  if (!problems.empty()) {
    const std::string text = "followValues: [refused]\n [sources = " + joined(sources, ", ") +
                             "]\n " + joined(problems, "\n ");
    zelk::host::hostAddToMainLog(LOG_CATEGORY, text.c_str());
    if (options.onRefused) {
      options.onRefused(RefusedChange{sources, problems});
    }
    return;
  }
  for (ChangeSource* source : follower.getSources()) {
    source->applied(changes);
  }
  for (ValueProvider* provider : replaced) {
    destroy(provider);
  }
  // Told with no lock of this manager held: listeners may read values.
  const std::vector<ValueTreeDiff::Entry> entries =
      ValueTreeDiff::compare(ValueGroup(before), after);
  if (entries.empty()) {
    return;
  }
  ValueTreeDiff::broadcast(entries);
  AppliedChange applied;
  applied.sources = sources;
  for (const ValueTreeDiff::Entry& entry : entries) {
    applied.changes.push_back(entry.change);
  }
  const std::string text = "followValues: [applied]\n [sources = " + joined(sources, ", ") +
                           "]\n [changes = " + std::to_string(entries.size()) + "]";
  zelk::host::hostAddToMainLog(LOG_CATEGORY, text.c_str());
  if (options.onApplied) {
    options.onApplied(applied);
  }
}

}  // namespace zelk::configuration::impl
