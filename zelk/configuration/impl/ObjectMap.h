// ObjectMap: a registry of named objects, the shape of each of the configuration manager's five
// registries.
//
// Keys compare byte-wise. Registering a key twice is accepted (the new entry goes after the
// existing ones); looking such a key up throws ConfigurationException "Duplicate %s "%s"". The
// map destroys its objects only in clear(), through the Destroy function.
//
//   ObjectMap<Specification, &destroySpecification> specs;
//   specs.add(spec->getId(), spec);
//   Specification* s = specs.get("tool", "specification");
#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "zelk/configuration/ConfigurationException.h"
#include "zelk/util/Contracts.h"

namespace zelk::configuration::impl {

template <typename T, void (*Destroy)(T*)>
class ObjectMap {
public:
  typedef T ObjectType;
  typedef std::multimap<std::string, T*> Map;
  typedef typename Map::const_iterator ConstIterator;

  ObjectMap() {}
  ~ObjectMap() {}

  // Contracts: objectKey is neither null nor empty, object is not null.
  void add(const char* objectKey, T* object) {
    ZELK_CONTRACT(objectKey != 0 && *objectKey != '\0');
    ZELK_CONTRACT(object != 0);
    // A multimap inserts after the entries of an equal key.
    mMap.insert(typename Map::value_type(objectKey, object));
  }

  // The object of objectKey, or null; throws "Duplicate %s "%s"" (kindWord, key) when the key
  // has several entries.
  T* get(const char* objectKey, const char* kindWord) const {
    ZELK_CONTRACT(objectKey != 0 && *objectKey != '\0');
    const std::string key(objectKey);
    ConstIterator found = mMap.find(key);
    if (found == mMap.end()) {
      return 0;
    }
    ConstIterator following = found;
    ++following;
    if (following != mMap.end() && following->first == key) {
      throw ConfigurationException("Duplicate %s \"%s\"", kindWord, objectKey);
    }
    return found->second;
  }

  // Every entry of objectKey, in registration order (contract: objectKey is not null).
  std::pair<ConstIterator, ConstIterator> findAll(const char* objectKey) const {
    ZELK_CONTRACT(objectKey != 0);
    return mMap.equal_range(std::string(objectKey));
  }

  // Removes every entry of objectKey without destroying the objects; true when one was removed.
  bool remove(const char* objectKey) {
    ZELK_CONTRACT(objectKey != 0 && *objectKey != '\0');
    return mMap.erase(std::string(objectKey)) != 0;
  }

  // Destroys every object in key order, then empties the map.
  void clear() {
    for (typename Map::iterator it = mMap.begin(); it != mMap.end(); ++it) {
      Destroy(it->second);
    }
    mMap.clear();
  }

  // Hands every object over in key order without destroying it, then empties the map.
  std::vector<T*> release() {
    std::vector<T*> objects;
    objects.reserve(mMap.size());
    for (typename Map::iterator it = mMap.begin(); it != mMap.end(); ++it) {
      objects.push_back(it->second);
    }
    mMap.clear();
    return objects;
  }

  size_t size() const { return mMap.size(); }
  ConstIterator begin() const { return mMap.begin(); }
  ConstIterator end() const { return mMap.end(); }

private:
  ObjectMap(const ObjectMap&) = delete;
  ObjectMap& operator=(const ObjectMap&) = delete;

  Map mMap;
};

}  // namespace zelk::configuration::impl
