// Base64: the standard alphabet with '=' padding (RFC 4648), as etcd's gateway writes keys and
// values.
//
//   std::string text = zelk::encodeBase64("/fleet/backup");
//   std::string back;
//   if (!zelk::decodeBase64(text, back)) { /* not base64 */ }
#pragma once

#include <string>

namespace zelk {

std::string encodeBase64(const std::string& bytes);
// Decodes text into out; false (out untouched) when text is not padded base64 of the standard
// alphabet.
bool decodeBase64(const std::string& text, std::string& out);

}  // namespace zelk
