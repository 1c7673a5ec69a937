// etcd_propagation: how long a put to an etcd key takes to reach the services that follow it, and
// what following an unchanging key costs.
//
// It starts its own etcd (the tests' fixture), makes N followers of one key (one EtcdWatcher
// thread each, as a service's change source would have), and puts a new document R times; for
// each put it takes the time from just before the put to each follower's change callback. Then
// it leaves the N followers alone for S seconds and reports the CPU time the process used
// meanwhile. Usage: etcd_propagation [N...] (default 10 100).
#include <sys/resource.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "support/EtcdServer.h"
#include "zelk/configuration/impl/EtcdWatcher.h"

using zelk::configuration::impl::EtcdWatcher;
using Clock = std::chrono::steady_clock;

namespace {

double cpuSeconds() {
  rusage usage;
  getrusage(RUSAGE_SELF, &usage);
  return usage.ru_utime.tv_sec + usage.ru_stime.tv_sec +
         (usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e6;
}

void measure(zelk::test::EtcdServer& etcd, int followers, int rounds, int idleSeconds) {
  const std::string key = "/bench/propagation/" + std::to_string(followers);
  const int64_t start = etcd.put(key, "<fleet/>");
  std::mutex mutex;
  std::condition_variable arrived;
  int64_t expected = 0;
  int count = 0;
  Clock::time_point sent;
  std::vector<double> latencies;
  std::vector<std::unique_ptr<EtcdWatcher>> watchers;
  for (int i = 0; i < followers; ++i) {
    watchers.emplace_back(new EtcdWatcher(etcd.source(key), start, start, true));
    watchers.back()->start(
        [&](const EtcdWatcher::Received& received) {
          const Clock::time_point now = Clock::now();
          std::lock_guard<std::mutex> lock(mutex);
          if (received.modRevision == expected) {
            latencies.push_back(std::chrono::duration<double, std::milli>(now - sent).count());
            if (++count == followers) arrived.notify_all();
          }
        },
        [](const std::string& note) { std::fprintf(stderr, "note: %s\n", note.c_str()); });
  }
  // Let every watch be created before the first put is timed.
  std::this_thread::sleep_for(std::chrono::seconds(1));
  for (int round = 0; round < rounds; ++round) {
    {
      std::lock_guard<std::mutex> lock(mutex);
      count = 0;
      sent = Clock::now();
      // The revision the put will get: the key is the only one written.
      expected = start + round + 1;
    }
    const int64_t revision =
        etcd.put(key, "<fleet><tool round=\"" + std::to_string(round) + "\"/></fleet>");
    std::unique_lock<std::mutex> lock(mutex);
    if (revision != expected ||
        !arrived.wait_for(lock, std::chrono::seconds(10), [&] { return count == followers; })) {
      std::fprintf(stderr, "round %d: %d of %d followers told\n", round, count, followers);
      std::exit(1);
    }
  }
  std::sort(latencies.begin(), latencies.end());
  const auto at = [&](double q) {
    return latencies[std::min(latencies.size() - 1, static_cast<size_t>(q * latencies.size()))];
  };
  std::printf("followers %3d  puts %3d  samples %5zu  median %7.2f ms  p99 %7.2f ms  max %7.2f ms\n",
              followers, rounds, latencies.size(), at(0.5), at(0.99), latencies.back());

  const double before = cpuSeconds();
  std::this_thread::sleep_for(std::chrono::seconds(idleSeconds));
  const double used = cpuSeconds() - before;
  std::printf("followers %3d  idle %d s: process CPU %.4f s (%.3f%% of one core)\n", followers,
              idleSeconds, used, 100.0 * used / idleSeconds);
  for (auto& watcher : watchers) watcher->stop();
}

}  // namespace

int main(int argc, char** argv) {
  std::vector<int> counts;
  for (int i = 1; i < argc; ++i) counts.push_back(std::atoi(argv[i]));
  if (counts.empty()) counts = {10, 100};
  zelk::test::EtcdServer etcd;
  for (int followers : counts) {
    measure(etcd, followers, 50, 10);
  }
  return 0;
}
