// ContainerImpl: a container's id, name and description, and the searches that walk every item
// below the container (through logical groups and one-ofs, not into nested containers).
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "zelk/configuration/Container.h"
#include "zelk/configuration/impl/GroupItemCollectionImpl.h"
#include "zelk/configuration/impl/ValueLocks.h"

namespace zelk::configuration::impl {

class RegistryGeneration;

class ContainerImpl : public GroupItemCollectionImpl {
public:
  static const int32_t UNUSED_CHARACTERISTICS = GroupItem::HIDDEN;

  ContainerImpl(Container* self, const char* id, const char* name, const char* description,
                int32_t characteristics);
  ~ContainerImpl() override;

  const char* getId() const override { return mId.c_str(); }
  const char* getName() const;
  const char* getDescription() const { return mDescription.c_str(); }

  GroupItem::ItemType getItemType() const override { return GroupItem::CONTAINER; }
  const char* getItemTypeName() const override;
  bool accept(GroupItemVisitor& visitor) const override;
  GroupItem* clone(GroupItem::CopyType copyType) const override;
  int32_t getUnusedCharacteristics() const override { return UNUSED_CHARACTERISTICS; }

  // Appends item (a contract: not null), then links it to this container.
  void addItem(const GroupItem* item) override;

  const GroupItem* findItem(const char* id) const override;
  const Container* findContainer(const char* id) const override;
  const ParameterRef* findParameterRef(const char* id) const override;

  // Forgets the search index; called whenever a collection below this container (up to the next
  // nested container) gained an item.
  void invalidateSearchIndex();

  // The registry generation of the specification whose items this container holds, or null (see
  // RegistryGeneration).
  RegistryGeneration* getGeneration() const { return mGeneration; }
  void setGeneration(RegistryGeneration* generation) { mGeneration = generation; }

private:
  // Case-insensitive id hash -> items in iteration order, one table per searched item type.
  struct SearchIndex {
    typedef std::unordered_map<uint64_t, std::vector<const GroupItem*>> Table;
    Table all;
    Table containers;
    Table parameterRefs;
  };

  // Every search of a container goes through here: the first descendant of the item type
  // (-1: any) whose id matches without regard to case.
  const GroupItem* findDescendant(const char* id, int32_t itemType) const;
  // The look-up itself, in a built index.
  static const GroupItem* find(const SearchIndex& index, const char* id, int32_t itemType);

  std::string mId;
  std::string mDescription;
  std::string mName;
  RegistryGeneration* mGeneration = nullptr;

  // Built by the first search after a change. Searches read it under the shared lock, so those of
  // one container run side by side; building and forgetting it take the lock exclusively.
  mutable StateMutex mIndexMutex;
  mutable std::unique_ptr<SearchIndex> mIndex;
};

}  // namespace zelk::configuration::impl
