// FileWatcher: tells when any of a set of files may have changed, through inotify on the
// directories that lead to them, or by polling where inotify cannot be had.
//
// A file is watched through its directory, never itself, so that an editor's rename-over save, a
// delete followed by a create, and a swapped symbolic link (the "..data" link of a mounted
// configuration) are all seen: each directory on the way to the file, symbolic links followed, is
// watched for the one name that matters in it, and the way is resolved again after every event.
// Events for other names in those directories are ignored. Where inotify cannot be had (no more
// instances or watches, or forcePolling), the watcher polls size, modification time and inode of
// every file at pollInterval instead; onFallback is told why, once. The watcher never ends the
// process: an error it cannot recover from makes it poll.
//
//   FileWatcher watcher({"/etc/zelk/config/backup.config"}, [&] { wake(); },
//                       [&](const std::string& why) { log(why); }, false,
//                       std::chrono::milliseconds(1000));
//   watcher.start();   // onChange runs on the watcher's thread
//   ...
//   watcher.stop();    // no callback after this returns
#pragma once

#include <atomic>
#include <chrono>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <thread>
#include <vector>

namespace zelk::configuration::impl {

class FileWatcher {
public:
  typedef std::function<void()> ChangeCallback;
  typedef std::function<void(const std::string&)> FallbackCallback;
  // Directory -> the names in it that lead to a watched file.
  typedef std::map<std::string, std::set<std::string> > Interests;

  // Relative paths are taken from the working directory at construction.
  FileWatcher(const std::vector<std::string>& paths, ChangeCallback onChange,
              FallbackCallback onFallback, bool forcePolling,
              std::chrono::milliseconds pollInterval);
  // stop().
  ~FileWatcher();

  // Watches every directory (or takes the first signatures when polling) before it returns, so
  // that no change made after start() is missed, then starts the watcher's thread. Throws
  // std::system_error when no thread can be made.
  void start();
  // Stops and joins the thread; idempotent.
  void stop();
  // True once the watcher polls (after start()).
  bool isPolling() const { return mPolling.load(); }

  // The directories and names that lead to path, symbolic links followed (at most 40 of them):
  // the file's own directory and name, and for every link on the way, the link's directory and
  // name. path must be absolute.
  static void addInterests(const std::string& path, Interests& interests);

private:
  FileWatcher(const FileWatcher&) = delete;
  FileWatcher& operator=(const FileWatcher&) = delete;

  void run();
  // Makes the inotify instance and watches; false when inotify cannot be had (why says so).
  bool setUpInotify(std::string& why);
  // Resolves every path again and watches exactly the directories that lead to them now; false
  // when a watch cannot be added for another reason than a missing directory.
  bool refresh(std::string& why);
  // Watches with inotify until stopped; false when inotify fails and polling must take over
  // (why says so).
  bool runInotify(std::string& why);
  // Switches to polling from the signatures of now, and says why.
  void fallBack(const std::string& why);
  void runPolling();
  // Sleeps for up to timeout; true when stop() was called.
  bool waitForStop(std::chrono::milliseconds timeout);

  std::vector<std::string> mPaths;
  ChangeCallback mOnChange;
  FallbackCallback mOnFallback;
  bool mForcePolling;
  std::chrono::milliseconds mPollInterval;
  std::atomic<bool> mPolling;
  int mInotifyFd;
  // A watch descriptor may stand for several directory paths of one inode.
  std::map<int, std::set<std::string> > mDirectoriesOf;
  std::map<std::string, int> mWatchOf;
  Interests mInterests;
  // What polling compares, per path.
  struct Signature {
    bool exists;
    unsigned long device;
    unsigned long inode;
    long size;
    long modifiedSeconds;
    long modifiedNanoseconds;
    bool operator==(const Signature& other) const;
  };
  static Signature signatureOf(const std::string& path);
  std::vector<Signature> mSignatures;
  // An eventfd written by stop() to wake the thread.
  int mWakeFd;
  std::thread mThread;
};

}  // namespace zelk::configuration::impl
