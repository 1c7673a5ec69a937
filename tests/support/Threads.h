// Running test tasks on several threads at once.

#pragma once

#include <functional>
#include <string>
#include <vector>

namespace zelk::test {

// Runs every task on its own thread, all released at the same moment, and waits for them all.
// Returns the text of the first exception a task threw, or an empty string.
std::string runTogether(const std::vector<std::function<void()>>& tasks);

}  // namespace zelk::test
