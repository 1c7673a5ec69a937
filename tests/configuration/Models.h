// The specifications that the configuration tests share, built with the factory in a manager of
// their own (the archive tools in the one given), and the helpers that read what a call throws.
// Each model's constructor shows its tree; the one-of of "backup" is backup_oo2.
#pragma once

#include <string>
#include <vector>

#include "support/InstallationFixture.h"
#include "zelk/configuration/ConfigurationManager.h"
#include "zelk/configuration/Container.h"
#include "zelk/configuration/EnumDefinition.h"
#include "zelk/configuration/LogicalGroup.h"
#include "zelk/configuration/OneOf.h"
#include "zelk/configuration/Parameter.h"
#include "zelk/configuration/ParameterRef.h"
#include "zelk/configuration/Specification.h"
#include "zelk/configuration/ValidationErrors.h"
#include "zelk/configuration/ValidationException.h"
#include "zelk/configuration/ValueGroup.h"
#include "zelk/configuration/impl/Factory.h"
#include "zelk/util/ContractViolationException.h"

namespace zelk::test {

// The message of the exception of type E that call throws, "<no exception>" when it throws none.
template <typename E = std::exception, typename F>
std::string messageOf(F call) {
  try {
    call();
  } catch (const E& e) {
    return e.what() != 0 ? e.what() : "<null>";
  }
  return "<no exception>";
}

// "message@source" of the contract violation that call raises.
template <typename F>
std::string contractOf(F call) {
  try {
    call();
  } catch (const zelk::ContractViolationException& e) {
    return std::string(e.what()) + "@" + e.getFile();
  }
  return "<no exception>";
}

inline std::vector<std::string> texts(const zelk::configuration::ValidationErrors& errors) {
  std::vector<std::string> result;
  for (size_t i = 0; i < errors.getNumberOfErrors(); ++i) {
    result.push_back(errors.getError(i));
  }
  return result;
}

// Builds specifications item by item in a manager; the manager is the builder's own unless given.
class SpecificationBuilder {
public:
  typedef zelk::configuration::Parameter Parameter;
  typedef zelk::configuration::GroupItemCollection Collection;
  typedef zelk::configuration::impl::Factory Factory;
  static const int32_t OPTIONAL = zelk::configuration::GroupItem::OPTIONAL;
  static const int32_t UNBOUNDED = zelk::configuration::GroupItem::UNBOUNDED;
  static const int32_t HIDDEN = zelk::configuration::GroupItem::HIDDEN;

  explicit SpecificationBuilder(zelk::configuration::ConfigurationManager* shared = 0)
      : mManager(shared != 0 ? shared : new zelk::configuration::ConfigurationManager()),
        mOwned(shared == 0) {}
  ~SpecificationBuilder() {
    if (mOwned) delete mManager;
  }
  SpecificationBuilder(const SpecificationBuilder&) = delete;
  SpecificationBuilder& operator=(const SpecificationBuilder&) = delete;

  zelk::configuration::ConfigurationManager* manager() const { return mManager; }

  zelk::configuration::Specification* specification(const char* id, bool optional = false) {
    return Factory::createSpecification(id, "", "", "A tool", optional, mManager);
  }
  // A new parameter named id and a reference to it, added to parent.
  zelk::configuration::ParameterRef* ref(Collection* parent, const char* id,
                                         Parameter::ValueType type, int32_t characteristics,
                                         const char* valueName = 0,
                                         const char* description = "A parameter",
                                         const zelk::configuration::EnumDefinition* enumDef = 0) {
    zelk::configuration::ParameterRef* ref = Factory::createParameterRef(
        Factory::createParameter(id, id, description, type, valueName, 0, enumDef, mManager),
        characteristics, 0);
    Factory::addItemToGroupItem(parent, ref);
    return ref;
  }
  zelk::configuration::Container* container(Collection* parent, const char* id,
                                            int32_t characteristics) {
    return add(parent, Factory::createContainer(id, id, "A container", characteristics));
  }
  zelk::configuration::OneOf* oneOf(Collection* parent, int32_t characteristics) {
    return add(parent, Factory::createOneOf(characteristics));
  }
  zelk::configuration::LogicalGroup* logicalGroup(Collection* parent, int32_t characteristics) {
    return add(parent, Factory::createLogicalGroup(characteristics));
  }
  zelk::configuration::EnumDefinition* enumeration(const char* id,
                                                   std::initializer_list<const char*> labels) {
    zelk::configuration::EnumDefinition* definition = Factory::createEnumDefinition(id, mManager);
    for (const char* label : labels) Factory::addEnumValue(definition, label);
    return definition;
  }

private:
  template <typename T>
  T* add(Collection* parent, T* item) {
    Factory::addItemToGroupItem(parent, item);
    return item;
  }

  zelk::configuration::ConfigurationManager* mManager;
  bool mOwned;
};

class ValueTestModel : public SpecificationBuilder {
public:
  ValueTestModel() {
    spec = specification("tool");
    items = spec->getItemsContainer();
    port = ref(items, "port", Parameter::INT32, 0);
    Factory::setDefaultValueFor(const_cast<Parameter*>(port->getParameter()), "8080");
    name = ref(items, "name", Parameter::STRING, 0);
    verbose = ref(items, "verbose", Parameter::BOOL, 0);
    paths = ref(items, "paths", Parameter::STRING, UNBOUNDED);
    count = ref(items, "count", Parameter::UINT32, 0);
    big = ref(items, "big", Parameter::INT64, 0);
    ubig = ref(items, "ubig", Parameter::UINT64, 0);
    ratio = ref(items, "ratio", Parameter::DOUBLE, 0);
    oid = ref(items, "oid", Parameter::OID, 0);
    color = ref(items, "color", Parameter::ENUM, 0, 0, "A parameter",
                enumeration("colors", {"red", "green", "blue"}));
    level = ref(items, "level", Parameter::ENUM, 0, 0, "A parameter",
                enumeration("levels", {"only"}));
    db = container(items, "db", 0);
    host = ref(db, "host", Parameter::STRING, 0);
    Factory::setDefaultValueFor(host, "localhost");
    target = container(items, "target", UNBOUNDED);
    path = ref(target, "path", Parameter::STRING, 0);
    zelk::configuration::OneOf* choice = oneOf(items, 0);
    alpha = ref(choice, "alpha", Parameter::INT32, 0);
    Factory::setDefaultValueFor(alpha, "1");
    ref(choice, "beta", Parameter::INT32, 0);
  }

  zelk::configuration::Specification* spec;
  zelk::configuration::Container* items;
  zelk::configuration::ParameterRef *port, *name, *verbose, *paths, *count, *big, *ubig, *ratio,
      *oid, *color, *level, *host, *path, *alpha;
  zelk::configuration::Container *db, *target;
};

class BackupToolModel : public SpecificationBuilder {
public:
  BackupToolModel() {
    spec = specification("backup");
    Collection* items = spec->getItemsContainer();
    ref(items, "help", Parameter::BOOL, OPTIONAL, 0, "Shows this help");
    ref(items, "verbose", Parameter::BOOL, OPTIONAL, "level", "Tells what is being done");
    zelk::configuration::OneOf* mode = oneOf(items, 0);
    ref(mode, "full", Parameter::BOOL, 0);
    ref(mode, "incremental", Parameter::BOOL, 0);
    zelk::configuration::OneOf* since = oneOf(mode, 0);
    ref(since, "since", Parameter::STRING, 0, "date");
    ref(since, "days", Parameter::INT32, 0);
    zelk::configuration::LogicalGroup* credentials = logicalGroup(items, OPTIONAL);
    ref(credentials, "user", Parameter::STRING, 0);
    ref(credentials, "password", Parameter::STRING, 0);
    ref(credentials, "domain", Parameter::STRING, OPTIONAL);
    ref(items, "target", Parameter::STRING, 0, "path");
    ref(items, "exclude", Parameter::STRING, OPTIONAL | UNBOUNDED, "pattern");
    ref(items, "secret", Parameter::STRING, OPTIONAL | HIDDEN);
    db = container(items, "db", OPTIONAL);
    ref(db, "dbname", Parameter::STRING, 0, "name");
    ref(db, "port", Parameter::INT32, OPTIONAL);
    ref(container(items, "mirror", OPTIONAL | UNBOUNDED), "host", Parameter::STRING, 0);
  }

  // A root value group for the specification holding "name=text" values, in order.
  zelk::configuration::ValueGroup values(const std::vector<std::string>& settings) const {
    zelk::configuration::ValueGroup root(spec);
    add(root, settings);
    return root;
  }
  // Adds "name=text" values to group; a bare "name" (a boolean) adds a value without a text.
  static void add(zelk::configuration::ValueGroup& group,
                  const std::vector<std::string>& settings) {
    for (const std::string& setting : settings) {
      const size_t equals = setting.find('=');
      group.addValue(setting.substr(0, equals).c_str(),
                     equals == std::string::npos ? nullptr : setting.c_str() + equals + 1);
    }
  }

  zelk::configuration::Specification* spec;
  zelk::configuration::Container* db;
};

// Brings the process-wide manager to life in an empty temporary installation (its registry load
// fails there, which leaves an empty manager) and shuts it down on destruction.
class SingletonManager {
public:
  SingletonManager()
      : mManager(zelk::configuration::ConfigurationManager::getInstanceIgnoringLoadFailure()) {}
  ~SingletonManager() { zelk::configuration::ConfigurationManager::shutdown(); }
  SingletonManager(const SingletonManager&) = delete;
  SingletonManager& operator=(const SingletonManager&) = delete;

  zelk::configuration::ConfigurationManager* manager() const { return mManager; }

private:
  InstallationFixture mInstallation;
  zelk::configuration::ConfigurationManager* mManager;
};

// Registered in the manager given (a command-line provider looks specifications up in the
// manager it is registered with, else in the process-wide one).
class ArchiveToolModel : public SpecificationBuilder {
public:
  explicit ArchiveToolModel(zelk::configuration::ConfigurationManager* manager)
      : SpecificationBuilder(manager) {
    archive = Factory::createSpecification("archive", "", "", "Archives files", false, manager);
    Collection* items = archive->getItemsContainer();
    for (const char* flag : {"help", "verbose"}) ref(items, flag, Parameter::BOOL, OPTIONAL);
    ref(items, "name", Parameter::STRING, OPTIONAL);
    ref(items, "port", Parameter::INT32, OPTIONAL);
    ref(items, "portRange", Parameter::STRING, OPTIONAL);
    Factory::setDefaultValueFor(ref(items, "level", Parameter::INT32, OPTIONAL), "3");
    ref(items, "paths", Parameter::STRING, OPTIONAL | UNBOUNDED);
    ref(items, "secretMode", Parameter::BOOL, OPTIONAL | HIDDEN);
    ref(items, "target", Parameter::STRING, 0);
    zelk::configuration::OneOf* speed = oneOf(items, OPTIONAL);
    ref(speed, "fast", Parameter::BOOL, 0);
    ref(speed, "small", Parameter::BOOL, 0);
    db = container(items, "db", OPTIONAL);
    ref(db, "dbname", Parameter::STRING, 0);
    ref(db, "dbport", Parameter::INT32, OPTIONAL);
    mirror = container(items, "mirror", OPTIONAL | UNBOUNDED);
    ref(mirror, "host", Parameter::STRING, 0);

    restore = Factory::createSpecification("restore", "", "", "Restores files", false, manager);
    ref(restore->getItemsContainer(), "source", Parameter::STRING, OPTIONAL);
    ref(restore->getItemsContainer(), "hosts", Parameter::STRING, OPTIONAL | UNBOUNDED);
  }

  zelk::configuration::Specification* archive;
  zelk::configuration::Specification* restore;
  zelk::configuration::Container* db;
  zelk::configuration::Container* mirror;
};

}  // namespace zelk::test
