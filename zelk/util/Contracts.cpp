#include "zelk/util/Contracts.h"

#include <cstring>

#include "zelk/util/ContractViolationException.h"

namespace zelk::impl {

void __ContractViolated(const char* message, const char* file, unsigned int line) {
  throw ContractViolationException(message, file, line);
}

std::string contractSourceTag(const char* path) {
  if (path == nullptr) {
    return std::string();
  }
  std::string tag(path);
  for (const char* root : {"zelk/configuration/", "zelk/util/"}) {
    const std::string::size_type at = tag.rfind(root);
    if (at != std::string::npos) {
      tag.erase(0, at + std::strlen(root));
      break;
    }
  }
  const std::string::size_type dot = tag.rfind('.');
  if (dot != std::string::npos && tag.find('/', dot) == std::string::npos) {
    tag.erase(dot);
  }
  return tag;
}

}  // namespace zelk::impl
