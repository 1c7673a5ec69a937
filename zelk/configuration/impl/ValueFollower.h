// ValueFollower: the following thread of one manager. Its change sources report to it (it is
// their ChangeSink); it coalesces their reports and has the manager re-read, check and apply.
//
// Reports that arrive within the coalescing delay of each other cause one re-read, made once the
// sources have been quiet for that delay (and at the latest ten delays after the first report, so
// that a file written without pause is still read). Re-reads run one at a time, on this thread;
// so do the listeners' notifications and the callbacks.
//
//   ValueFollower follower(manager, "backup", options, sources);
//   follower.start();   // starts the sources and the thread
//   ...
//   follower.stop();    // sources first, then the thread; no callback after this returns
#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "zelk/configuration/FollowOptions.h"
#include "zelk/configuration/impl/ChangeSource.h"

namespace zelk::configuration::impl {

class ConfigurationManagerImpl;

class ValueFollower : public ChangeSink {
public:
  // The sources stay the caller's; they must outlive stop().
  ValueFollower(ConfigurationManagerImpl& manager, const std::string& specificationId,
                const FollowOptions& options, const std::vector<ChangeSource*>& sources);
  // stop().
  ~ValueFollower() override;

  // Starts every source, then the thread. On a failure, what was started is stopped again and
  // the exception reaches the caller.
  void start();
  // Stops every source, then the thread; idempotent. Throws ConfigurationException when called
  // on the following thread itself (from a listener or a callback), where it would wait for
  // itself.
  void stop();
  bool isFollowingThread() const;

  void changed(const std::string& what) override;
  void changedWhole(const std::string& what) override;
  void note(const std::string& text) override;

  const std::string& getSpecificationId() const { return mSpecificationId; }
  const FollowOptions& getOptions() const { return mOptions; }
  const std::vector<ChangeSource*>& getSources() const { return mSources; }

private:
  void run();

  ConfigurationManagerImpl& mManager;
  const std::string mSpecificationId;
  const FollowOptions mOptions;
  const std::vector<ChangeSource*> mSources;

  std::mutex mMutex;
  std::condition_variable mWake;
  bool mPending;
  // A report since the last re-read that must settle for the coalescing delay.
  bool mSettling;
  bool mStopping;
  std::chrono::steady_clock::time_point mLastReport;
  std::thread mThread;
  size_t mStartedSources;
};

}  // namespace zelk::configuration::impl
