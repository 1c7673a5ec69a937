// Convert: the one place where parameter texts become typed values, and typed values texts.
//
// Parsers take the text and a ValidationErrors collector. They never throw when given a
// collector: a malformed text records exactly one message (quoting the text) and the zero of the
// type is returned. Without a collector the message is thrown as a ValidationException.
//
//   ValidationErrors errors;
//   int32_t n = Convert::asInt32("2147483648", &errors);   // 0, "... is not a valid Int32"
//   ObjectId oid = Convert::asOID("#1-2-3-4", &errors);    // 1-2-3-4
//   std::string text = Convert::asString(oid);              // "1-2-3-4"
#pragma once

#include <cstdint>
#include <string>

namespace zelk::configuration {

class EnumDefinition;
class ObjectId;
class ValidationErrors;

namespace impl {

class Convert {
public:
  Convert() = delete;

  // Null or empty: false. A whole unsigned decimal number: true when not zero. Else "true" or
  // "false" in any case. Message: ""%s" is not a valid bool".
  static bool asBool(const char* text, ValidationErrors* errors);
  // Null or empty: 0. Else a whole signed decimal number (leading blanks and a sign allowed)
  // without overflow. Message: ""%s" is not a valid Int64".
  static int64_t asInt64(const char* text, ValidationErrors* errors);
  // As asInt64, unsigned; a leading minus wraps modulo 2^64. Message: ""%s" is not a valid
  // UInt64".
  static uint64_t asUInt64(const char* text, ValidationErrors* errors);
  // asInt64 within the 32-bit range. Message: ""%s" is not a valid Int32".
  static int32_t asInt32(const char* text, ValidationErrors* errors);
  // asUInt64 up to 4294967295. Message: ""%s" is not a valid UInt32".
  static uint32_t asUInt32(const char* text, ValidationErrors* errors);
  // Null or empty: 0.0. Else a whole floating-point number without overflow. Message: ""%s" is
  // not a valid double".
  static double asDouble(const char* text, ValidationErrors* errors);
  // The value of the symbol text in enumDef (a contract: "Must provide an enumeration
  // definition"); an unknown symbol records "Symbol "%s" was not found" and gives 0.
  static int32_t asEnum(const EnumDefinition* enumDef, const char* text,
                        ValidationErrors* errors);
  // "[#]d[-c[-p[-s]]]" with one to five digits per field; missing fields are 0. Messages: ""%s" is
  // not a valid OID", and one per field limit (database 1..65534, container up to 65525, page and
  // slot up to 65535). A null text counts as empty.
  static ObjectId asOID(const char* text, ValidationErrors* errors);

  static std::string asString(int value);
  static std::string asString(unsigned int value);
  static std::string asString(long value);
  static std::string asString(unsigned long value);
  // Six significant digits, as a default stream writes it.
  static std::string asString(double value);
  // "1" or "0".
  static std::string asString(bool value);
  // The four fields joined by "-".
  static std::string asString(const ObjectId& value);
  // The symbol of value in enumDef (a contract: "Must provide an enumeration definition"); an
  // unknown value records "Value %d was not found" and gives the empty string.
  static std::string asString(const EnumDefinition* enumDef, int32_t value,
                              ValidationErrors* errors);
};

}  // namespace impl
}  // namespace zelk::configuration
