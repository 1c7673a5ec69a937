#include "zelk/configuration/impl/ValueFollower.h"

#include "zelk/configuration/ConfigurationException.h"
#include "zelk/configuration/impl/ConfigurationManagerImpl.h"
#include "zelk/host/HostMainLog.h"

namespace zelk::configuration::impl {

ValueFollower::ValueFollower(ConfigurationManagerImpl& manager, const std::string& specificationId,
                             const FollowOptions& options,
                             const std::vector<ChangeSource*>& sources)
    : mManager(manager),
      mSpecificationId(specificationId),
      mOptions(options),
      mSources(sources),
      mPending(false),
      mSettling(false),
      mStopping(false),
      mStartedSources(0) {}

ValueFollower::~ValueFollower() {
  try {
    stop();
  } catch (...) {
    // Only a stop on the following thread throws, and the manager never destroys its follower
    // there.
  }
}

void ValueFollower::start() {
  try {
    for (; mStartedSources < mSources.size(); ++mStartedSources) {
      mSources[mStartedSources]->start(*this);
    }
    mThread = std::thread(&ValueFollower::run, this);
  } catch (...) {
    stop();
    throw;
  }
}

bool ValueFollower::isFollowingThread() const {
  return mThread.joinable() && std::this_thread::get_id() == mThread.get_id();
}

void ValueFollower::stop() {
  if (isFollowingThread()) {
    throw ConfigurationException("%s",
                                 "Following cannot be stopped from a listener or callback that "
                                 "the following thread runs");
  }
  // Sources first, so that nothing reports to a follower that is going away.
  while (mStartedSources > 0) {
    mSources[--mStartedSources]->stop();
  }
  {
    std::lock_guard<std::mutex> lock(mMutex);
    mStopping = true;
  }
  mWake.notify_all();
  if (mThread.joinable()) {
    mThread.join();
  }
}

void ValueFollower::changed(const std::string&) {
  {
    std::lock_guard<std::mutex> lock(mMutex);
    mPending = true;
    mSettling = true;
    mLastReport = std::chrono::steady_clock::now();
  }
  mWake.notify_all();
}

void ValueFollower::changedWhole(const std::string&) {
  {
    std::lock_guard<std::mutex> lock(mMutex);
    mPending = true;
  }
  mWake.notify_all();
}

void ValueFollower::note(const std::string& text) {
  zelk::host::hostAddToMainLog("Configuration", ("followValues: " + text).c_str());
}

void ValueFollower::run() {
  const std::chrono::milliseconds delay = mOptions.coalescingDelay;
  std::unique_lock<std::mutex> lock(mMutex);
  for (;;) {
    mWake.wait(lock, [this] { return mStopping || mPending; });
    if (mStopping) {
      return;
    }
    // Wait until the sources have been quiet for the delay, or ten delays have passed.
    const auto latest = mLastReport + delay * 10;
    while (mSettling) {
      const auto quietUntil = std::min(mLastReport + delay, latest);
      const auto last = mLastReport;
      mWake.wait_until(lock, quietUntil,
                       [this, last] { return mStopping || mLastReport != last; });
      if (mStopping) {
        return;
      }
      if (mLastReport == last || std::chrono::steady_clock::now() >= latest) {
        break;
      }
    }
    mPending = false;
    mSettling = false;
    lock.unlock();
    mManager.applyFollowedChange(*this);
    lock.lock();
  }
}

}  // namespace zelk::configuration::impl
