#include "zelk/configuration/ConfigurationException.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

namespace zelk::configuration {
namespace {

TEST(ConfigurationExceptionTest, FormatsItsMessageAndActsAsAHostException) {
  const ConfigurationException e("Duplicate %s \"%s\"", "parameter", "level");
  EXPECT_STREQ("Duplicate parameter \"level\"", e.what());
  EXPECT_EQ(-700, e.get_kind());
  const zelk::host::HostErrorReporter& host = e;
  EXPECT_STREQ("Duplicate parameter \"level\"", static_cast<const char*>(host));
  EXPECT_EQ(nullptr, host.asKernelException());

  const std::string longText(5000, 'c');
  EXPECT_EQ(4095u, std::strlen(ConfigurationException("%s", longText.c_str()).what()));
  // A user text is an argument, never the format.
  EXPECT_STREQ("File \"%s%s%s%n\" was not found",
               ConfigurationException("File \"%s\" was not found", "%s%s%s%n").what());
  EXPECT_EQ(nullptr, ConfigurationException(nullptr).what());
}

TEST(ConfigurationExceptionTest, CopiesOwnTheirMessage) {
  ConfigurationException original("first");
  ConfigurationException copy(original);
  EXPECT_STREQ("first", copy.what());
  EXPECT_NE(original.what(), copy.what());
  ConfigurationException other("other");
  other = original;
  EXPECT_STREQ("first", other.what());
  other = other;
  EXPECT_STREQ("first", other.what());
  ConfigurationException null(nullptr);
  other = null;
  EXPECT_EQ(nullptr, other.what());
  try {
    throw ConfigurationException("Unable to find the %s file.", "zelk.crg");
  } catch (const std::exception& caught) {
    EXPECT_STREQ("Unable to find the zelk.crg file.", caught.what());
  }
}

}  // namespace
}  // namespace zelk::configuration
