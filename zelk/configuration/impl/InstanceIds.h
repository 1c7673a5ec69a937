// Process-wide instance ids of value items: identify states in notifications and debug text.
#pragma once

#include <cstdint>

namespace zelk::configuration::impl {

// The next id of the process-wide counter: 1 for the first call, never reused.
uint32_t getNextInstanceId();

}  // namespace zelk::configuration::impl
