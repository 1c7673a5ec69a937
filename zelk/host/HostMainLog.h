// The host's main log: an ordered list of (category, text) entries kept in the process, and
// optionally appended to a log file with a timestamp. The process keeps only the newest
// MAIN_LOG_CAPACITY entries, so that a service that logs for as long as it runs (every re-read of
// its configuration writes entries) does not grow without end; the log file, when set, gets every
// entry.
//
//   zelk::host::hostSetMainLogFile("/var/log/zelk/main.log");   // optional
//   zelk::host::hostAddToMainLog("Configuration", "loadConfigurationFile: [succeeded]");
//   for (const auto& [category, text] : zelk::host::hostGetMainLog()) { ... }
//
// All functions are thread-safe.
#pragma once

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace zelk::host {

// How many entries the process keeps; each new entry beyond that drops the oldest.
constexpr std::size_t MAIN_LOG_CAPACITY = 1000;

// Appends one entry. A null category or text is taken as empty. When a log file is set, the entry
// is also appended there as "<YYYY-MM-DD HH:MM:SS> [<category>] <text>" and a newline.
void hostAddToMainLog(const char* category, const char* text);

// A copy of the entries kept since the last hostClearMainLog() (at most MAIN_LOG_CAPACITY, the
// newest), oldest first: (category, text).
std::vector<std::pair<std::string, std::string>> hostGetMainLog();

// Empties the in-process list (the log file is left as it is).
void hostClearMainLog();

// Names the log file to which later entries are appended (null or empty: none). Returns false,
// and keeps no file, when the file cannot be opened for appending.
bool hostSetMainLogFile(const char* path);

}  // namespace zelk::host
