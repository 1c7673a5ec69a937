// AtomicFile: replaces a file whole or not at all: the content goes to a temporary file in the
// same directory, is flushed to the disk, and is renamed over the old file, whose directory is
// then flushed too. A reader sees the old file or the new one, never a part, also after a crash.
//
//   std::string why;
//   if (!zelk::writeFileAtomically("/var/lib/tool/state.xml", text, why)) report(why);
#pragma once

#include <string>

namespace zelk {

// Writes content to path as described above. Returns false with why (naming the path and the
// system's reason) when any step fails; the old file is then left as it was, and no temporary
// file stays behind.
bool writeFileAtomically(const std::string& path, const std::string& content, std::string& why);

}  // namespace zelk
