// XmlTokenReader: the host's token-level XML reader.
//
// The reader holds one whole document in memory and offers the small steps that a hand-written
// loader needs: skip comments, accept an expected token, read a name or an attribute value. It
// does not build a tree and does not itself nest; loaders that recurse into elements bound their
// depth with enterElement()/leaveElement() (MAX_NESTING_DEPTH).
//
//   zelk::host::XmlTokenReader reader;
//   if (!reader.openFile(path)) { ... not found ... }
//   char id[1025];
//   reader.skipComments();
//   if (reader.acceptToken("<Parameter") && reader.acceptNameAndValue("id", id, sizeof id) &&
//       reader.acceptToken("/>")) { ... }
//   else reader.warnUnexpected();
//   if (reader.hasError()) { ... reader.getErrorText() ... }
//
// Tokens. acceptToken(text) first skips white space, then takes text when the input continues
// with it. A text that ends in a name character only matches a whole name ("<Parameter" does not
// match "<Parameters"); white space is allowed between a name and a following '>' or "/>" (so
// "</Group>" matches "</Group >"); "<" alone does not match the start of "</", "<!" or "<?".
//
// Values. Attribute values are quoted with '"' or '\''. The five predefined entities and numeric
// character references are decoded; literal tabs and line ends are read as spaces, as XML
// requires. A value longer than the caller's buffer is cut to fit (at a character boundary) and
// never overflows it.
//
// Limits. openFile refuses a file larger than getMaxFileSize() bytes (64 MiB unless set; any value
// up to SIZE_MAX works) before reading any of it, and never reads more than one byte past the
// limit of a file that grows while it is read; wasTooLarge() tells such a refusal from a missing
// file. A quoted value or a name longer than getMaxTextLength() bytes (64 KiB unless set; decoded
// bytes for values) is an error naming where it starts, so that no single text of a hostile file is
// copied or scanned past it.
//
// Input. A UTF-8 byte-order mark is skipped, CR LF and CR line ends count as one line end. The
// document must be UTF-8 without control characters other than tab, CR and LF; anything else is
// an error at openFile/openBuffer time.
//
// Errors. The reader keeps one error text. Problems it finds itself (unterminated comments or
// quotes, invalid bytes, bad entities) and warnUnexpected() record a text naming the line and
// column; setErrorText() lets a loader record its own. After an error the reader is failed: every
// accept and skip returns false and atEnd() returns true, so every loop over the input ends.
#pragma once

#include <cstddef>
#include <string>

namespace zelk::host {

class XmlTokenReader {
public:
  // The deepest element nesting that loaders accept. A loader calls enterElement() when it opens
  // an element and leaveElement() when it closes it; the element one deeper is an error.
  static constexpr unsigned int MAX_NESTING_DEPTH = 256;

  // The default limits: the largest file openFile reads and the longest text a token may hold.
  static constexpr std::size_t DEFAULT_MAX_FILE_SIZE = std::size_t(64) << 20;
  static constexpr std::size_t DEFAULT_MAX_TEXT_LENGTH = std::size_t(64) << 10;

  // Whether XML 1.0 allows the character cp: tab, the line ends and U+0020 to U+10FFFF, except
  // surrogates, U+FFFE and U+FFFF.
  static bool isXmlChar(unsigned int cp);

  XmlTokenReader();
  XmlTokenReader(const XmlTokenReader&) = delete;
  XmlTokenReader& operator=(const XmlTokenReader&) = delete;
  ~XmlTokenReader();

  // Reads the whole file at path into memory. Returns false (and keeps no document) when the file
  // cannot be opened or read, is not a regular file (a FIFO, socket, device or directory is
  // refused at once, without waiting for a writer), or is larger than getMaxFileSize(); the error
  // text says so. Returns true otherwise, even when the content is not
  // valid UTF-8: that is reported as the reader's error (see hasError()).
  bool openFile(const char* path);
  // After openFile returned false: whether the file was refused for its size, and that size (the
  // size the system reported, or the limit plus one for a file that grew while it was read).
  bool wasTooLarge() const { return mRefusedSize != 0; }
  unsigned long long getRefusedSize() const { return mRefusedSize; }
  // After openFile returned false for any other reason: the reason alone, in the system's words
  // ("Permission denied", "it is a FIFO, not a regular file"); empty otherwise.
  const std::string& getFailureReason() const { return mFailureReason; }

  // The limits (see the class comment); they stay set for every later document. Zero is taken as
  // one byte.
  void setMaxFileSize(std::size_t bytes) { mMaxFileSize = bytes != 0 ? bytes : 1; }
  std::size_t getMaxFileSize() const { return mMaxFileSize; }
  void setMaxTextLength(std::size_t bytes) { mMaxTextLength = bytes != 0 ? bytes : 1; }
  std::size_t getMaxTextLength() const { return mMaxTextLength; }
  // The same for a document already in memory (copied); name, if given, is used in error texts.
  void openBuffer(const char* data, std::size_t size, const char* name = nullptr);

  // Skips white space, comments, the XML declaration and other processing instructions, and a
  // document type declaration. An unterminated one is an error. Returns false when failed.
  bool skipComments();

  // Consumes text when it comes next (after white space); see the class comment. Returns whether
  // it did. An empty or null text matches nothing.
  bool acceptToken(const char* text);
  // Like acceptToken but does not consume anything.
  bool atToken(const char* text);

  // When the next attribute is name="value" with exactly this name, consumes it, copies the
  // decoded value into buffer (at most size - 1 bytes and a terminator) and returns true.
  // Otherwise consumes nothing and returns false. A matching name without '=' and a quoted value
  // is an error.
  bool acceptNameAndValue(const char* name, char* buffer, std::size_t size);

  // Reads the next quoted value (decoded) or, when no quote comes next, the next name, into buffer
  // (cut to size - 1 bytes). Returns false, consuming nothing, when neither comes next. A name is
  // a run of letters, digits, '_', '-', '.', ':' and non-ASCII characters.
  bool acceptValue(char* buffer, std::size_t size);

  // Consumes everything up to and including the next occurrence of text. Returns false, leaving
  // the reader at the end of the input, when text does not occur.
  bool skipPast(const char* text);

  // Records "Unexpected <token> at line L, column C" (with " in \"<name>\"" for a named document
  // and "; expected <expected>" when given) for the token at the current position, and fails the
  // reader. An error recorded earlier is kept: the first problem is the one worth reporting.
  void warnUnexpected(const char* expected = nullptr);

  // Counts one more open element. Beyond MAX_NESTING_DEPTH records "Elements are nested deeper
  // than 256 levels at line L, column C", fails the reader and returns false.
  bool enterElement();
  void leaveElement();
  unsigned int getDepth() const { return mDepth; }

  // True at the end of the input (after skipping white space) and whenever the reader is failed.
  bool atEnd();

  bool hasError() const { return !mErrorText.empty(); }
  // The kept error text; empty when there is none.
  const char* getErrorText() const { return mErrorText.c_str(); }
  // Replaces the kept error text and fails the reader; null or empty clears the error text and
  // the failure.
  void setErrorText(const char* text);
  // Where the reader's own error (see above) stands: true, with its line and column, for a
  // problem the reader found or warnUnexpected recorded; false when there is no error or the
  // text came from setErrorText.
  bool getErrorPosition(unsigned int& line, unsigned int& column) const;

  // The current position: byte offset, and 1-based line and column (columns count characters).
  std::size_t getOffset() const { return mPos; }
  unsigned int getLine() const;
  unsigned int getColumn() const;
  // The 1-based line and column of a byte offset of the document (as getOffset() gives them), so
  // that a loader can keep offsets while it reads and turn them into lines only for a problem.
  void lineAndColumn(std::size_t at, unsigned int& line, unsigned int& column) const;
  // "line L, column C" for the current position.
  std::string describePosition() const;

  // The document's name as given to openFile/openBuffer (empty when none).
  const char* getDocumentName() const { return mName.c_str(); }

private:
  static constexpr std::size_t NO_OFFSET = static_cast<std::size_t>(-1);

  void reset();
  void validate();
  void fail(std::size_t at, const std::string& what);
  std::string positionText(std::size_t at) const;
  void skipWhiteSpace();
  bool matchAt(std::size_t at, const char* text, std::size_t& end) const;
  std::size_t nameEnd(std::size_t at) const;
  bool readQuoted(char* buffer, std::size_t size);
  // Fails the reader when a text of length bytes starting at start is longer than the limit.
  bool checkTextLength(std::size_t start, std::size_t length, const char* what);
  std::string describeToken(std::size_t at) const;

  char* mData = nullptr;  // the document, with a terminating NUL after mSize bytes
  std::size_t mSize = 0;
  std::size_t mPos = 0;
  std::size_t mStart = 0;  // the first byte after a byte-order mark
  std::string mName;
  std::string mErrorText;
  std::size_t mErrorOffset = NO_OFFSET;  // where the reader's own error stands
  bool mFailed = false;
  unsigned int mDepth = 0;
  std::size_t mMaxFileSize = DEFAULT_MAX_FILE_SIZE;
  std::size_t mMaxTextLength = DEFAULT_MAX_TEXT_LENGTH;
  unsigned long long mRefusedSize = 0;
  std::string mFailureReason;
  // Line counting is incremental: the last position asked for and its line and column.
  mutable std::size_t mLineCacheOffset = 0;
  mutable unsigned int mLineCacheLine = 1;
  mutable unsigned int mLineCacheColumn = 1;
};

}  // namespace zelk::host
