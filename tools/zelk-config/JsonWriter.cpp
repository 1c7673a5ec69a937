#include "JsonWriter.h"

#include <cstdio>
#include <ostream>

namespace zelk::configtool {

namespace {

// The length of the UTF-8 sequence at text[i], or 0 when it is not one.
std::size_t sequenceLength(const std::string& text, std::size_t i) {
  const unsigned char lead = static_cast<unsigned char>(text[i]);
  std::size_t length;
  unsigned char low = 0x80;
  unsigned char high = 0xBF;
  if (lead < 0x80) return 1;
  if (lead >= 0xC2 && lead <= 0xDF) {
    length = 2;
  } else if (lead >= 0xE0 && lead <= 0xEF) {
    length = 3;
    if (lead == 0xE0) low = 0xA0;
    if (lead == 0xED) high = 0x9F;
  } else if (lead >= 0xF0 && lead <= 0xF4) {
    length = 4;
    if (lead == 0xF0) low = 0x90;
    if (lead == 0xF4) high = 0x8F;
  } else {
    return 0;
  }
  if (i + length > text.size()) return 0;
  for (std::size_t k = 1; k < length; ++k) {
    const unsigned char next = static_cast<unsigned char>(text[i + k]);
    if (next < (k == 1 ? low : 0x80) || next > (k == 1 ? high : 0xBF)) return 0;
  }
  return length;
}

}  // namespace

JsonWriter::JsonWriter(std::ostream& out) : mOut(out) {}

JsonWriter::~JsonWriter() { mOut << '\n'; }

std::string JsonWriter::quote(const std::string& text) {
  std::string quoted = "\"";
  for (std::size_t i = 0; i < text.size();) {
    const char c = text[i];
    const std::size_t length = sequenceLength(text, i);
    if (length == 0) {
      quoted += "\\ufffd";
      ++i;
      continue;
    }
    if (c == '"' || c == '\\') {
      quoted += '\\';
      quoted += c;
    } else if (c == '\n') {
      quoted += "\\n";
    } else if (c == '\t') {
      quoted += "\\t";
    } else if (c == '\r') {
      quoted += "\\r";
    } else if (static_cast<unsigned char>(c) < 0x20 || c == 0x7F) {
      char escape[8];
      std::snprintf(escape, sizeof escape, "\\u%04x", static_cast<unsigned int>(c));
      quoted += escape;
    } else {
      quoted.append(text, i, length);
    }
    i += length;
  }
  return quoted + "\"";
}

void JsonWriter::beforeValue() {
  if (mAfterKey) {
    mAfterKey = false;
    return;
  }
  if (mEmpty.empty()) return;
  mOut << (mEmpty.back() ? "\n" : ",\n") << std::string(2 * mEmpty.size(), ' ');
  mEmpty.back() = false;
}

void JsonWriter::open(char bracket) {
  beforeValue();
  mOut << bracket;
  mEmpty.push_back(true);
}

void JsonWriter::close(char bracket) {
  const bool empty = mEmpty.back();
  mEmpty.pop_back();
  if (!empty) mOut << '\n' << std::string(2 * mEmpty.size(), ' ');
  mOut << bracket;
}

void JsonWriter::beginObject() { open('{'); }
void JsonWriter::endObject() { close('}'); }
void JsonWriter::beginArray() { open('['); }
void JsonWriter::endArray() { close(']'); }

void JsonWriter::key(const std::string& name) {
  beforeValue();
  mOut << quote(name) << ": ";
  mAfterKey = true;
}

void JsonWriter::value(const std::string& text) {
  beforeValue();
  mOut << quote(text);
}

void JsonWriter::value(const char* text) { value(std::string(text != nullptr ? text : "")); }

void JsonWriter::value(bool flag) {
  beforeValue();
  mOut << (flag ? "true" : "false");
}

void JsonWriter::number(long long number) {
  beforeValue();
  mOut << number;
}

void JsonWriter::value(const std::vector<std::string>& texts) {
  beforeValue();
  mOut << '[';
  for (std::size_t i = 0; i < texts.size(); ++i) mOut << (i > 0 ? ", " : "") << quote(texts[i]);
  mOut << ']';
}

}  // namespace zelk::configtool
