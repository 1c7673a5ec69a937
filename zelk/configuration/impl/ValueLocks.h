// Lock guards for the reader/writer mutexes of value states.
//
// Each guard disables thread interruption for as long as it holds its lock (the interruption
// guard is built before the lock and destroyed after it), so that a Boost interruption point
// inside the mutex cannot leave a state half-changed.
#pragma once

#include <boost/thread/lock_types.hpp>
#include <boost/thread/shared_mutex.hpp>
#include <boost/thread/thread.hpp>

namespace zelk::configuration::impl {

typedef boost::shared_mutex StateMutex;

// A shared (reader) lock.
class ReadGuard {
public:
  explicit ReadGuard(StateMutex& mutex) : mLock(mutex) {}

private:
  boost::this_thread::disable_interruption mNoInterruption;
  boost::shared_lock<StateMutex> mLock;
};

// An exclusive (writer) lock.
class WriteGuard {
public:
  explicit WriteGuard(StateMutex& mutex) : mLock(mutex) {}

private:
  boost::this_thread::disable_interruption mNoInterruption;
  boost::unique_lock<StateMutex> mLock;
};

// An upgradable lock: readers may still enter while checks run; UpgradeGuard::Exclusive turns it
// into an exclusive lock for the store.
class UpgradeGuard {
public:
  explicit UpgradeGuard(StateMutex& mutex) : mLock(mutex) {}

  class Exclusive {
  public:
    explicit Exclusive(UpgradeGuard& guard) : mLock(guard.mLock) {}

  private:
    boost::upgrade_to_unique_lock<StateMutex> mLock;
  };

private:
  boost::this_thread::disable_interruption mNoInterruption;
  boost::upgrade_lock<StateMutex> mLock;
};

}  // namespace zelk::configuration::impl
