// The etcd gateway client against a real etcd: reads, compare-and-swap, failover, watches through
// compaction, stop and a lost server; and answers no etcd gives (from a stand-in that answers
// whatever it is told), which must end in an error, never a crash.
#include "zelk/configuration/impl/EtcdClient.h"

#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "configuration/Models.h"
#include "support/EtcdServer.h"
#include "support/TempDir.h"
#include "zelk/configuration/ConfigurationException.h"
#include "zelk/util/Base64.h"

namespace zelk::configuration::impl {
namespace {

using zelk::test::EtcdServer;

TEST(EtcdClientTest, Base64BothWays) {
  const std::vector<std::pair<std::string, std::string>> cases = {
      {"", ""}, {"f", "Zg=="}, {"fo", "Zm8="}, {"foo", "Zm9v"}, {"foob", "Zm9vYg=="},
      {std::string("\0\xff\xfe", 3), "AP/+"}};
  for (const auto& c : cases) {
    EXPECT_EQ(c.second, encodeBase64(c.first));
    std::string decoded = "unchanged";
    ASSERT_TRUE(decodeBase64(c.second, decoded)) << c.second;
    EXPECT_EQ(c.first, decoded);
  }
  for (const char* bad : {"Zg=", "Z===", "Zm9v!A==", "=Zm9", "Zg==Zg==", "Zm=v"}) {
    std::string decoded = "unchanged";
    EXPECT_FALSE(decodeBase64(bad, decoded)) << bad;
    EXPECT_EQ("unchanged", decoded);
  }
}

TEST(EtcdClientTest, ReadsAndSwapsOnTheModRevision) {
  EtcdServer etcd;
  EtcdClient client(etcd.source("/k"));
  EtcdClient::Range missing = client.range("/k");
  EXPECT_FALSE(missing.found);
  EXPECT_GT(missing.revision, 0);

  // Creating needs the key to be absent.
  EtcdClient::Swap created = client.compareAndSwap("/k", "one", 0);
  ASSERT_TRUE(created.succeeded);
  EtcdClient::Range read = client.range("/k");
  EXPECT_TRUE(read.found);
  EXPECT_EQ("one", read.value);
  EXPECT_EQ(created.revision, read.modRevision);
  EXPECT_EQ(read.modRevision, read.revision);
  EXPECT_FALSE(client.compareAndSwap("/k", "again", 0).succeeded);

  const int64_t newer = etcd.put("/k", "two");
  EtcdClient::Swap stale = client.compareAndSwap("/k", "three", read.modRevision);
  EXPECT_FALSE(stale.succeeded);
  EXPECT_EQ(newer, stale.currentModRevision);
  EXPECT_EQ("two", client.range("/k").value);
  EXPECT_TRUE(client.compareAndSwap("/k", "three", newer).succeeded);
  EXPECT_EQ("three", client.range("/k").value);

  // Empty values and keys with any bytes travel unchanged.
  etcd.put(std::string("/b\0y\xfft", 6), "");
  EtcdClient::Range odd = client.range(std::string("/b\0y\xfft", 6));
  EXPECT_TRUE(odd.found);
  EXPECT_EQ("", odd.value);
}

TEST(EtcdClientTest, FailsOverAndNamesEveryEndpointWhenNoneAnswers) {
  EtcdServer etcd;
  EtcdSource source = etcd.source("/k");
  const std::string away = EtcdServer::unusedEndpoint();
  source.endpoints.insert(source.endpoints.begin(), away);
  EtcdClient client(source);
  etcd.put("/k", "v");
  EXPECT_EQ("v", client.range("/k").value);
  EXPECT_EQ(etcd.endpoint(), client.getEndpoint());

  etcd.stop();
  try {
    client.range("/k");
    FAIL() << "no error";
  } catch (const ConfigurationException& e) {
    const std::string message = e.what();
    EXPECT_NE(std::string::npos, message.find("could not be reached at " + away + ", " +
                                              etcd.endpoint()))
        << message;
  }
}

TEST(EtcdClientTest, WatchesFromARevisionThroughCompactionAndStop) {
  EtcdServer etcd;
  EtcdClient client(etcd.source("/k"));
  const int64_t first = etcd.put("/k", "a");
  etcd.put("/other", "x");
  etcd.put("/k", "b");
  etcd.remove("/k");

  // Everything from first on, then a stop from another thread ends the watch.
  std::vector<EtcdClient::Event> events;
  bool created = false;
  std::thread stopper;
  EtcdClient::WatchEnd end = client.watch(
      "/k", first,
      [&](const EtcdClient::Event& event) {
        events.push_back(event);
        if (events.size() == 3) {
          stopper = std::thread([&] { client.stop(); });
        }
      },
      [&] { created = true; });
  stopper.join();
  EXPECT_EQ(EtcdClient::STOPPED, end);
  EXPECT_TRUE(created);
  ASSERT_EQ(3u, events.size());
  EXPECT_EQ("a", events[0].value);
  EXPECT_EQ(first, events[0].modRevision);
  EXPECT_EQ("b", events[1].value);
  EXPECT_FALSE(events[1].deleted);
  EXPECT_TRUE(events[2].deleted);

  // A watch from a compacted revision is cancelled, and says from where history is kept.
  client.restart();
  const int64_t last = etcd.put("/k", "c");
  etcd.compact(last);
  int64_t compactRevision = 0;
  events.clear();
  end = client.watch(
      "/k", first, [&](const EtcdClient::Event& event) { events.push_back(event); }, nullptr,
      &compactRevision);
  EXPECT_EQ(EtcdClient::COMPACTED, end);
  EXPECT_EQ(last, compactRevision);
  EXPECT_TRUE(events.empty());
}

TEST(EtcdClientTest, AWatchEndsWhenTheServerGoesAway) {
  EtcdServer etcd;
  EtcdClient client(etcd.source("/k"));
  std::atomic<bool> created(false);
  std::thread stopper([&] {
    while (!created) std::this_thread::sleep_for(std::chrono::milliseconds(5));
    etcd.stop();
  });
  const auto started = std::chrono::steady_clock::now();
  EtcdClient::WatchEnd end =
      client.watch("/k", 1, [](const EtcdClient::Event&) {}, [&] { created = true; });
  stopper.join();
  EXPECT_TRUE(end == EtcdClient::LOST || end == EtcdClient::CANCELED) << end;
  EXPECT_LT(std::chrono::steady_clock::now() - started, std::chrono::seconds(20));
}

TEST(EtcdClientTest, AuthenticatesWithUserAndPassword) {
  EtcdServer etcd;
  etcd.put("/k", "v");
  etcd.enableAuthentication("root", "secret");
  EtcdSource source = etcd.source("/k");
  EXPECT_NE(std::string::npos,
            test::messageOf<ConfigurationException>([&] { EtcdClient(source).range("/k"); })
                .find("The etcd cluster at " + etcd.endpoint() + " refused the request"));
  source.user = "root";
  source.password = "wrong";
  EXPECT_NE(std::string::npos,
            test::messageOf<ConfigurationException>([&] { EtcdClient(source).range("/k"); })
                .find("authentication failed"));
  source.password = "secret";
  EtcdClient client(source);
  EXPECT_EQ("v", client.range("/k").value);
  // The watch sends the token too.
  std::vector<std::string> seen;
  const int64_t from = client.range("/k").revision + 1;
  std::thread writer([&] { EtcdClient(source).put("/k", "w"); });
  client.watch(
      "/k", from,
      [&](const EtcdClient::Event& event) {
        seen.push_back(event.value);
        client.stop();
      },
      nullptr);
  writer.join();
  EXPECT_EQ(std::vector<std::string>{"w"}, seen);
}

// TLS with the files a source names: the cluster's certificate is checked against caFile, and a
// cluster that asks for a client certificate gets certFile and keyFile. Without them the request
// fails with the endpoint and curl's reason.
TEST(EtcdClientTest, SpeaksTlsWithTheFilesOfTheSource) {
  EtcdServer etcd(EtcdServer::MUTUAL_TLS);
  EXPECT_EQ(0, etcd.endpoint().rfind("https://", 0));
  etcd.put("/k", "v");
  EXPECT_EQ("v", EtcdClient(etcd.source("/k")).range("/k").value);

  EtcdSource noClientCertificate = etcd.source("/k");
  noClientCertificate.certFile.clear();
  noClientCertificate.keyFile.clear();
  EXPECT_NE(std::string::npos, test::messageOf<ConfigurationException>([&] {
                                 EtcdClient(noClientCertificate).range("/k");
                               }).find(etcd.endpoint()));

  EtcdSource untrusted = etcd.source("/k");
  untrusted.caFile = etcd.clientCertFile();  // a certificate, but not of a CA that signed etcd's
  const std::string message =
      test::messageOf<ConfigurationException>([&] { EtcdClient(untrusted).range("/k"); });
  EXPECT_NE(std::string::npos, message.find(etcd.endpoint())) << message;
  EXPECT_NE(std::string::npos, message.find("certificate")) << message;
}

TEST(EtcdClientTest, APasswordFileGivesItsFirstLine) {
  test::TempDir directory;
  std::ofstream(directory.file("password")) << "secret\r\nignored\n";
  EXPECT_EQ("secret", EtcdSource::parse("endpoints=http://h;key=/k;passwordFile=" +
                                        directory.file("password"))
                          .password);
  for (const std::string& bad : {directory.file("missing"), directory.path()}) {
    EXPECT_NE(std::string::npos,
              test::messageOf<ConfigurationException>([&] {
                EtcdSource::parse("endpoints=http://h;key=/k;passwordFile=" + bad);
              }).find("The etcd password file \"" + bad + "\" cannot be read"));
  }
}

// Answers every connection with one canned HTTP answer.
class CannedServer {
public:
  explicit CannedServer(std::string body) : mBody(std::move(body)) {
    mSocket = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof(address);
    bind(mSocket, reinterpret_cast<sockaddr*>(&address), sizeof(address));
    getsockname(mSocket, reinterpret_cast<sockaddr*>(&address), &length);
    mPort = ntohs(address.sin_port);
    listen(mSocket, 4);
    mThread = std::thread([this] { serve(); });
  }
  ~CannedServer() {
    shutdown(mSocket, SHUT_RDWR);
    close(mSocket);
    mThread.join();
  }
  std::string endpoint() const { return "http://127.0.0.1:" + std::to_string(mPort); }

private:
  void serve() {
    for (;;) {
      const int connection = accept(mSocket, 0, 0);
      if (connection < 0) {
        return;
      }
      char request[8192];
      // The request is small; one read holds its headers and body.
      if (read(connection, request, sizeof(request)) > 0) {
        const std::string answer = "HTTP/1.1 200 OK\r\nContent-Type: application/json\r\n"
                                   "Content-Length: " +
                                   std::to_string(mBody.size()) +
                                   "\r\nConnection: close\r\n\r\n" + mBody;
        size_t written = 0;
        while (written < answer.size()) {
          const ssize_t n = write(connection, answer.data() + written, answer.size() - written);
          if (n <= 0) break;
          written += n;
        }
      }
      close(connection);
    }
  }

  std::string mBody;
  int mSocket;
  int mPort;
  std::thread mThread;
};

TEST(EtcdClientTest, AnswersNoEtcdGivesEndInAnError) {
  const std::vector<std::pair<std::string, std::string>> cases = {
      {"<html>oops</html>", "not understood: not a JSON object"},
      {"[1,2]", "not understood: not a JSON object"},
      {R"({"header":{"revision":"x1"}})", "\"revision\" is not a number"},
      {R"({"header":{"revision":"99999999999999999999"}})", "\"revision\" is not a number"},
      {R"({"header":[]})", "\"header\" is not an object"},
      {R"({"kvs":5})", "\"kvs\" is not a list"},
      {R"({"kvs":[7]})", "a key is not an object"},
      {R"({"kvs":[{"value":"***"}]})", "\"value\" is not base64"},
      {R"({"kvs":[{"value":12}]})", "\"value\" is not base64"},
      {std::string(4096, '{'), "not a JSON object"},
      {"{\"kvs\":[{\"value\":\"" + std::string(1 << 20, 'A') + "\"}]}", "larger than 65536 bytes"}};
  for (const auto& c : cases) {
    CannedServer server(c.first);
    EtcdSource source;
    source.endpoints.push_back(server.endpoint());
    source.key = "/k";
    EtcdClient client(source);
    client.setMaxAnswerSize(65536);
    try {
      client.range("/k");
      ADD_FAILURE() << "no error for " << c.first.substr(0, 80);
    } catch (const ConfigurationException& e) {
      const std::string message = e.what();
      EXPECT_NE(std::string::npos, message.find(c.second)) << message;
      EXPECT_NE(std::string::npos, message.find(server.endpoint())) << message;
    }
  }
}

}  // namespace
}  // namespace zelk::configuration::impl
