#include <gtest/gtest.h>

#include <cstdint>

#include "zelk/configuration/impl/RepresentationPrinter.h"

namespace zelk::configuration::impl {
namespace {

TEST(RepresentationPrinterTest, ScopesIndentTwoBlanksPerLevel) {
  RepresentationPrinter printer;
  printer.enterScope("A");
  printer.printKeyInt32Value("n", 5);
  printer.enterScope("{");
  printer.printKeyLiteralValue("deep", "x");
  printer.leaveScope("}");
  printer.leaveScope("B");
  EXPECT_EQ("A\n  n: 5\n  {\n    deep: x\n  }\nB\n", printer.getRepresentation());

  RepresentationPrinter nulls;
  nulls.enterScope(0);
  nulls.indent();
  nulls.printNewLine();
  nulls.leaveScope(0);
  EXPECT_EQ("\n  \n\n", nulls.getRepresentation());
}

TEST(RepresentationPrinterTest, KeysAndValuesPrintInTheirForms) {
  RepresentationPrinter printer;
  printer.printKeyStringValue(0, "ab");
  printer.printKeyStringValue("s", 0);
  printer.printKeyLiteralValue("l", 0);
  printer.printKeyBoolValue("b", false);
  printer.printKeyDoubleValue("d", 1.5);
  printer.printKeyUInt64Value("u", UINT64_MAX);
  printer.printKeyInt64Value("i", INT64_MIN);
  EXPECT_EQ(
      "<<null>>: \"ab\"\n"
      "s: null\n"
      "l: null\n"
      "b: false\n"
      "d: 1.500000\n"
      "u: 18446744073709551615\n"
      "i: -9223372036854775808\n",
      printer.getRepresentation());
}

TEST(RepresentationPrinterTest, PointersStayHexadecimalUntilTheNextIntegerPrint) {
  RepresentationPrinter printer;
  printer.printKeyPointerValue("p", reinterpret_cast<const void*>(uintptr_t(0xff)));
  printer.printKeyPointerValue("null", 0);
  printer.printKey("raw");
  printer.printPointerValue(reinterpret_cast<const void*>(uintptr_t(0x10)));
  printer.printLiteralValue(" ");
  printer.printUInt32Value(16);
  printer.printNewLine();
  printer.printKeyDoubleValue("d", 2.0);
  printer.printKeyInt32Value("n", -16);
  EXPECT_EQ("p: ff\nnull: 0\nraw: 10 16\nd: 2.000000\nn: -16\n", printer.getRepresentation());
}

}  // namespace
}  // namespace zelk::configuration::impl
