// zelk-config with a real etcd: -readKey, -values -publish (checked first, then a
// compare-and-swap on the revision given: of two publishers at once one wins and the other is
// told the newer revision), and -values naming a cluster value's endpoint, key and revision.
#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <utility>
#include <vector>

#include "support/EtcdServer.h"
#include "support/TempDir.h"
#include "support/TextFiles.h"

namespace zelk::configtool {
namespace {

const std::string ZELK_CONFIG = std::string(ZELK_TEST_BINARY_DIR) + "/tools/zelk-config";
const std::string INSTALLATION = std::string(ZELK_TEST_SOURCE_DIR) + "/examples/installation";

std::string quoted(const std::string& word) {
  std::string text = "'";
  for (char c : word) text += c == '\'' ? std::string("'\\''") : std::string(1, c);
  return text + "'";
}

// A zelk-config run started at once; finish() waits for it.
class ToolRun {
public:
  explicit ToolRun(const std::vector<std::string>& arguments) {
    std::string command = quoted(ZELK_CONFIG) + " -installation " + quoted(INSTALLATION);
    for (const std::string& argument : arguments) command += " " + quoted(argument);
    mPipe = popen((command + " 2>&1").c_str(), "r");
  }
  // The exit status and everything written.
  std::pair<int, std::string> finish() {
    std::string output;
    char buffer[4096];
    size_t n;
    while ((n = fread(buffer, 1, sizeof(buffer), mPipe)) > 0) output.append(buffer, n);
    const int status = pclose(mPipe);
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, output};
  }

private:
  FILE* mPipe;
};

std::pair<int, std::string> run(const std::vector<std::string>& arguments) {
  return ToolRun(arguments).finish();
}

TEST(EtcdCommandsTest, PublishIsCheckedAndOneOfTwoConcurrentPublishersIsTold) {
  test::EtcdServer etcd;
  test::TempDir directory;
  const std::string etcdSettings = "endpoints=" + etcd.endpoint() + ";key=/fleet/zbackup";
  const std::string good = "<zbackup database=\"sales\" destination=\"/backups\" retries=\"7\" compression=\"best\"/>\n";
  const std::string mine = directory.file("mine.xml");
  const std::string theirs = directory.file("theirs.xml");
  const std::string bad = directory.file("bad.xml");
  test::writeTextFile(mine, good);
  test::writeTextFile(theirs, "<zbackup database=\"sales\" destination=\"/backups\" retries=\"9\"/>\n");
  test::writeTextFile(bad, "<zbackup database=\"sales\" destination=\"/backups\" retries=\"many\"/>\n");
  const auto publish = [&](const std::string& file, const std::string& revision) {
    return std::vector<std::string>{"-values", "-specification", "zbackup", "-valueFile", file,
                                    "-cluster", etcdSettings, "-publish", "-revision", revision};
  };

  auto result = run(publish(mine, "0"));
  ASSERT_EQ(0, result.first) << result.second;
  EXPECT_NE(std::string::npos, result.second.find("to the etcd key /fleet/zbackup at " +
                                                  etcd.endpoint() + ": revision "))
      << result.second;
  const int64_t first = etcd.client().range("/fleet/zbackup").modRevision;
  result = run({"-readKey", "-cluster", etcdSettings});
  EXPECT_EQ(0, result.first);
  EXPECT_EQ("etcd key /fleet/zbackup at " + etcd.endpoint() + ", revision " +
                std::to_string(first) + ":\n" + good,
            result.second);
  result = run({"-readKey", "-cluster", etcdSettings, "-format", "json"});
  EXPECT_NE(std::string::npos, result.second.find("\"revision\": \"" + std::to_string(first) + "\""))
      << result.second;

  // A value that does not convert is reported and nothing is written.
  result = run(publish(bad, std::to_string(first)));
  EXPECT_EQ(1, result.first);
  EXPECT_NE(std::string::npos, result.second.find("many")) << result.second;
  EXPECT_EQ(first, etcd.client().range("/fleet/zbackup").modRevision);

  // Both edited from the same revision and publish at once.
  ToolRun one(publish(mine, std::to_string(first)));
  ToolRun two(publish(theirs, std::to_string(first)));
  const auto a = one.finish();
  const auto b = two.finish();
  ASSERT_EQ(1, (a.first == 0) + (b.first == 0)) << a.second << b.second;
  const auto& loser = a.first == 0 ? b : a;
  EXPECT_EQ(1, loser.first);
  const int64_t newer = etcd.client().range("/fleet/zbackup").modRevision;
  EXPECT_NE(std::string::npos,
            loser.second.find("nothing was published: the etcd key \"/fleet/zbackup\" is at "
                              "revision " + std::to_string(newer) + ", not at revision " +
                              std::to_string(first)))
      << loser.second;

  // Publishing needs its key and its one file.
  EXPECT_EQ(2, run({"-values", "-specification", "zbackup", "-valueFile", mine, "-publish"}).first);
  EXPECT_EQ(2, run({"-readKey"}).first);
}

TEST(EtcdCommandsTest, ValuesNameTheEndpointKeyAndRevisionOfAClusterValue) {
  test::EtcdServer etcd;
  const int64_t revision = etcd.put("/fleet/zbackup", "<fleet><zbackup database=\"sales\" destination=\"/backups\" retries=\"7\"/></fleet>");
  const std::string settings = "endpoints=" + etcd.endpoint() + ";key=/fleet/zbackup";
  auto result = run({"-values", "-specification", "zbackup", "-noMachineConfig", "--",
                     "-etcdConfiguration", settings});
  ASSERT_EQ(0, result.first) << result.second;
  EXPECT_NE(std::string::npos, result.second.find("etcd " + etcd.endpoint() +
                                                  " key /fleet/zbackup revision " +
                                                  std::to_string(revision)))
      << result.second;
  result = run({"-values", "-specification", "zbackup", "-noMachineConfig", "-json", "--",
                "-etcdConfiguration", settings});
  EXPECT_NE(std::string::npos,
            result.second.find("\"sources\": [\"etcd " + etcd.endpoint() + " /fleet/zbackup " +
                               std::to_string(revision) + "\"]"))
      << result.second;
}

}  // namespace
}  // namespace zelk::configtool
