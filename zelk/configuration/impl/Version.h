// Version: the schema version of a configuration registry file, a major and a minor number.
//
//   Version version = Version::parse("1.0");
//   if (version.compareTo(ConfigurationRegistryLoaderImpl::CURRENT_SCHEMA_VERSION) > 0) ...
//   version.asString() == "1.0"
#pragma once

#include <cstdint>
#include <string>

namespace zelk::configuration::impl {

class Version {
public:
  constexpr Version(uint64_t major, uint64_t minor) : mMajor(major), mMinor(minor) {}

  // The text up to the first "." is the major number, the rest the minor number; with no "." the
  // whole text is the major number. Each part is read as an unsigned 32-bit number; a part that
  // is not one counts 0 (no error is reported). Null counts as empty.
  static Version parse(const char* text);

  uint64_t getMajor() const { return mMajor; }
  uint64_t getMinor() const { return mMinor; }

  // "<major>.<minor>" in decimal.
  std::string asString() const;

  // Positive when this version is newer than other, 0 when equal, negative when older. The
  // difference of the majors (of the minors when the majors are equal) is cut to its low 32 bits
  // and read as a signed number; kept on purpose, so very distant versions may compare oddly.
  int32_t compareTo(const Version& other) const;

private:
  uint64_t mMajor;
  uint64_t mMinor;
};

}  // namespace zelk::configuration::impl
