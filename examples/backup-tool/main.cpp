// zbackup: the example tool of the example installation.
//
// It shows what a database tool does with the configuration library:
//   1. point the host at its installation (a real host runtime knows it already);
//   2. enable the configuration with its command line and its specification id, "zbackup";
//   3. read its values, each in its own type, and print its help when asked with -help;
//   4. watch its values with a ConfigurationListener.
// The parameters themselves are declared in the installation's registry file (etc/zelk.crg), not
// here. It backs nothing up: it prints what it would do.
//
//   zbackup -database sales -destination backup1::/backups/sales -object 3-2-5-1
//   zbackup -loadConfiguration backup-nightly.xml -dryRun
//   zbackup -help

#include <iomanip>
#include <iostream>
#include <memory>
#include <string>

#include "zelk/configuration/ConfigurationException.h"
#include "zelk/configuration/ConfigurationListener.h"
#include "zelk/configuration/ConfigurationManager.h"
#include "zelk/configuration/ObjectId.h"
#include "zelk/configuration/Parameter.h"
#include "zelk/configuration/ParameterRef.h"
#include "zelk/configuration/Specification.h"
#include "zelk/configuration/UnboundedValue.h"
#include "zelk/configuration/ValidationErrors.h"
#include "zelk/configuration/ValidationException.h"
#include "zelk/configuration/Validator.h"
#include "zelk/configuration/Value.h"
#include "zelk/configuration/ValueGroup.h"
#include "zelk/configuration/ValueIterator.h"
#include "zelk/host/HostDirectories.h"

using namespace zelk::configuration;

namespace {

const char* const SPECIFICATION = "zbackup";
const int EXIT_USAGE = 2;

// Reports every change made to the tool's values after they were read.
class ChangeReporter : public ConfigurationListener {
public:
  // First of all: no notification may still run in a listener whose members are going.
  ~ChangeReporter() override { stopListeningAndWait(); }

  void onValueAdded(const ParameterRef*, const ValueAddedArguments& args) override {
    std::cout << "listener: " << args.mValue->getName() << " added";
    ValueIterator added = args.mValue->getIterator();
    if (added.next()) std::cout << " with " << added.asString();
    std::cout << '\n';
  }

  void onValueChanged(const ParameterRef*, const ValueChangedArguments& args) override {
    std::cout << "listener: " << args.mValue->getName() << " changed";
    if (!args.mOldValue.isNull() && args.mOldValue.hasValue()) {
      std::cout << " from " << args.mOldValue.asString();
    }
    ValueIterator now = args.mValue->getIterator();
    if (now.next()) std::cout << " to " << now.asString();
    std::cout << '\n';
  }
};

void printUsage(ConfigurationManager& manager, std::ostream& out) {
  out << "Usage: " << SPECIFICATION << '\n' << manager.composeUsageMessage(SPECIFICATION) << '\n';
}

void printHelp(ConfigurationManager& manager, const Specification& specification) {
  std::cout << specification.getTitle() << "\n\n" << specification.getDescription() << "\n\n";
  printUsage(manager, std::cout);
  std::cout << '\n' << manager.composeHelpMessage(SPECIFICATION, 80, 40);
}

// The flag's value: false when it was not given (flags have no default).
bool flag(const ValueGroup& values, const char* name) {
  const Value value = values.getValue(name);
  return !value.isNull() && value.asBool();
}

std::string describe(const ObjectId& oid) {
  return "database " + std::to_string(oid.getDatabase()) + ", container " +
         std::to_string(oid.getContainer()) + ", page " + std::to_string(oid.getPage()) +
         ", slot " + std::to_string(oid.getSlot());
}

// Runs the parameter's validator (here "storageLocation") over the value, as the tool must: the
// library checks types and structure, and leaves such rules to the tool.
bool passesValidator(const Value& value) {
  const Parameter* parameter = value.isNull() ? nullptr : value.getParameter();
  const Validator* validator = parameter != nullptr ? parameter->getValidator() : nullptr;
  if (validator == nullptr) return true;
  std::unique_ptr<char[]> error(validator->validate(value));
  if (!error) return true;
  std::cerr << SPECIFICATION << ": " << value.getName() << ": " << error.get();
  return false;
}

int backUp(ValueGroup& values) {
  // Text values.
  const Value database = values.getValue("database");
  const Value destination = values.getValue("destination");
  const Value baseBackup = values.getValue("baseBackup");
  if (!passesValidator(destination) || !passesValidator(baseBackup)) return EXIT_USAGE;

  std::cout << "Backing up database \"" << database.asString() << "\" to "
            << destination.asString() << '\n';

  // Enumerations: the symbol as written, and the number the enumeration gives it.
  const Value mode = values.getValue("mode");
  const Value compression = values.getValue("compression");
  std::cout << "  mode: " << mode.asString() << " (" << mode.asEnum() << ")\n"
            << "  compression: " << compression.asString() << " (level " << compression.asEnum()
            << ")\n";

  // A one-of: every object, or some objects given by their ids.
  const UnboundedValue objects = values.getUnboundedValue("object");
  if (flag(values, "all") || objects.isNull()) {
    std::cout << "  objects: all\n";
  } else {
    for (size_t i = 0; i < objects.getValueCount(); ++i) {
      const ObjectId oid = objects.asOID(i);
      std::cout << "  object: " << objects.asString(i) << " (" << describe(oid) << ")\n";
    }
  }

  // An optional logical group: both or neither.
  int64_t sinceTransaction = 0;
  if (values.tryGetValue("sinceTransaction", sinceTransaction)) {
    std::cout << "  changes since transaction " << sinceTransaction << ", on top of "
              << baseBackup.asString() << '\n';
  }

  // Numbers, with the specification's defaults where nothing was given.
  const uint32_t retries = values.getValue("retries").asUInt32();
  const int32_t priority = values.getValue("priority").asInt32();
  const uint64_t maxSize = values.getValue("maxSize").asUInt64();
  const double timeout = values.getValue("timeout").asDouble();
  std::cout << "  retries: " << retries << ", priority: " << priority << ", maximum size: "
            << (maxSize == 0 ? std::string("no limit") : std::to_string(maxSize) + " bytes")
            << ", lock timeout: " << std::fixed << std::setprecision(1) << timeout << " s\n";

  const bool dryRun = flag(values, "dryRun");
  std::cout << "  dry run: " << (dryRun ? "yes" : "no")
            << ", verbose: " << (flag(values, "verbose") ? "yes" : "no")
            << ", log level: " << values.getValue("logLevel").asString() << '\n';

  // A container: its values come from value files, never from the command line.
  const ValueGroup notify = values.getValueGroup("notify", nullptr, false);
  if (!notify.isNull()) {
    std::cout << "  report to " << notify.getValue("mailTo").asString() << " through "
              << notify.getValue("host").asString() << ':' << notify.getValue("port").asUInt32()
              << '\n';
  }

  // A dry run never retries. Changing the values now reaches the listener.
  if (dryRun) {
    Value given = values.getValue("retries", nullptr, false);
    if (!given.isNull()) {
      given.set(static_cast<uint32_t>(0));
    } else {
      values.addValue("retries", "0");
    }
    std::cout << "Dry run: nothing was written.\n";
  } else {
    std::cout << "This is an example: nothing was written.\n";
  }
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
#ifdef ZBACKUP_INSTALLATION
  // Where the example installation lives; a tool that runs inside the database host does not
  // need this, the host knows its own directories.
  zelk::host::hostSetDirectories(ZBACKUP_INSTALLATION "/etc", ZBACKUP_INSTALLATION "/plugins",
                                 ZBACKUP_INSTALLATION "/config");
#endif
  ConfigurationManager* manager = nullptr;
  try {
    manager = ConfigurationManager::getInstance();
    // The machine file is allowed; there is no application file of our own.
    manager->enableConfiguration(true, nullptr, static_cast<unsigned int>(argc), argv,
                                 SPECIFICATION);
  } catch (const std::exception& e) {
    std::cerr << SPECIFICATION << ": " << e.what() << '\n';
    return EXIT_USAGE;
  }

  ChangeReporter reporter;
  reporter.startListeningTo(manager->getSpecification(SPECIFICATION));

  ValueGroup values;
  try {
    values = manager->getValueGroup(SPECIFICATION, true, 0);
  } catch (const ValidationException& e) {
    for (size_t i = 0; i < e.getErrors().getNumberOfErrors(); ++i) {
      std::cerr << SPECIFICATION << ": " << e.getErrors().getError(i) << '\n';
    }
    printUsage(*manager, std::cerr);
    return EXIT_USAGE;
  } catch (const ConfigurationException& e) {
    std::cerr << SPECIFICATION << ": " << e.what() << '\n';
    return EXIT_USAGE;
  }

  if (flag(values, "help")) {
    printHelp(*manager, *manager->getSpecification(SPECIFICATION));
    return 0;
  }
  try {
    return backUp(values);
  } catch (const ConfigurationException& e) {
    // A value from a file that does not convert to its type shows up when it is read.
    std::cerr << SPECIFICATION << ": " << e.what() << '\n';
    return EXIT_USAGE;
  }
}
