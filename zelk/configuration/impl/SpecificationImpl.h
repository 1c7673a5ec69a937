// SpecificationImpl: a specification's items container (owned) and title.
#pragma once

#include <string>

#include "zelk/configuration/Specification.h"

namespace zelk::configuration::impl {

class SpecificationImpl {
public:
  SpecificationImpl(Specification* self, const char* id, const char* name, const char* title,
                    const char* description);
  // Destroys the items container (and so the whole tree).
  ~SpecificationImpl();

  // The public specification (a contract: set).
  Specification* getSelf() const;
  Container* getItemsContainer() const { return mItemsContainer; }
  const char* getTitle() const;
  bool accept(GroupItemVisitor& visitor) const;

private:
  SpecificationImpl(const SpecificationImpl&) = delete;
  SpecificationImpl& operator=(const SpecificationImpl&) = delete;

  Specification* mSelf;
  Container* mItemsContainer;
  std::string mTitle;
};

}  // namespace zelk::configuration::impl
