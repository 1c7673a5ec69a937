#include "zelk/host/HostMainLog.h"

#include <cstdio>
#include <ctime>
#include <deque>
#include <mutex>

namespace zelk::host {

namespace {

struct MainLog {
  std::mutex mutex;
  std::deque<std::pair<std::string, std::string>> entries;
  std::FILE* file = nullptr;

  ~MainLog() {
    if (file != nullptr) {
      std::fclose(file);
    }
  }
};

MainLog& mainLog() {
  static MainLog log;
  return log;
}

}  // namespace

void hostAddToMainLog(const char* category, const char* text) {
  MainLog& log = mainLog();
  std::lock_guard<std::mutex> lock(log.mutex);
  if (log.entries.size() >= MAIN_LOG_CAPACITY) {
    log.entries.pop_front();
  }
  log.entries.emplace_back(category != nullptr ? category : "", text != nullptr ? text : "");
  if (log.file != nullptr) {
    char stamp[32];
    const std::time_t now = std::time(nullptr);
    std::tm local;
    localtime_r(&now, &local);
    std::strftime(stamp, sizeof stamp, "%Y-%m-%d %H:%M:%S", &local);
    const auto& entry = log.entries.back();
    std::fprintf(log.file, "%s [%s] %s\n", stamp, entry.first.c_str(), entry.second.c_str());
    std::fflush(log.file);
  }
}

std::vector<std::pair<std::string, std::string>> hostGetMainLog() {
  MainLog& log = mainLog();
  std::lock_guard<std::mutex> lock(log.mutex);
  return std::vector<std::pair<std::string, std::string>>(log.entries.begin(), log.entries.end());
}

void hostClearMainLog() {
  MainLog& log = mainLog();
  std::lock_guard<std::mutex> lock(log.mutex);
  log.entries.clear();
}

bool hostSetMainLogFile(const char* path) {
  MainLog& log = mainLog();
  std::lock_guard<std::mutex> lock(log.mutex);
  if (log.file != nullptr) {
    std::fclose(log.file);
    log.file = nullptr;
  }
  if (path == nullptr || *path == '\0') {
    return true;
  }
  log.file = std::fopen(path, "a");
  return log.file != nullptr;
}

}  // namespace zelk::host
