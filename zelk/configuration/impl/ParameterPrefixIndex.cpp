#include "zelk/configuration/impl/ParameterPrefixIndex.h"

#include <algorithm>

#include "zelk/configuration/GroupItemVisitor.h"
#include "zelk/configuration/Parameter.h"
#include "zelk/configuration/ParameterRef.h"
#include "zelk/configuration/Specification.h"

namespace zelk::configuration::impl {

namespace {

// ASCII case folding only, as strcasecmp in the C locale: other bytes stay as they are.
std::string foldAscii(const char* text) {
  std::string folded(text != 0 ? text : "");
  for (char& c : folded) {
    if (c >= 'A' && c <= 'Z') {
      c = static_cast<char>(c - 'A' + 'a');
    }
  }
  return folded;
}

// Collects the references that abbreviations may name, in visit order.
class VisibleReferences : public GroupItemVisitor {
public:
  bool visitParameterRef(const ParameterRef& ref) override {
    if (!ref.isHidden()) {
      refs.push_back(&ref);
    }
    return true;
  }
  std::vector<const ParameterRef*> refs;
};

}  // namespace

ParameterPrefixIndex::ParameterPrefixIndex(const Specification& spec) {
  VisibleReferences visible;
  spec.accept(visible);
  mEntries.reserve(visible.refs.size());
  for (size_t i = 0; i < visible.refs.size(); ++i) {
    mEntries.push_back(
        Entry{foldAscii(visible.refs[i]->getParameter()->getName()), i, visible.refs[i]});
  }
  std::sort(mEntries.begin(), mEntries.end(), [](const Entry& a, const Entry& b) {
    return a.name < b.name || (a.name == b.name && a.position < b.position);
  });
}

std::vector<const ParameterRef*> ParameterPrefixIndex::find(const char* prefix) const {
  const std::string folded = foldAscii(prefix);
  // Names that begin with the prefix sort together, starting at the first name not below it.
  std::vector<Entry>::const_iterator it =
      std::lower_bound(mEntries.begin(), mEntries.end(), folded,
                       [](const Entry& entry, const std::string& key) { return entry.name < key; });
  std::vector<const Entry*> matches;
  for (; it != mEntries.end() && it->name.compare(0, folded.size(), folded) == 0; ++it) {
    matches.push_back(&*it);
  }
  std::sort(matches.begin(), matches.end(),
            [](const Entry* a, const Entry* b) { return a->position < b->position; });
  std::vector<const ParameterRef*> found;
  found.reserve(matches.size());
  for (const Entry* entry : matches) {
    found.push_back(entry->ref);
  }
  return found;
}

}  // namespace zelk::configuration::impl
