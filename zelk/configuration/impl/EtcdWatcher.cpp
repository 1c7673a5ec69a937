#include "zelk/configuration/impl/EtcdWatcher.h"

#include <algorithm>

#include "zelk/configuration/ConfigurationException.h"
#include "zelk/configuration/impl/EtcdClient.h"

namespace zelk::configuration::impl {

EtcdWatcher::EtcdWatcher(const EtcdSource& source, int64_t readRevision, int64_t modRevision,
                         bool found)
    : mSource(source),
      mClient(new EtcdClient(source)),
      mNextRevision(readRevision + 1),
      mModRevision(modRevision),
      mFound(found),
      mMinDelay(100),
      mMaxDelay(5000),
      mStopping(false) {}

EtcdWatcher::~EtcdWatcher() { stop(); }

void EtcdWatcher::setDelays(std::chrono::milliseconds minDelay,
                            std::chrono::milliseconds maxDelay) {
  mMinDelay = minDelay;
  mMaxDelay = std::max(minDelay, maxDelay);
}

void EtcdWatcher::start(std::function<void(const Received&)> onChange,
                        std::function<void(const std::string&)> onNote) {
  if (mThread.joinable()) {
    return;
  }
  mOnChange = std::move(onChange);
  mOnNote = std::move(onNote);
  {
    std::lock_guard<std::mutex> lock(mMutex);
    mStopping = false;
  }
  mClient->restart();
  mThread = std::thread([this] { run(); });
}

void EtcdWatcher::stop() {
  {
    std::lock_guard<std::mutex> lock(mMutex);
    mStopping = true;
  }
  mWake.notify_all();
  mClient->stop();
  if (mThread.joinable()) {
    mThread.join();
  }
}

bool EtcdWatcher::pause(std::chrono::milliseconds delay) {
  std::unique_lock<std::mutex> lock(mMutex);
  return !mWake.wait_for(lock, delay, [this] { return mStopping; });
}

void EtcdWatcher::tell(const Received& received) {
  mFound = received.found;
  // A key that is gone reads again as revision 0.
  mModRevision = received.found ? received.modRevision : 0;
  if (mOnChange) {
    mOnChange(received);
  }
}

void EtcdWatcher::run() {
  std::chrono::milliseconds delay = mMinDelay;
  bool lost = false;
  for (;;) {
    int64_t compactRevision = 0;
    EtcdClient::WatchEnd end = EtcdClient::LOST;
    try {
      end = mClient->watch(
          mSource.key, mNextRevision,
          [this](const EtcdClient::Event& event) {
            mNextRevision = event.modRevision + 1;
            Received received;
            received.found = !event.deleted;
            received.document = event.value;
            received.modRevision = event.modRevision;
            received.endpoint = mClient->getEndpoint();
            tell(received);
          },
          [this, &delay, &lost] {
            delay = mMinDelay;
            if (lost && mOnNote) {
              mOnNote("The etcd cluster answers again at " + mClient->getEndpoint() +
                      "; following the key \"" + mSource.key + "\" from revision " +
                      std::to_string(mNextRevision));
            }
            lost = false;
          },
          &compactRevision);
    } catch (const ConfigurationException& e) {
      if (mOnNote) {
        mOnNote(e.what());
      }
    }
    if (end == EtcdClient::STOPPED) {
      return;
    }
    if (end == EtcdClient::CANCELED) {
      // A cluster that keeps cancelling (a leader being elected, a token refused) is not asked
      // again at once.
      if (!pause(delay)) {
        return;
      }
      delay = std::min(delay * 2, mMaxDelay);
    } else if (end == EtcdClient::LOST) {
      if (!lost && mOnNote) {
        mOnNote("The connection to the etcd cluster at " + mSource.describeEndpoints() +
                " was lost; the values in force stay while it is sought again");
      }
      lost = true;
      if (!pause(delay)) {
        return;
      }
      delay = std::min(delay * 2, mMaxDelay);
    }
    // Cancelled or lost: what happened meanwhile is read afresh, and the watch goes on from
    // after that read.
    try {
      const EtcdClient::Range read = mClient->range(mSource.key);
      if (read.found != mFound || read.modRevision != mModRevision) {
        Received received;
        received.found = read.found;
        received.document = read.value;
        received.modRevision = read.modRevision;
        received.endpoint = mClient->getEndpoint();
        tell(received);
      }
      mNextRevision = read.revision + 1;
    } catch (const ConfigurationException&) {
      lost = true;
      if (!pause(delay)) {
        return;
      }
      delay = std::min(delay * 2, mMaxDelay);
    }
  }
}

}  // namespace zelk::configuration::impl
