// etcd_propagation: how long a put to an etcd key takes to reach the services that follow it, and
// what following an unchanging key costs.
//
// It starts its own etcd (the tests' fixture) and measures two ways for each N:
// - watchers: N followers of one key as threads of this process (one EtcdWatcher each, what a
//   service's change source holds), timed from just before each put to each change callback;
// - services: N service processes, each a ConfigurationManager enabled on "-etcdConfiguration"
//   that follows its values with a listener, timed from just before each put to each listener
//   call (the whole path: watch, re-read, new tree, validation, listener).
// Then it leaves the followers alone and reports the CPU time they used meanwhile.
// Usage: etcd_propagation [N...] (default 10 100).
#include <signal.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

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
#include "support/InstallationFixture.h"
#include "zelk/configuration/ConfigurationListener.h"
#include "zelk/configuration/ConfigurationManager.h"
#include "zelk/configuration/FollowOptions.h"
#include "zelk/configuration/ListenerArguments.h"
#include "zelk/configuration/Value.h"
#include "zelk/configuration/impl/EtcdWatcher.h"

using zelk::configuration::impl::EtcdWatcher;
using Clock = std::chrono::steady_clock;

namespace {

void report(const char* what, int followers, int rounds, std::vector<double> latencies) {
  std::sort(latencies.begin(), latencies.end());
  const auto at = [&](double q) {
    return latencies[std::min(latencies.size() - 1, static_cast<size_t>(q * latencies.size()))];
  };
  std::printf("%-8s %3d  puts %3d  samples %5zu  median %7.2f ms  p99 %7.2f ms  max %7.2f ms\n",
              what, followers, rounds, latencies.size(), at(0.5), at(0.99), latencies.back());
}

int64_t steadyNanoseconds(Clock::time_point at) {
  return std::chrono::duration_cast<std::chrono::nanoseconds>(at.time_since_epoch()).count();
}

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
  report("watchers", followers, rounds, latencies);

  const double before = cpuSeconds();
  std::this_thread::sleep_for(std::chrono::seconds(idleSeconds));
  const double used = cpuSeconds() - before;
  std::printf("watchers %3d  idle %d s: process CPU %.4f s (%.3f%% of one core)\n", followers,
              idleSeconds, used, 100.0 * used / idleSeconds);
  for (auto& watcher : watchers) watcher->stop();
}

// One service process: reports "ready" and then, for every listener call, the new round and the
// time of the call (steady_clock is the same clock in every process), one line each; a line is
// shorter than PIPE_BUF, so lines of different services never mix. Ends on SIGTERM.
class RoundListener : public zelk::configuration::ConfigurationListener {
public:
  explicit RoundListener(int out) : mOut(out) {}
  void onValueChanged(const zelk::configuration::ParameterRef*,
                      const zelk::configuration::ValueChangedArguments& args) override {
    const std::string line =
        static_cast<const zelk::configuration::Value*>(args.mValue)->asString() + " " +
        std::to_string(steadyNanoseconds(Clock::now())) + "\n";
    if (write(mOut, line.data(), line.size()) < 0) _exit(3);
  }

private:
  int mOut;
};

[[noreturn]] void runService(const std::string& settings, int out) {
  const char* argv[] = {"svc", "-etcdConfiguration", settings.c_str()};
  zelk::configuration::ConfigurationManager manager;
  manager.enableConfiguration(false, nullptr, 3, argv, "svc");
  RoundListener listener(out);
  listener.startListeningTo(manager.getSpecification("svc"));
  manager.followValues("svc", zelk::configuration::FollowOptions());
  if (write(out, "ready\n", 6) < 0) _exit(3);
  sigset_t set;
  sigemptyset(&set);
  sigaddset(&set, SIGTERM);
  int signal = 0;
  sigwait(&set, &signal);
  listener.stopListeningAndWait();
  manager.stopFollowing();
  _exit(0);
}

std::string document(int round) {
  return "<fleet><svc round=\"" + std::to_string(round) + "\"/></fleet>";
}

double processCpuSeconds(pid_t pid) {
  FILE* stat = std::fopen(("/proc/" + std::to_string(pid) + "/stat").c_str(), "r");
  if (stat == nullptr) return 0;
  char text[1024] = {};
  const size_t length = std::fread(text, 1, sizeof(text) - 1, stat);
  std::fclose(stat);
  // Fields 14 and 15 (utime, stime) follow the command name, which ends at the last ')'.
  std::string line(text, length);
  unsigned long user = 0, system = 0;
  std::sscanf(line.c_str() + line.rfind(')') + 2,
              "%*c %*d %*d %*d %*d %*d %*u %*u %*u %*u %*u %lu %lu", &user, &system);
  return static_cast<double>(user + system) / sysconf(_SC_CLK_TCK);
}

void measureServices(zelk::test::EtcdServer& etcd, int services, int rounds, int idleSeconds) {
  const std::string key = "/bench/services/" + std::to_string(services);
  etcd.put(key, document(-1));
  const std::string settings = "endpoints=" + etcd.endpoint() + ";key=" + key;
  int pipeEnds[2];
  if (pipe(pipeEnds) != 0) std::exit(1);
  sigset_t set;
  sigemptyset(&set);
  sigaddset(&set, SIGTERM);
  pthread_sigmask(SIG_BLOCK, &set, nullptr);  // inherited: the services wait for it in sigwait
  std::vector<pid_t> children;
  for (int i = 0; i < services; ++i) {
    const pid_t pid = fork();
    if (pid == 0) {
      close(pipeEnds[0]);
      runService(settings, pipeEnds[1]);
    }
    children.push_back(pid);
  }
  close(pipeEnds[1]);
  FILE* in = fdopen(pipeEnds[0], "r");
  char line[128];
  const auto readLine = [&] {
    if (std::fgets(line, sizeof(line), in) == nullptr) {
      std::fprintf(stderr, "a service ended early\n");
      std::exit(1);
    }
  };
  for (int i = 0; i < services; ++i) readLine();  // every "ready"
  std::this_thread::sleep_for(std::chrono::seconds(1));
  std::vector<double> latencies;
  for (int round = 0; round < rounds; ++round) {
    const int64_t sent = steadyNanoseconds(Clock::now());
    etcd.put(key, document(round));
    for (int i = 0; i < services; ++i) {
      readLine();
      int told = -1;
      long long at = 0;
      if (std::sscanf(line, "%d %lld", &told, &at) != 2 || told != round) {
        std::fprintf(stderr, "round %d: a service was told %s", round, line);
        std::exit(1);
      }
      latencies.push_back((at - sent) / 1e6);
    }
  }
  report("services", services, rounds, latencies);

  double before = 0;
  for (pid_t pid : children) before += processCpuSeconds(pid);
  std::this_thread::sleep_for(std::chrono::seconds(idleSeconds));
  double used = -before;
  for (pid_t pid : children) used += processCpuSeconds(pid);
  std::printf("services %3d  idle %d s: CPU of all services %.4f s (%.3f%% of one core)\n",
              services, idleSeconds, used, 100.0 * used / idleSeconds);
  for (pid_t pid : children) kill(pid, SIGTERM);
  for (pid_t pid : children) waitpid(pid, nullptr, 0);
  std::fclose(in);
}

}  // namespace

int main(int argc, char** argv) {
  std::vector<int> counts;
  for (int i = 1; i < argc; ++i) counts.push_back(std::atoi(argv[i]));
  if (counts.empty()) counts = {10, 100};
  zelk::test::EtcdServer etcd;
  zelk::test::InstallationFixture installation;
  installation.writeEtcFile(
      "zelk.crg",
      "<ConfigurationRegistry crgSchemaVersion=\"1.1\"><Parameters>"
      "<Parameter id=\"round\" type=\"int32\" description=\"R\"/></Parameters>"
      "<Specifications><Specification id=\"svc\" description=\"S\">"
      "<ParameterRef id=\"round\"/></Specification></Specifications></ConfigurationRegistry>");
  for (int followers : counts) {
    measure(etcd, followers, 50, 10);
    measureServices(etcd, followers, 50, 10);
  }
  return 0;
}
