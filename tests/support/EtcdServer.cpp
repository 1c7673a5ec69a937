#include "support/EtcdServer.h"

#include <fcntl.h>
#include <netinet/in.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <thread>
#include <vector>

#include "zelk/configuration/ConfigurationException.h"

namespace zelk::test {

namespace {

// Ports the kernel hands out for binding to port 0, taken together so that they differ.
std::vector<int> freePorts(int count) {
  std::vector<int> sockets;
  std::vector<int> ports;
  for (int i = 0; i < count; ++i) {
    const int fd = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof(address);
    if (fd < 0 || bind(fd, reinterpret_cast<sockaddr*>(&address), sizeof(address)) != 0 ||
        getsockname(fd, reinterpret_cast<sockaddr*>(&address), &length) != 0) {
      throw std::runtime_error("no free local port");
    }
    sockets.push_back(fd);
    ports.push_back(ntohs(address.sin_port));
  }
  for (int fd : sockets) {
    close(fd);
  }
  return ports;
}

std::string findEtcd() {
  const char* path = getenv("PATH");
  std::stringstream directories(std::string(path != 0 ? path : "") + ":/usr/bin:/usr/local/bin");
  std::string directory;
  while (std::getline(directories, directory, ':')) {
    const std::string candidate = directory + "/etcd";
    if (!directory.empty() && access(candidate.c_str(), X_OK) == 0) {
      return candidate;
    }
  }
  throw std::runtime_error(
      "etcd is not installed: the etcd tests need it (scripts/install-deps.sh installs "
      "etcd-server)");
}

}  // namespace

EtcdServer::EtcdServer(Transport transport)
    : mTransport(transport), mClientPort(0), mPeerPort(0), mPid(0) {
  if (mTransport != PLAIN) {
    makeCertificates();
  }
  const std::vector<int> ports = freePorts(2);
  mClientPort = ports[0];
  mPeerPort = ports[1];
  zelk::configuration::EtcdSource setup = source("/");
  setup.connectTimeoutMs = 500;
  setup.requestTimeoutMs = 5000;
  mClient.reset(new zelk::configuration::impl::EtcdClient(setup));
  start();
}

EtcdServer::~EtcdServer() { stop(); }

std::string EtcdServer::endpoint() const {
  return (mTransport == PLAIN ? "http://127.0.0.1:" : "https://127.0.0.1:") +
         std::to_string(mClientPort);
}

zelk::configuration::EtcdSource EtcdServer::source(const std::string& key) const {
  zelk::configuration::EtcdSource result;
  result.endpoints.push_back(endpoint());
  result.key = key;
  if (mTransport != PLAIN) {
    result.caFile = caFile();
  }
  if (mTransport == MUTUAL_TLS) {
    result.certFile = clientCertFile();
    result.keyFile = clientKeyFile();
  }
  return result;
}

// A CA of its own, a server certificate for 127.0.0.1 and a client certificate, made with the
// openssl tool (P-256 keys: quick to make, and etcd accepts them).
void EtcdServer::makeCertificates() const {
  const std::string dir = mDirectory.path();
  {
    std::ofstream extensions(dir + "/server.ext");
    extensions << "subjectAltName=IP:127.0.0.1\n";
  }
  const std::string key = " -newkey ec -pkeyopt ec_paramgen_curve:prime256v1 -nodes";
  const std::string sign =
      " -CA " + dir + "/ca.crt -CAkey " + dir + "/ca.key -CAcreateserial -days 2";
  const std::vector<std::string> commands = {
      "openssl req -x509" + key + " -keyout " + dir + "/ca.key -out " + dir +
          "/ca.crt -days 2 -subj /CN=zelk-test-ca",
      "openssl req" + key + " -keyout " + dir + "/server.key -out " + dir +
          "/server.csr -subj /CN=127.0.0.1",
      "openssl x509 -req -in " + dir + "/server.csr" + sign + " -out " + dir +
          "/server.crt -extfile " + dir + "/server.ext",
      "openssl req" + key + " -keyout " + dir + "/client.key -out " + dir +
          "/client.csr -subj /CN=zelk-test-client",
      "openssl x509 -req -in " + dir + "/client.csr" + sign + " -out " + dir + "/client.crt"};
  for (const std::string& command : commands) {
    if (std::system((command + " >>" + dir + "/openssl.log 2>&1").c_str()) != 0) {
      throw std::runtime_error("cannot make the test certificates: " + command);
    }
  }
}

void EtcdServer::start() {
  if (mPid > 0) {
    return;
  }
  const std::string etcd = findEtcd();
  const std::string peer = "http://127.0.0.1:" + std::to_string(mPeerPort);
  std::vector<std::string> arguments = {etcd,
                                        "--name=zelk-test",
                                        "--data-dir=" + mDirectory.file("data"),
                                        "--listen-client-urls=" + endpoint(),
                                        "--advertise-client-urls=" + endpoint(),
                                        "--listen-peer-urls=" + peer,
                                        "--initial-advertise-peer-urls=" + peer,
                                        "--initial-cluster=zelk-test=" + peer,
                                        "--initial-cluster-state=new",
                                        "--enable-grpc-gateway=true",
                                        "--logger=zap",
                                        "--log-level=warn"};
  if (mTransport != PLAIN) {
    arguments.push_back("--cert-file=" + mDirectory.file("server.crt"));
    arguments.push_back("--key-file=" + mDirectory.file("server.key"));
  }
  if (mTransport == MUTUAL_TLS) {
    arguments.push_back("--client-cert-auth=true");
    arguments.push_back("--trusted-ca-file=" + caFile());
  }
  const std::string log = mDirectory.file("etcd.log");
  const pid_t pid = fork();
  if (pid < 0) {
    throw std::runtime_error("cannot start etcd: fork failed");
  }
  if (pid == 0) {
    // etcd must not outlive a test process that dies.
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    const int fd = open(log.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0600);
    if (fd >= 0) {
      dup2(fd, 1);
      dup2(fd, 2);
      close(fd);
    }
    std::vector<char*> argv;
    for (const std::string& argument : arguments) {
      argv.push_back(const_cast<char*>(argument.c_str()));
    }
    argv.push_back(0);
    execv(etcd.c_str(), argv.data());
    _exit(127);
  }
  mPid = pid;
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(30);
  for (;;) {
    int status = 0;
    if (waitpid(mPid, &status, WNOHANG) == mPid) {
      mPid = 0;
      throw std::runtime_error("etcd ended at start:\n" + tailOfLog());
    }
    try {
      mClient->range("/");
      return;
    } catch (const zelk::configuration::ConfigurationException&) {
    }
    if (std::chrono::steady_clock::now() > deadline) {
      stop();
      throw std::runtime_error("etcd did not answer within 30 seconds:\n" + tailOfLog());
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
  }
}

void EtcdServer::stop() {
  if (mPid <= 0) {
    return;
  }
  kill(mPid, SIGTERM);
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
  int status = 0;
  while (waitpid(mPid, &status, WNOHANG) == 0) {
    if (std::chrono::steady_clock::now() > deadline) {
      kill(mPid, SIGKILL);
      waitpid(mPid, &status, 0);
      break;
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
  }
  mPid = 0;
}

int64_t EtcdServer::put(const std::string& key, const std::string& value) {
  return mClient->put(key, value);
}

int64_t EtcdServer::remove(const std::string& key) { return mClient->remove(key); }

void EtcdServer::compact(int64_t revision) { mClient->compact(revision); }

void EtcdServer::enableAuthentication(const std::string& user, const std::string& password) {
  // Only the root user may turn authentication on.
  mClient->call("/v3/auth/user/add", "{\"name\":\"" + user + "\",\"password\":\"" + password + "\"}");
  mClient->call("/v3/auth/role/add", "{\"name\":\"root\"}");
  mClient->call("/v3/auth/user/grant", "{\"user\":\"" + user + "\",\"role\":\"root\"}");
  mClient->call("/v3/auth/enable", "{}");
}

std::string EtcdServer::unusedEndpoint() {
  return "http://127.0.0.1:" + std::to_string(freePorts(1)[0]);
}

std::string EtcdServer::tailOfLog() const {
  std::ifstream in(mDirectory.file("etcd.log"));
  std::stringstream text;
  text << in.rdbuf();
  const std::string all = text.str();
  return all.size() > 4000 ? all.substr(all.size() - 4000) : all;
}

}  // namespace zelk::test
