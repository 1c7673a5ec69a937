#include "Workload.h"

#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <numeric>
#include <stdexcept>

namespace bench {

namespace {

// Words of 4 to 27 characters, so that names are 8 to 31 characters long.
const char* const WORDS[] = {"page",
                             "cache",
                             "buffer",
                             "timeout",
                             "database",
                             "threshold",
                             "compression",
                             "destination",
                             "transactionLog",
                             "checkpointInterval",
                             "replicationTarget",
                             "lockServerAddress",
                             "maximumConnectionPool",
                             "incrementalBackupMode",
                             "journalFlushFrequencyLimit",
                             "objectCacheEvictionStrategy",
                             "slot",
                             "verbose",
                             "retryCount",
                             "statisticsSamplingRate"};
const size_t WORD_COUNT = sizeof(WORDS) / sizeof(WORDS[0]);

std::string codeOf(size_t i) {
  // Three letters for the first 26^3 parameters, four above.
  const size_t letters = i < 26 * 26 * 26 ? 3 : 4;
  std::string code(letters, 'a');
  size_t n = i;
  for (size_t k = letters; k-- > 0;) {
    code[k] = static_cast<char>('a' + n % 26);
    n /= 26;
  }
  return code;
}

size_t commonPrefix(const std::string& a, const std::string& b) {
  size_t n = 0;
  while (n < a.size() && n < b.size() && a[n] == b[n]) {
    ++n;
  }
  return n;
}

}  // namespace

Kind kindOf(size_t i) {
  const size_t k = i % 20;
  if (k < 6) return Kind::BOOL;
  if (k < 10) return Kind::STRING;
  if (k < 13) return Kind::INT32;
  if (k < 16) return Kind::UINT64;
  if (k < 18) return Kind::DOUBLE;
  return k == 18 ? Kind::UNBOUNDED_INT32 : Kind::UNBOUNDED_STRING;
}

const char* typeWord(Kind kind) {
  switch (kind) {
    case Kind::BOOL:
      return "bool";
    case Kind::STRING:
    case Kind::UNBOUNDED_STRING:
      return "string";
    case Kind::INT32:
    case Kind::UNBOUNDED_INT32:
      return "int32";
    case Kind::UINT64:
      return "uint64";
    case Kind::DOUBLE:
      return "double";
  }
  return "string";
}

Workload::Workload(size_t parameters, size_t arguments) {
  mNames.reserve(parameters);
  for (size_t i = 0; i < parameters; ++i) {
    mNames.push_back(codeOf(i) + "-" + WORDS[i % WORD_COUNT]);
  }
  // Shortest unique prefixes: in sorted order a name shares most with its neighbours.
  std::vector<size_t> order(parameters);
  std::iota(order.begin(), order.end(), 0);
  std::sort(order.begin(), order.end(), [this](size_t a, size_t b) { return mNames[a] < mNames[b]; });
  mPrefixes.resize(parameters);
  for (size_t k = 0; k < parameters; ++k) {
    const std::string& name = mNames[order[k]];
    size_t shared = 0;
    if (k > 0) shared = std::max(shared, commonPrefix(name, mNames[order[k - 1]]));
    if (k + 1 < parameters) shared = std::max(shared, commonPrefix(name, mNames[order[k + 1]]));
    mPrefixes[order[k]] = name.substr(0, std::min(name.size(), std::max<size_t>(3, shared + 1)));
  }
  // A stride coprime with every size used (they are 2^a * 5^b) visits distinct parameters.
  const size_t stride = 7919;
  const size_t count = std::min(arguments, parameters);
  mGiven.reserve(count);
  for (size_t j = 0; j < count; ++j) {
    mGiven.push_back((j * stride + 1) % parameters);
  }
}

std::string Workload::valueText(size_t i, int k) {
  switch (kindOf(i)) {
    case Kind::BOOL:
      return "true";
    case Kind::STRING:
    case Kind::UNBOUNDED_STRING:
      return "text" + std::to_string(i + k);
    case Kind::INT32:
    case Kind::UNBOUNDED_INT32:
      return std::to_string(static_cast<int>(i) + k);
    case Kind::UINT64:
      return std::to_string(static_cast<uint64_t>(i) * 1000003ULL);
    case Kind::DOUBLE:
      return std::to_string(i) + ".5";
  }
  return "";
}

const std::vector<std::string>& Workload::words(Style style, bool prefixes) const {
  std::vector<std::string>& out = mWords[style][prefixes ? 1 : 0];
  if (!out.empty()) {
    return out;
  }
  out.push_back("bench");
  const std::string dash = style == OURS ? "-" : "--";
  for (size_t i : mGiven) {
    const std::string flag = dash + (prefixes ? mPrefixes[i] : mNames[i]);
    const Kind kind = kindOf(i);
    const int times = (kind == Kind::UNBOUNDED_INT32 || kind == Kind::UNBOUNDED_STRING) ? 2 : 1;
    for (int k = 0; k < times; ++k) {
      out.push_back(flag);
      // Booleans are switches: given means true.
      if (kind != Kind::BOOL) {
        out.push_back(valueText(i, k));
      }
    }
  }
  return out;
}

std::vector<const char*> Workload::argv(Style style, bool prefixes) const {
  const std::vector<std::string>& all = words(style, prefixes);
  std::vector<const char*> result;
  result.reserve(all.size());
  for (const std::string& word : all) {
    result.push_back(word.c_str());
  }
  return result;
}

std::string Workload::registryText(const std::string& specId, const std::string& namePrefix) const {
  std::string text = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<ConfigurationRegistry crgSchemaVersion=\"1.1\">\n  <Parameters>\n";
  for (size_t i = 0; i < mNames.size(); ++i) {
    text += "    <Parameter id=\"" + namePrefix + mNames[i] + "\" type=\"" + typeWord(kindOf(i)) +
            "\" description=\"Parameter " + std::to_string(i) + ".\"/>\n";
  }
  text += "  </Parameters>\n  <Specifications>\n    <Specification id=\"" + specId +
          "\" title=\"" + specId + "\" description=\"Generated.\">\n";
  for (size_t i = 0; i < mNames.size(); ++i) {
    const Kind kind = kindOf(i);
    const bool unbounded = kind == Kind::UNBOUNDED_INT32 || kind == Kind::UNBOUNDED_STRING;
    text += "      <ParameterRef id=\"" + namePrefix + mNames[i] + "\" optional=\"true\"" +
            (unbounded ? " unbounded=\"true\"" : "") + "/>\n";
  }
  text += "    </Specification>\n  </Specifications>\n</ConfigurationRegistry>\n";
  return text;
}

std::string Workload::valueFileText(const std::string& specId) const {
  std::string attributes;
  std::string children;
  for (size_t i = 0; i < mNames.size(); ++i) {
    const Kind kind = kindOf(i);
    if (kind == Kind::UNBOUNDED_INT32 || kind == Kind::UNBOUNDED_STRING) {
      for (int k = 0; k < 2; ++k) {
        children += "  <" + mNames[i] + " value=\"" + valueText(i, k) + "\"/>\n";
      }
    } else {
      attributes += "\n    " + mNames[i] + "=\"" + valueText(i, 0) + "\"";
    }
  }
  return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<" + specId + attributes + ">\n" +
         children + "</" + specId + ">\n";
}

std::string Workload::iniText() const {
  std::string text;
  for (size_t i = 0; i < mNames.size(); ++i) {
    const Kind kind = kindOf(i);
    const int times = (kind == Kind::UNBOUNDED_INT32 || kind == Kind::UNBOUNDED_STRING) ? 2 : 1;
    for (int k = 0; k < times; ++k) {
      text += mNames[i] + "=" + valueText(i, k) + "\n";
    }
  }
  return text;
}

void writeFile(const std::string& path, const std::string& text) {
  std::ofstream out(path, std::ios::binary);
  out << text;
  if (!out) {
    throw std::runtime_error("cannot write " + path);
  }
}

std::string makeTempDir(const char* tag) {
  const char* base = std::getenv("TMPDIR");
  std::string pattern = std::string(base != nullptr && *base != '\0' ? base : "/tmp") +
                        "/zelk-bench-" + tag + "-XXXXXX";
  std::vector<char> buffer(pattern.begin(), pattern.end());
  buffer.push_back('\0');
  if (mkdtemp(buffer.data()) == nullptr) {
    throw std::runtime_error("cannot create a temporary directory");
  }
  return buffer.data();
}

}  // namespace bench
