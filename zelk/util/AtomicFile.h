// AtomicFile: the one way the library and its tools replace a file, so that a reader (a service
// reading its value file, a tool reading machine.config) sees either the old content or the new,
// never a truncated or half-written file, and a full or read-only disk leaves the old file as it
// was.
//
// The text is written to a new temporary file in the target's directory, flushed to disk, and
// renamed over the target; the directory is then flushed too, so that the rename survives a crash.
// A file that existed keeps its permission bits (and, where the process may set them, its owner
// and group); a new file gets the permissions that the process's umask gives 0666. A target that
// is a symbolic link is followed: the file it leads to is replaced, and the link stays. A target
// that exists and is not a regular file (a directory, FIFO, socket or device) is refused before
// anything is created, so that writing never blocks on a FIFO.
//
//   const zelk::FileWriteResult result = zelk::replaceFile("/etc/zelk/cache.json", text);
//   if (!result) {
//     hostAddToMainLog("Configuration", ("cannot write: " + result.reason).c_str());
//   }
//
// Thread-safe: each call uses a temporary file of its own. Two calls for the same target leave
// one of the two texts, whole.
#pragma once

#include <sys/types.h>

#include <cstddef>
#include <string>

namespace zelk {

struct FileWriteResult {
  // 0 on success; else the errno value of the step that failed, or 0 with a reason for a target
  // that is not a regular file.
  int error = 0;
  // Empty on success; else why the file was not written, in the system's words ("No space left
  // on device", "it is a directory, not a regular file").
  std::string reason;

  explicit operator bool() const { return reason.empty(); }
};

// Replaces the file at path with size bytes of data, whole or not at all. On failure the target
// is untouched and the temporary file removed.
FileWriteResult replaceFile(const std::string& path, const char* data, std::size_t size);
FileWriteResult replaceFile(const std::string& path, const std::string& text);

// replaceFile for callers that report a text: returns false with why ("cannot write "<path>":
// <reason>") when the file was not written.
bool writeFileAtomically(const std::string& path, const std::string& content, std::string& why);

// The write(2) that replaceFile calls for the data. Tests replace it to fail as a full disk does;
// nullptr restores the system's. Not for use while other threads write files.
using WriteFunction = ssize_t (*)(int fd, const void* data, std::size_t size);
void setWriteFunctionForTesting(WriteFunction write);

}  // namespace zelk
