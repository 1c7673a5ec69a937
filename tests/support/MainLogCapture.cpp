#include "support/MainLogCapture.h"

#include "zelk/host/HostMainLog.h"

namespace zelk::test {

MainLogCapture::MainLogCapture() { zelk::host::hostClearMainLog(); }

MainLogCapture::~MainLogCapture() { zelk::host::hostClearMainLog(); }

std::vector<std::pair<std::string, std::string>> MainLogCapture::entries() const {
  return zelk::host::hostGetMainLog();
}

std::vector<std::string> MainLogCapture::texts(const std::string& category) const {
  std::vector<std::string> result;
  for (const auto& entry : entries()) {
    if (entry.first == category) {
      result.push_back(entry.second);
    }
  }
  return result;
}

bool MainLogCapture::contains(const std::string& part, const std::string& category) const {
  for (const auto& entry : entries()) {
    if ((category.empty() || entry.first == category) &&
        entry.second.find(part) != std::string::npos) {
      return true;
    }
  }
  return false;
}

std::string MainLogCapture::dump() const {
  std::string text;
  for (const auto& entry : entries()) {
    text += "[" + entry.first + "] " + entry.second + "\n";
  }
  return text;
}

}  // namespace zelk::test
