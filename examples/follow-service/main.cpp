// zfollow: a service that follows its value file while it runs.
//
// A long-running service enables its configuration once, reads its values, and asks the manager
// to follow its value files. From then on:
//   - an operator's save (here made by the program itself, as an editor does: a new file renamed
//     over the old one) is read, checked and put in force; the listener hears each changed value
//     once, and the next getValueGroup hands out the new values;
//   - an invalid save is refused with every error, and the values in force stay as they were;
//   - the next good save applies again.
// It uses the "zbackup" specification of the example installation, so that it runs as it is:
//
//   zfollow            (prints what it sees; exits 0 when every step went as described)

#include <stdio.h>
#include <stdlib.h>
#include <unistd.h>

#include <chrono>
#include <condition_variable>
#include <fstream>
#include <iostream>
#include <mutex>
#include <string>

#include "zelk/configuration/ConfigurationListener.h"
#include "zelk/configuration/ConfigurationManager.h"
#include "zelk/configuration/FollowOptions.h"
#include "zelk/configuration/ListenerArguments.h"
#include "zelk/configuration/Value.h"
#include "zelk/configuration/ValueGroup.h"
#include "zelk/host/HostDirectories.h"

using namespace zelk::configuration;

namespace {

const char* const SPECIFICATION = "zbackup";

// Hears the changes the following thread applies; runs on that thread.
class RetriesWatcher : public ConfigurationListener {
public:
  void onValueChanged(const ParameterRef*, const ValueChangedArguments& args) override {
    std::cout << "listener: " << args.mValue->getName() << " changed from "
              << args.mOldValue.asString() << " to "
              << static_cast<const Value*>(args.mValue)->asString() << std::endl;
  }
};

// Counts the reports of the following thread, so that the program can wait for each step.
class Reports {
public:
  FollowOptions options() {
    FollowOptions options;
    options.coalescingDelay = std::chrono::milliseconds(50);
    options.onApplied = [this](const AppliedChange& change) {
      std::lock_guard<std::mutex> lock(mMutex);
      std::cout << "applied " << change.changes.size() << " change(s)" << std::endl;
      ++mCount;
      mWake.notify_all();
    };
    options.onRefused = [this](const RefusedChange& change) {
      std::lock_guard<std::mutex> lock(mMutex);
      for (const std::string& error : change.errors) std::cout << "refused: " << error << std::endl;
      ++mCount;
      mWake.notify_all();
    };
    return options;
  }

  // Waits for the next report; false after ten seconds without one.
  bool waitForNext() {
    std::unique_lock<std::mutex> lock(mMutex);
    const int seen = mSeen++;
    return mWake.wait_for(lock, std::chrono::seconds(10), [&] { return mCount > seen; });
  }

private:
  std::mutex mMutex;
  std::condition_variable mWake;
  int mCount = 0;
  int mSeen = 0;
};

// Saves content as an editor does: into a new file, renamed over the old one.
void save(const std::string& path, const std::string& content) {
  std::ofstream(path + ".tmp") << content;
  rename((path + ".tmp").c_str(), path.c_str());
}

std::string values(const std::string& retries) {
  return "<zbackup database=\"sales\" destination=\"backup1::/backups/sales\" retries=\"" +
         retries + "\"/>";
}

}  // namespace

int main() {
#ifdef ZFOLLOW_INSTALLATION
  zelk::host::hostSetDirectories(ZFOLLOW_INSTALLATION "/etc", ZFOLLOW_INSTALLATION "/plugins",
                                 ZFOLLOW_INSTALLATION "/config");
#endif
  char directory[] = "/tmp/zfollow-XXXXXX";
  if (mkdtemp(directory) == nullptr) return EXIT_FAILURE;
  const std::string path = std::string(directory) + "/zbackup.config";
  save(path, values("8"));

  ConfigurationManager* manager = ConfigurationManager::getInstance();
  manager->enableConfiguration(false, path.c_str(), 0, nullptr, SPECIFICATION);
  std::cout << "retries: " << manager->getValueGroup(SPECIFICATION, true, 0).getValue("retries").asUInt32()
            << std::endl;

  RetriesWatcher listener;
  listener.startListeningTo(manager->getSpecification(SPECIFICATION));
  Reports reports;
  manager->followValues(SPECIFICATION, reports.options());

  bool asDescribed = true;
  save(path, values("12"));  // a good save
  asDescribed = reports.waitForNext() && asDescribed;
  save(path, values("many"));  // not a number: refused
  asDescribed = reports.waitForNext() && asDescribed;
  std::cout << "retries: " << manager->getValueGroup(SPECIFICATION, true, 0).getValue("retries").asUInt32()
            << std::endl;
  save(path, values("3"));  // good again
  asDescribed = reports.waitForNext() && asDescribed;
  std::cout << "retries: " << manager->getValueGroup(SPECIFICATION, true, 0).getValue("retries").asUInt32()
            << std::endl;

  manager->stopFollowing();
  unlink(path.c_str());
  rmdir(directory);
  return asDescribed ? EXIT_SUCCESS : EXIT_FAILURE;
}
