// Conversions: the input text read as every value type, with and without an error collector, and
// through the value model's typed reads. A text either converts or records exactly one message;
// what converts is written back and read again to the same value.
#include <cstddef>
#include <cstdint>
#include <string>

#include "FuzzSupport.h"
#include "zelk/configuration/ConfigurationException.h"
#include "zelk/configuration/EnumDefinition.h"
#include "zelk/configuration/ObjectId.h"
#include "zelk/configuration/Parameter.h"
#include "zelk/configuration/ValidationErrors.h"
#include "zelk/configuration/ValidationException.h"
#include "zelk/configuration/Value.h"
#include "zelk/configuration/impl/Convert.h"

using namespace zelk::configuration;
using impl::Convert;

namespace {

// Converts text with a collector (at most one message) and without one (a throw exactly when the
// collector got a message); returns the value and whether it converted.
template <typename T, typename F>
T convert(F parse, const char* text, bool& ok) {
  ValidationErrors errors;
  const T value = parse(text, &errors);
  ZELK_FUZZ_CHECK(errors.getNumberOfErrors() <= 1);
  ok = errors.getNumberOfErrors() == 0;
  bool threw = false;
  try {
    parse(text, nullptr);
  } catch (const ValidationException& e) {
    threw = true;
    // The same message either way (a thrown list is escaped and read once more, so "%%" in an
    // error reads back as "%" there; that is kept on purpose).
    ZELK_FUZZ_CHECK(std::string(e.what()) == ValidationException(errors).what());
  }
  ZELK_FUZZ_CHECK(threw != ok);
  return value;
}

template <typename T, typename F>
void roundTrip(F parse, const char* text) {
  bool ok = false;
  const T value = convert<T>(parse, text, ok);
  if (!ok) return;
  const std::string written = Convert::asString(value);
  bool again = false;
  ZELK_FUZZ_CHECK(convert<T>(parse, written.c_str(), again) == value);
  ZELK_FUZZ_CHECK(again);
}

template <typename T>
void read(const Value& value, T (Value::*reader)() const) {
  try {
    (value.*reader)();
  } catch (const ConfigurationException&) {
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string input(reinterpret_cast<const char*>(data), size);
  const char* text = input.c_str();  // up to the first NUL, as a C caller would pass it

  roundTrip<int64_t>(&Convert::asInt64, text);
  roundTrip<int32_t>(&Convert::asInt32, text);
  roundTrip<uint32_t>(
      [](const char* t, ValidationErrors* e) { return Convert::asUInt32(t, e); }, text);
  // A leading minus wraps modulo 2^64, so the written form may differ; only the value must hold.
  roundTrip<uint64_t>(
      [](const char* t, ValidationErrors* e) { return Convert::asUInt64(t, e); }, text);
  bool ok = false;
  convert<bool>(&Convert::asBool, text, ok);
  convert<double>(&Convert::asDouble, text, ok);
  if (ok) Convert::asString(Convert::asDouble(text, nullptr));
  const ObjectId oid = convert<ObjectId>(&Convert::asOID, text, ok);
  if (ok) {
    bool again = false;
    ZELK_FUZZ_CHECK(convert<ObjectId>(&Convert::asOID, Convert::asString(oid).c_str(), again) ==
                    oid);
  }

  const Parameter* colour =
      dynamic_cast<const Parameter*>(zelk::fuzz::richManager()->getParameter("colour"));
  ZELK_FUZZ_CHECK(colour != nullptr);
  const EnumDefinition* colours = colour->getEnumDefinition();
  const int32_t symbol = convert<int32_t>(
      [colours](const char* t, ValidationErrors* e) { return Convert::asEnum(colours, t, e); },
      text, ok);
  if (ok) {
    ValidationErrors errors;
    const std::string name = Convert::asString(colours, symbol, &errors);
    ZELK_FUZZ_CHECK(errors.getNumberOfErrors() == 0);
    ZELK_FUZZ_CHECK(Convert::asEnum(colours, name.c_str(), nullptr) == symbol);
  }
  ValidationErrors errors;
  Convert::asString(colours, static_cast<int32_t>(input.size() * 2654435761u), &errors);

  // The value model: a free value and values bound to typed parameters.
  try {
    const Value free = Value::create("free", text);
    read(free, &Value::asBool);
    read(free, &Value::asInt32);
    read(free, &Value::asUInt32);
    read(free, &Value::asInt64);
    read(free, &Value::asUInt64);
    read(free, &Value::asDouble);
    read(free, &Value::asOID);
    read(free, &Value::asString);
  } catch (const ConfigurationException&) {
  }
  for (const char* name : {"count", "size", "offset", "limit", "ratio", "object", "colour",
                           "verbose", "target", "name"}) {
    const Parameter* parameter =
        dynamic_cast<const Parameter*>(zelk::fuzz::richManager()->getParameter(name));
    try {
      Value bound(parameter);
      bound.set(text);
      read(bound, &Value::asString);
      read(bound, &Value::asInt64);
      read(bound, &Value::asEnum);
      read(bound, &Value::asOID);
      read(bound, &Value::asDouble);
    } catch (const ConfigurationException&) {
    }
  }
  return 0;
}
