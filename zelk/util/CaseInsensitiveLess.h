// CaseInsensitiveLess: orders strings with strcasecmp, so ids differing only in case are one key.
// It is transparent: a map keyed by std::string can be searched with a C string without building
// a std::string for the search.
//
//   std::map<std::string, int, zelk::CaseInsensitiveLess> cache;
//   cache["Backup"] = 1;  cache.find("BACKUP") != cache.end();
#pragma once

#include <strings.h>

#include <string>

namespace zelk {

struct CaseInsensitiveLess {
  typedef void is_transparent;

  // True when strcasecmp(a, b) < 0.
  bool operator()(const std::string& a, const std::string& b) const {
    return strcasecmp(a.c_str(), b.c_str()) < 0;
  }
  bool operator()(const std::string& a, const char* b) const {
    return strcasecmp(a.c_str(), b) < 0;
  }
  bool operator()(const char* a, const std::string& b) const {
    return strcasecmp(a, b.c_str()) < 0;
  }
  bool operator()(const char* a, const char* b) const { return strcasecmp(a, b) < 0; }
};

}  // namespace zelk
