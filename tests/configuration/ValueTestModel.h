// A small specification for the value model's tests, built in a private manager (never the
// process-wide one), and destroyed with it.
//
//   tool                     (specification "tool")
//     port    int32   default 8080
//     name    string
//     verbose bool
//     paths   string  unbounded
//     count uint32, big int64, ubig uint64, ratio double, oid OID, color enum {red, green, blue},
//     level enum {only}
//     db      container (bounded):   host string default "localhost"
//     target  container (unbounded): path string
//     one-of { alpha int32 default 1, beta int32 }
#pragma once

#include <string>

#include "zelk/configuration/ConfigurationManager.h"
#include "zelk/configuration/Container.h"
#include "zelk/configuration/EnumDefinition.h"
#include "zelk/configuration/GroupItem.h"
#include "zelk/configuration/OneOf.h"
#include "zelk/configuration/Parameter.h"
#include "zelk/configuration/ParameterRef.h"
#include "zelk/configuration/Specification.h"
#include "zelk/configuration/impl/Factory.h"
#include "zelk/util/ContractViolationException.h"

namespace zelk::test {

// The message of the exception of type E that call throws, "<no exception>" when it throws none,
// and the source tag after a '@' for contract violations (see contractOf).
template <typename E, typename F>
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

class ValueTestModel {
public:
  typedef zelk::configuration::Parameter Parameter;
  typedef zelk::configuration::impl::Factory Factory;

  ValueTestModel() : mManager(new zelk::configuration::ConfigurationManager()) {
    colors = Factory::createEnumDefinition("colors", mManager);
    Factory::addEnumValue(colors, "red");
    Factory::addEnumValue(colors, "green");
    Factory::addEnumValue(colors, "blue");
    levels = Factory::createEnumDefinition("levels", mManager);
    Factory::addEnumValue(levels, "only");

    spec = Factory::createSpecification("tool", "tool", "Tool", "The tool", false, mManager);
    items = spec->getItemsContainer();
    port = addRef(items, "port", Parameter::INT32, 0);
    Factory::setDefaultValueFor(const_cast<Parameter*>(port->getParameter()), "8080");
    name = addRef(items, "name", Parameter::STRING, 0);
    verbose = addRef(items, "verbose", Parameter::BOOL, 0);
    paths = addRef(items, "paths", Parameter::STRING, zelk::configuration::GroupItem::UNBOUNDED);
    count = addRef(items, "count", Parameter::UINT32, 0);
    big = addRef(items, "big", Parameter::INT64, 0);
    ubig = addRef(items, "ubig", Parameter::UINT64, 0);
    ratio = addRef(items, "ratio", Parameter::DOUBLE, 0);
    oid = addRef(items, "oid", Parameter::OID, 0);
    color = addRef(items, "color", Parameter::ENUM, 0, colors);
    level = addRef(items, "level", Parameter::ENUM, 0, levels);

    db = Factory::createContainer("db", "db", "Database", 0);
    Factory::addItemToSpecification(spec, db);
    host = addRef(db, "host", Parameter::STRING, 0);
    Factory::setDefaultValueFor(host, "localhost");

    target = Factory::createContainer("target", "target", "Targets",
                                      zelk::configuration::GroupItem::UNBOUNDED);
    Factory::addItemToSpecification(spec, target);
    path = addRef(target, "path", Parameter::STRING, 0);

    choice = Factory::createOneOf(0);
    Factory::addItemToSpecification(spec, choice);
    alpha = addRef(choice, "alpha", Parameter::INT32, 0);
    Factory::setDefaultValueFor(alpha, "1");
    beta = addRef(choice, "beta", Parameter::INT32, 0);
  }

  ~ValueTestModel() { delete mManager; }

  ValueTestModel(const ValueTestModel&) = delete;
  ValueTestModel& operator=(const ValueTestModel&) = delete;

  zelk::configuration::ConfigurationManager* manager() const { return mManager; }

  zelk::configuration::EnumDefinition* colors;
  zelk::configuration::EnumDefinition* levels;
  zelk::configuration::Specification* spec;
  zelk::configuration::Container* items;
  zelk::configuration::ParameterRef* port;
  zelk::configuration::ParameterRef* name;
  zelk::configuration::ParameterRef* verbose;
  zelk::configuration::ParameterRef* paths;
  zelk::configuration::ParameterRef* count;
  zelk::configuration::ParameterRef* big;
  zelk::configuration::ParameterRef* ubig;
  zelk::configuration::ParameterRef* ratio;
  zelk::configuration::ParameterRef* oid;
  zelk::configuration::ParameterRef* color;
  zelk::configuration::ParameterRef* level;
  zelk::configuration::Container* db;
  zelk::configuration::ParameterRef* host;
  zelk::configuration::Container* target;
  zelk::configuration::ParameterRef* path;
  zelk::configuration::OneOf* choice;
  zelk::configuration::ParameterRef* alpha;
  zelk::configuration::ParameterRef* beta;

private:
  zelk::configuration::ParameterRef* addRef(zelk::configuration::GroupItemCollection* parent,
                                            const char* id, Parameter::ValueType type,
                                            int32_t characteristics,
                                            const zelk::configuration::EnumDefinition* enumDef = 0) {
    Parameter* parameter = Factory::createParameter(id, id, "A parameter", type, 0, 0, enumDef,
                                                    mManager);
    zelk::configuration::ParameterRef* ref =
        Factory::createParameterRef(parameter, characteristics, 0);
    Factory::addItemToGroupItem(parent, ref);
    return ref;
  }

  zelk::configuration::ConfigurationManager* mManager;
};

}  // namespace zelk::test
