#include "zelk/host/HostProcess.h"

#include <cstdlib>
#include <mutex>
#include <new>

#include "zelk/host/HostContext.h"

namespace zelk::host {

bool hostProcessInit() {
  static std::once_flag once;
  // Creating the default session here fixes its construction before any static destructor that
  // might report errors through it.
  std::call_once(once, [] { hostCurrentSession(); });
  return true;
}

void* hostMalloc(std::size_t size) {
  void* memory = std::malloc(size == 0 ? 1 : size);
  if (memory == nullptr) {
    throw std::bad_alloc();
  }
  return memory;
}

void hostFree(void* memory) { std::free(memory); }

}  // namespace zelk::host
