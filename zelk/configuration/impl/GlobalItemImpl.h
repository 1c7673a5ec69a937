// GlobalItemImpl: the id, name and description of a parameter or group.
#pragma once

#include <string>

#include "zelk/configuration/GlobalItem.h"

namespace zelk::configuration::impl {

class RegistryGeneration;

class GlobalItemImpl {
public:
  // Contract: id is neither null nor empty.
  GlobalItemImpl(GlobalItem* self, const char* id, const char* name, const char* description);
  virtual ~GlobalItemImpl();

  // The public item (a contract: set).
  GlobalItem* getSelf() const;
  const char* getId() const { return mId.c_str(); }
  const char* getName() const;
  const char* getDescription() const { return mDescription.c_str(); }
  virtual GlobalItem::ItemType getItemType() const = 0;
  virtual const char* getItemTypeName() const = 0;

  // The registry generation of the manager that holds the item, or null (see RegistryGeneration).
  RegistryGeneration* getGeneration() const { return mGeneration; }
  void setGeneration(RegistryGeneration* generation) { mGeneration = generation; }

protected:
  GlobalItem* mSelf;
  std::string mId;
  std::string mName;
  std::string mDescription;
  RegistryGeneration* mGeneration = nullptr;
};

}  // namespace zelk::configuration::impl
