// JsonWriter: JSON output of zelk-config (-list -json, -values -json), laid out two blanks an
// indentation level, for scripts and CI.
//
//   JsonWriter json(std::cout);
//   json.beginObject();
//   json.key("id");
//   json.value("zbackup");
//   json.endObject();   // {\n  "id": "zbackup"\n}
//
// Strings are written as UTF-8 with the escapes JSON requires; bytes that are not UTF-8 (a
// command line can hold any) become U+FFFD, so that the output is always valid JSON.
#pragma once

#include <iosfwd>
#include <string>
#include <vector>

namespace zelk::configtool {

class JsonWriter {
public:
  explicit JsonWriter(std::ostream& out);
  // Ends the output with a line end once the outermost value is closed.
  ~JsonWriter();

  void beginObject();
  void endObject();
  void beginArray();
  void endArray();
  // The name of the next member of the current object.
  void key(const std::string& name);
  void value(const std::string& text);
  void value(const char* text);
  void value(bool flag);
  void number(long long number);
  void value(const std::vector<std::string>& texts);

  // text as a JSON string, quotes included.
  static std::string quote(const std::string& text);

private:
  void beforeValue();
  void open(char bracket);
  void close(char bracket);

  std::ostream& mOut;
  std::vector<bool> mEmpty;  // per open object or array: nothing written in it yet
  bool mAfterKey = false;
};

}  // namespace zelk::configtool
