// EtcdSource: where a value document lives in an etcd cluster and how to reach it: the endpoints
// (tried in turn, for failover), the key, TLS files and user/password where the cluster needs
// them, and what to do when the cluster cannot be reached at start.
//
// A tool names its source on its command line with "-etcdConfiguration <settings>", or with an
// "etcdConfiguration" element directly below the root of a value file it already reads; both use
// the same setting names. The application can also fill one in code and hand it to an
// EtcdValueProvider.
//
//   EtcdSource source = EtcdSource::parse(
//       "endpoints=http://10.0.0.1:2379,http://10.0.0.2:2379;key=/fleet/backup");
//   source.whenAway = EtcdSource::START_FROM_LAST_RECEIVED;
//   source.lastReceivedFile = "/var/lib/backup/fleet.xml";
#pragma once

#include <string>
#include <vector>

namespace zelk::configuration {

struct EtcdSource {
  // What a start does when no endpoint answers.
  enum WhenAway {
    // Fail at once with an error that names the endpoints.
    FAIL = 0,
    // Start from the last document received, kept in lastReceivedFile, and say so in the main log.
    START_FROM_LAST_RECEIVED = 1
  };

  // Base URLs of the cluster's members ("http://host:2379", "https://host:2379"), tried in turn.
  std::vector<std::string> endpoints;
  // The key that holds the value document.
  std::string key;
  // Set both when the cluster has authentication enabled.
  std::string user;
  std::string password;
  // TLS: the CA bundle to check the cluster's certificate with, and a client certificate and key
  // when the cluster asks for one. Empty: the system's defaults, no client certificate.
  std::string caFile;
  std::string certFile;
  std::string keyFile;
  WhenAway whenAway = FAIL;
  // Where the last document received is kept (written whole or not at all, with its revision);
  // empty: nowhere. Needed for START_FROM_LAST_RECEIVED.
  std::string lastReceivedFile;
  // Time limits of one connection attempt and of one request, in milliseconds.
  long connectTimeoutMs = 2000;
  long requestTimeoutMs = 5000;

  // The settings from text, "name=value" pairs separated by ';' (endpoints separated by ','):
  // endpoints, key, user, password, passwordFile (the password is the file's first line, so that
  // it does not show in the process list), caFile, certFile, keyFile, whenAway ("fail" or
  // "lastReceived"), lastReceivedFile, connectTimeoutMs, requestTimeoutMs. Throws
  // ConfigurationException for an unknown name, a bad value, or a source without endpoints or key.
  static EtcdSource parse(const std::string& text);
  // Sets one setting by its name, as parse does; throws ConfigurationException for an unknown name
  // or a bad value (a passwordFile is read at once, and one that cannot be read is a bad value).
  void set(const std::string& name, const std::string& value);
  // Throws ConfigurationException when endpoints or key are missing, or when
  // START_FROM_LAST_RECEIVED has no lastReceivedFile.
  void check() const;
  // The endpoints joined by ", ", for messages.
  std::string describeEndpoints() const;
};

}  // namespace zelk::configuration
