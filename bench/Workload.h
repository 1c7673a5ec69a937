// Workload: the generated option sets, command lines and files that every benchmark shares.
//
// Parameter i takes one of 20 kinds by i mod 20 (6 booleans, 4 strings, 3 int32, 3 uint64,
// 2 doubles, 1 unbounded int32, 1 unbounded string). Its name is a unique three-letter code (four
// letters above 17,576) followed by "-" and a word, 8 to 31 characters. The command line names A
// distinct parameters chosen by a stride permutation, each followed by its value (booleans are
// switches without one); an unbounded parameter appears twice.
//
//   bench::Workload w(2000, 500);
//   w.writeRegistry(dir + "/w.crg", "w2000");
//   std::vector<const char*> argv = w.argv(bench::Workload::OURS, false);
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace bench {

enum class Kind { BOOL, STRING, INT32, UINT64, DOUBLE, UNBOUNDED_INT32, UNBOUNDED_STRING };

// The kind of parameter i.
Kind kindOf(size_t i);
// The type word of a kind in a registry file.
const char* typeWord(Kind kind);

class Workload {
public:
  // Flag style: ours "-name", the peers' "--name".
  enum Style { OURS, PEERS };

  Workload(size_t parameters, size_t arguments);

  size_t parameters() const { return mNames.size(); }
  const std::vector<std::string>& names() const { return mNames; }
  // The parameter indexes on the command line, in order, each once.
  const std::vector<size_t>& given() const { return mGiven; }
  // The shortest unique prefix of each name, at least three characters.
  const std::vector<std::string>& prefixes() const { return mPrefixes; }
  // The k-th (0 or 1) value text of parameter i.
  static std::string valueText(size_t i, int k);

  // The command line words (argv[0] is "bench"); the vector owns them, argv() points into it.
  const std::vector<std::string>& words(Style style, bool prefixes) const;
  std::vector<const char*> argv(Style style, bool prefixes) const;

  // A registry file declaring the parameters and one specification named specId with an optional
  // reference to each.
  std::string registryText(const std::string& specId, const std::string& namePrefix = "") const;
  // An XML value file for specId giving every parameter (unbounded ones as two child elements).
  std::string valueFileText(const std::string& specId) const;
  // The same entries as INI lines "name=value" (unbounded ones twice).
  std::string iniText() const;

private:
  std::vector<std::string> mNames;
  std::vector<std::string> mPrefixes;
  std::vector<size_t> mGiven;
  mutable std::vector<std::string> mWords[2][2];
};

// Writes text to path; throws std::runtime_error when it cannot.
void writeFile(const std::string& path, const std::string& text);
// A new empty directory under the system's temporary directory.
std::string makeTempDir(const char* tag);

}  // namespace bench
