// ValueTypeTable: every value type of a parameter in one table, so that the registry loader, the
// value model, the tools and the schema writer read the same facts instead of keeping copies.
//
// Each row gives the type, its word (the vocabulary of registry files and of machine output such
// as JSON: "oid", "enum"), its display name (the vocabulary of the library's own texts: "OID",
// "enumeration"), the article that goes before the display name in a sentence, and the check
// that tells whether a text converts to the type.
//
//   const ValueTypeInfo* info = ValueTypeTable::find(Parameter::OID);
//   info->word;                   // "oid"
//   info->displayName;            // "OID"
//   ValueTypeTable::findWord("uint")->type;   // Parameter::UINT32: a short word registries accept
#pragma once

#include <cstddef>
#include <string>

#include "zelk/configuration/Parameter.h"

namespace zelk::configuration {
class ValidationErrors;
}

namespace zelk::configuration::impl {

struct ValueTypeInfo {
  Parameter::ValueType type;
  // The word of registry files, JSON and schemas.
  const char* word;
  // The name used in the library's messages and text output (Parameter::getValueTypeName).
  const char* displayName;
  // "a" or "an", whichever goes before displayName.
  const char* article;
  // Records in errors why text does not convert to the type (one message, through Convert). Null
  // for a type that takes any text (string) or that needs its enumeration to check (enum).
  void (*check)(const char* text, ValidationErrors* errors);
};

class ValueTypeTable {
public:
  ValueTypeTable() = delete;

  // The row of type, or null for a number outside the table.
  static const ValueTypeInfo* find(int type);
  // The row whose word is word (exact case), or whose short form it is ("int" is int32, "uint"
  // uint32, as registry files may write them); null for any other text.
  static const ValueTypeInfo* findWord(const std::string& word);
  // The display name of type, "unknown" outside the table.
  static const char* displayName(int type);
  // The word of type, "unknown" outside the table.
  static const char* word(int type);
  // The article for the display name of type, "a" outside the table.
  static const char* article(int type);

  // The rows in the order of Parameter::ValueType.
  static const ValueTypeInfo* begin();
  static const ValueTypeInfo* end();
};

}  // namespace zelk::configuration::impl
