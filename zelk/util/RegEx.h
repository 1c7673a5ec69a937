// RegEx: a compiled Perl-compatible regular expression (PCRE) that matches zero-terminated
// strings and reports capture positions.
//
//   static const zelk::RegEx oid("^(\\d+)-(\\d+)$", true, false);   // compiled once
//   zelk::RegExMatch m[3];
//   if (oid.matches("12-7", m, 3)) {
//     std::string first = zelk::RegEx::extractMatch("12-7", m[1]);   // "12"
//   }
//
// A bad pattern throws zelk::host::FormattedHostException "REGEX ERROR #<code>: <text> at offset
// <n>". Copying is not supported.
#pragma once

#include <string>

namespace zelk {

// One capture position: start is the offset of the first byte, end one past the last. -1 in
// either field means the capture is not set.
struct RegExMatch {
  int start = -1;
  int end = -1;
};

class RegEx {
public:
  // Compile pattern; caseless and utf8 select PCRE_CASELESS and PCRE_UTF8. Throw
  // FormattedHostException on a bad pattern.
  RegEx(const char* pattern, bool caseless, bool utf8);
  RegEx(const std::string& pattern, bool caseless, bool utf8);
  RegEx(const RegEx&) = delete;
  RegEx& operator=(const RegEx&) = delete;
  ~RegEx();

  // Compiles pattern with PCRE_CASELESS (1) and/or PCRE_UTF8 (0x800), replacing the pattern held.
  void setup(const char* pattern, bool caseless, bool utf8);

  // True when the pattern matches somewhere in subject.
  bool match(const char* subject) const;
  // True when the pattern matches; then fills count entries of matches (entry 0 the whole match,
  // entry i group i; entries without a capture get (-1, -1)). On no match, matches is untouched.
  // matches must not be null (a contract).
  bool matches(const char* subject, RegExMatch* matches, unsigned long count) const;

  // The captured text, or the empty string when match is not set. Throws std::out_of_range
  // ("basic_string::substr") when start lies beyond subject.
  static std::string extractMatch(const char* subject, const RegExMatch& match);

private:
  void compileRx(const char* pattern, int options);
  // 0 on a match (matches filled), else a non-zero code (PCRE's negative error, 12 when the
  // working vector cannot be made).
  int execRx(const char* subject, RegExMatch* matches, unsigned long count) const;

  void* mHandle = nullptr;  // the compiled pcre*, kept opaque so pcre.h stays private
};

}  // namespace zelk
