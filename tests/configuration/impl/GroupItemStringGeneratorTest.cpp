#include "zelk/configuration/impl/GroupItemStringGenerator.h"

#include <string>

#include <gtest/gtest.h>

#include "configuration/impl/BackupToolModel.h"

using namespace zelk::configuration;
using zelk::test::SpecificationBuilder;

namespace {

TEST(GroupItemStringGeneratorTest, NestedItemsInIndentedScopes) {
  SpecificationBuilder builder;
  Specification* spec = builder.specification("tool");
  OneOf* oneOf = builder.oneOf(spec->getItemsContainer(), 0);
  builder.ref(oneOf, "a", Parameter::BOOL, 0, 0, "First");
  builder.ref(builder.logicalGroup(oneOf, SpecificationBuilder::OPTIONAL), "b", Parameter::INT32,
              SpecificationBuilder::HIDDEN, 0, "");
  Container* sub = builder.container(spec->getItemsContainer(), "sub",
                                     SpecificationBuilder::UNBOUNDED);
  const std::string subText = "Container: \n"
                              "{\n"
                              "  id: \"sub\"\n"
                              "  name: \"sub\"\n"
                              "  description: \"A container\"\n"
                              "  optional: false\n"
                              "  unbounded: true\n"
                              "  items: \n"
                              "  {\n"
                              "  }\n"
                              "}\n";
  EXPECT_EQ(subText, impl::GroupItemStringGenerator::getString(*sub));
  // Within its parent, the same text stands two levels deeper.
  std::string nested;
  for (size_t start = 0; start < subText.size(); start = subText.find('\n', start) + 1) {
    nested += "    " + subText.substr(start, subText.find('\n', start) + 1 - start);
  }
  EXPECT_EQ("Container: \n"
            "{\n"
            "  id: \"tool\"\n"
            "  name: \"tool\"\n"
            "  description: \"A tool\"\n"
            "  optional: false\n"
            "  unbounded: false\n"
            "  items: \n"
            "  {\n"
            "    One Of: \n"
            "    {\n"
            "      optional: false\n"
            "      items: \n"
            "      {\n"
            "        ParameterRef: \n"
            "        {\n"
            "          id: \"a\"\n"
            "          description: \"First\"\n"
            "          optional: true\n"
            "          unbounded: false\n"
            "          hidden: false\n"
            "        }\n"
            "        Logical Group: \n"
            "        {\n"
            "          optional: true\n"
            "          items: \n"
            "          {\n"
            "            ParameterRef: \n"
            "            {\n"
            "              id: \"b\"\n"
            "              description: \"\"\n"
            "              optional: false\n"
            "              unbounded: false\n"
            "              hidden: true\n"
            "            }\n"
            "          }\n"
            "        }\n"
            "      }\n"
            "    }\n" +
                nested + "  }\n}\n",
            impl::GroupItemStringGenerator::getString(*spec->getItemsContainer()));
}

}  // namespace
