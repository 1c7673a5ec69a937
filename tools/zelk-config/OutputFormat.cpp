#include "OutputFormat.h"

namespace zelk::configtool {

const OutputFormat* findFormat(const std::string& name) {
  // The formats by name: one line a format.
  static const struct {
    const char* name;
    const OutputFormat& (*format)();
  } FORMATS[] = {
      {"text", textFormat},
      {"json", jsonFormat},
  };
  for (const auto& entry : FORMATS) {
    if (name == entry.name) return &entry.format();
  }
  return nullptr;
}

}  // namespace zelk::configtool
