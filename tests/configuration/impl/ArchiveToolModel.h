// Two tool specifications for the value provider and retrieval tests, registered in the given
// manager (a command-line provider looks specifications up in the manager it is registered with,
// else in the process-wide one). Each test binary that uses them runs in a temporary installation
// and shuts the manager down afterwards.
//
//   archive                        (specification; items container id "archive")
//     [help]        bool
//     [verbose]     bool
//     [name]        string
//     [port]        int32
//     [portRange]   string
//     [level]       int32, default 3 on the reference
//     [{paths}]     string, unbounded
//     [secretMode]  bool, hidden
//     target        string
//     optional one-of archive_oo10: fast bool | small bool
//     [db]          container: dbname string, [dbport int32]
//     [{mirror}]    container, unbounded: host string
//
//   restore
//     [source]      string
//     [{hosts}]     string, unbounded
#pragma once

#include <string>
#include <vector>

#include "support/InstallationFixture.h"
#include "zelk/configuration/ConfigurationException.h"
#include "zelk/configuration/ConfigurationManager.h"
#include "zelk/configuration/Container.h"
#include "zelk/configuration/GroupItem.h"
#include "zelk/configuration/OneOf.h"
#include "zelk/configuration/Parameter.h"
#include "zelk/configuration/ParameterRef.h"
#include "zelk/configuration/Specification.h"
#include "zelk/configuration/ValidationErrors.h"
#include "zelk/configuration/ValidationException.h"
#include "zelk/configuration/impl/Factory.h"

namespace zelk::test {

// Brings the process-wide manager to life in an empty temporary installation (its registry load
// fails there, which leaves an empty manager) and shuts it down on destruction.
class SingletonManager {
public:
  SingletonManager() {
    try {
      zelk::configuration::ConfigurationManager::getInstance();
    } catch (const std::exception&) {
      // No "zelk.crg" in the installation: the manager stays, empty.
    }
    mManager = zelk::configuration::ConfigurationManager::getInstance();
  }
  ~SingletonManager() { zelk::configuration::ConfigurationManager::shutdown(); }
  SingletonManager(const SingletonManager&) = delete;
  SingletonManager& operator=(const SingletonManager&) = delete;

  zelk::configuration::ConfigurationManager* manager() const { return mManager; }

private:
  InstallationFixture mInstallation;
  zelk::configuration::ConfigurationManager* mManager;
};

class ArchiveToolModel {
public:
  typedef zelk::configuration::Parameter Parameter;
  typedef zelk::configuration::impl::Factory Factory;
  static const int32_t OPTIONAL = zelk::configuration::GroupItem::OPTIONAL;
  static const int32_t UNBOUNDED = zelk::configuration::GroupItem::UNBOUNDED;
  static const int32_t HIDDEN = zelk::configuration::GroupItem::HIDDEN;

  explicit ArchiveToolModel(zelk::configuration::ConfigurationManager* manager)
      : mManager(manager) {
    archive = Factory::createSpecification("archive", "", "", "Archives files", false, manager);
    zelk::configuration::Container* items = archive->getItemsContainer();
    ref(items, "help", Parameter::BOOL, OPTIONAL);
    ref(items, "verbose", Parameter::BOOL, OPTIONAL);
    ref(items, "name", Parameter::STRING, OPTIONAL);
    ref(items, "port", Parameter::INT32, OPTIONAL);
    ref(items, "portRange", Parameter::STRING, OPTIONAL);
    Factory::setDefaultValueFor(ref(items, "level", Parameter::INT32, OPTIONAL), "3");
    ref(items, "paths", Parameter::STRING, OPTIONAL | UNBOUNDED);
    ref(items, "secretMode", Parameter::BOOL, OPTIONAL | HIDDEN);
    ref(items, "target", Parameter::STRING, 0);
    zelk::configuration::OneOf* speed = Factory::createOneOf(OPTIONAL);
    Factory::addItemToGroupItem(items, speed);
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

  zelk::configuration::ParameterRef* ref(zelk::configuration::GroupItemCollection* parent,
                                         const char* id, Parameter::ValueType type,
                                         int32_t characteristics) {
    Parameter* parameter = Factory::createParameter(id, id, "A parameter", type, 0, 0, 0, mManager);
    zelk::configuration::ParameterRef* ref =
        Factory::createParameterRef(parameter, characteristics, 0);
    Factory::addItemToGroupItem(parent, ref);
    return ref;
  }

  zelk::configuration::Container* container(zelk::configuration::GroupItemCollection* parent,
                                            const char* id, int32_t characteristics) {
    zelk::configuration::Container* container =
        Factory::createContainer(id, id, "A container", characteristics);
    Factory::addItemToGroupItem(parent, container);
    return container;
  }

  zelk::configuration::ConfigurationManager* mManager;
  zelk::configuration::Specification* archive;
  zelk::configuration::Specification* restore;
  zelk::configuration::Container* db;
  zelk::configuration::Container* mirror;
};

// The message of what f throws, or "no exception".
template <typename F>
std::string messageOf(F f) {
  try {
    f();
  } catch (const std::exception& e) {
    return e.what();
  }
  return "no exception";
}

}  // namespace zelk::test
