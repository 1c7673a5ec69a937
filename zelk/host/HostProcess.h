// Process-wide host services: initialisation and the host's memory allocator.
//
//   static const bool initialised = zelk::host::hostProcessInit();   // in every source file
//   void* memory = zelk::host::hostMalloc(sizeof(Foo));
//   Foo* foo = new (memory) Foo();  ...  foo->~Foo(); zelk::host::hostFree(memory);
#pragma once

#include <cstddef>

namespace zelk::host {

// Initialises the host's process-wide state once; later calls do nothing. Safe to call from
// static initialisation in any order. Always returns true.
bool hostProcessInit();

// Allocates size bytes (at least one), aligned for any object. Throws std::bad_alloc when the
// memory is not available; never returns null.
void* hostMalloc(std::size_t size);
// Releases memory from hostMalloc; null is ignored.
void hostFree(void* memory);

}  // namespace zelk::host
