// Host file-system queries: does a path exist, is it a directory, and directory listings.
//
//   unsigned int status = zelk::host::hostFileExists("/etc/zelk");
//   if (status != zelk::host::HOST_FILE_NOT_FOUND && (status & zelk::host::HOST_FILE_DIRECTORY)) {
//     zelk::host::HostDirectory* listing = zelk::host::hostOpenDir("/etc/zelk");
//     while (const char* name = listing->next()) { ... }   // "." and ".." included
//     listing->close();
//     delete listing;
//   }
#pragma once

#include <sys/types.h>

#include <string>

namespace zelk::host {

// Status words of hostFileExists.
constexpr unsigned int HOST_FILE_REGULAR = 1;    // exists and is not a directory
constexpr unsigned int HOST_FILE_NOT_FOUND = 2;  // does not exist (or cannot be examined)
constexpr unsigned int HOST_FILE_DIRECTORY = 4;  // bit: exists and is a directory

// HOST_FILE_NOT_FOUND for a null, empty or missing path; HOST_FILE_DIRECTORY for a directory
// (symbolic links are followed); HOST_FILE_REGULAR for anything else that exists.
unsigned int hostFileExists(const char* path);

// A listing of one directory, in the order the file system gives.
class HostDirectory {
public:
  virtual ~HostDirectory();
  // The next entry name, "." and ".." included, or null at the end (and after close()). The
  // text stays valid until the next call.
  virtual const char* next() = 0;
  // Releases the listing; next() then returns null. Calling it twice is harmless.
  virtual void close() = 0;
};

// A new listing of path (released by the caller with delete), or null when path is null, empty,
// or cannot be opened as a directory.
HostDirectory* hostOpenDir(const char* path);

// Why a path that exists cannot be read or written as a document, in words for messages: "it is a
// directory, not a regular file" (a FIFO, a socket, a character device, a block device). The
// library reads and writes regular files only: opening a FIFO would wait for a writer, and a
// device may never end.
std::string hostDescribeNotRegular(mode_t mode);

// The system's text for an errno value ("Permission denied"); thread-safe.
std::string hostSystemErrorText(int error);

}  // namespace zelk::host
