#include "zelk/configuration/impl/Convert.h"

#include <strings.h>

#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <sstream>

#include "zelk/configuration/EnumDefinition.h"
#include "zelk/configuration/ObjectId.h"
#include "zelk/configuration/ValidationErrors.h"
#include "zelk/util/Contracts.h"
#include "zelk/util/RegEx.h"
#include "zelk/util/StringUtil.h"

namespace zelk::configuration::impl {

namespace {

bool isEmpty(const char* text) { return text == 0 || *text == '\0'; }

// Records one conversion failure; the text is escaped because the message is formatted twice.
void reportInvalid(ValidationErrors* errors, const char* format, const char* text) {
  ValidationErrors::processError(errors, format,
                                 zelk::StringUtil::escapeString(text != 0 ? text : "").c_str());
}

// The whole of text as a signed base-10 number, without overflow.
bool parseInt64(const char* text, int64_t& result) {
  char* end = 0;
  errno = 0;
  const long long value = std::strtoll(text, &end, 10);
  if (end == text || *end != '\0' || errno == ERANGE) {
    return false;
  }
  result = value;
  return true;
}

// The whole of text as an unsigned base-10 number, without overflow (a minus wraps).
bool parseUInt64(const char* text, uint64_t& result) {
  char* end = 0;
  errno = 0;
  const unsigned long long value = std::strtoull(text, &end, 10);
  if (end == text || *end != '\0' || errno == ERANGE) {
    return false;
  }
  result = value;
  return true;
}

// The object id pattern, compiled once per process on first use.
const zelk::RegEx& oidPattern() {
  static const zelk::RegEx pattern(
      "^#?(\\d{1,5})(?:-(\\d{1,5})(?:-(\\d{1,5})(?:-(\\d{1,5}))?)?)?$", true, false);
  return pattern;
}

// The digits of capture match (at most five), or 0 when the group did not take part.
int oidField(const char* text, const zelk::RegExMatch& match) {
  int value = 0;
  if (match.start < 0 || match.end < 0) {
    return 0;
  }
  for (int i = match.start; i < match.end; ++i) {
    value = value * 10 + (text[i] - '0');
  }
  return value;
}

}  // namespace

bool Convert::asBool(const char* text, ValidationErrors* errors) {
  if (isEmpty(text)) {
    return false;
  }
  uint64_t number = 0;
  if (parseUInt64(text, number)) {
    return number != 0;
  }
  if (strcasecmp(text, "true") == 0) {
    return true;
  }
  if (strcasecmp(text, "false") == 0) {
    return false;
  }
  reportInvalid(errors, "\"%s\" is not a valid bool", text);
  return false;
}

int64_t Convert::asInt64(const char* text, ValidationErrors* errors) {
  if (isEmpty(text)) {
    return 0;
  }
  int64_t value = 0;
  if (!parseInt64(text, value)) {
    reportInvalid(errors, "\"%s\" is not a valid Int64", text);
    return 0;
  }
  return value;
}

uint64_t Convert::asUInt64(const char* text, ValidationErrors* errors) {
  if (isEmpty(text)) {
    return 0;
  }
  uint64_t value = 0;
  if (!parseUInt64(text, value)) {
    reportInvalid(errors, "\"%s\" is not a valid UInt64", text);
    return 0;
  }
  return value;
}

int32_t Convert::asInt32(const char* text, ValidationErrors* errors) {
  if (isEmpty(text)) {
    return 0;
  }
  int64_t value = 0;
  if (!parseInt64(text, value) || value < -2147483648LL || value > 2147483647LL) {
    reportInvalid(errors, "\"%s\" is not a valid Int32", text);
    return 0;
  }
  return static_cast<int32_t>(value);
}

uint32_t Convert::asUInt32(const char* text, ValidationErrors* errors) {
  if (isEmpty(text)) {
    return 0;
  }
  uint64_t value = 0;
  if (!parseUInt64(text, value) || value > 4294967295ULL) {
    reportInvalid(errors, "\"%s\" is not a valid UInt32", text);
    return 0;
  }
  return static_cast<uint32_t>(value);
}

double Convert::asDouble(const char* text, ValidationErrors* errors) {
  if (isEmpty(text)) {
    return 0.0;
  }
  char* end = 0;
  errno = 0;
  const double value = std::strtod(text, &end);
  // Underflow also sets ERANGE; only an overflow (a result of HUGE_VAL) is refused.
  const bool overflow = errno == ERANGE && std::isinf(value);
  if (end == text || *end != '\0' || overflow) {
    reportInvalid(errors, "\"%s\" is not a valid double", text);
    return 0.0;
  }
  return value;
}

int32_t Convert::asEnum(const EnumDefinition* enumDef, const char* text,
                        ValidationErrors* errors) {
  ZELK_CONTRACT_MESSAGE(enumDef != 0, "Must provide an enumeration definition");
  return enumDef->getValue(text, errors);
}

ObjectId Convert::asOID(const char* text, ValidationErrors* errors) {
  const char* subject = text != 0 ? text : "";
  zelk::RegExMatch matches[5];
  if (!oidPattern().matches(subject, matches, 5)) {
    reportInvalid(errors, "\"%s\" is not a valid OID", subject);
    return ObjectId();
  }
  const int database = oidField(subject, matches[1]);
  const int container = oidField(subject, matches[2]);
  const int page = oidField(subject, matches[3]);
  const int slot = oidField(subject, matches[4]);
  // The limits differ by field on purpose: database ids stop at 65534, container ids at 65525.
  if (database == 0) {
    ValidationErrors::processError(errors, "%s", "The database id cannot be zero");
    return ObjectId();
  }
  if (database > 65534) {
    ValidationErrors::processError(errors,
                                   "The value %d is not a valid value for database id. The "
                                   "database id cannot be more than \"65534\"",
                                   database);
    return ObjectId();
  }
  if (container > 65525) {
    ValidationErrors::processError(errors,
                                   "The value %d is not a valid value for container id. The "
                                   "container id cannot be more than \"65525\"",
                                   container);
    return ObjectId();
  }
  if (page > 65535) {
    ValidationErrors::processError(errors,
                                   "The value %d is not a valid value for page id. The page id "
                                   "cannot be more than \"65535\"",
                                   page);
    return ObjectId();
  }
  if (slot > 65535) {
    ValidationErrors::processError(errors,
                                   "The value %d is not a valid value for slot id. The slot id "
                                   "cannot be more than \"65535\"",
                                   slot);
    return ObjectId();
  }
  return ObjectId(static_cast<uint16_t>(database), static_cast<uint16_t>(container),
                  static_cast<uint16_t>(page), static_cast<uint16_t>(slot));
}

std::string Convert::asString(int value) { return std::to_string(value); }

std::string Convert::asString(unsigned int value) { return std::to_string(value); }

std::string Convert::asString(long value) { return std::to_string(value); }

std::string Convert::asString(unsigned long value) { return std::to_string(value); }

std::string Convert::asString(double value) {
  std::ostringstream out;
  out << value;
  return out.str();
}

std::string Convert::asString(bool value) { return value ? "1" : "0"; }

std::string Convert::asString(const ObjectId& value) {
  std::string text = std::to_string(value.getDatabase());
  text += '-';
  text += std::to_string(value.getContainer());
  text += '-';
  text += std::to_string(value.getPage());
  text += '-';
  text += std::to_string(value.getSlot());
  return text;
}

std::string Convert::asString(const EnumDefinition* enumDef, int32_t value,
                              ValidationErrors* errors) {
  ZELK_CONTRACT_MESSAGE(enumDef != 0, "Must provide an enumeration definition");
  const char* symbol = enumDef->getSymbolicName(value, errors);
  return symbol != 0 ? std::string(symbol) : std::string();
}

}  // namespace zelk::configuration::impl
