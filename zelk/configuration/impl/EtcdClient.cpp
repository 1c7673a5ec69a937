#include "zelk/configuration/impl/EtcdClient.h"

#include <curl/curl.h>

#include <cstring>
#include <exception>
#include <memory>
#include <nlohmann/json.hpp>

#include "zelk/configuration/ConfigurationException.h"
#include "zelk/util/Base64.h"

namespace zelk::configuration::impl {

namespace {

using nlohmann::json;

// gRPC's code for a missing or stale token.
const int CODE_UNAUTHENTICATED = 16;
const char* const AUTHENTICATE_PATH = "/v3/auth/authenticate";

std::once_flag curlInitialised;

void initialiseCurl() {
  std::call_once(curlInitialised, [] { curl_global_init(CURL_GLOBAL_DEFAULT); });
}

struct CurlDeleter {
  void operator()(CURL* curl) const { curl_easy_cleanup(curl); }
};
struct HeadersDeleter {
  void operator()(curl_slist* list) const { curl_slist_free_all(list); }
};
using CurlHandle = std::unique_ptr<CURL, CurlDeleter>;
using Headers = std::unique_ptr<curl_slist, HeadersDeleter>;

[[noreturn]] void badAnswer(const std::string& endpoint, const std::string& what) {
  throw ConfigurationException("The etcd cluster at %s gave an answer that is not understood: %s",
                               endpoint.c_str(), what.c_str());
}

json parseJson(const std::string& endpoint, const std::string& text) {
  json value = json::parse(text, nullptr, false);
  if (value.is_discarded() || !value.is_object()) {
    badAnswer(endpoint, "not a JSON object");
  }
  return value;
}

// The gateway writes 64-bit numbers as strings and leaves out fields that hold their default.
int64_t number(const json& object, const char* name, const std::string& endpoint) {
  const json::const_iterator field = object.find(name);
  if (field == object.end() || field->is_null()) {
    return 0;
  }
  if (field->is_number_integer()) {
    return field->get<int64_t>();
  }
  if (field->is_string()) {
    const std::string& text = field->get_ref<const std::string&>();
    int64_t result = 0;
    bool negative = false;
    size_t i = 0;
    if (!text.empty() && text[0] == '-') {
      negative = true;
      i = 1;
    }
    if (i < text.size() && text.size() - i <= 18) {
      for (; i < text.size() && text[i] >= '0' && text[i] <= '9'; ++i) {
        result = result * 10 + (text[i] - '0');
      }
      if (i == text.size()) {
        return negative ? -result : result;
      }
    }
  }
  badAnswer(endpoint, std::string("\"") + name + "\" is not a number");
}

bool flag(const json& object, const char* name, const std::string& endpoint) {
  const json::const_iterator field = object.find(name);
  if (field == object.end() || field->is_null()) {
    return false;
  }
  if (!field->is_boolean()) {
    badAnswer(endpoint, std::string("\"") + name + "\" is not true or false");
  }
  return field->get<bool>();
}

std::string bytes(const json& object, const char* name, const std::string& endpoint) {
  const json::const_iterator field = object.find(name);
  std::string result;
  if (field == object.end() || field->is_null()) {
    return result;
  }
  if (!field->is_string() || !decodeBase64(field->get_ref<const std::string&>(), result)) {
    badAnswer(endpoint, std::string("\"") + name + "\" is not base64");
  }
  return result;
}

// The field name of object when it is of the kind of empty (an object or a list), which stands in
// for an absent one; a bad answer saying it is not kind otherwise.
const json& nested(const json& object, const char* name, const std::string& endpoint,
                   const json& empty, const char* kind) {
  const json::const_iterator field = object.find(name);
  if (field == object.end() || field->is_null()) {
    return empty;
  }
  if (field->type() != empty.type()) {
    badAnswer(endpoint, std::string("\"") + name + "\" is not " + kind);
  }
  return *field;
}

const json& member(const json& object, const char* name, const std::string& endpoint) {
  static const json EMPTY_OBJECT = json::object();
  return nested(object, name, endpoint, EMPTY_OBJECT, "an object");
}

const json& list(const json& object, const char* name, const std::string& endpoint) {
  static const json EMPTY_ARRAY = json::array();
  return nested(object, name, endpoint, EMPTY_ARRAY, "a list");
}

std::string text(const json& object, const char* name) {
  const json::const_iterator field = object.find(name);
  return field != object.end() && field->is_string() ? field->get<std::string>() : std::string();
}

std::string revisionText(int64_t revision) { return std::to_string(revision); }

// Collects an answer, refusing more than limit bytes.
struct Body {
  std::string data;
  std::size_t limit;
  bool tooLarge = false;
};

size_t collect(char* data, size_t size, size_t count, void* user) {
  Body* body = static_cast<Body*>(user);
  const size_t length = size * count;
  if (body->data.size() + length > body->limit) {
    body->tooLarge = true;
    return 0;
  }
  body->data.append(data, length);
  return length;
}

// The state of one watch stream: answers arrive as JSON objects, one a line.
struct WatchStream {
  std::string endpoint;
  std::string pending;
  std::size_t limit;
  const std::function<void(const EtcdClient::Event&)>* onEvent;
  const std::function<void()>* onCreated;
  bool reached = false;
  bool finished = false;
  EtcdClient::WatchEnd end = EtcdClient::LOST;
  int64_t compactRevision = 0;
  bool tooLarge = false;
  std::exception_ptr failure;

  void handleLine(const std::string& line) {
    json answer = parseJson(endpoint, line);
    if (answer.contains("error")) {
      end = EtcdClient::CANCELED;
      finished = true;
      return;
    }
    const json& result = member(answer, "result", endpoint);
    if (flag(result, "created", endpoint) && *onCreated) {
      (*onCreated)();
    }
    for (const json& item : list(result, "events", endpoint)) {
      if (!item.is_object()) {
        badAnswer(endpoint, "an event is not an object");
      }
      EtcdClient::Event event;
      // A put carries no type: the gateway leaves the default out.
      const std::string type = text(item, "type");
      if (type == "DELETE") {
        event.deleted = true;
      } else if (!type.empty() && type != "PUT") {
        badAnswer(endpoint, "an event of the unknown type \"" + type + "\"");
      }
      const json& kv = member(item, "kv", endpoint);
      event.modRevision = number(kv, "mod_revision", endpoint);
      if (!event.deleted) {
        event.value = bytes(kv, "value", endpoint);
      }
      (*onEvent)(event);
    }
    if (flag(result, "canceled", endpoint)) {
      compactRevision = number(result, "compact_revision", endpoint);
      end = compactRevision > 0 ? EtcdClient::COMPACTED : EtcdClient::CANCELED;
      finished = true;
    }
  }
};

size_t receiveWatch(char* data, size_t size, size_t count, void* user) {
  WatchStream* stream = static_cast<WatchStream*>(user);
  const size_t length = size * count;
  stream->reached = true;
  stream->pending.append(data, length);
  try {
    size_t start = 0;
    for (;;) {
      const size_t end = stream->pending.find('\n', start);
      if (end == std::string::npos) {
        break;
      }
      const std::string line = stream->pending.substr(start, end - start);
      start = end + 1;
      if (line.find_first_not_of(" \t\r") != std::string::npos) {
        stream->handleLine(line);
      }
      if (stream->finished) {
        return 0;
      }
    }
    stream->pending.erase(0, start);
  } catch (...) {
    stream->failure = std::current_exception();
    return 0;
  }
  if (stream->pending.size() > stream->limit) {
    stream->tooLarge = true;
    return 0;
  }
  return length;
}

}  // namespace

EtcdClient::EtcdClient(const EtcdSource& source)
    : mSource(source),
      mMaxAnswerSize(DEFAULT_MAX_ANSWER_SIZE),
      mCurrent(0),
      mStopped(false),
      mWatchHandle(0) {
  mSource.check();
  initialiseCurl();
}

EtcdClient::~EtcdClient() {}

std::string EtcdClient::getEndpoint() const {
  std::lock_guard<std::mutex> lock(mMutex);
  return mSource.endpoints[mCurrent];
}

void EtcdClient::configure(void* handle, bool streaming) const {
  CURL* curl = static_cast<CURL*>(handle);
  curl_easy_setopt(curl, CURLOPT_NOSIGNAL, 1L);
  curl_easy_setopt(curl, CURLOPT_CONNECTTIMEOUT_MS, mSource.connectTimeoutMs);
  if (!streaming) {
    curl_easy_setopt(curl, CURLOPT_TIMEOUT_MS, mSource.requestTimeoutMs);
  }
  // A watch is quiet while nothing changes; keep-alive probes notice a peer that went away
  // without closing the connection.
  curl_easy_setopt(curl, CURLOPT_TCP_KEEPALIVE, 1L);
  curl_easy_setopt(curl, CURLOPT_TCP_KEEPIDLE, 10L);
  curl_easy_setopt(curl, CURLOPT_TCP_KEEPINTVL, 5L);
  curl_easy_setopt(curl, CURLOPT_PROTOCOLS_STR, "http,https");
  if (!mSource.caFile.empty()) {
    curl_easy_setopt(curl, CURLOPT_CAINFO, mSource.caFile.c_str());
  }
  if (!mSource.certFile.empty()) {
    curl_easy_setopt(curl, CURLOPT_SSLCERT, mSource.certFile.c_str());
  }
  if (!mSource.keyFile.empty()) {
    curl_easy_setopt(curl, CURLOPT_SSLKEY, mSource.keyFile.c_str());
  }
}

bool EtcdClient::postTo(const std::string& endpoint, const char* path, const std::string& body,
                        long& status, std::string& answer, std::string& why) {
  CurlHandle curl(curl_easy_init());
  if (!curl) {
    why = "no connection could be set up";
    return false;
  }
  configure(curl.get(), false);
  const std::string url = endpoint + path;
  curl_easy_setopt(curl.get(), CURLOPT_URL, url.c_str());
  curl_easy_setopt(curl.get(), CURLOPT_POSTFIELDSIZE, static_cast<long>(body.size()));
  curl_easy_setopt(curl.get(), CURLOPT_COPYPOSTFIELDS, body.c_str());
  Headers headers(curl_slist_append(0, "Content-Type: application/json"));
  std::string token;
  {
    std::lock_guard<std::mutex> lock(mMutex);
    token = mToken;
  }
  if (!token.empty()) {
    headers.reset(curl_slist_append(headers.release(), ("Authorization: " + token).c_str()));
  }
  curl_easy_setopt(curl.get(), CURLOPT_HTTPHEADER, headers.get());
  Body received;
  received.limit = mMaxAnswerSize;
  curl_easy_setopt(curl.get(), CURLOPT_WRITEFUNCTION, &collect);
  curl_easy_setopt(curl.get(), CURLOPT_WRITEDATA, &received);
  char error[CURL_ERROR_SIZE] = "";
  curl_easy_setopt(curl.get(), CURLOPT_ERRORBUFFER, error);
  const CURLcode result = curl_easy_perform(curl.get());
  if (received.tooLarge) {
    throw ConfigurationException("The answer of the etcd cluster at %s is larger than %zu bytes",
                                 endpoint.c_str(), mMaxAnswerSize);
  }
  if (result != CURLE_OK) {
    why = *error != '\0' ? error : curl_easy_strerror(result);
    return false;
  }
  curl_easy_getinfo(curl.get(), CURLINFO_RESPONSE_CODE, &status);
  // A member without a leader, or a proxy in front of a member that is down, passes the request
  // on to the next endpoint.
  if (status == 502 || status == 503 || status == 504) {
    why = "HTTP status " + std::to_string(status);
    return false;
  }
  answer.swap(received.data);
  return true;
}

void EtcdClient::checkAnswerError(const std::string& endpoint, long status,
                                  const std::string& answer) {
  if (status == 200) {
    return;
  }
  json error = json::parse(answer, nullptr, false);
  std::string message;
  long code = 0;
  if (error.is_object()) {
    message = text(error, "message");
    if (message.empty()) {
      message = text(error, "error");
    }
    const json::const_iterator field = error.find("code");
    if (field != error.end() && field->is_number_integer()) {
      code = field->get<long>();
    }
  }
  if (message.empty()) {
    message = "HTTP status " + std::to_string(status);
  }
  throw ConfigurationException("The etcd cluster at %s refused the request: %s (code %ld)",
                               endpoint.c_str(), message.c_str(), code);
}

std::string EtcdClient::post(const char* path, const std::string& body) {
  const bool authenticating = std::strcmp(path, AUTHENTICATE_PATH) == 0;
  if (!mSource.user.empty() && !authenticating) {
    bool needToken;
    {
      std::lock_guard<std::mutex> lock(mMutex);
      needToken = mToken.empty();
    }
    if (needToken) {
      authenticate();
    }
  }
  for (int attempt = 0;; ++attempt) {
    std::size_t start;
    {
      std::lock_guard<std::mutex> lock(mMutex);
      start = mCurrent;
    }
    std::string reasons;
    const std::size_t count = mSource.endpoints.size();
    for (std::size_t i = 0; i < count; ++i) {
      const std::size_t index = (start + i) % count;
      const std::string& endpoint = mSource.endpoints[index];
      long status = 0;
      std::string answer;
      std::string why;
      if (!postTo(endpoint, path, body, status, answer, why)) {
        reasons += (reasons.empty() ? "" : "; ") + endpoint + ": " + why;
        continue;
      }
      {
        std::lock_guard<std::mutex> lock(mMutex);
        mCurrent = index;
      }
      // A token expires; one new one is asked for before the error counts.
      if (status != 200 && attempt == 0 && !mSource.user.empty() && !authenticating &&
          (answer.find("token") != std::string::npos ||
           answer.find("\"code\":" + std::to_string(CODE_UNAUTHENTICATED)) != std::string::npos)) {
        authenticate();
        break;
      }
      checkAnswerError(endpoint, status, answer);
      return answer;
    }
    if (!reasons.empty()) {
      throw ConfigurationException("The etcd cluster could not be reached at %s (%s)",
                                   mSource.describeEndpoints().c_str(), reasons.c_str());
    }
  }
}

void EtcdClient::authenticate() {
  {
    std::lock_guard<std::mutex> lock(mMutex);
    mToken.clear();
  }
  json request = {{"name", mSource.user}, {"password", mSource.password}};
  const std::string answer = post(AUTHENTICATE_PATH, request.dump());
  const std::string endpoint = getEndpoint();
  const std::string token = text(parseJson(endpoint, answer), "token");
  if (token.empty()) {
    badAnswer(endpoint, "no token for the user \"" + mSource.user + "\"");
  }
  std::lock_guard<std::mutex> lock(mMutex);
  mToken = token;
}

EtcdClient::Range EtcdClient::range(const std::string& key) {
  json request = {{"key", encodeBase64(key)}};
  const std::string answer = post("/v3/kv/range", request.dump());
  const std::string endpoint = getEndpoint();
  json parsed = parseJson(endpoint, answer);
  Range result;
  result.revision = number(member(parsed, "header", endpoint), "revision", endpoint);
  const json& kvs = list(parsed, "kvs", endpoint);
  if (!kvs.empty()) {
    if (!kvs[0].is_object()) {
      badAnswer(endpoint, "a key is not an object");
    }
    result.found = true;
    result.value = bytes(kvs[0], "value", endpoint);
    result.modRevision = number(kvs[0], "mod_revision", endpoint);
  }
  return result;
}

EtcdClient::Swap EtcdClient::compareAndSwap(const std::string& key, const std::string& value,
                                            int64_t expectedModRevision) {
  const std::string encodedKey = encodeBase64(key);
  json request = {
      {"compare",
       json::array({{{"key", encodedKey},
                     {"target", "MOD"},
                     {"result", "EQUAL"},
                     {"mod_revision", revisionText(expectedModRevision)}}})},
      {"success",
       json::array({{{"request_put", {{"key", encodedKey}, {"value", encodeBase64(value)}}}}})},
      {"failure", json::array({{{"request_range", {{"key", encodedKey}}}}})}};
  const std::string answer = post("/v3/kv/txn", request.dump());
  const std::string endpoint = getEndpoint();
  json parsed = parseJson(endpoint, answer);
  Swap result;
  result.revision = number(member(parsed, "header", endpoint), "revision", endpoint);
  result.succeeded = flag(parsed, "succeeded", endpoint);
  if (!result.succeeded) {
    for (const json& response : list(parsed, "responses", endpoint)) {
      if (!response.is_object()) {
        badAnswer(endpoint, "a response is not an object");
      }
      const json& kvs = list(member(response, "response_range", endpoint), "kvs", endpoint);
      if (!kvs.empty() && kvs[0].is_object()) {
        result.currentModRevision = number(kvs[0], "mod_revision", endpoint);
      }
    }
  }
  return result;
}

int64_t EtcdClient::put(const std::string& key, const std::string& value) {
  json request = {{"key", encodeBase64(key)}, {"value", encodeBase64(value)}};
  const std::string answer = post("/v3/kv/put", request.dump());
  const std::string endpoint = getEndpoint();
  return number(member(parseJson(endpoint, answer), "header", endpoint), "revision", endpoint);
}

int64_t EtcdClient::remove(const std::string& key) {
  json request = {{"key", encodeBase64(key)}};
  const std::string answer = post("/v3/kv/deleterange", request.dump());
  const std::string endpoint = getEndpoint();
  return number(member(parseJson(endpoint, answer), "header", endpoint), "revision", endpoint);
}

void EtcdClient::compact(int64_t revision) {
  json request = {{"revision", revisionText(revision)}, {"physical", true}};
  post("/v3/kv/compaction", request.dump());
}

void EtcdClient::stop() {
  mStopped = true;
  std::lock_guard<std::mutex> lock(mMutex);
  if (mWatchHandle != 0) {
    curl_multi_wakeup(static_cast<CURLM*>(mWatchHandle));
  }
}

void EtcdClient::restart() { mStopped = false; }

EtcdClient::WatchEnd EtcdClient::watch(const std::string& key, int64_t startRevision,
                                       const std::function<void(const Event&)>& onEvent,
                                       const std::function<void()>& onCreated,
                                       int64_t* compactRevision) {
  if (!mSource.user.empty()) {
    try {
      authenticate();
    } catch (const ConfigurationException&) {
      return mStopped ? STOPPED : LOST;
    }
  }
  json request = {{"create_request",
                   {{"key", encodeBase64(key)},
                    {"start_revision", revisionText(startRevision)},
                    {"progress_notify", true}}}};
  const std::string body = request.dump();
  std::string token;
  std::size_t start;
  {
    std::lock_guard<std::mutex> lock(mMutex);
    token = mToken;
    start = mCurrent;
  }
  const std::size_t count = mSource.endpoints.size();
  for (std::size_t i = 0; i < count && !mStopped; ++i) {
    const std::size_t index = (start + i) % count;
    WatchStream stream;
    stream.endpoint = mSource.endpoints[index];
    stream.limit = mMaxAnswerSize;
    stream.onEvent = &onEvent;
    stream.onCreated = &onCreated;

    CurlHandle curl(curl_easy_init());
    if (!curl) {
      return LOST;
    }
    configure(curl.get(), true);
    const std::string url = stream.endpoint + "/v3/watch";
    curl_easy_setopt(curl.get(), CURLOPT_URL, url.c_str());
    curl_easy_setopt(curl.get(), CURLOPT_POSTFIELDSIZE, static_cast<long>(body.size()));
    curl_easy_setopt(curl.get(), CURLOPT_COPYPOSTFIELDS, body.c_str());
    Headers headers(curl_slist_append(0, "Content-Type: application/json"));
    if (!token.empty()) {
      headers.reset(curl_slist_append(headers.release(), ("Authorization: " + token).c_str()));
    }
    curl_easy_setopt(curl.get(), CURLOPT_HTTPHEADER, headers.get());
    curl_easy_setopt(curl.get(), CURLOPT_WRITEFUNCTION, &receiveWatch);
    curl_easy_setopt(curl.get(), CURLOPT_WRITEDATA, &stream);

    std::unique_ptr<CURLM, CURLMcode (*)(CURLM*)> multi(curl_multi_init(), &curl_multi_cleanup);
    if (!multi) {
      return LOST;
    }
    curl_multi_add_handle(multi.get(), curl.get());
    {
      std::lock_guard<std::mutex> lock(mMutex);
      mWatchHandle = multi.get();
    }
    int running = 1;
    while (running != 0 && !mStopped) {
      if (curl_multi_perform(multi.get(), &running) != CURLM_OK || running == 0) {
        break;
      }
      // Sleeps until the stream has data, curl has a timer due, or stop() wakes it.
      curl_multi_poll(multi.get(), 0, 0, 60000, 0);
    }
    {
      std::lock_guard<std::mutex> lock(mMutex);
      mWatchHandle = 0;
    }
    curl_multi_remove_handle(multi.get(), curl.get());
    if (stream.failure) {
      std::rethrow_exception(stream.failure);
    }
    if (stream.tooLarge) {
      throw ConfigurationException("The answer of the etcd cluster at %s is larger than %zu bytes",
                                   stream.endpoint.c_str(), mMaxAnswerSize);
    }
    if (mStopped) {
      return STOPPED;
    }
    if (stream.finished) {
      if (stream.end == COMPACTED && compactRevision != 0) {
        *compactRevision = stream.compactRevision;
      }
      if (stream.end == CANCELED && !mSource.user.empty()) {
        std::lock_guard<std::mutex> lock(mMutex);
        mToken.clear();
      }
      return stream.end;
    }
    if (stream.reached) {
      std::lock_guard<std::mutex> lock(mMutex);
      mCurrent = index;
      return LOST;
    }
  }
  return mStopped ? STOPPED : LOST;
}

}  // namespace zelk::configuration::impl
