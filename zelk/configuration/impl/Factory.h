// Factory: the one way to create and destroy the objects of the specification model and extra
// configuration managers.
//
// Objects made here that carry a registry name (specifications, parameters, groups, enumeration
// definitions) are registered at once in the given manager, or in the process-wide manager when
// manager is null. Items added to a collection belong to it and die with it.
//
//   ConfigurationManager* manager = Factory::createManager();
//   Parameter* level = Factory::createParameter("level", "", "Level", Parameter::UINT32, 0, 0, 0,
//                                               manager);
//   Specification* spec = Factory::createSpecification("tool", "", "", "A tool", false, manager);
//   Factory::addItemToSpecification(spec, Factory::createParameterRef(level, 0, ""));
//   Factory::destroy(manager);   // destroys everything registered in it
#pragma once

#include <cstdint>

#include <boost/shared_ptr.hpp>

#include "zelk/configuration/Parameter.h"

namespace zelk::configuration {

class ConfigurationManager;
class Container;
class EnumDefinition;
class GlobalItem;
class Group;
class GroupItem;
class GroupItemCollection;
class LogicalGroup;
class OneOf;
class ParameterRef;
class Specification;
class Validator;
class ValueProvider;

namespace impl {

class ValueState;

class Factory {
public:
  Factory() = delete;

  // Contracts: id and description are neither null nor empty.
  static Container* createContainer(const char* id, const char* name, const char* description,
                                    int32_t characteristics);
  // A constraint with an empty id; it takes its id when first added to a parent.
  static LogicalGroup* createLogicalGroup(int32_t characteristics);
  static OneOf* createOneOf(int32_t characteristics);
  // Contract: parameter is not null.
  static ParameterRef* createParameterRef(const Parameter* parameter, int32_t characteristics,
                                          const char* description);
  // Registered as a global item; destroyed again when registration throws.
  static Group* createGroup(const char* name, const char* description,
                            ConfigurationManager* manager);
  // Registered as a specification; destroyed again when registration throws. optional marks the
  // items container optional.
  static Specification* createSpecification(const char* id, const char* name, const char* title,
                                            const char* description, bool optional,
                                            ConfigurationManager* manager);
  // Registered as a global item; destroyed again when registration throws.
  static Parameter* createParameter(const char* id, const char* name, const char* description,
                                    Parameter::ValueType valueType, const char* valueName,
                                    const Validator* validator,
                                    const EnumDefinition* enumDefinition,
                                    ConfigurationManager* manager);
  // Registered as an enumeration definition; destroyed again when registration throws. Contract:
  // name is neither null nor empty.
  static EnumDefinition* createEnumDefinition(const char* name, ConfigurationManager* manager);
  // Contracts: enumDef is not null, symbolicName is neither null nor empty. Return the next
  // automatic value.
  static int32_t addEnumValue(EnumDefinition* enumDef, const char* symbolicName);
  static int32_t addEnumValue(EnumDefinition* enumDef, const char* symbolicName, int32_t value);

  // Contracts: neither argument is null.
  static void addItemToSpecification(Specification* specification, GroupItem* item);
  static void addItemToGroupItem(GroupItemCollection* collection, GroupItem* item);
  // Adds a deep copy of item to collection. Contracts: neither argument is null (item first).
  static void copyItemToCollection(GroupItemCollection* collection, const GroupItem* item);

  // Calls registerObject(object) and returns object; when that throws, object is deleted and the
  // exception passes on, so a new object is either registered (and owned by its registry) or gone.
  template <typename T, typename Register>
  static T* registerOrDelete(T* object, Register registerObject) {
    try {
      registerObject(object);
    } catch (...) {
      delete object;
      throw;
    }
    return object;
  }

  // Deletes the item and, for a collection, all its children. Null is ignored.
  static void destroy(const GroupItem* item);
  // Null is ignored; with unregister the object's name is first unregistered from manager (the
  // process-wide manager when null); then the object is deleted.
  static void destroy(Specification* specification, bool unregister,
                      ConfigurationManager* manager);
  static void destroy(GlobalItem* item, bool unregister, ConfigurationManager* manager);
  static void destroy(EnumDefinition* enumDefinition, bool unregister,
                      ConfigurationManager* manager);
  static void destroy(Validator* validator, bool unregister, ConfigurationManager* manager);
  static void destroy(ValueProvider* provider, bool unregister, ConfigurationManager* manager);

  // A default value of the parameter holding text, checked against the parameter's type; throws
  // ConfigurationException (ValidationException) when text does not fit.
  static boost::shared_ptr<ValueState> createDefaultValue(const Parameter* parameter,
                                                          const char* text);
  // Sets the parameter's / the reference's default value from text (see createDefaultValue).
  // Contracts: parameter / paramRef is not null.
  static void setDefaultValueFor(Parameter* parameter, const char* text);
  static void setDefaultValueFor(ParameterRef* paramRef, const char* text);

  // An independent manager with the default validators registered and no registry loaded.
  static ConfigurationManager* createManager();
  // Deletes manager; null is ignored. Makes sure the process-wide manager exists first, and
  // throws ConfigurationException "Cannot destroy the default Confguration ConfigurationManager"
  // when manager is that one.
  static void destroy(ConfigurationManager* manager);
};

}  // namespace impl
}  // namespace zelk::configuration
