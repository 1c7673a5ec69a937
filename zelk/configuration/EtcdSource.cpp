#include "zelk/configuration/EtcdSource.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "zelk/configuration/ConfigurationException.h"

namespace zelk::configuration {

namespace {

const char* const KNOWN_SETTINGS =
    "endpoints, key, user, password, passwordFile, caFile, certFile, keyFile, whenAway, "
    "lastReceivedFile, "
    "connectTimeoutMs, requestTimeoutMs";

std::vector<std::string> split(const std::string& text, char separator) {
  std::vector<std::string> parts;
  size_t start = 0;
  for (;;) {
    const size_t end = text.find(separator, start);
    parts.push_back(text.substr(start, end == std::string::npos ? std::string::npos : end - start));
    if (end == std::string::npos) {
      return parts;
    }
    start = end + 1;
  }
}

long parseMilliseconds(const std::string& name, const std::string& value) {
  errno = 0;
  char* end = 0;
  const long result = std::strtol(value.c_str(), &end, 10);
  if (value.empty() || *end != '\0' || errno != 0 || result <= 0) {
    throw ConfigurationException("The etcd setting \"%s\" must be a positive number of "
                                 "milliseconds, not \"%s\"",
                                 name.c_str(), value.c_str());
  }
  return result;
}

// The first line of a password file. Only a regular file is read, and it is opened without
// blocking, so a FIFO named by mistake cannot hang the tool.
std::string readPasswordFile(const std::string& path) {
  const int fd = open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
  struct stat status;
  if (fd < 0 || fstat(fd, &status) != 0 || !S_ISREG(status.st_mode)) {
    const std::string why = fd < 0 ? std::strerror(errno) : "not a regular file";
    if (fd >= 0) {
      close(fd);
    }
    throw ConfigurationException("The etcd password file \"%s\" cannot be read: %s", path.c_str(),
                                 why.c_str());
  }
  std::string text;
  char buffer[256];
  ssize_t count;
  while (text.find('\n') == std::string::npos && text.size() < 4096 &&
         (count = read(fd, buffer, sizeof(buffer))) > 0) {
    text.append(buffer, static_cast<size_t>(count));
  }
  close(fd);
  text = text.substr(0, text.find('\n'));
  if (!text.empty() && text.back() == '\r') {
    text.pop_back();
  }
  return text;
}

}  // namespace

EtcdSource EtcdSource::parse(const std::string& text) {
  EtcdSource source;
  for (const std::string& part : split(text, ';')) {
    if (part.empty()) {
      continue;
    }
    const size_t equals = part.find('=');
    if (equals == std::string::npos) {
      throw ConfigurationException("The etcd setting \"%s\" has no value (name=value)",
                                   part.c_str());
    }
    source.set(part.substr(0, equals), part.substr(equals + 1));
  }
  source.check();
  return source;
}

void EtcdSource::set(const std::string& name, const std::string& value) {
  if (name == "endpoints") {
    endpoints.clear();
    for (const std::string& endpoint : split(value, ',')) {
      if (!endpoint.empty()) {
        // A trailing '/' would double the one before the API path.
        endpoints.push_back(endpoint.back() == '/' ? endpoint.substr(0, endpoint.size() - 1)
                                                   : endpoint);
      }
    }
  } else if (name == "key") {
    key = value;
  } else if (name == "user") {
    user = value;
  } else if (name == "password") {
    password = value;
  } else if (name == "passwordFile") {
    password = readPasswordFile(value);
  } else if (name == "caFile") {
    caFile = value;
  } else if (name == "certFile") {
    certFile = value;
  } else if (name == "keyFile") {
    keyFile = value;
  } else if (name == "whenAway") {
    if (value == "fail") {
      whenAway = FAIL;
    } else if (value == "lastReceived") {
      whenAway = START_FROM_LAST_RECEIVED;
    } else {
      throw ConfigurationException(
          "The etcd setting \"whenAway\" is \"fail\" or \"lastReceived\", not \"%s\"",
          value.c_str());
    }
  } else if (name == "lastReceivedFile") {
    lastReceivedFile = value;
  } else if (name == "connectTimeoutMs") {
    connectTimeoutMs = parseMilliseconds(name, value);
  } else if (name == "requestTimeoutMs") {
    requestTimeoutMs = parseMilliseconds(name, value);
  } else {
    throw ConfigurationException("Unknown etcd setting \"%s\"; the settings are %s", name.c_str(),
                                 KNOWN_SETTINGS);
  }
}

void EtcdSource::check() const {
  if (endpoints.empty()) {
    throw ConfigurationException("The etcd source of the key \"%s\" names no endpoints",
                                 key.c_str());
  }
  if (key.empty()) {
    throw ConfigurationException("The etcd source at %s names no key",
                                 describeEndpoints().c_str());
  }
  if (whenAway == START_FROM_LAST_RECEIVED && lastReceivedFile.empty()) {
    throw ConfigurationException("The etcd source of the key \"%s\" starts from the last document "
                                 "received when the cluster is away, but names no "
                                 "lastReceivedFile to keep it in",
                                 key.c_str());
  }
}

std::string EtcdSource::describeEndpoints() const {
  std::string text;
  for (const std::string& endpoint : endpoints) {
    if (!text.empty()) {
      text += ", ";
    }
    text += endpoint;
  }
  return text;
}

}  // namespace zelk::configuration
