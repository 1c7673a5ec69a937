// VectorWrapper: lends a vector of strings out as a count and a plain array of character
// pointers, such as an argc/argv pair. The vector is referred to, not copied: the wrapper must
// not outlive it, and the vector must not change while the wrapper is used.
//
//   std::vector<std::string> arguments = {"tool", "-verbose"};
//   zelk::VectorWrapper wrapped(arguments);
//   provider.enableProvider(wrapped.size(), wrapped.data(), "tool", 0);
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace zelk {

class VectorWrapper {
public:
  explicit VectorWrapper(const std::vector<std::string>& strings);
  VectorWrapper(const VectorWrapper&) = delete;
  VectorWrapper& operator=(const VectorWrapper&) = delete;
  ~VectorWrapper();

  // The number of strings.
  unsigned int size() const { return static_cast<unsigned int>(mStrings.size()); }
  // One pointer per string, pointing at the vector's own characters.
  const char* const* data() const { return mPointers; }
  const char* operator[](std::size_t index) const { return mPointers[index]; }

private:
  const std::vector<std::string>& mStrings;
  const char** mPointers;
};

}  // namespace zelk
