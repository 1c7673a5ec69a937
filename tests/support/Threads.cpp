#include "support/Threads.h"

#include <atomic>
#include <exception>
#include <mutex>
#include <thread>

namespace zelk::test {

std::string runTogether(const std::vector<std::function<void()>>& tasks) {
  std::atomic<bool> go(false);
  std::mutex failureMutex;
  std::string failure;
  std::vector<std::thread> threads;
  for (const std::function<void()>& task : tasks) {
    threads.emplace_back([&, task] {
      while (!go.load()) {
        std::this_thread::yield();
      }
      try {
        task();
      } catch (const std::exception& e) {
        std::lock_guard<std::mutex> lock(failureMutex);
        if (failure.empty()) {
          failure = e.what() != 0 ? e.what() : "exception";
        }
      }
    });
  }
  go.store(true);
  for (std::thread& thread : threads) {
    thread.join();
  }
  return failure;
}

}  // namespace zelk::test
