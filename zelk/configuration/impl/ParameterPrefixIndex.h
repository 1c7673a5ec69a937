// ParameterPrefixIndex: answers the command line's abbreviation query without walking the whole
// specification for every flag.
//
// Built once from a specification, it holds the ASCII-lower-cased name of every parameter
// reference that is not hidden, sorted, with the reference's position in the specification's
// visit order. A query finds the names that begin with a prefix (ignoring ASCII case) by binary
// search and returns their references in visit order: the same answer as a ParameterSearchVisitor
// walk, in O(log n + matches). The index does not follow later changes of the specification; make
// a new one after changing it.
//
//   ParameterPrefixIndex index(*spec);
//   std::vector<const ParameterRef*> found = index.find("po");   // port, portRange
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace zelk::configuration {
class ParameterRef;
class Specification;
}  // namespace zelk::configuration

namespace zelk::configuration::impl {

class ParameterPrefixIndex {
public:
  explicit ParameterPrefixIndex(const Specification& spec);

  // The references whose parameter names begin with prefix, ignoring ASCII case, in visit order.
  std::vector<const ParameterRef*> find(const char* prefix) const;

  size_t size() const { return mEntries.size(); }

private:
  struct Entry {
    std::string name;  // lower-cased
    size_t position;   // in visit order
    const ParameterRef* ref;
  };

  std::vector<Entry> mEntries;
};

}  // namespace zelk::configuration::impl
