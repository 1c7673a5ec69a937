// EtcdClient: the few calls of etcd's v3 HTTP/JSON gateway that a value source needs: read a key
// with its revisions, put it (plainly or as a compare-and-swap on its modification revision),
// compact, and watch it from a revision.
//
// Requests go to the source's endpoints in turn: the one that answered last is tried first, and
// an endpoint that cannot be reached passes the request to the next. With a user, the client
// authenticates first and sends the token with every request. Every request has a time limit, and
// answers are bounded in size; an answer that is not what the gateway gives throws an error that
// names the endpoint, never a crash.
//
//   EtcdClient client(source);
//   EtcdClient::Range read = client.range(source.key);
//   client.watch(source.key, read.revision + 1, onEvent, 0);   // until stop() or a cancel
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <mutex>
#include <string>

#include "zelk/configuration/EtcdSource.h"

namespace zelk::configuration::impl {

class EtcdClient {
public:
  // What a read of one key gives.
  struct Range {
    bool found = false;
    std::string value;
    // The revision of the key's last change (0 when not found).
    int64_t modRevision = 0;
    // The cluster's revision when it answered: a watch from revision + 1 misses nothing.
    int64_t revision = 0;
  };
  // What a compare-and-swap gives.
  struct Swap {
    bool succeeded = false;
    // The cluster's revision after the request (the new mod revision when it succeeded).
    int64_t revision = 0;
    // When it failed: the key's mod revision now (0 when the key does not exist).
    int64_t currentModRevision = 0;
  };
  // One change seen by a watch.
  struct Event {
    bool deleted = false;
    std::string value;
    int64_t modRevision = 0;
  };
  // Why a watch ended.
  enum WatchEnd {
    // stop() was called.
    STOPPED,
    // The cluster cancelled the watch because the revision asked for was compacted away
    // (compactRevision tells the oldest revision still kept).
    COMPACTED,
    // The cluster cancelled the watch for another reason (leader change, shutdown).
    CANCELED,
    // The connection was lost or could not be made.
    LOST
  };

  // Answers larger than this are refused.
  static const std::size_t DEFAULT_MAX_ANSWER_SIZE = std::size_t(160) << 20;

  explicit EtcdClient(const EtcdSource& source);
  ~EtcdClient();
  EtcdClient(const EtcdClient&) = delete;
  EtcdClient& operator=(const EtcdClient&) = delete;

  // Reads key. Throws ConfigurationException naming the endpoints when none answers, and naming
  // the endpoint when its answer is an error or not understood.
  Range range(const std::string& key);
  // Puts value at key when the key's mod revision is expectedModRevision (0: when the key does
  // not exist). Throws as range does.
  Swap compareAndSwap(const std::string& key, const std::string& value, int64_t expectedModRevision);
  // Puts value at key; returns the new revision.
  int64_t put(const std::string& key, const std::string& value);
  // Deletes key; returns the new revision.
  int64_t remove(const std::string& key);
  // Compacts the history up to revision.
  void compact(int64_t revision);
  // Any other request of the gateway (such as "/v3/auth/enable" with "{}"): the answer's JSON
  // text. Throws as range does.
  std::string call(const char* path, const std::string& jsonBody) { return post(path, jsonBody); }

  // Watches key from startRevision, calling onEvent for each change in order and onCreated (when
  // given) once the cluster has accepted the watch. Returns why it ended; for COMPACTED,
  // compactRevision is set. Throws ConfigurationException only for answers that are not
  // understood (and whatever the callbacks throw).
  WatchEnd watch(const std::string& key, int64_t startRevision,
                 const std::function<void(const Event&)>& onEvent,
                 const std::function<void()>& onCreated, int64_t* compactRevision = 0);
  // Ends a watch running on another thread (or the next one started) at once; safe from any
  // thread.
  void stop();
  // Lets watches run again after stop().
  void restart();

  // The endpoint that answered last (the first one before any answer).
  std::string getEndpoint() const;
  const EtcdSource& getSource() const { return mSource; }
  void setMaxAnswerSize(std::size_t bytes) { mMaxAnswerSize = bytes; }

private:
  // Posts body to path on each endpoint in turn until one answers; returns the parsed answer.
  // An error answer throws, except that an invalid token authenticates again once.
  std::string post(const char* path, const std::string& body);
  // One attempt at endpoint; false (with why) when it could not be reached.
  bool postTo(const std::string& endpoint, const char* path, const std::string& body,
              long& status, std::string& answer, std::string& why);
  void authenticate();
  void checkAnswerError(const std::string& endpoint, long status, const std::string& answer);
  // Applies the connection settings (timeouts, TLS, token) to a curl handle.
  void configure(void* curl, bool streaming) const;

  const EtcdSource mSource;
  std::size_t mMaxAnswerSize;
  mutable std::mutex mMutex;
  // Index of the endpoint that answered last; guarded by mMutex, as is mToken.
  std::size_t mCurrent;
  std::string mToken;
  std::atomic<bool> mStopped;
  // The multi handle of the watch running, to wake it on stop(); guarded by mMutex.
  void* mWatchHandle;
};

}  // namespace zelk::configuration::impl
