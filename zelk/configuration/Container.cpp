#include "zelk/configuration/Container.h"

#include "zelk/configuration/impl/ContainerImpl.h"

namespace zelk::configuration {

Container::Container(const char* id, const char* name, const char* description,
                     int32_t characteristics)
    : GroupItemCollection(new impl::ContainerImpl(this, id, name, description, characteristics)) {}

const char* Container::getName() const { return getContainerImpl()->getName(); }

const char* Container::getDescription() const { return getContainerImpl()->getDescription(); }

impl::ContainerImpl* Container::getContainerImpl() const {
  return static_cast<impl::ContainerImpl*>(mImpl.get());
}

}  // namespace zelk::configuration
