// An etcd key as a source of changes for the follower, against a real etcd: a change is reported
// and proposed as a new provider, a malformed document is reported once and never proposed, and
// the document put in force is kept as the last one received.
#include <gtest/gtest.h>

#include <chrono>
#include <condition_variable>
#include <fstream>
#include <mutex>
#include <sstream>
#include <string>
#include <vector>

#include "support/EtcdServer.h"
#include "support/TempDir.h"
#include "zelk/configuration/EtcdValueProvider.h"
#include "zelk/configuration/ValidationErrors.h"
#include "zelk/configuration/impl/EtcdChangeSource.h"
#include "zelk/configuration/impl/EtcdValueProviderImpl.h"

namespace zelk::configuration::impl {
namespace {

// Counts the reports of a source, as the follower would receive them.
class CountingSink : public ChangeSink {
public:
  void changed(const std::string& what) override {
    std::lock_guard<std::mutex> lock(mMutex);
    mChanges.push_back(what);
    mReported.notify_all();
  }
  void changedWhole(const std::string& what) override { changed(what); }
  void note(const std::string&) override {}
  // Waits for the count-th report; its text.
  std::string waitFor(size_t count) {
    std::unique_lock<std::mutex> lock(mMutex);
    mReported.wait_for(lock, std::chrono::seconds(20), [&] { return mChanges.size() >= count; });
    return mChanges.size() >= count ? mChanges[count - 1] : "<none>";
  }

private:
  std::mutex mMutex;
  std::condition_variable mReported;
  std::vector<std::string> mChanges;
};

// The value of attribute b of the element "tool" in the provider's document.
std::string toolB(EtcdValueProvider& provider) {
  for (const auto& element : provider.getEtcdImpl()->findTopElements("tool")) {
    for (const auto& attribute : element) {
      if (attribute.first == "b") return attribute.second;
    }
  }
  return "-";
}

TEST(EtcdChangeSourceTest, ChangesAreProposedAsNewProvidersAndMalformedOnesReported) {
  test::EtcdServer etcd;
  test::TempDir directory;
  EtcdSource source = etcd.source("/fleet/tools");
  source.lastReceivedFile = directory.file("kept.xml");
  etcd.put("/fleet/tools", "<fleet><tool b=\"one\"/></fleet>");
  EtcdValueProvider provider(7, "");
  provider.enableProvider(source);
  EtcdChangeSource changeSource(&provider);
  CountingSink sink;
  changeSource.start(sink);

  const int64_t bad = etcd.put("/fleet/tools", "<fleet><tool b=\"two\"></fleet>");
  EXPECT_EQ("etcd key /fleet/tools at revision " + std::to_string(bad), sink.waitFor(1));
  {
    ProviderChanges changes;
    ValidationErrors errors;
    changeSource.reread(changes, errors);
    EXPECT_TRUE(changes.empty());
    ASSERT_EQ(1u, errors.getNumberOfErrors());
    EXPECT_NE(std::string::npos, std::string(errors.getError(0)).find(
                                     "etcd key /fleet/tools at revision " + std::to_string(bad)))
        << errors.getError(0);
    // Asked again, the refused document is not proposed or reported again.
    ValidationErrors again;
    changeSource.reread(changes, again);
    EXPECT_TRUE(changes.empty());
    EXPECT_EQ(0u, again.getNumberOfErrors());
  }
  EXPECT_EQ("one", toolB(provider));

  const int64_t good = etcd.put("/fleet/tools", "<fleet><tool b=\"three\"/></fleet>");
  sink.waitFor(2);
  ProviderChanges changes;
  ValidationErrors errors;
  changeSource.reread(changes, errors);
  EXPECT_EQ(0u, errors.getNumberOfErrors());
  ASSERT_EQ(1u, changes.get().size());
  EXPECT_EQ(&provider, changes.get()[0].current);
  auto* replacement = static_cast<EtcdValueProvider*>(changes.get()[0].replacement);
  EXPECT_EQ("three", toolB(*replacement));
  EXPECT_EQ(good, replacement->getRevision());
  EXPECT_EQ(7, replacement->getPriority());
  EXPECT_TRUE(replacement->getEnabled());
  // The registered provider is untouched until the change is in force.
  EXPECT_EQ("one", toolB(provider));

  changeSource.applied(changes);
  EXPECT_EQ(replacement, changeSource.getProvider());
  std::ifstream in(source.lastReceivedFile);
  std::stringstream kept;
  kept << in.rdbuf();
  EXPECT_EQ(EtcdValueProviderImpl::makeLastReceived("<fleet><tool b=\"three\"/></fleet>", good),
            kept.str());
  changeSource.stop();
  changes.release();
  delete replacement;
}

}  // namespace
}  // namespace zelk::configuration::impl
