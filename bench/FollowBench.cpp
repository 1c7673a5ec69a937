// Following value files: how long from a rename-over save to the listener call, and what
// following costs while nothing changes. Not a Google Benchmark: the first is a distribution of
// single events, the second a CPU time over an idle interval.
//
//   zelk_bench_follow [saves] [idle seconds]     (defaults: 200 saves, 5 s)
//
// Latency: a specification of 2,000 parameters, its value file saved as editors do (a new file
// renamed over the old one) with one value changed; the time from the rename to the listener's
// call, minus the coalescing delay, over every save: median, p90, p99, max.
// Idle CPU: 100 value files followed, none changing; the process's user + system time over the
// interval (getrusage), with inotify and with polling every second.

#include <stdio.h>
#include <sys/resource.h>

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <cstdlib>
#include <iostream>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "Installation.h"
#include "Workload.h"
#include "zelk/configuration/ConfigurationListener.h"
#include "zelk/configuration/ConfigurationManager.h"
#include "zelk/configuration/FollowOptions.h"
#include "zelk/configuration/ListenerArguments.h"

using namespace zelk::configuration;
using Clock = std::chrono::steady_clock;

namespace {

const int PARAMETERS = 2000;
const std::chrono::milliseconds DELAY(20);

std::string registry() {
  std::string text = "<ConfigurationRegistry crgSchemaVersion=\"1.1\"><Parameters>";
  for (int i = 0; i < PARAMETERS; ++i) {
    text += "<Parameter id=\"p" + std::to_string(i) + "\" type=\"int32\" description=\"P\"/>";
  }
  text += "</Parameters><Specifications><Specification id=\"follow\" description=\"F\">";
  for (int i = 0; i < PARAMETERS; ++i) {
    text += "<ParameterRef id=\"p" + std::to_string(i) + "\" optional=\"true\"/>";
  }
  return text + "</Specification></Specifications></ConfigurationRegistry>";
}

std::string values(int changed) {
  std::string text = "<follow";
  for (int i = 0; i < PARAMETERS; ++i) {
    text += " p" + std::to_string(i) + "=\"" + std::to_string(i == 0 ? changed : i) + "\"";
  }
  return text + "/>";
}

void renameOver(const std::string& path, const std::string& content) {
  bench::writeFile(path + ".tmp", content);
  rename((path + ".tmp").c_str(), path.c_str());
}

class Heard : public ConfigurationListener {
public:
  void onValueChanged(const ParameterRef*, const ValueChangedArguments&) override {
    std::lock_guard<std::mutex> lock(mMutex);
    mAt = Clock::now();
    ++mCount;
    mWake.notify_all();
  }
  // The time of the count-th call; false after ten seconds.
  bool wait(int count, Clock::time_point& at) {
    std::unique_lock<std::mutex> lock(mMutex);
    if (!mWake.wait_for(lock, std::chrono::seconds(10), [&] { return mCount >= count; })) {
      return false;
    }
    at = mAt;
    return true;
  }

private:
  std::mutex mMutex;
  std::condition_variable mWake;
  Clock::time_point mAt;
  int mCount = 0;
};

double cpuSeconds() {
  rusage usage;
  getrusage(RUSAGE_SELF, &usage);
  return usage.ru_utime.tv_sec + usage.ru_stime.tv_sec +
         (usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e6;
}

void latency(ConfigurationManager& manager, const std::string& dir, int saves) {
  const std::string path = dir + "/follow.config";
  bench::writeFile(path, values(0));
  manager.enableConfiguration(false, path.c_str(), 0, nullptr, "follow");
  Heard heard;
  heard.startListeningTo(manager.getSpecification("follow"));
  FollowOptions options;
  options.coalescingDelay = DELAY;
  manager.followValues("follow", options);
  std::vector<double> beyond;
  for (int save = 1; save <= saves; ++save) {
    renameOver(path, values(save));
    const Clock::time_point saved = Clock::now();
    Clock::time_point told;
    if (!heard.wait(save, told)) {
      std::cerr << "save " << save << " was not heard\n";
      std::exit(1);
    }
    beyond.push_back(std::chrono::duration<double, std::milli>(told - saved - DELAY).count());
  }
  manager.stopFollowing();
  std::sort(beyond.begin(), beyond.end());
  auto at = [&](double q) { return beyond[static_cast<size_t>(q * (beyond.size() - 1))]; };
  std::cout << "rename-over save -> listener, beyond the " << DELAY.count()
            << " ms coalescing delay, " << PARAMETERS << " parameters, " << saves
            << " saves: median " << at(0.5) << " ms, p90 " << at(0.9) << " ms, p99 " << at(0.99)
            << " ms, max " << beyond.back() << " ms\n";
}

void idle(ConfigurationManager& manager, const std::string& dir, int seconds, bool polling) {
  std::vector<std::string> arguments{"follow"};
  for (int i = 0; i < 100; ++i) {
    const std::string path = dir + "/idle" + std::to_string(i) + ".config";
    bench::writeFile(path, "<follow p" + std::to_string(i) + "=\"1\"/>");
    arguments.push_back("-loadConfiguration");
    arguments.push_back(path);
  }
  std::vector<const char*> argv;
  for (const std::string& argument : arguments) argv.push_back(argument.c_str());
  manager.enableConfiguration(false, nullptr, static_cast<unsigned>(argv.size()), argv.data(),
                              "follow");
  FollowOptions options;
  options.forcePolling = polling;
  options.pollInterval = std::chrono::milliseconds(1000);
  manager.followValues("follow", options);
  const double before = cpuSeconds();
  std::this_thread::sleep_for(std::chrono::seconds(seconds));
  const double used = cpuSeconds() - before;
  manager.stopFollowing();
  std::cout << "100 unchanged files followed " << (polling ? "by polling every 1 s" : "by inotify")
            << " for " << seconds << " s: " << used * 1000 << " ms CPU ("
            << used / seconds * 100 << " % of one core)\n";
}

}  // namespace

int main(int argc, char** argv) {
  const int saves = argc > 1 ? std::atoi(argv[1]) : 200;
  const int seconds = argc > 2 ? std::atoi(argv[2]) : 5;
  bench::Installation& installation = bench::Installation::instance();
  bench::writeFile(installation.etc() + "/follow.crg", registry());
  ConfigurationManager* manager = ConfigurationManager::getInstance();
  const std::string dir = installation.root() + "/config";
  latency(*manager, dir, saves);
  idle(*manager, dir, seconds, false);
  idle(*manager, dir, seconds, true);
  return 0;
}
