#include "zelk/util/CaseInsensitiveLess.h"

#include <strings.h>

namespace zelk {

bool CaseInsensitiveLess::operator()(const std::string& a, const std::string& b) const {
  return strcasecmp(a.c_str(), b.c_str()) < 0;
}

}  // namespace zelk
