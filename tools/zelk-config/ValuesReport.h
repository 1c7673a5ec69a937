// ValuesReport: the values a tool would get for its specification, with the source of each.
//
// It enables the configuration exactly as the tool would (value files through
// "-loadConfiguration", the application's file, the machine file, the tool's command line) and
// reads the specification's merged values. It then prints them in specification order, each with
// its type and where it came from (the command line, a value file, or the default), or prints
// every problem, one per line: what the library's validation finds, and what the tool would
// meet when reading the values (texts that do not convert to their type, texts that a
// parameter's validator rejects). With -json the values are printed as JSON, each with its type,
// texts and sources; with -export they are also written as a value file (ValueFileWriter).
#pragma once

#include <iosfwd>

namespace zelk::configtool {

struct Options;

// Runs the values command for options.specification on the installation the host answers with.
// Returns the exit status: EXIT_CLEAN when the values are good, EXIT_PROBLEMS otherwise.
int reportValues(const Options& options, std::ostream& out);

}  // namespace zelk::configtool
