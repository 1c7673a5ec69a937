#include "zelk/configuration/impl/Version.h"

#include <cstring>

#include "zelk/configuration/ValidationErrors.h"
#include "zelk/configuration/impl/Convert.h"
#include "zelk/host/HostProcess.h"

namespace zelk::configuration::impl {

namespace {

const bool hostInitialised = zelk::host::hostProcessInit();

// A bad number counts 0: the collector only keeps Convert from throwing.
uint64_t readNumber(const std::string& text) {
  ValidationErrors ignored;
  return Convert::asUInt32(text.c_str(), &ignored);
}

}  // namespace

Version Version::parse(const char* text) {
  const std::string whole(text != nullptr ? text : "");
  const std::string::size_type dot = whole.find('.');
  if (dot == std::string::npos) {
    return Version(readNumber(whole), 0);
  }
  return Version(readNumber(whole.substr(0, dot)), readNumber(whole.substr(dot + 1)));
}

std::string Version::asString() const {
  return std::to_string(mMajor) + "." + std::to_string(mMinor);
}

int32_t Version::compareTo(const Version& other) const {
  const uint64_t difference =
      mMajor != other.mMajor ? mMajor - other.mMajor : mMinor - other.mMinor;
  return static_cast<int32_t>(static_cast<uint32_t>(difference));
}

}  // namespace zelk::configuration::impl
