// CaseInsensitiveLess: orders strings with strcasecmp, so ids differing only in case are one key.
//
//   std::map<std::string, int, zelk::CaseInsensitiveLess> cache;
//   cache["Backup"] = 1;  cache.find("BACKUP") != cache.end();
#pragma once

#include <string>

namespace zelk {

struct CaseInsensitiveLess {
  // True when strcasecmp(a, b) < 0.
  bool operator()(const std::string& a, const std::string& b) const;
};

}  // namespace zelk
