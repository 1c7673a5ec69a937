// Group: a reusable, named group of items that specifications include by reference.
//
// Its id and name are the name it was created with; its items sit in an items container of the
// same id. A registry file's GroupRef copies that container (with copies of all its items) into
// the specification that refers to it.
//
//   Group* common = impl::Factory::createGroup("common", "Common options", manager);
//   impl::Factory::addItemToGroupItem(common->getItemsContainer(), ref);
//   impl::Factory::copyItemToCollection(spec->getItemsContainer(), common->getItemsContainer());
#pragma once

#include "zelk/configuration/Container.h"
#include "zelk/configuration/GlobalItem.h"

namespace zelk::configuration {

class GroupItemVisitor;

namespace impl {
class GroupImpl;
}

class Group : public GlobalItem {
public:
  const Container* getItemsContainer() const;
  Container* getItemsContainer();
  // visitGroupStart, the items container, then always visitGroupEnd. False when the visitor
  // stopped the walk.
  bool accept(GroupItemVisitor& visitor) const;

  impl::GroupImpl* getGroupImpl() const;

protected:
  friend class impl::Factory;
  Group(const char* name, const char* description);
};

}  // namespace zelk::configuration
