// RepresentationPrinter: a small text builder for diagnostic representations: nested scopes
// indented by two blanks per level, "key: value" lines and typed value prints.
//
// The string generators of specification items and of value trees derive from it.
//
//   RepresentationPrinter printer;
//   printer.enterScope("A");
//   printer.printKeyInt32Value("n", 5);
//   printer.leaveScope("B");
//   printer.getRepresentation();   // "A\n  n: 5\nB\n"
#pragma once

#include <cstdint>
#include <sstream>
#include <string>

namespace zelk::configuration::impl {

class RepresentationPrinter {
public:
  RepresentationPrinter();
  virtual ~RepresentationPrinter();

  // Writes indent, text (nothing for null) and a line end, then indents one level deeper.
  void enterScope(const char* text);
  // Indents one level less, then writes indent, text and a line end.
  void leaveScope(const char* text);
  // Writes the current indent.
  void indent();
  void printNewLine();
  // Writes indent, key ("<<null>>" for null) and ": ".
  void printKey(const char* key);

  // The value prints write at the current position.
  // The text in double quotes; null without quotes for a null text.
  void printStringValue(const char* value);
  // The text as it stands; null for a null text.
  void printLiteralValue(const char* value);
  void printBoolValue(bool value);
  void printInt32Value(int32_t value);
  void printUInt32Value(uint32_t value);
  void printInt64Value(int64_t value);
  void printUInt64Value(uint64_t value);
  // Fixed notation, six decimals.
  void printDoubleValue(double value);
  // The address in hexadecimal, without prefix.
  void printPointerValue(const void* value);

  // printKey, the value print, printNewLine.
  void printKeyStringValue(const char* key, const char* value);
  void printKeyLiteralValue(const char* key, const char* value);
  void printKeyBoolValue(const char* key, bool value);
  void printKeyInt32Value(const char* key, int32_t value);
  void printKeyUInt32Value(const char* key, uint32_t value);
  void printKeyInt64Value(const char* key, int64_t value);
  void printKeyUInt64Value(const char* key, uint64_t value);
  void printKeyDoubleValue(const char* key, double value);
  void printKeyPointerValue(const char* key, const void* value);

  // Everything written so far.
  std::string getRepresentation() const;

private:
  void rebuildIndent();

  std::ostringstream mOut;
  std::string mIndent;
  uint32_t mDepth;
};

}  // namespace zelk::configuration::impl
