// EtcdServer: a private etcd for one test: started on 127.0.0.1 with free client and peer ports
// and a temporary data directory, ready when the constructor returns, stopped on destruction. It
// can be stopped and started again on the same ports and data, and its history compacted.
//
// When etcd is not installed the constructor throws, so that a test needing it fails instead of
// passing unseen (scripts/install-deps.sh installs etcd-server).
//
//   zelk::test::EtcdServer etcd;
//   etcd.put("/fleet/backup", "<values/>");
//   EtcdSource source = etcd.source("/fleet/backup");

#pragma once

#include <sys/types.h>

#include <cstdint>
#include <memory>
#include <string>

#include "support/TempDir.h"
#include "zelk/configuration/EtcdSource.h"
#include "zelk/configuration/impl/EtcdClient.h"

namespace zelk::test {

class EtcdServer {
public:
  // How clients reach the server: plain HTTP, TLS with a certificate of a test CA made for this
  // server, or TLS where the server also asks each client for a certificate of that CA.
  enum Transport { PLAIN, TLS, MUTUAL_TLS };

  explicit EtcdServer(Transport transport = PLAIN);
  EtcdServer(const EtcdServer&) = delete;
  EtcdServer& operator=(const EtcdServer&) = delete;
  ~EtcdServer();

  // Starts etcd (again, after stop()) and waits until it answers; throws std::runtime_error with
  // the end of etcd's log when it does not within 30 seconds.
  void start();
  // Stops etcd and waits for it to end.
  void stop();
  bool running() const { return mPid > 0; }

  // "http://127.0.0.1:<client port>" ("https://" with TLS).
  std::string endpoint() const;
  // With TLS: the test CA's certificate, and a client certificate and key it signed.
  std::string caFile() const { return mDirectory.file("ca.crt"); }
  std::string clientCertFile() const { return mDirectory.file("client.crt"); }
  std::string clientKeyFile() const { return mDirectory.file("client.key"); }
  // A source of key on this server, with the files its transport needs.
  zelk::configuration::EtcdSource source(const std::string& key) const;
  // A client of this server, for setting up and checking what the tests do.
  zelk::configuration::impl::EtcdClient& client() { return *mClient; }
  // Shortcuts of client(): each returns the cluster's revision after the change.
  int64_t put(const std::string& key, const std::string& value);
  int64_t remove(const std::string& key);
  void compact(int64_t revision);
  // Turns authentication on, with user as the root user.
  void enableAuthentication(const std::string& user, const std::string& password);

  // A local endpoint where nothing listens.
  static std::string unusedEndpoint();

private:
  std::string tailOfLog() const;
  void makeCertificates() const;

  TempDir mDirectory;
  Transport mTransport;
  int mClientPort;
  int mPeerPort;
  pid_t mPid;
  std::unique_ptr<zelk::configuration::impl::EtcdClient> mClient;
};

}  // namespace zelk::test
