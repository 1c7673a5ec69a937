#include "zelk/configuration/ReferenceCounted.h"

#include <thread>
#include <vector>

#include <gtest/gtest.h>

using zelk::configuration::ReferenceCounted;

namespace {

class Tracked : public ReferenceCounted {
public:
  explicit Tracked(int* destroyed) : mDestroyed(destroyed) {}
  ~Tracked() override { ++*mDestroyed; }

private:
  int* mDestroyed;
};

// Keeps the object alive at count 0 and counts the final releases instead.
class Pooled : public ReferenceCounted {
public:
  mutable int finalReleases = 0;

protected:
  void finalRelease() const override { ++finalReleases; }
};

TEST(ReferenceCountedTest, TheLastReleaseDestroysTheObjectOrCallsTheOverride) {
  int destroyed = 0;
  Tracked* object = new Tracked(&destroyed);
  EXPECT_EQ(1, object->addRef());
  EXPECT_FALSE(object->isShared());
  EXPECT_EQ(2, object->addRef());
  EXPECT_TRUE(object->isShared());
  EXPECT_EQ(1, object->release());
  EXPECT_EQ(0, destroyed);
  EXPECT_EQ(0, object->release());
  EXPECT_EQ(1, destroyed);

  Pooled pooled;
  pooled.addRef();
  EXPECT_EQ(0, Pooled(pooled).getRefCount());  // copies start at zero
  EXPECT_EQ(0, pooled.release());
  EXPECT_EQ(1, pooled.finalReleases);
}

TEST(ReferenceCountedTest, CountsStayExactUnderConcurrentChanges) {
  Pooled pooled;
  pooled.addRef();
  std::vector<std::thread> threads;
  for (int t = 0; t < 4; ++t) {
    threads.emplace_back([&pooled] {
      for (int i = 0; i < 20000; ++i) {
        pooled.addRef();
        pooled.release();
      }
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
  EXPECT_EQ(1, pooled.getRefCount());
  EXPECT_EQ(0, pooled.finalReleases);
  pooled.release();
  EXPECT_EQ(1, pooled.finalReleases);
}

}  // namespace
