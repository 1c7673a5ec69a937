#include "zelk/util/RegEx.h"

#include <pcre.h>

#include <cstring>
#include <new>
#include <string>

#include "zelk/host/FormattedHostException.h"
#include "zelk/util/Contracts.h"

namespace zelk {

namespace {

// Capture entries served from a fixed buffer, so that ordinary matches allocate nothing.
const unsigned long FIXED_ENTRIES = 10;
// Beyond this many entries the working vector's size would not fit an int.
const unsigned long MAX_ENTRIES = 0xAAAAAAA;
// The code returned when the working vector cannot be made.
const int NO_MEMORY = 12;

}  // namespace

RegEx::RegEx(const char* pattern, bool caseless, bool utf8) { setup(pattern, caseless, utf8); }

RegEx::RegEx(const std::string& pattern, bool caseless, bool utf8) {
  setup(pattern.c_str(), caseless, utf8);
}

RegEx::~RegEx() {
  if (mHandle != nullptr) {
    pcre_free(mHandle);
  }
}

void RegEx::setup(const char* pattern, bool caseless, bool utf8) {
  int options = 0;
  if (caseless) {
    options |= PCRE_CASELESS;
  }
  if (utf8) {
    options |= PCRE_UTF8;
  }
  compileRx(pattern, options);
}

void RegEx::compileRx(const char* pattern, int options) {
  if (mHandle != nullptr) {
    pcre_free(mHandle);
    mHandle = nullptr;
  }
  int errorCode = 0;
  const char* errorText = nullptr;
  int errorOffset = -1;
  pcre* compiled = pcre_compile2(pattern != nullptr ? pattern : "", options, &errorCode, &errorText,
                                 &errorOffset, nullptr);
  if (compiled == nullptr) {
    std::string message = "REGEX ERROR #" + std::to_string(errorCode) + ": ";
    if (errorText != nullptr) {
      message += errorText;
    }
    if (errorOffset != -1) {
      message += " at offset " + std::to_string(errorOffset);
    }
    throw host::FormattedHostException("%s", message.c_str());
  }
  mHandle = compiled;
}

int RegEx::execRx(const char* subject, RegExMatch* matches, unsigned long count) const {
  if (mHandle == nullptr || subject == nullptr) {
    return PCRE_ERROR_NULL;
  }
  int fixed[FIXED_ENTRIES * 3];
  int* vector = nullptr;
  int* allocated = nullptr;
  if (count > 0 && count <= FIXED_ENTRIES) {
    vector = fixed;
  } else if (count > FIXED_ENTRIES) {
    if (count > MAX_ENTRIES) {
      return NO_MEMORY;
    }
    allocated = new (std::nothrow) int[count * 3];
    if (allocated == nullptr) {
      return NO_MEMORY;
    }
    vector = allocated;
  }
  int result =
      pcre_exec(static_cast<const pcre*>(mHandle), nullptr, subject,
                static_cast<int>(std::strlen(subject)), 0, 0, vector, static_cast<int>(count * 3));
  if (result == 0) {
    result = static_cast<int>(count);  // the vector was too small: every entry is filled
  }
  if (result >= 0) {
    const unsigned long captured = static_cast<unsigned long>(result);
    for (unsigned long i = 0; i < count; ++i) {
      if (i < captured) {
        matches[i].start = vector[2 * i];
        matches[i].end = vector[2 * i + 1];
      } else {
        matches[i].start = -1;
        matches[i].end = -1;
      }
    }
    result = 0;
  }
  delete[] allocated;
  return result;
}

bool RegEx::match(const char* subject) const {
  RegExMatch entry;
  return execRx(subject, &entry, 1) == 0 && entry.start != -1 && entry.end != -1;
}

bool RegEx::matches(const char* subject, RegExMatch* matches, unsigned long count) const {
  ZELK_CONTRACT(matches != 0);
  return execRx(subject, matches, count) == 0 && count > 0 && matches[0].start != -1 &&
         matches[0].end != -1;
}

std::string RegEx::extractMatch(const char* subject, const RegExMatch& match) {
  if (match.start == -1 || match.end == -1) {
    return std::string();
  }
  return std::string(subject).substr(static_cast<std::string::size_type>(match.start),
                                     static_cast<std::string::size_type>(match.end - match.start));
}

}  // namespace zelk
