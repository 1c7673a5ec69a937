// RegistryIndex: where each element of a set of registry files stands (file, line, column), so
// that a problem found in the loaded model can be reported at its place in the files. (Load
// errors carry their own position.)
//
//   RegistryIndex index;
//   std::size_t file = index.addFile("etc/zelk.crg");
//   const ElementRecord* oneOf = index.findItem("OneOf", "zbackup_oo4");
//   if (oneOf != nullptr) std::cout << oneOf->line << ':' << oneOf->column << '\n';
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

namespace zelk::configtool {

struct ElementRecord {
  std::size_t file = 0;  // the file's number in the index
  std::string element;   // the element name without a namespace prefix
  std::vector<std::pair<std::string, std::string>> attributes;
  // The id the library gives the item: the id attribute, or for a one-of or logical group the
  // parent's id, "_", "oo" or "lg" and its position in the parent.
  std::string itemId;
  std::string owner;  // the id of the enclosing Specification or Group, else empty
  unsigned int line = 0;
  unsigned int column = 0;

  // The value of the attribute, or null when the element has none of that name.
  const std::string* attribute(const char* name) const;
};

class RegistryIndex {
public:
  // Reads the elements of the file and returns its number. A file that cannot be read is indexed
  // empty; one whose syntax breaks off is indexed up to the break (the loader reports the break),
  // and elements nested deeper than the loader reads are not indexed (it reports the depth).
  std::size_t addFile(const std::string& path);

  std::size_t getFileCount() const { return mPaths.size(); }
  const std::string& getPath(std::size_t file) const { return mPaths.at(file); }

  // The first element so named whose item id equals id (ignoring ASCII case), in file order and
  // then document order; only in that file, and only under that owner, when they are given.
  const ElementRecord* findItem(const std::string& element, const std::string& id,
                                std::optional<std::size_t> file = std::nullopt,
                                const std::string* owner = nullptr) const;
  // Every element so named whose item id equals id (ignoring ASCII case), in order.
  std::vector<const ElementRecord*> findAll(const std::string& element,
                                            const std::string& id) const;
  // Every element of every file, file by file in document order.
  const std::vector<ElementRecord>& getRecords() const { return mRecords; }

private:
  static std::string key(const std::string& element, const std::string& id);

  std::vector<std::string> mPaths;
  std::vector<ElementRecord> mRecords;                // every file's elements, file by file
  std::unordered_map<std::string, std::vector<std::size_t>> mByItemId;
};

}  // namespace zelk::configtool
