#include "zelk/configuration/impl/ContainerImpl.h"

#include <strings.h>

#include "zelk/configuration/GroupItemVisitor.h"
#include "zelk/configuration/ParameterRef.h"
#include "zelk/configuration/impl/DescendantIterator.h"
#include "zelk/util/CaseInsensitiveHash.h"
#include "zelk/util/Contracts.h"

namespace zelk::configuration::impl {

namespace {

std::string orEmpty(const char* text) { return text != 0 ? std::string(text) : std::string(); }

}  // namespace

ContainerImpl::ContainerImpl(Container* self, const char* id, const char* name,
                             const char* description, int32_t characteristics)
    : GroupItemCollectionImpl(self, characteristics & ~UNUSED_CHARACTERISTICS),
      mId(orEmpty(id)),
      mDescription(orEmpty(description)),
      mName(orEmpty(name)) {}

ContainerImpl::~ContainerImpl() {}

const char* ContainerImpl::getName() const {
  return mName.empty() ? mId.c_str() : mName.c_str();
}

const char* ContainerImpl::getItemTypeName() const { return "Container"; }

bool ContainerImpl::accept(GroupItemVisitor& visitor) const {
  const Container& self = *static_cast<const Container*>(getSelf());
  return acceptChildren<Container>(visitor, self, &GroupItemVisitor::visitContainerStart,
                                   &GroupItemVisitor::visitContainerMiddle,
                                   &GroupItemVisitor::visitContainerEnd);
}

GroupItem* ContainerImpl::clone(GroupItem::CopyType copyType) const {
  Container* copy = new Container(mId.c_str(), mName.c_str(), mDescription.c_str(),
                                  mCharacteristics);
  if (copyType == GroupItem::DEEP) {
    copy->copyElementsFrom(*static_cast<const Container*>(getSelf()));
  }
  return copy;
}

void ContainerImpl::addItem(const GroupItem* item) {
  GroupItemCollectionImpl::addItem(item);
  // The collection owns its children, so it may link them.
  const_cast<GroupItem*>(item)->setContainer(static_cast<Container*>(getSelf()));
  invalidateSearchIndex();
}

void ContainerImpl::invalidateSearchIndex() {
  WriteGuard lock(mIndexMutex);
  mIndex.reset();
}

const GroupItem* ContainerImpl::findItem(const char* id) const {
  return findDescendant(id, DescendantIterator::ALL_ITEM_TYPES);
}

const Container* ContainerImpl::findContainer(const char* id) const {
  return static_cast<const Container*>(findDescendant(id, GroupItem::CONTAINER));
}

const ParameterRef* ContainerImpl::findParameterRef(const char* id) const {
  return static_cast<const ParameterRef*>(findDescendant(id, GroupItem::PARAMETER_REF));
}

const GroupItem* ContainerImpl::findDescendant(const char* id, int32_t itemType) const {
  ZELK_CONTRACT(id && *id);
  {
    ReadGuard lock(mIndexMutex);
    if (mIndex) {
      return find(*mIndex, id, itemType);
    }
  }
  WriteGuard lock(mIndexMutex);
  if (!mIndex) {
    // One walk fills every table; entries keep the walk's order, so the first match wins.
    std::unique_ptr<SearchIndex> index(new SearchIndex);
    DescendantIterator descendants(static_cast<const Container*>(getSelf()),
                                   DescendantIterator::ALL_ITEM_TYPES);
    while (descendants.next()) {
      const GroupItem* item = descendants.getCurrent();
      // A parameter reference's id is its parameter's id, so one key serves every kind.
      const uint64_t key = caseInsensitiveHash(item->getId());
      index->all[key].push_back(item);
      if (item->getItemType() == GroupItem::CONTAINER) {
        index->containers[key].push_back(item);
      } else if (item->getItemType() == GroupItem::PARAMETER_REF) {
        index->parameterRefs[key].push_back(item);
      }
    }
    mIndex = std::move(index);
  }
  return find(*mIndex, id, itemType);
}

const GroupItem* ContainerImpl::find(const SearchIndex& index, const char* id, int32_t itemType) {
  const SearchIndex::Table& table = itemType == GroupItem::CONTAINER       ? index.containers
                                    : itemType == GroupItem::PARAMETER_REF ? index.parameterRefs
                                                                           : index.all;
  const SearchIndex::Table::const_iterator found = table.find(caseInsensitiveHash(id));
  if (found == table.end()) {
    return 0;
  }
  for (const GroupItem* item : found->second) {
    // Ids that only share the hash are skipped here.
    if (strcasecmp(item->getId(), id) == 0) {
      return item;
    }
  }
  return 0;
}

}  // namespace zelk::configuration::impl
