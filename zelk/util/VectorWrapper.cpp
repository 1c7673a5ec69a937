#include "zelk/util/VectorWrapper.h"

namespace zelk {

VectorWrapper::VectorWrapper(const std::vector<std::string>& strings)
    : mStrings(strings), mPointers(new const char*[strings.size() + 1]) {
  for (std::size_t i = 0; i < strings.size(); ++i) {
    mPointers[i] = strings[i].c_str();
  }
  // A terminating null, as argv has, for callers that walk the array.
  mPointers[strings.size()] = nullptr;
}

VectorWrapper::~VectorWrapper() { delete[] mPointers; }

}  // namespace zelk
