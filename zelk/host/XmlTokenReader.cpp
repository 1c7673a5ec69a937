#include "zelk/host/XmlTokenReader.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <new>

#include "zelk/host/HostFileSystem.h"
#include "zelk/util/UtfUtil.h"

namespace zelk::host {

namespace {

// The longest token text quoted in an error message.
const std::size_t MAX_TOKEN_IN_MESSAGE = 64;

inline bool isWhiteSpace(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }

inline bool isNameChar(char c) {
  const unsigned char u = static_cast<unsigned char>(c);
  return (u >= 'a' && u <= 'z') || (u >= 'A' && u <= 'Z') || (u >= '0' && u <= '9') || u == '_' ||
         u == '-' || u == '.' || u == ':' || u >= 0x80;
}

// The length of the UTF-8 sequence that starts with lead (the document is validated, so a lead
// byte is always followed by its continuation bytes).
inline std::size_t sequenceLength(char lead) {
  const unsigned char u = static_cast<unsigned char>(lead);
  return u < 0x80 ? 1 : u < 0xE0 ? 2 : u < 0xF0 ? 3 : 4;
}

// Copies whole characters into a caller buffer and cuts silently when it is full: once one
// character does not fit, no later one is written either.
class BoundedOutput {
public:
  BoundedOutput(char* buffer, std::size_t size)
      : mBuffer(buffer != nullptr && size > 0 ? buffer : nullptr),
        mLimit(mBuffer != nullptr ? size - 1 : 0) {}
  ~BoundedOutput() {
    if (mBuffer != nullptr) {
      mBuffer[mLength] = '\0';
    }
  }
  void append(const char* bytes, std::size_t count) {
    if (mFull || mLength + count > mLimit) {
      mFull = true;
      return;
    }
    std::memcpy(mBuffer + mLength, bytes, count);
    mLength += count;
  }
  void append(char c) { append(&c, 1); }

private:
  char* mBuffer;
  std::size_t mLimit;
  std::size_t mLength = 0;
  bool mFull = false;
};

std::string hexByte(unsigned char u) {
  char text[8];
  std::snprintf(text, sizeof text, "0x%02X", u);
  return text;
}

}  // namespace

bool XmlTokenReader::isXmlChar(unsigned int cp) {
  return cp == 0x9 || cp == 0xA || cp == 0xD || (cp >= 0x20 && cp <= 0xD7FF) ||
         (cp >= 0xE000 && cp <= 0xFFFD) || (cp >= 0x10000 && cp <= 0x10FFFF);
}

XmlTokenReader::XmlTokenReader() = default;

XmlTokenReader::~XmlTokenReader() { delete[] mData; }

void XmlTokenReader::reset() {
  delete[] mData;
  mData = nullptr;
  mSize = 0;
  mPos = 0;
  mStart = 0;
  mName.clear();
  mErrorText.clear();
  mErrorOffset = NO_OFFSET;
  mFailed = false;
  mDepth = 0;
  mRefusedSize = 0;
  mFailureReason.clear();
  mLineCacheOffset = 0;
  mLineCacheLine = 1;
  mLineCacheColumn = 1;
}

bool XmlTokenReader::openFile(const char* path) {
  reset();
  if (path == nullptr || *path == '\0') {
    mErrorText = "No file name given";
    mFailed = true;
    return false;
  }
  mName = path;
  const auto refuse = [this](const std::string& what) {
    mErrorText = "File \"" + mName + "\" " + what;
    mFailed = true;
    return false;
  };
  const auto cannotOpen = [this, &refuse](const std::string& reason) {
    mFailureReason = reason;
    return refuse("cannot be opened: " + reason);
  };
  // Only regular files are documents: opening a FIFO would wait for a writer, a device such as
  // /dev/zero may never end, and a directory has no text. The path is looked at before it is
  // opened, so that opening a device has no side effects; it is opened without waiting, in case it
  // was replaced in between, and the open file is looked at again.
  struct stat info;
  if (stat(path, &info) != 0) {
    return cannotOpen(hostSystemErrorText(errno));
  }
  if (!S_ISREG(info.st_mode)) {
    return cannotOpen(hostDescribeNotRegular(info.st_mode));
  }
  const int fd = ::open(path, O_RDONLY | O_CLOEXEC | O_NONBLOCK);
  if (fd < 0) {
    return cannotOpen(hostSystemErrorText(errno));
  }
  if (fstat(fd, &info) != 0 || !S_ISREG(info.st_mode)) {
    const int error = errno;
    ::close(fd);
    return cannotOpen(S_ISREG(info.st_mode) ? hostSystemErrorText(error)
                                            : hostDescribeNotRegular(info.st_mode));
  }
  const std::size_t limit = mMaxFileSize;
  if (static_cast<unsigned long long>(info.st_size) > limit) {
    ::close(fd);
    mRefusedSize = static_cast<unsigned long long>(info.st_size);
    return refuse("is " + std::to_string(mRefusedSize) + " bytes long, more than the limit of " +
                  std::to_string(limit) + " bytes");
  }
  // Read in one go when the size is known, growing for files whose size the system does not
  // report (/proc); never more than one byte past the limit, which tells a file that grew. No
  // file reaches a limit of SIZE_MAX, which has no byte past it.
  const std::size_t cap = limit == SIZE_MAX ? limit : limit + 1;
  std::size_t capacity = info.st_size > 0 ? static_cast<std::size_t>(info.st_size) + 1 : 4096;
  capacity = std::min(capacity, cap);
  char* data = new char[capacity + 1];
  std::size_t size = 0;
  bool failed = false;
  int readError = 0;
  for (;;) {
    const ssize_t got = ::read(fd, data + size, capacity - size);
    if (got < 0) {
      if (errno == EINTR) {
        continue;
      }
      failed = true;
      readError = errno;
      break;
    }
    if (got == 0) {
      break;
    }
    size += static_cast<std::size_t>(got);
    if (size == capacity) {
      if (capacity == cap) {
        break;
      }
      const std::size_t larger = std::min(capacity * 2, cap);
      char* bigger = new char[larger + 1];
      std::memcpy(bigger, data, size);
      delete[] data;
      data = bigger;
      capacity = larger;
    }
  }
  ::close(fd);
  if (failed) {
    delete[] data;
    mFailureReason = hostSystemErrorText(readError);
    return refuse("cannot be read: " + mFailureReason);
  }
  if (size > limit) {
    delete[] data;
    mRefusedSize = size;
    return refuse("is more than the limit of " + std::to_string(limit) +
                  " bytes long (it grew while it was read)");
  }
  data[size] = '\0';
  mData = data;
  mSize = size;
  validate();
  return true;
}

void XmlTokenReader::openBuffer(const char* data, std::size_t size, const char* name) {
  reset();
  if (name != nullptr) {
    mName = name;
  }
  mData = new char[size + 1];
  if (size > 0 && data != nullptr) {
    std::memcpy(mData, data, size);
  } else {
    size = 0;
  }
  mData[size] = '\0';
  mSize = size;
  validate();
}

// Checks the whole document once, so that the token functions can rely on well-formed UTF-8
// without NUL bytes: the terminating NUL then ends every scan.
void XmlTokenReader::validate() {
  const unsigned char* u = reinterpret_cast<const unsigned char*>(mData);
  if (mSize >= 3 && u[0] == 0xEF && u[1] == 0xBB && u[2] == 0xBF) {
    mPos = mStart = 3;
    mLineCacheOffset = 3;
  } else if (mSize >= 2 && ((u[0] == 0xFE && u[1] == 0xFF) || (u[0] == 0xFF && u[1] == 0xFE) ||
                            (u[0] == 0 && u[1] == 0))) {
    fail(0, "Unsupported encoding (only UTF-8 is read)");
    return;
  }
  std::size_t i = mPos;
  while (i < mSize) {
    const unsigned char c = u[i];
    if (c < 0x80) {
      if (c < 0x20 && c != '\t' && c != '\n' && c != '\r') {
        fail(i, "Invalid character " + hexByte(c));
        return;
      }
      ++i;
      continue;
    }
    std::size_t length;
    unsigned char low = 0x80;
    unsigned char high = 0xBF;
    if (c >= 0xC2 && c <= 0xDF) {
      length = 2;
    } else if (c >= 0xE0 && c <= 0xEF) {
      length = 3;
      if (c == 0xE0) low = 0xA0;   // overlong
      if (c == 0xED) high = 0x9F;  // surrogates
    } else if (c >= 0xF0 && c <= 0xF4) {
      length = 4;
      if (c == 0xF0) low = 0x90;   // overlong
      if (c == 0xF4) high = 0x8F;  // above U+10FFFF
    } else {
      fail(i, "Invalid UTF-8 byte " + hexByte(c));
      return;
    }
    for (std::size_t k = 1; k < length; ++k) {
      const unsigned char next = i + k < mSize ? u[i + k] : 0;
      const unsigned char min = k == 1 ? low : 0x80;
      const unsigned char max = k == 1 ? high : 0xBF;
      if (next < min || next > max) {
        fail(i, "Invalid UTF-8 sequence starting with byte " + hexByte(c));
        return;
      }
    }
    i += length;
  }
}

void XmlTokenReader::lineAndColumn(std::size_t at, unsigned int& line, unsigned int& column) const {
  if (at > mSize) {
    at = mSize;
  }
  if (at < mLineCacheOffset) {
    mLineCacheOffset = mStart;
    mLineCacheLine = 1;
    mLineCacheColumn = 1;
  }
  // The column is counted on from the last position too, so that positions asked for in
  // increasing order cost one pass over the text even when it is all one line.
  for (std::size_t i = mLineCacheOffset; i < at; ++i) {
    const char c = mData[i];
    if (c == '\n' || (c == '\r' && mData[i + 1] != '\n')) {
      ++mLineCacheLine;
      mLineCacheColumn = 1;
    } else if ((static_cast<unsigned char>(c) & 0xC0) != 0x80) {
      ++mLineCacheColumn;
    }
  }
  mLineCacheOffset = at;
  line = mLineCacheLine;
  column = mLineCacheColumn;
}

unsigned int XmlTokenReader::getLine() const {
  unsigned int line;
  unsigned int column;
  lineAndColumn(mPos, line, column);
  return line;
}

unsigned int XmlTokenReader::getColumn() const {
  unsigned int line;
  unsigned int column;
  lineAndColumn(mPos, line, column);
  return column;
}

std::string XmlTokenReader::describePosition() const {
  unsigned int line;
  unsigned int column;
  lineAndColumn(mPos, line, column);
  return "line " + std::to_string(line) + ", column " + std::to_string(column);
}

std::string XmlTokenReader::positionText(std::size_t at) const {
  unsigned int line;
  unsigned int column;
  lineAndColumn(at, line, column);
  std::string text = "at line " + std::to_string(line) + ", column " + std::to_string(column);
  if (!mName.empty()) {
    text += " in \"" + mName + "\"";
  }
  return text;
}

void XmlTokenReader::fail(std::size_t at, const std::string& what) {
  if (!mFailed || mErrorText.empty()) {
    mErrorText = what + " " + positionText(at);
    mErrorOffset = at;
  }
  mFailed = true;
}

void XmlTokenReader::skipWhiteSpace() {
  while (mPos < mSize && isWhiteSpace(mData[mPos])) {
    ++mPos;
  }
}

bool XmlTokenReader::matchAt(std::size_t at, const char* text, std::size_t& end) const {
  std::size_t i = at;
  char previous = '\0';
  for (const char* t = text; *t != '\0'; ++t) {
    if ((*t == '>' || *t == '/') && isNameChar(previous)) {
      while (isWhiteSpace(mData[i])) {
        ++i;
      }
    }
    // The terminating NUL never equals a text character, so this stops at the end.
    if (mData[i] != *t) {
      return false;
    }
    previous = *t;
    ++i;
  }
  if (isNameChar(previous) && isNameChar(mData[i])) {
    return false;  // only part of a longer name
  }
  if (previous == '<' && (mData[i] == '/' || mData[i] == '!' || mData[i] == '?')) {
    return false;  // "<" is the start of an element, not of an end tag or declaration
  }
  end = i;
  return true;
}

std::size_t XmlTokenReader::nameEnd(std::size_t at) const {
  while (isNameChar(mData[at])) {
    ++at;
  }
  return at;
}

bool XmlTokenReader::skipComments() {
  if (mFailed || mData == nullptr) {
    return false;
  }
  for (;;) {
    skipWhiteSpace();
    const char* here = mData + mPos;
    if (std::strncmp(here, "<!--", 4) == 0) {
      const char* close = std::strstr(here + 4, "-->");
      if (close == nullptr) {
        fail(mPos, "Unterminated comment starting");
        return false;
      }
      mPos = static_cast<std::size_t>(close - mData) + 3;
    } else if (std::strncmp(here, "<?", 2) == 0) {
      const char* close = std::strstr(here + 2, "?>");
      if (close == nullptr) {
        fail(mPos, "Unterminated processing instruction starting");
        return false;
      }
      mPos = static_cast<std::size_t>(close - mData) + 2;
    } else if (std::strncmp(here, "<!DOCTYPE", 9) == 0) {
      // Skip to the '>' that ends the declaration, past any internal subset and quoted text.
      std::size_t i = mPos + 9;
      int brackets = 0;
      char quote = '\0';
      for (; i < mSize; ++i) {
        const char c = mData[i];
        if (quote != '\0') {
          if (c == quote) quote = '\0';
        } else if (c == '"' || c == '\'') {
          quote = c;
        } else if (c == '[') {
          ++brackets;
        } else if (c == ']') {
          --brackets;
        } else if (c == '>' && brackets <= 0) {
          break;
        }
      }
      if (i >= mSize) {
        fail(mPos, "Unterminated document type declaration starting");
        return false;
      }
      mPos = i + 1;
    } else {
      return true;
    }
  }
}

bool XmlTokenReader::acceptToken(const char* text) {
  if (mFailed || mData == nullptr || text == nullptr || *text == '\0') {
    return false;
  }
  skipWhiteSpace();
  std::size_t end;
  if (!matchAt(mPos, text, end)) {
    return false;
  }
  mPos = end;
  return true;
}

bool XmlTokenReader::atToken(const char* text) {
  if (mFailed || mData == nullptr || text == nullptr || *text == '\0') {
    return false;
  }
  skipWhiteSpace();
  std::size_t end;
  return matchAt(mPos, text, end);
}

bool XmlTokenReader::acceptNameAndValue(const char* name, char* buffer, std::size_t size) {
  if (mFailed || mData == nullptr || name == nullptr || *name == '\0') {
    return false;
  }
  skipWhiteSpace();
  const std::size_t length = std::strlen(name);
  if (std::strncmp(mData + mPos, name, length) != 0 || isNameChar(mData[mPos + length])) {
    return false;
  }
  std::size_t i = mPos + length;
  while (isWhiteSpace(mData[i])) {
    ++i;
  }
  if (mData[i] != '=') {
    fail(i, "Expected \"=\" after the attribute name \"" + std::string(name) + "\"");
    return false;
  }
  ++i;
  while (isWhiteSpace(mData[i])) {
    ++i;
  }
  if (mData[i] != '"' && mData[i] != '\'') {
    fail(i, "Expected a quoted value for the attribute \"" + std::string(name) + "\"");
    return false;
  }
  const std::size_t before = mPos;
  mPos = i;
  if (!readQuoted(buffer, size)) {
    mPos = before;
    return false;
  }
  return true;
}

bool XmlTokenReader::acceptValue(char* buffer, std::size_t size) {
  if (mFailed || mData == nullptr) {
    return false;
  }
  skipWhiteSpace();
  const char c = mData[mPos];
  if (c == '"' || c == '\'') {
    return readQuoted(buffer, size);
  }
  if (!isNameChar(c)) {
    return false;
  }
  const std::size_t end = nameEnd(mPos);
  if (!checkTextLength(mPos, end - mPos, "A name")) {
    return false;
  }
  BoundedOutput out(buffer, size);
  for (std::size_t i = mPos; i < end;) {
    const std::size_t n = sequenceLength(mData[i]);
    out.append(mData + i, n);
    i += n;
  }
  mPos = end;
  return true;
}

// Reads the quoted value at mPos, decoding references and normalising white space as XML does.
bool XmlTokenReader::readQuoted(char* buffer, std::size_t size) {
  const std::size_t start = mPos;
  const char quote = mData[mPos];
  BoundedOutput out(buffer, size);
  std::size_t i = mPos + 1;
  // Decoded bytes so far; checked once per character and at the closing quote, so a long value
  // stops at the limit.
  std::size_t length = 0;
  for (;;) {
    if (!checkTextLength(start, length, "A value")) {
      return false;
    }
    const char c = mData[i];
    if (c == quote) {
      break;
    }
    if (i >= mSize) {
      fail(start, "Unterminated quoted value starting");
      return false;
    }
    if (c == '<') {
      unsigned int line;
      unsigned int column;
      lineAndColumn(start, line, column);
      fail(i, "Unexpected \"<\" in a quoted value");
      mErrorText += "; the value starts at line " + std::to_string(line) + ", column " +
                    std::to_string(column) + " (is its closing quote missing?)";
      return false;
    }
    if (c == '&') {
      // The longest reference worth reading is "&#x10FFFF;"; look no further than that.
      const std::size_t window = mSize - i < 16 ? mSize - i : 16;
      const char* semicolon = static_cast<const char*>(std::memchr(mData + i, ';', window));
      const std::size_t reference = semicolon != nullptr ? semicolon - (mData + i) : 0;
      if (semicolon == nullptr) {
        fail(i, "Unterminated entity reference");
        return false;
      }
      const std::string entity(mData + i + 1, reference - 1);
      unsigned int cp = 0;
      bool valid = true;
      if (entity == "lt") {
        cp = '<';
      } else if (entity == "gt") {
        cp = '>';
      } else if (entity == "amp") {
        cp = '&';
      } else if (entity == "quot") {
        cp = '"';
      } else if (entity == "apos") {
        cp = '\'';
      } else if (entity.size() >= 2 && entity[0] == '#') {
        const bool hex = entity[1] == 'x';
        const std::size_t first = hex ? 2 : 1;
        valid = entity.size() > first;
        for (std::size_t k = first; valid && k < entity.size(); ++k) {
          const char d = entity[k];
          unsigned int digit;
          if (d >= '0' && d <= '9') {
            digit = static_cast<unsigned int>(d - '0');
          } else if (hex && d >= 'a' && d <= 'f') {
            digit = static_cast<unsigned int>(d - 'a' + 10);
          } else if (hex && d >= 'A' && d <= 'F') {
            digit = static_cast<unsigned int>(d - 'A' + 10);
          } else {
            valid = false;
            break;
          }
          cp = cp * (hex ? 16 : 10) + digit;
          valid = cp <= 0x10FFFF;
        }
        if (!valid || !isXmlChar(cp)) {
          fail(i, "Invalid character reference \"&" + entity + ";\"");
          return false;
        }
      } else {
        fail(i, "Unknown entity \"&" + entity + ";\"");
        return false;
      }
      char encoded[4];
      // A reference is at most 0x10FFFF (checked above), which always encodes.
      const std::size_t n = static_cast<std::size_t>(zelk::UtfUtil::codePointToUtf8(cp, encoded));
      out.append(encoded, n);
      length += n;
      i += reference + 1;
      continue;
    }
    if (c == '\t' || c == '\n' || c == '\r') {
      out.append(' ');
      ++length;
      i += (c == '\r' && mData[i + 1] == '\n') ? 2 : 1;
      continue;
    }
    const std::size_t n = sequenceLength(c);
    out.append(mData + i, n);
    length += n;
    i += n;
  }
  mPos = i + 1;
  return true;
}

bool XmlTokenReader::checkTextLength(std::size_t start, std::size_t length, const char* what) {
  if (length <= mMaxTextLength) {
    return true;
  }
  fail(start,
       std::string(what) + " longer than " + std::to_string(mMaxTextLength) + " bytes starts");
  return false;
}

bool XmlTokenReader::skipPast(const char* text) {
  if (mFailed || mData == nullptr || text == nullptr || *text == '\0') {
    return false;
  }
  const char* found = std::strstr(mData + mPos, text);
  if (found == nullptr) {
    mPos = mSize;
    return false;
  }
  mPos = static_cast<std::size_t>(found - mData) + std::strlen(text);
  return true;
}

std::string XmlTokenReader::describeToken(std::size_t at) const {
  if (mData == nullptr || at >= mSize) {
    return "end of file";
  }
  const char c = mData[at];
  std::size_t end = at + 1;
  std::string prefix;
  if (c == '<') {
    if (mData[end] == '/' || mData[end] == '!' || mData[end] == '?') {
      ++end;
    }
    end = nameEnd(end);
    if (mData[end] == '>') {
      ++end;
    }
  } else if (c == '"' || c == '\'') {
    prefix = "value ";
    while (end < mSize && mData[end] != c && mData[end] != '\n' && mData[end] != '<') {
      ++end;
    }
    if (mData[end] == c) {
      ++end;
    }
  } else if (isNameChar(c)) {
    end = nameEnd(at);
  } else {
    end = at + sequenceLength(c);
  }
  // Cut long tokens at a character boundary.
  std::size_t cut = at;
  while (cut < end && cut - at < MAX_TOKEN_IN_MESSAGE) {
    cut += sequenceLength(mData[cut]);
  }
  std::string token(mData + at, cut - at);
  if (cut < end) {
    token += "...";
  }
  return prefix + "\"" + token + "\"";
}

void XmlTokenReader::warnUnexpected(const char* expected) {
  if (mFailed) {
    return;  // the first problem is the one worth reporting
  }
  skipWhiteSpace();
  std::string text = "Unexpected " + describeToken(mPos) + " " + positionText(mPos);
  if (expected != nullptr && *expected != '\0') {
    text += "; expected \"" + std::string(expected) + "\"";
  }
  mErrorText = text;
  mErrorOffset = mPos;
  mFailed = true;
}

bool XmlTokenReader::enterElement() {
  if (++mDepth > MAX_NESTING_DEPTH) {
    skipWhiteSpace();
    fail(mPos, "Elements are nested deeper than " + std::to_string(MAX_NESTING_DEPTH) + " levels");
    return false;
  }
  return true;
}

void XmlTokenReader::leaveElement() {
  if (mDepth > 0) {
    --mDepth;
  }
}

bool XmlTokenReader::atEnd() {
  if (mFailed || mData == nullptr) {
    return true;
  }
  skipWhiteSpace();
  return mPos >= mSize;
}

void XmlTokenReader::setErrorText(const char* text) {
  if (text == nullptr || *text == '\0') {
    mErrorText.clear();
    mErrorOffset = NO_OFFSET;
    mFailed = false;
    return;
  }
  mErrorText = text;
  mErrorOffset = NO_OFFSET;
  mFailed = true;
}

bool XmlTokenReader::getErrorPosition(unsigned int& line, unsigned int& column) const {
  if (mErrorText.empty() || mErrorOffset == NO_OFFSET) return false;
  lineAndColumn(mErrorOffset, line, column);
  return true;
}

}  // namespace zelk::host
