// Uses the installed headers and libraries: collects two errors, wraps their joined message and
// prints it.
#include <iostream>
#include <sstream>

#include "zelk/configuration/ValidationErrors.h"
#include "zelk/configuration/ValidationException.h"
#include "zelk/host/HostMainLog.h"
#include "zelk/util/StringUtil.h"

int main() {
  zelk::configuration::ValidationErrors errors;
  errors.addError("\"%s\" is not a valid %s", "abc", "int32");
  errors.addError("Unknown flag %s", "-verbos");
  try {
    errors.throwIfErrors();
  } catch (const zelk::configuration::ValidationException& e) {
    std::ostringstream wrapped;
    zelk::StringUtil::wordWrap(wrapped, e.what(), 2, 20, 2, "");
    std::cout << "consumer: " << e.getErrors().getNumberOfErrors() << " errors\n"
              << wrapped.str() << "\n";
  }
  zelk::host::hostAddToMainLog("Consumer", "done");
  std::cout << "consumer: log entries " << zelk::host::hostGetMainLog().size() << "\n";
  return 0;
}
