// Container: a named, possibly repeatable group of items in a specification.
//
// The container is the only collection with an id, name and description of its own. Searches on a
// container walk every item below it through logical groups and one-ofs; nested containers are
// found themselves, their contents are not searched. Make one with impl::Factory:
//
//   Container* db = impl::Factory::createContainer("db", "Database", "The database", 0);
//   impl::Factory::addItemToSpecification(spec, db);
//   impl::Factory::addItemToGroupItem(db, impl::Factory::createParameterRef(level, 0, ""));
//   const ParameterRef* ref = db->findParameterRef("LEVEL");   // case does not matter
#pragma once

#include "zelk/configuration/GroupItemCollection.h"

namespace zelk::configuration {

namespace impl {
class ContainerImpl;
class GroupImpl;
class SpecificationImpl;
}  // namespace impl

class Container : public GroupItemCollection {
public:
  // The name if not empty, else the id.
  const char* getName() const;
  const char* getDescription() const;

  impl::ContainerImpl* getContainerImpl() const;

protected:
  friend class impl::Factory;
  friend class impl::ContainerImpl;
  friend class impl::GroupImpl;
  friend class impl::SpecificationImpl;
  // Characteristics: the hidden bit does not apply to containers and is cleared.
  Container(const char* id, const char* name, const char* description, int32_t characteristics);
};

}  // namespace zelk::configuration
