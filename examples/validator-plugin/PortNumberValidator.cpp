// An example validator plug-in: "portNumber" accepts a TCP port, a decimal number from 1 to 65535.
//
// The configuration manager lists the plug-ins of the host extension point "ParameterValidator"
// when it starts and registers the validator that each one makes. Build this file as a shared
// library, put it below the host's plug-ins directory (not writable by group or others), and name
// the validator in a registry file:
//
//   <Parameter id="port" type="int32" validator="portNumber" description="The server's port"/>
//
// A tool then checks a value with the parameter's validator:
//
//   const Validator* validator = parameter->getValidator();
//   char* problems = validator->validate(values.getValue("port"));   // null when all is well
//   delete[] problems;
#include <cstring>

#include "zelk/configuration/Validator.h"
#include "zelk/util/StringFunctions.h"

namespace {

const char* const VALIDATOR_NAME = "portNumber";
const char* const ERROR_MESSAGE = "Value is not a port number (1 to 65535)";
const unsigned long HIGHEST_PORT = 65535;

class PortNumberValidator : public zelk::configuration::Validator {
public:
  PortNumberValidator() : Validator(VALIDATOR_NAME) {}

  using Validator::validate;

  char* validate(const char* value) const override {
    if (value == nullptr || *value == '\0' || std::strlen(value) > 5) {
      return zelk::cloneString(ERROR_MESSAGE);
    }
    unsigned long port = 0;
    for (const char* p = value; *p != '\0'; ++p) {
      if (*p < '0' || *p > '9') {
        return zelk::cloneString(ERROR_MESSAGE);
      }
      port = port * 10 + static_cast<unsigned long>(*p - '0');
    }
    return port >= 1 && port <= HIGHEST_PORT ? nullptr : zelk::cloneString(ERROR_MESSAGE);
  }
};

}  // namespace

// The host finds these two by name: the extension point served, and a factory of one validator
// per call (the manager owns what it gets).
extern "C" __attribute__((visibility("default"))) const char* extensionPointName() {
  return "ParameterValidator";
}

extern "C" __attribute__((visibility("default"))) void* createPlugin() {
  zelk::configuration::Validator* validator = new PortNumberValidator();
  return validator;
}
