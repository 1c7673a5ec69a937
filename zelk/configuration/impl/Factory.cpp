#include "zelk/configuration/impl/Factory.h"

#include "zelk/configuration/ConfigurationException.h"
#include "zelk/configuration/ConfigurationManager.h"
#include "zelk/configuration/Container.h"
#include "zelk/configuration/EnumDefinition.h"
#include "zelk/configuration/Group.h"
#include "zelk/configuration/LogicalGroup.h"
#include "zelk/configuration/OneOf.h"
#include "zelk/configuration/ParameterRef.h"
#include "zelk/configuration/Specification.h"
#include "zelk/configuration/Validator.h"
#include "zelk/configuration/Value.h"
#include "zelk/configuration/ValueProvider.h"
#include "zelk/configuration/impl/ParameterRefImpl.h"
#include "zelk/configuration/impl/ValueState.h"
#include "zelk/util/Contracts.h"

namespace zelk::configuration::impl {

namespace {

ConfigurationManager* managerOrDefault(ConfigurationManager* manager) {
  return manager != 0 ? manager : ConfigurationManager::getInstance();
}

// Registers object with register; when that throws the object is destroyed and the exception
// passes on.
template <typename T, typename Register>
T* registered(T* object, ConfigurationManager* manager, Register registerObject) {
  return Factory::registerOrDelete(object,
                                   [&](T* o) { (managerOrDefault(manager)->*registerObject)(o); });
}

// Deletes object (null is ignored), first unregistering the name key gives it from the manager
// (the process-wide one when null) when unregister is set.
template <typename T>
void destroyRegistered(T* object, bool unregister, ConfigurationManager* manager,
                       const char* (T::*key)() const,
                       bool (ConfigurationManager::*unregisterName)(const char*)) {
  if (object == 0) {
    return;
  }
  if (unregister) {
    (managerOrDefault(manager)->*unregisterName)((object->*key)());
  }
  delete object;
}

}  // namespace

Container* Factory::createContainer(const char* id, const char* name, const char* description,
                                    int32_t characteristics) {
  ZELK_CONTRACT(id != 0 && *id != '\0');
  ZELK_CONTRACT(description != 0 && *description != '\0');
  return new Container(id, name, description, characteristics);
}

LogicalGroup* Factory::createLogicalGroup(int32_t characteristics) {
  return new LogicalGroup(characteristics);
}

OneOf* Factory::createOneOf(int32_t characteristics) { return new OneOf(characteristics); }

ParameterRef* Factory::createParameterRef(const Parameter* parameter, int32_t characteristics,
                                          const char* description) {
  return new ParameterRef(parameter, characteristics, description);
}

Group* Factory::createGroup(const char* name, const char* description,
                            ConfigurationManager* manager) {
  Group* group = new Group(name, description);
  registered<GlobalItem>(group, manager, &ConfigurationManager::registerGlobalItem);
  return group;
}

Specification* Factory::createSpecification(const char* id, const char* name, const char* title,
                                            const char* description, bool optional,
                                            ConfigurationManager* manager) {
  Specification* specification = new Specification(id, name, title, description);
  if (optional) {
    specification->getItemsContainer()->setOptional(true);
  }
  return registered(specification, manager, &ConfigurationManager::registerSpecification);
}

Parameter* Factory::createParameter(const char* id, const char* name, const char* description,
                                    Parameter::ValueType valueType, const char* valueName,
                                    const Validator* validator,
                                    const EnumDefinition* enumDefinition,
                                    ConfigurationManager* manager) {
  Parameter* parameter =
      new Parameter(id, name, description, valueType, valueName, validator, enumDefinition);
  registered<GlobalItem>(parameter, manager, &ConfigurationManager::registerGlobalItem);
  return parameter;
}

EnumDefinition* Factory::createEnumDefinition(const char* name, ConfigurationManager* manager) {
  ZELK_CONTRACT(name != 0 && *name != '\0');
  return registered(new EnumDefinition(name), manager,
                    &ConfigurationManager::registerEnumDefinition);
}

int32_t Factory::addEnumValue(EnumDefinition* enumDef, const char* symbolicName) {
  ZELK_CONTRACT(enumDef != 0);
  ZELK_CONTRACT(symbolicName != 0 && *symbolicName != '\0');
  return enumDef->addEnumValue(symbolicName);
}

int32_t Factory::addEnumValue(EnumDefinition* enumDef, const char* symbolicName, int32_t value) {
  ZELK_CONTRACT(enumDef != 0);
  ZELK_CONTRACT(symbolicName != 0 && *symbolicName != '\0');
  return enumDef->addEnumValue(symbolicName, value);
}

void Factory::addItemToSpecification(Specification* specification, GroupItem* item) {
  ZELK_CONTRACT(specification != 0);
  ZELK_CONTRACT(item != 0);
  specification->getItemsContainer()->addItem(item);
}

void Factory::addItemToGroupItem(GroupItemCollection* collection, GroupItem* item) {
  ZELK_CONTRACT(collection != 0);
  ZELK_CONTRACT(item != 0);
  collection->addItem(item);
}

void Factory::copyItemToCollection(GroupItemCollection* collection, const GroupItem* item) {
  ZELK_CONTRACT(item != 0);
  ZELK_CONTRACT(collection != 0);
  item->copyToCollection(*collection);
}

void Factory::destroy(const GroupItem* item) { delete item; }

void Factory::destroy(Specification* specification, bool unregister,
                      ConfigurationManager* manager) {
  destroyRegistered(specification, unregister, manager, &Specification::getId,
                    &ConfigurationManager::unregisterSpecification);
}

void Factory::destroy(GlobalItem* item, bool unregister, ConfigurationManager* manager) {
  destroyRegistered(item, unregister, manager, &GlobalItem::getId,
                    &ConfigurationManager::unregisterGlobalItem);
}

void Factory::destroy(EnumDefinition* enumDefinition, bool unregister,
                      ConfigurationManager* manager) {
  destroyRegistered(enumDefinition, unregister, manager, &EnumDefinition::getName,
                    &ConfigurationManager::unregisterEnumDefinition);
}

void Factory::destroy(Validator* validator, bool unregister, ConfigurationManager* manager) {
  destroyRegistered(validator, unregister, manager, &Validator::getName,
                    &ConfigurationManager::unregisterValidator);
}

void Factory::destroy(ValueProvider* provider, bool unregister, ConfigurationManager* manager) {
  destroyRegistered(provider, unregister, manager, &ValueProvider::getId,
                    &ConfigurationManager::unregisterValueProvider);
}

boost::shared_ptr<ValueState> Factory::createDefaultValue(const Parameter* parameter,
                                                          const char* text) {
  return ValueState::createDefault(parameter, text);
}

void Factory::setDefaultValueFor(Parameter* parameter, const char* text) {
  ZELK_CONTRACT(parameter != 0);
  parameter->setDefaultValue(Value(createDefaultValue(parameter, text)));
}

void Factory::setDefaultValueFor(ParameterRef* paramRef, const char* text) {
  ZELK_CONTRACT(paramRef != 0);
  paramRef->getParameterRefImpl()->setDefaultValueState(
      createDefaultValue(paramRef->getParameter(), text));
}

ConfigurationManager* Factory::createManager() {
  return registerOrDelete(new ConfigurationManager(),
                          [](ConfigurationManager* m) { m->registerDefaultValidators(); });
}

void Factory::destroy(ConfigurationManager* manager) {
  ConfigurationManager* defaultManager = ConfigurationManager::getInstance();
  if (manager == 0) {
    return;
  }
  if (manager == defaultManager) {
    throw ConfigurationException("%s",
                                 "Cannot destroy the default Confguration ConfigurationManager");
  }
  delete manager;
}

}  // namespace zelk::configuration::impl
