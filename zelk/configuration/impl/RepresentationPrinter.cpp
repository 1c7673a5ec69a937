#include "zelk/configuration/impl/RepresentationPrinter.h"

#include <ios>

namespace zelk::configuration::impl {

RepresentationPrinter::RepresentationPrinter() : mDepth(0) {}

RepresentationPrinter::~RepresentationPrinter() {}

void RepresentationPrinter::rebuildIndent() { mIndent.assign(2 * static_cast<size_t>(mDepth), ' '); }

void RepresentationPrinter::enterScope(const char* text) {
  mOut << mIndent;
  if (text != 0) {
    mOut << text;
  }
  mOut << '\n';
  ++mDepth;
  rebuildIndent();
}

void RepresentationPrinter::leaveScope(const char* text) {
  if (mDepth > 0) {
    --mDepth;
  }
  rebuildIndent();
  mOut << mIndent;
  if (text != 0) {
    mOut << text;
  }
  mOut << '\n';
}

void RepresentationPrinter::indent() { mOut << mIndent; }

void RepresentationPrinter::printNewLine() { mOut << '\n'; }

void RepresentationPrinter::printKey(const char* key) {
  mOut << mIndent << (key != 0 ? key : "<<null>>") << ": ";
}

void RepresentationPrinter::printStringValue(const char* value) {
  if (value == 0) {
    mOut << "null";
  } else {
    mOut << '"' << value << '"';
  }
}

void RepresentationPrinter::printLiteralValue(const char* value) {
  mOut << (value != 0 ? value : "null");
}

void RepresentationPrinter::printBoolValue(bool value) { mOut << (value ? "true" : "false"); }

void RepresentationPrinter::printInt32Value(int32_t value) { mOut << std::dec << value; }

void RepresentationPrinter::printUInt32Value(uint32_t value) { mOut << std::dec << value; }

void RepresentationPrinter::printInt64Value(int64_t value) { mOut << std::dec << value; }

void RepresentationPrinter::printUInt64Value(uint64_t value) { mOut << std::dec << value; }

void RepresentationPrinter::printDoubleValue(double value) { mOut << std::fixed << value; }

void RepresentationPrinter::printPointerValue(const void* value) {
  // The stream stays in hexadecimal until the next integer print switches it back.
  mOut << std::hex << reinterpret_cast<uintptr_t>(value);
}

void RepresentationPrinter::printKeyStringValue(const char* key, const char* value) {
  printKey(key);
  printStringValue(value);
  printNewLine();
}

void RepresentationPrinter::printKeyLiteralValue(const char* key, const char* value) {
  printKey(key);
  printLiteralValue(value);
  printNewLine();
}

void RepresentationPrinter::printKeyBoolValue(const char* key, bool value) {
  printKey(key);
  printBoolValue(value);
  printNewLine();
}

void RepresentationPrinter::printKeyInt32Value(const char* key, int32_t value) {
  printKey(key);
  printInt32Value(value);
  printNewLine();
}

void RepresentationPrinter::printKeyUInt32Value(const char* key, uint32_t value) {
  printKey(key);
  printUInt32Value(value);
  printNewLine();
}

void RepresentationPrinter::printKeyInt64Value(const char* key, int64_t value) {
  printKey(key);
  printInt64Value(value);
  printNewLine();
}

void RepresentationPrinter::printKeyUInt64Value(const char* key, uint64_t value) {
  printKey(key);
  printUInt64Value(value);
  printNewLine();
}

void RepresentationPrinter::printKeyDoubleValue(const char* key, double value) {
  printKey(key);
  printDoubleValue(value);
  printNewLine();
}

void RepresentationPrinter::printKeyPointerValue(const char* key, const void* value) {
  printKey(key);
  printPointerValue(value);
  printNewLine();
}

std::string RepresentationPrinter::getRepresentation() const { return mOut.str(); }

}  // namespace zelk::configuration::impl
