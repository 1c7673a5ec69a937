#include "zelk/configuration/ConfigurationManager.h"

#include <cstdlib>

#include <boost/thread/mutex.hpp>

#include "zelk/configuration/ConfigurationException.h"
#include "zelk/configuration/GlobalItem.h"
#include "zelk/configuration/ValueGroup.h"
#include "zelk/configuration/impl/ConfigurationManagerImpl.h"
#include "zelk/host/HostProcess.h"
#include "zelk/util/Contracts.h"

namespace zelk::configuration {

namespace {

const bool hostInitialised = zelk::host::hostProcessInit();

// Guards the creation and the shut-down of the default manager only. Not recursive: a nested
// getInstance() made while the default manager loads finds smInstance set and never locks.
boost::mutex singletonMutex;

}  // namespace

const char* const ConfigurationManager::COMMAND_LINE_PROVIDER_NAME = "CLI";
const char* const ConfigurationManager::XML_FILE_PROVIDER_NAME = "XML_FILE";
const char* const ConfigurationManager::APPLICATION_PROVIDER_NAME = "APP_VALUES";
const char* const ConfigurationManager::ETCD_PROVIDER_NAME = "ETCD";

ConfigurationManager* ConfigurationManager::smInstance = 0;

ConfigurationManager::ConfigurationManager() : mImpl(new impl::ConfigurationManagerImpl(this)) {
  ZELK_CONTRACT(mImpl);
}

ConfigurationManager::~ConfigurationManager() {}

ConfigurationManager* ConfigurationManager::getInstance() {
  ConfigurationManager* instance = __atomic_load_n(&smInstance, __ATOMIC_ACQUIRE);
  if (instance != 0) {
    return instance;
  }
  boost::mutex::scoped_lock lock(singletonMutex);
  if (smInstance == 0) {
    ConfigurationManager* manager = new ConfigurationManager();
    // Published before loading, so that getInstance() calls made by the loading return at once.
    __atomic_store_n(&smInstance, manager, __ATOMIC_RELEASE);
    // Kept on purpose: when one of these throws, the partly loaded manager stays the default
    // manager, later calls do not load again, and shutdown is not registered.
    manager->registerDefaultValidators();
    manager->loadDefaultConfigurationRegistry();
    std::atexit(&ConfigurationManager::shutdown);
  }
  return smInstance;
}

ConfigurationManager* ConfigurationManager::getInstanceIgnoringLoadFailure() {
  try {
    return getInstance();
  } catch (const std::exception&) {
    // The failed load left the manager in place, and this second call does not load again.
    return getInstance();
  }
}

void ConfigurationManager::shutdown() {
  boost::mutex::scoped_lock lock(singletonMutex);
  ConfigurationManager* instance = smInstance;
  if (instance != 0) {
    delete instance;
  }
  __atomic_store_n(&smInstance, static_cast<ConfigurationManager*>(0), __ATOMIC_RELEASE);
}

void ConfigurationManager::registerValueProvider(ValueProvider* provider) {
  mImpl->registerValueProvider(provider);
}

ValueProvider* ConfigurationManager::getValueProvider(const char* name) const {
  return mImpl->getValueProvider(name);
}

bool ConfigurationManager::unregisterValueProvider(const char* name) {
  return mImpl->unregisterValueProvider(name);
}

IEnumerator<ValueProvider*>* ConfigurationManager::getValueProviderEnumerator() const {
  return mImpl->getValueProviderEnumerator();
}

void ConfigurationManager::registerValidator(Validator* validator) {
  mImpl->registerValidator(validator);
}

Validator* ConfigurationManager::getValidator(const char* name) const {
  return mImpl->getValidator(name);
}

bool ConfigurationManager::unregisterValidator(const char* name) {
  return mImpl->unregisterValidator(name);
}

IEnumerator<Validator*>* ConfigurationManager::getValidatorEnumerator() const {
  return mImpl->getValidatorEnumerator();
}

void ConfigurationManager::registerGlobalItem(GlobalItem* item) { mImpl->registerGlobalItem(item); }

GlobalItem* ConfigurationManager::getGlobalItem(const char* name) const {
  return mImpl->getGlobalItem(name);
}

bool ConfigurationManager::unregisterGlobalItem(const char* name) {
  return mImpl->unregisterGlobalItem(name);
}

IEnumerator<GlobalItem*>* ConfigurationManager::getGlobalItemEnumerator() const {
  return mImpl->getGlobalItemEnumerator();
}

void ConfigurationManager::registerEnumDefinition(EnumDefinition* enumDefinition) {
  mImpl->registerEnumDefinition(enumDefinition);
}

EnumDefinition* ConfigurationManager::getEnumDefinition(const char* name) const {
  return mImpl->getEnumDefinition(name);
}

bool ConfigurationManager::unregisterEnumDefinition(const char* name) {
  return mImpl->unregisterEnumDefinition(name);
}

IEnumerator<EnumDefinition*>* ConfigurationManager::getEnumDefinitionEnumerator() const {
  return mImpl->getEnumDefinitionEnumerator();
}

void ConfigurationManager::registerSpecification(Specification* specification) {
  mImpl->registerSpecification(specification);
}

Specification* ConfigurationManager::getSpecification(const char* name) const {
  return mImpl->getSpecification(name);
}

bool ConfigurationManager::unregisterSpecification(const char* name) {
  return mImpl->unregisterSpecification(name);
}

IEnumerator<Specification*>* ConfigurationManager::getSpecificationEnumerator() const {
  return mImpl->getSpecificationEnumerator();
}

GlobalItem* ConfigurationManager::getGroup(const char* name) {
  GlobalItem* item = getGlobalItem(name);
  if (item == 0) {
    return 0;
  }
  if (item->getItemType() != GlobalItem::GROUP) {
    throw ConfigurationException("\"%s\" is not a group", name);
  }
  return item;
}

GlobalItem* ConfigurationManager::getParameter(const char* name) {
  GlobalItem* item = getGlobalItem(name);
  if (item == 0) {
    return 0;
  }
  if (item->getItemType() != GlobalItem::PARAMETER) {
    throw ConfigurationException("\"%s\" is not a parameter", name);
  }
  return item;
}

void ConfigurationManager::enableConfiguration(bool allowMachineConfig,
                                               const char* applicationConfigFile,
                                               unsigned int argc, const char* const* argv,
                                               const char* specificationId) {
  mImpl->enableConfiguration(allowMachineConfig, applicationConfigFile, argc, argv,
                             specificationId);
}

void ConfigurationManager::addEtcdConfiguration(const EtcdSource& source) {
  mImpl->addEtcdConfiguration(source);
}

void ConfigurationManager::loadDefaultConfigurationRegistry() {
  mImpl->loadDefaultConfigurationRegistry();
}

void ConfigurationManager::registerDefaultValidators() { mImpl->registerDefaultValidators(); }

void ConfigurationManager::reset() { mImpl->reset(); }

void ConfigurationManager::setMaxFileSize(std::size_t bytes) { mImpl->setMaxFileSize(bytes); }

std::size_t ConfigurationManager::getMaxFileSize() const { return mImpl->getMaxFileSize(); }

void ConfigurationManager::setKeepPositions(bool keep) { mImpl->setKeepPositions(keep); }

bool ConfigurationManager::getKeepPositions() const { return mImpl->getKeepPositions(); }

SourcePosition ConfigurationManager::getDefaultPosition(const ParameterRef& reference) const {
  return mImpl->getDefaultPosition(reference);
}

ValueGroup ConfigurationManager::getValueGroup(const char* specificationId, bool required,
                                               int flags) const {
  return mImpl->getValueGroup(specificationId, required, flags);
}

void ConfigurationManager::followValues(const char* specificationId,
                                        const FollowOptions& options) {
  mImpl->followValues(specificationId, options);
}

void ConfigurationManager::stopFollowing() { mImpl->stopFollowing(); }

bool ConfigurationManager::isFollowing() const { return mImpl->isFollowing(); }

void ConfigurationManager::setApplicationValues(const ValueGroup& values, int flags) {
  mImpl->setApplicationValues(values, flags);
}

void ConfigurationManager::validateValues(const Specification& specification, ValueGroup& values,
                                          ValidationErrors* errors) const {
  mImpl->validateValues(specification, values, errors);
}

const char* ConfigurationManager::composeUsageMessage(const char* specificationId,
                                                      const char* providerName) const {
  if (providerName == 0 || *providerName == '\0') {
    providerName = COMMAND_LINE_PROVIDER_NAME;
  }
  return mImpl->composeUsageMessage(specificationId, providerName);
}

const char* ConfigurationManager::composeHelpMessage(const char* specificationId,
                                                     unsigned long screenWidth,
                                                     unsigned long maxParameterNameWidth,
                                                     const char* providerName) const {
  if (providerName == 0 || *providerName == '\0') {
    providerName = COMMAND_LINE_PROVIDER_NAME;
  }
  return mImpl->composeHelpMessage(specificationId, screenWidth, maxParameterNameWidth,
                                   providerName);
}

const char* ConfigurationManager::getRepresentation(const ValueGroupItem& item) {
  return mImpl->getRepresentation(item);
}

const char* ConfigurationManager::getRepresentation(const GroupItem& item) {
  return mImpl->getRepresentation(item);
}

const char* ConfigurationManager::getRepresentation(const Specification& specification) {
  return mImpl->getRepresentation(specification);
}

impl::ConfigurationManagerImpl* ConfigurationManager::getImpl() const { return mImpl.get(); }

}  // namespace zelk::configuration
