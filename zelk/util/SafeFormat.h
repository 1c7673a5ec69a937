// Safe interpretation of texts that the library must treat as printf formats.
//
// Several messages are built from user text (a flag, a value, a file's content) and then used as
// the format of a later formatting call: an error added through ValidationErrors::processError is
// formatted twice, joined error lists and the ambiguity message of the command line become
// exception formats. Such a text never reaches vsnprintf. It goes through formatWithoutArguments:
// "%%" becomes "%", and every other conversion is copied as written and reads nothing.
//
//   zelk::formatWithoutArguments("100%% of %s")   == "100% of %s"
//
// Formatting with arguments (formatMessage) is for the library's own literal formats only.
#pragma once

#include <cstdarg>
#include <cstddef>
#include <string>

namespace zelk {

// The size of every formatting buffer; texts are cut at kFormatBufferSize - 1 characters.
constexpr std::size_t kFormatBufferSize = 4096;

// Interprets text as a format that has no arguments. Null gives the empty string.
std::string formatWithoutArguments(const char* text);

// vsnprintf of a trusted format into a 4096-byte buffer (cut at 4095 characters).
std::string formatMessageV(const char* format, va_list arguments);
std::string formatMessage(const char* format, ...) __attribute__((format(printf, 1, 2)));

}  // namespace zelk
