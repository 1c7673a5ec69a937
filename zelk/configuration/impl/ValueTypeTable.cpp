#include "zelk/configuration/impl/ValueTypeTable.h"

#include "zelk/configuration/ObjectId.h"
#include "zelk/configuration/impl/Convert.h"

namespace zelk::configuration::impl {

namespace {

// Runs a conversion for its messages only.
template <typename T, T (*CONVERSION)(const char*, ValidationErrors*)>
void checkWith(const char* text, ValidationErrors* errors) {
  CONVERSION(text, errors);
}

// In the order of Parameter::ValueType, so that a type is its own index. The article of int64 is
// "a" ("This value is not a int64"), unlike uint64's "an": kept as it is on purpose.
const ValueTypeInfo TABLE[] = {
    {Parameter::BOOL, "bool", "bool", "a", &checkWith<bool, &Convert::asBool>},
    {Parameter::STRING, "string", "string", "a", nullptr},
    {Parameter::INT32, "int32", "int32", "an", &checkWith<int32_t, &Convert::asInt32>},
    {Parameter::UINT32, "uint32", "uint32", "an", &checkWith<uint32_t, &Convert::asUInt32>},
    {Parameter::DOUBLE, "double", "double", "a", &checkWith<double, &Convert::asDouble>},
    {Parameter::OID, "oid", "OID", "an", &checkWith<ObjectId, &Convert::asOID>},
    {Parameter::ENUM, "enum", "enumeration", "an", nullptr},
    {Parameter::INT64, "int64", "int64", "a", &checkWith<int64_t, &Convert::asInt64>},
    {Parameter::UINT64, "uint64", "uint64", "an", &checkWith<uint64_t, &Convert::asUInt64>},
};
const size_t COUNT = sizeof(TABLE) / sizeof(TABLE[0]);

}  // namespace

const ValueTypeInfo* ValueTypeTable::find(int type) {
  return type >= 0 && static_cast<size_t>(type) < COUNT ? &TABLE[type] : nullptr;
}

const ValueTypeInfo* ValueTypeTable::findWord(const std::string& word) {
  if (word == "int") return find(Parameter::INT32);
  if (word == "uint") return find(Parameter::UINT32);
  for (const ValueTypeInfo& info : TABLE) {
    if (word == info.word) return &info;
  }
  return nullptr;
}

const char* ValueTypeTable::displayName(int type) {
  const ValueTypeInfo* info = find(type);
  return info != nullptr ? info->displayName : "unknown";
}

const char* ValueTypeTable::word(int type) {
  const ValueTypeInfo* info = find(type);
  return info != nullptr ? info->word : "unknown";
}

const char* ValueTypeTable::article(int type) {
  const ValueTypeInfo* info = find(type);
  return info != nullptr ? info->article : "a";
}

const ValueTypeInfo* ValueTypeTable::begin() { return TABLE; }

const ValueTypeInfo* ValueTypeTable::end() { return TABLE + COUNT; }

}  // namespace zelk::configuration::impl
