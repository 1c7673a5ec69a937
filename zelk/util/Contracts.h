// Contract checks: how every precondition in the library is written.
//
//   ZELK_CONTRACT(name != 0 && *name != '\0');
//   ZELK_CONTRACT_MESSAGE(type >= 0 && type <= 8, "Invalid value type");
//
// A failed check throws zelk::ContractViolationException. ZELK_CONTRACT's message is
// "Contract violation: \"<condition as written>\""; ZELK_CONTRACT_MESSAGE's is the given text. The
// exception also carries the source tag (the file's path below zelk/configuration/ or zelk/util/,
// without extension, such as "impl/ValueGroupState") and the line.
#pragma once

#include <string>

namespace zelk::impl {

// The single throw point of contract violations.
[[noreturn]] void __ContractViolated(const char* message, const char* file, unsigned int line);

// "…/zelk/configuration/impl/ObjectMap.h" -> "impl/ObjectMap"; "…/zelk/util/RegEx.cpp" -> "RegEx".
std::string contractSourceTag(const char* path);

}  // namespace zelk::impl

#define ZELK_CONTRACT_MESSAGE(condition, message)                                            \
  do {                                                                                       \
    if (!(condition)) {                                                                      \
      ::zelk::impl::__ContractViolated((message),                                            \
                                       ::zelk::impl::contractSourceTag(__FILE__).c_str(),    \
                                       __LINE__);                                            \
    }                                                                                        \
  } while (false)

#define ZELK_CONTRACT(condition) \
  ZELK_CONTRACT_MESSAGE(condition, "Contract violation: \"" #condition "\"")
