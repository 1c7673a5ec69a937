// Host directory look-ups: where the host keeps its etc, plug-ins and configuration directories.
//
// The embedding program (a tool, a test) says where its installation lives; until it does, the
// compiled-in defaults of an installed library answer. Nothing is read from the environment.
//
//   zelk::host::hostSetDirectories("/opt/zelk/etc", "/opt/zelk/plugins", "/opt/zelk/config");
//   char buffer[zelk::host::HOST_PATH_BUFFER_SIZE];
//   if (zelk::host::hostGetEtcDir(buffer)) { ... buffer holds "/opt/zelk/etc" ... }
#pragma once

#include <cstddef>

namespace zelk::host {

// The size of the caller buffer that the look-ups fill.
constexpr std::size_t HOST_PATH_BUFFER_SIZE = 1024;

// Each fills buffer (HOST_PATH_BUFFER_SIZE bytes) with the directory, without a trailing
// separator unless one was given, and returns true. Returns false, leaving an empty string in
// buffer, when the host cannot give that directory (not set, or too long for the buffer).
bool hostGetEtcDir(char* buffer);
bool hostGetPluginsDir(char* buffer);
bool hostGetConfigDir(char* buffer);

// The directory separator of the platform ('/'). path is accepted for symmetry with hosts that
// have per-volume separators and may be null.
char hostGetDirSeparator(const char* path = nullptr);

// Sets the three directories for the whole process. A null or empty argument means the host
// cannot give that directory. Thread-safe.
void hostSetDirectories(const char* etcDir, const char* pluginsDir, const char* configDir);

// Returns to the compiled-in defaults of an installed library.
void hostResetDirectories();

}  // namespace zelk::host
