// Specification: the description of the parameters that one tool accepts.
//
// A specification is a tree of group items below its items container, which carries the
// specification's id, name and description. Specifications are declared in registry files or made
// with impl::Factory, and registered by id in the ConfigurationManager, which owns them.
//
//   const Specification* spec = ConfigurationManager::getInstance()->getSpecification("backup");
//   const ParameterRef* ref = spec->findParameterRef("level");
//   spec->accept(myVisitor);
#pragma once

#include <boost/scoped_ptr.hpp>

#include "zelk/configuration/Container.h"

namespace zelk::configuration {

class GroupItem;
class GroupItemVisitor;
class ParameterRef;

namespace impl {
class Factory;
class SpecificationImpl;
}  // namespace impl

class Specification {
public:
  // Searches of the items container (see Container); null when nothing matches. Contract: id is
  // neither null nor empty.
  virtual const GroupItem* findItem(const char* id) const;
  virtual const Container* findContainer(const char* id) const;
  virtual const ParameterRef* findParameterRef(const char* id) const;
  virtual ~Specification();

  // The items container's id and name.
  const char* getId() const;
  const char* getName() const;
  // The title if not empty, else the name.
  const char* getTitle() const;
  const char* getDescription() const;
  // The items container's optional bit.
  bool isOptional() const;
  const Container* getItemsContainer() const;
  Container* getItemsContainer();
  // visitSpecificationStart, the items container, then always visitSpecificationEnd. False when
  // the visitor stopped the walk.
  bool accept(GroupItemVisitor& visitor) const;

  impl::SpecificationImpl* getImpl() const;

protected:
  friend class impl::Factory;
  Specification(const char* id, const char* name, const char* title, const char* description);

  boost::scoped_ptr<impl::SpecificationImpl> mImpl;

private:
  Specification(const Specification&) = delete;
  Specification& operator=(const Specification&) = delete;
};

}  // namespace zelk::configuration
