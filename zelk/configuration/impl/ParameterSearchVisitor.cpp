#include "zelk/configuration/impl/ParameterSearchVisitor.h"

#include "zelk/configuration/Parameter.h"
#include "zelk/configuration/ParameterRef.h"
#include "zelk/util/Contracts.h"

namespace zelk::configuration::impl {

namespace {

char foldAscii(char c) { return (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c; }

// strncasecmp in the C locale: ASCII letters fold, every other byte compares as it is. A name
// shorter than the prefix ends first and so differs.
bool beginsWithIgnoringCase(const char* name, const char* prefix, size_t length) {
  for (size_t i = 0; i < length; ++i) {
    if (name[i] == '\0' || foldAscii(name[i]) != foldAscii(prefix[i])) {
      return false;
    }
  }
  return true;
}

}  // namespace

ParameterSearchVisitor::ParameterSearchVisitor(const char* text)
    : mText(text != 0 ? text : ""), mLength(mText.size()) {}

bool ParameterSearchVisitor::visitParameterRef(const ParameterRef& ref) {
  if (ref.isHidden()) {
    return true;
  }
  if (beginsWithIgnoringCase(ref.getParameter()->getName(), mText.c_str(), mLength)) {
    mFoundItems.push_back(&ref);
  }
  return true;
}

const ParameterRef* ParameterSearchVisitor::getFoundItem(size_t index) const {
  ZELK_CONTRACT(index < mFoundItems.size());
  return mFoundItems[index];
}

}  // namespace zelk::configuration::impl
