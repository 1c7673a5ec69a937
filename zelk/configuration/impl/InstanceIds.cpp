#include "zelk/configuration/impl/InstanceIds.h"

#include "zelk/configuration/impl/ValueLocks.h"

namespace zelk::configuration::impl {

uint32_t getNextInstanceId() {
  // Never destroyed, so that items made or copied while the process exits still get ids.
  static StateMutex* const mutex = new StateMutex();
  static uint32_t counter = 0;
  WriteGuard lock(*mutex);
  return ++counter;
}

}  // namespace zelk::configuration::impl
