// A realistic tool specification for the validation, matching and help tests, built in a private
// manager (never the process-wide one) and destroyed with it.
//
//   backup                        [help] bool, [verbose] bool (value name "level", never shown)
//     one-of backup_oo2:          full bool | incremental bool |
//                                 one-of backup_oo2_oo2: since string "date" | days int32
//     optional logical group:     user string, password string, [domain string]
//     target string "path", [{exclude}] string "pattern", hidden [secret] string
//     [db] container:             dbname string "name", [port int32]
//     [{mirror}] container:       host string
#pragma once

#include <string>
#include <vector>

#include "zelk/configuration/ConfigurationManager.h"
#include "zelk/configuration/Container.h"
#include "zelk/configuration/LogicalGroup.h"
#include "zelk/configuration/OneOf.h"
#include "zelk/configuration/Parameter.h"
#include "zelk/configuration/ParameterRef.h"
#include "zelk/configuration/Specification.h"
#include "zelk/configuration/ValidationErrors.h"
#include "zelk/configuration/ValueGroup.h"
#include "zelk/configuration/impl/Factory.h"

namespace zelk::test {

class SpecificationBuilder {
public:
  typedef zelk::configuration::Parameter Parameter;
  typedef zelk::configuration::GroupItemCollection Collection;
  typedef zelk::configuration::impl::Factory Factory;
  static const int32_t OPTIONAL = zelk::configuration::GroupItem::OPTIONAL;
  static const int32_t UNBOUNDED = zelk::configuration::GroupItem::UNBOUNDED;
  static const int32_t HIDDEN = zelk::configuration::GroupItem::HIDDEN;

  SpecificationBuilder() : mManager(new zelk::configuration::ConfigurationManager()) {}
  ~SpecificationBuilder() { delete mManager; }
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
                                         const char* description = "A parameter") {
    zelk::configuration::ParameterRef* ref = Factory::createParameterRef(
        Factory::createParameter(id, id, description, type, valueName, 0, 0, mManager),
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

private:
  template <typename T>
  T* add(Collection* parent, T* item) {
    Factory::addItemToGroupItem(parent, item);
    return item;
  }

  zelk::configuration::ConfigurationManager* mManager;
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

inline std::vector<std::string> texts(const zelk::configuration::ValidationErrors& errors) {
  std::vector<std::string> result;
  for (size_t i = 0; i < errors.getNumberOfErrors(); ++i) {
    result.push_back(errors.getError(i));
  }
  return result;
}

}  // namespace zelk::test
