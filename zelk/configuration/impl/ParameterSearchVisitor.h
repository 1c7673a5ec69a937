// ParameterSearchVisitor: finds the parameter references of a specification whose parameter names
// begin with a given text, ignoring ASCII case. Hidden references are never found, so hidden
// parameters cannot be abbreviated. Used by the command-line provider to resolve abbreviated flags.
//
//   ParameterSearchVisitor search("verb");
//   spec.accept(search);
//   if (search.getNumberOfFoundItems() == 1) ref = search.getFoundItem(0);
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "zelk/configuration/GroupItemVisitor.h"

namespace zelk::configuration::impl {

class ParameterSearchVisitor : public GroupItemVisitor {
public:
  explicit ParameterSearchVisitor(const char* text);

  // Records ref when it is not hidden and its parameter's name begins with the text.
  bool visitParameterRef(const ParameterRef& ref) override;

  size_t getNumberOfFoundItems() const { return mFoundItems.size(); }
  // The found reference at index, in visit order (a contract: index is below the count).
  const ParameterRef* getFoundItem(size_t index) const;
  const std::vector<const ParameterRef*>& getFoundItems() const { return mFoundItems; }

private:
  std::string mText;
  size_t mLength;
  std::vector<const ParameterRef*> mFoundItems;
};

}  // namespace zelk::configuration::impl
