#include "RegistryIndex.h"

#include <strings.h>

#include <cctype>
#include <cstring>

#include "zelk/host/XmlTokenReader.h"

namespace zelk::configtool {

namespace {

// Names and values longer than this are cut, as the loader cuts them.
const std::size_t BUFFER_SIZE = 1025;

bool isOneOf(const std::string& element, std::initializer_list<const char*> names) {
  for (const char* name : names) {
    if (element == name) return true;
  }
  return false;
}

bool isItem(const std::string& element) {
  return isOneOf(element, {"ParameterRef", "Container", "LogicalGroup", "OneOf", "GroupRef"});
}

bool isCollection(const std::string& element) {
  return isOneOf(element, {"Specification", "Group", "Container", "LogicalGroup", "OneOf"});
}

std::string lowerCase(const std::string& text) {
  std::string lower(text);
  for (char& c : lower) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return lower;
}

std::string localName(const char* name) {
  const char* colon = std::strrchr(name, ':');
  return colon != nullptr ? std::string(colon + 1) : std::string(name);
}

struct Frame {
  std::string itemId;
  std::string owner;
  std::size_t children;
  bool collection;
};

}  // namespace

const std::string* ElementRecord::attribute(const char* name) const {
  for (const auto& pair : attributes) {
    if (pair.first == name) return &pair.second;
  }
  return nullptr;
}

std::string RegistryIndex::key(const std::string& element, const std::string& id) {
  return element + '\n' + lowerCase(id);
}

std::size_t RegistryIndex::addFile(const std::string& path) {
  const std::size_t file = mPaths.size();
  mPaths.push_back(path);

  host::XmlTokenReader reader;
  std::vector<Frame> stack;
  char name[BUFFER_SIZE];
  char value[BUFFER_SIZE];
  if (reader.openFile(path.c_str())) {
    while (reader.skipComments() && !reader.atEnd()) {
      const unsigned int line = reader.getLine();
      const unsigned int column = reader.getColumn();
      if (reader.acceptToken("</")) {
        if (!reader.acceptValue(name, sizeof name) || !reader.acceptToken(">")) break;
        if (!stack.empty()) stack.pop_back();
        continue;
      }
      if (!reader.acceptToken("<") || !reader.acceptValue(name, sizeof name)) break;

      ElementRecord record;
      record.file = file;
      record.element = localName(name);
      record.line = line;
      record.column = column;
      bool empty = false;
      bool broken = false;
      for (;;) {
        if (reader.acceptToken("/>")) {
          empty = true;
          break;
        }
        if (reader.acceptToken(">")) break;
        if (!reader.acceptValue(name, sizeof name) || !reader.acceptToken("=") ||
            !reader.acceptValue(value, sizeof value)) {
          broken = true;
          break;
        }
        record.attributes.emplace_back(name, value);
      }

      const std::string* id = record.attribute("id");
      Frame* parent = stack.empty() ? nullptr : &stack.back();
      if (isItem(record.element) && parent != nullptr && parent->collection) {
        // The position counts every item of the parent, as the model's collections do.
        const std::size_t position = parent->children++;
        if (record.element == "OneOf" || record.element == "LogicalGroup") {
          record.itemId = parent->itemId + (record.element == "OneOf" ? "_oo" : "_lg") +
                          std::to_string(position);
        } else if (id != nullptr) {
          record.itemId = *id;
        }
        record.owner = parent->owner;
      } else {
        if (id != nullptr) record.itemId = *id;
        if (record.element == "Specification" || record.element == "Group") {
          record.owner = record.itemId;
        } else if (parent != nullptr) {
          record.owner = parent->owner;
        }
      }
      if (!empty && !broken) {
        stack.push_back({record.itemId, record.owner, 0, isCollection(record.element)});
      }
      // The loader stops one level below the reader's nesting limit, and so does the index: the
      // ids of nested one-ofs and logical groups grow with their depth, so indexing deeper would
      // cost time and memory in the square of the depth, for elements the loader never reaches.
      if (stack.size() > host::XmlTokenReader::MAX_NESTING_DEPTH) broken = true;
      mByItemId[key(record.element, record.itemId)].push_back(mRecords.size());
      mRecords.push_back(std::move(record));
      if (broken) break;
    }
  }
  return file;
}

const ElementRecord* RegistryIndex::findItem(const std::string& element, const std::string& id,
                                             std::optional<std::size_t> file,
                                             const std::string* owner) const {
  const auto found = mByItemId.find(key(element, id));
  if (found == mByItemId.end()) return nullptr;
  for (std::size_t index : found->second) {
    const ElementRecord& record = mRecords[index];
    if (file && record.file != *file) continue;
    if (owner != nullptr && strcasecmp(record.owner.c_str(), owner->c_str()) != 0) continue;
    return &record;
  }
  return nullptr;
}

std::vector<const ElementRecord*> RegistryIndex::findAll(const std::string& element,
                                                         const std::string& id) const {
  std::vector<const ElementRecord*> records;
  const auto found = mByItemId.find(key(element, id));
  if (found != mByItemId.end()) {
    for (std::size_t index : found->second) records.push_back(&mRecords[index]);
  }
  return records;
}

}  // namespace zelk::configtool
