#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "../ValueTestModel.h"
#include "zelk/configuration/ConfigurationManager.h"
#include "zelk/configuration/ValueGroup.h"
#include "zelk/configuration/impl/ValueAccess.h"
#include "zelk/configuration/impl/ValueGroupItemStringGenerator.h"
#include "zelk/configuration/impl/ValueGroupState.h"
#include "zelk/configuration/impl/ValueState.h"

namespace zelk::configuration::impl {
namespace {

// The printer's pointer form of p.
std::string hex(const void* p) {
  std::ostringstream out;
  out << std::hex << reinterpret_cast<uintptr_t>(p);
  return out.str();
}

class ValueGroupItemStringGeneratorTest : public ::testing::Test {
protected:
  zelk::test::ValueTestModel model;
};

TEST_F(ValueGroupItemStringGeneratorTest, AnEmptyGroupPrintsAnEmptyBlock) {
  ValueGroup group("empty");
  const std::string state = hex(ValueAccess::getState(group).get());
  EXPECT_EQ("empty: (state: 0x" + state + ", parent: 0x0, container: 0x0)\n{\n}\n",
            ValueGroupItemStringGenerator::getString(group));
}

TEST_F(ValueGroupItemStringGeneratorTest, ATreePrintsStatesBindingsAndTypedEntries) {
  ValueGroup root(model.spec);
  root.addValue("port", "8");
  ValueGroup db = root.addGroup("db");
  db.addValue("host", "h");
  UnboundedValue ratios = root.addUnboundedValue("ratio", "0.5");
  ratios.add("2");
  root.addValue("verbose", 0);
  root.addValue("color", "blue");
  root.addValue("stray", "x");

  const std::string rootState = hex(ValueAccess::getState(root).get());
  const std::string dbState = hex(ValueAccess::getState(db).get());
  auto valueState = [&](const char* name) {
    return hex(ValueAccess::getState(*root.findValueBase(name)).get());
  };
  const std::string expected =
      "tool: (state: 0x" + rootState + ", parent: 0x0, container: 0x" + hex(model.items) +
      "->\"tool\")\n"
      "{\n"
      "  port (int32): (state: 0x" + valueState("port") + ", parent: 0x" + rootState +
      ", paramRef: 0x" + hex(model.port) + "->\"port\")\n"
      "  [\n"
      "    8\n"
      "  ]\n"
      "  db: (state: 0x" + dbState + ", parent: 0x" + rootState + ", container: 0x" +
      hex(model.db) + "->\"db\")\n"
      "  {\n"
      "    host (string): (state: 0x" +
      hex(ValueAccess::getState(*db.findValueBase("host")).get()) + ", parent: 0x" + dbState +
      ", paramRef: 0x" + hex(model.host) + "->\"host\")\n"
      "    [\n"
      "      \"h\"\n"
      "    ]\n"
      "  }\n"
      "  ratio (double): (state: 0x" + valueState("ratio") + ", parent: 0x" + rootState +
      ", paramRef: 0x" + hex(model.ratio) + "->\"ratio\")\n"
      "  [\n"
      "    0.500000\n"
      "    2.000000\n"
      "  ]\n"
      "  verbose (bool): (state: 0x" + valueState("verbose") + ", parent: 0x" + rootState +
      ", paramRef: 0x" + hex(model.verbose) + "->\"verbose\")\n"
      "  [\n"
      "    true\n"
      "  ]\n"
      "  color (enumeration): (state: 0x" + valueState("color") + ", parent: 0x" + rootState +
      ", paramRef: 0x" + hex(model.color) + "->\"color\")\n"
      "  [\n"
      "    \"blue\"\n"
      "  ]\n"
      "  stray (unknown): (state: 0x" + valueState("stray") + ", parent: 0x" + rootState +
      ", paramRef: 0x0)\n"
      "  [\n"
      "    \"x\"\n"
      "  ]\n"
      "}\n";
  EXPECT_EQ(expected, ValueGroupItemStringGenerator::getString(root));

  // A single value prints alone; the manager keeps the last text.
  ConfigurationManager manager;
  const char* text = manager.getRepresentation(root.getValue("port"));
  EXPECT_EQ("port (int32): (state: 0x" + valueState("port") + ", parent: 0x" + rootState +
                ", paramRef: 0x" + hex(model.port) + "->\"port\")\n[\n  8\n]\n",
            std::string(text));
}

}  // namespace
}  // namespace zelk::configuration::impl
