#include "zelk/host/HostContext.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <thread>

#include "zelk/host/FormattedHostException.h"
#include "zelk/host/HostErrorReporter.h"
#include "zelk/host/HostProcess.h"

namespace zelk::host {
namespace {

TEST(HostContextTest, CurrentContextIsPerThreadAndCarriesItsSession) {
  EXPECT_TRUE(hostProcessInit());
  EXPECT_TRUE(hostProcessInit());
  ASSERT_EQ(nullptr, HostContext::current());
  HostSession* defaultSession = hostCurrentSession();
  ASSERT_NE(nullptr, defaultSession);

  // The scope guard pattern of the loaders: remember, clear, install, restore.
  HostContext outer(1, 2);
  HostContext::makeCurrent(&outer);
  HostContext* remembered = HostContext::current();
  EXPECT_EQ(&outer, remembered);
  HostContext::makeCurrent(nullptr);
  EXPECT_EQ(nullptr, HostContext::current());
  auto* mine = new HostContext(200, 500);
  HostContext::makeCurrent(mine, true);
  EXPECT_TRUE(mine->isShared());
  EXPECT_EQ(200, mine->getInitialPages());
  EXPECT_EQ(500, mine->getMaximumPages());
  EXPECT_EQ(mine->getSession(), hostCurrentSession());
  HostErrorReporter::setEnabled(hostCurrentSession(), true);
  EXPECT_TRUE(HostErrorReporter::isEnabled(mine->getSession()));
  EXPECT_FALSE(HostErrorReporter::isEnabled(outer.getSession()));
  EXPECT_FALSE(HostErrorReporter::isEnabled(defaultSession));

  // Another thread has no current context.
  HostContext* seenElsewhere = mine;
  std::thread([&seenElsewhere] { seenElsewhere = HostContext::current(); }).join();
  EXPECT_EQ(nullptr, seenElsewhere);

  HostContext::makeCurrent(nullptr);
  HostContext::makeCurrent(remembered);
  delete mine;
  EXPECT_EQ(&outer, HostContext::current());
  EXPECT_EQ(outer.getSession(), hostCurrentSession());
  HostContext::makeCurrent(nullptr);
  EXPECT_EQ(defaultSession, hostCurrentSession());

  // Destroying the current context leaves no dangling current context.
  {
    HostContext temporary(200, 500);
    HostContext::makeCurrent(&temporary);
  }
  EXPECT_EQ(nullptr, HostContext::current());
  HostErrorReporter::setEnabled(nullptr, true);  // ignored
  EXPECT_FALSE(HostErrorReporter::isEnabled(nullptr));
}

TEST(HostContextTest, FormattedHostExceptionFormatsAndReportsWhenEnabled) {
  const FormattedHostException e("REGEX ERROR #%d: %s", 14, "missing )");
  EXPECT_STREQ("REGEX ERROR #14: missing )", e.what());
  EXPECT_STREQ("REGEX ERROR #14: missing )", static_cast<const char*>(e));
  EXPECT_EQ(nullptr, e.asKernelException());
  const HostErrorReporter& base = e;
  EXPECT_LT(base.get_kind(), 0);

  const std::string longText(5000, 'x');
  EXPECT_EQ(4095u, std::strlen(FormattedHostException("%s", longText.c_str()).what()));

  HostContext context(200, 500);
  HostContext::makeCurrent(&context);
  ::testing::internal::CaptureStderr();
  e.reportErrors("loading");
  EXPECT_EQ("", ::testing::internal::GetCapturedStderr());
  HostErrorReporter::setEnabled(hostCurrentSession(), true);
  ::testing::internal::CaptureStderr();
  e.reportErrors("loading");
  EXPECT_EQ("loading: -100: REGEX ERROR #14: missing )\n",
            ::testing::internal::GetCapturedStderr());
  HostContext::makeCurrent(nullptr);

  // The base carries no message of its own.
  const HostErrorReporter plain;
  EXPECT_EQ(nullptr, plain.what());
  EXPECT_EQ(nullptr, static_cast<const char*>(plain));
}

TEST(HostContextTest, HostMallocGivesUsableMemory) {
  struct Pair {
    int a;
    double b;
  };
  void* memory = hostMalloc(sizeof(Pair));
  ASSERT_NE(nullptr, memory);
  Pair* pair = new (memory) Pair{1, 2.5};
  EXPECT_EQ(2.5, pair->b);
  pair->~Pair();
  hostFree(memory);
  hostFree(nullptr);
  void* empty = hostMalloc(0);
  EXPECT_NE(nullptr, empty);
  hostFree(empty);
}

}  // namespace
}  // namespace zelk::host
