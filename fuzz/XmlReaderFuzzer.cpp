// The host's XML token reader driven the way the loaders drive it: comments skipped, start and end
// tags accepted, attributes read into small buffers, nesting counted. Checks that values never
// overflow their buffers and that every loop ends.
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "FuzzSupport.h"
#include "zelk/host/XmlTokenReader.h"

using zelk::host::XmlTokenReader;

namespace {

const char* const ATTRIBUTES[] = {"id", "type", "value", "description", "label", "default"};

// Reads a buffer of size bytes with a guard after it, checking that the reader stayed inside.
class GuardedBuffer {
public:
  explicit GuardedBuffer(size_t size) : mSize(size), mBytes(size + 8, '\x7f') { mBytes[0] = '\0'; }
  char* get() { return mBytes.data(); }
  size_t size() const { return mSize; }
  void check() const {
    ZELK_FUZZ_CHECK(std::memchr(mBytes.data(), '\0', mSize) != nullptr);
    for (size_t i = mSize; i < mBytes.size(); ++i) ZELK_FUZZ_CHECK(mBytes[i] == '\x7f');
  }

private:
  size_t mSize;
  std::vector<char> mBytes;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  zelk::fuzz::InputReader input(data, size);
  const size_t bufferSize = 1 + input.byte() % 64;
  XmlTokenReader reader;
  reader.openBuffer(reinterpret_cast<const char*>(input.data()), input.size(),
                    (size & 1) != 0 ? "fuzz.xml" : nullptr);
  GuardedBuffer buffer(bufferSize);
  size_t steps = 0;
  const size_t maxSteps = 4 * input.size() + 16;
  while (!reader.atEnd()) {
    // Every step consumes input or fails the reader, so the loop is bounded by the input size.
    ZELK_FUZZ_CHECK(++steps <= maxSteps);
    const size_t before = reader.getOffset();
    if (!reader.skipComments()) break;
    if (reader.acceptToken("</")) {
      reader.acceptValue(buffer.get(), buffer.size());
      buffer.check();
      if (!reader.acceptToken(">")) reader.warnUnexpected("\">\"");
      if (reader.getDepth() > 0) reader.leaveElement();
    } else if (reader.acceptToken("<")) {
      if (!reader.enterElement()) break;
      if (!reader.acceptValue(buffer.get(), buffer.size())) reader.warnUnexpected("a name");
      buffer.check();
      bool progressed = true;
      while (progressed && !reader.hasError()) {
        progressed = false;
        for (const char* name : ATTRIBUTES) {
          if (reader.acceptNameAndValue(name, buffer.get(), buffer.size())) {
            buffer.check();
            progressed = true;
          }
        }
        // Any other attribute: its name, '=' and its value.
        if (!progressed && !reader.atToken(">") && !reader.atToken("/>") &&
            reader.acceptValue(buffer.get(), buffer.size()) && reader.acceptToken("=") &&
            reader.acceptValue(buffer.get(), buffer.size())) {
          buffer.check();
          progressed = true;
        }
      }
      if (reader.acceptToken("/>")) {
        reader.leaveElement();
      } else if (!reader.acceptToken(">")) {
        reader.warnUnexpected("\">\" or \"/>\"");
      }
    } else if (!reader.atEnd()) {
      // Text between elements: loaders skip to the next tag.
      if (!reader.skipPast("<")) break;
    }
    if (!reader.hasError()) ZELK_FUZZ_CHECK(reader.getOffset() > before || reader.atEnd());
    ZELK_FUZZ_CHECK(reader.getDepth() <= XmlTokenReader::MAX_NESTING_DEPTH);
  }
  // Errors name a position; positions stay inside the document.
  ZELK_FUZZ_CHECK(reader.getOffset() <= input.size());
  ZELK_FUZZ_CHECK(reader.getLine() >= 1 && reader.getColumn() >= 1);
  if (reader.hasError()) ZELK_FUZZ_CHECK(std::strlen(reader.getErrorText()) > 0);
  reader.describePosition();
  return 0;
}
