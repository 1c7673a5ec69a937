#include "zelk/configuration/GroupItemCollection.h"

#include "zelk/configuration/impl/GroupItemCollectionImpl.h"

namespace zelk::configuration {

GroupItemCollection::GroupItemCollection(impl::GroupItemCollectionImpl* impl) : GroupItem(impl) {}

impl::GroupItemCollectionImpl* GroupItemCollection::getCollectionImpl() const {
  return static_cast<impl::GroupItemCollectionImpl*>(mImpl.get());
}

const GroupItem* GroupItemCollection::getItem(size_t index) const {
  return getCollectionImpl()->getItem(index);
}

size_t GroupItemCollection::getNumberOfItems() const {
  return getCollectionImpl()->getNumberOfItems();
}

const GroupItem* GroupItemCollection::findItem(const char* id) const {
  return getCollectionImpl()->findItem(id);
}

const Container* GroupItemCollection::findContainer(const char* id) const {
  return getCollectionImpl()->findContainer(id);
}

const ParameterRef* GroupItemCollection::findParameterRef(const char* id) const {
  return getCollectionImpl()->findParameterRef(id);
}

void GroupItemCollection::addItem(const GroupItem* item) { getCollectionImpl()->addItem(item); }

void GroupItemCollection::copyElementsFrom(const GroupItemCollection& source) {
  getCollectionImpl()->copyElementsFrom(source);
}

}  // namespace zelk::configuration
