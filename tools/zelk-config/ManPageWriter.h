// ManPageWriter: a man page (roff, section 1) of a tool, generated from its specification, so
// that "man" shows what the registry declares.
//
//   writeManPage(std::cout, *specification, manager->composeUsageMessage("zbackup"));
//   // then: zelk-config -man -specification zbackup > zbackup.1 && man -l zbackup.1
//
// NAME comes from the title ("zbackup - backs up ..."; a title without " - " follows the tool's
// name), SYNOPSIS from the usage lines, DESCRIPTION from the description, OPTIONS from the
// parameters in specification order as the help lists them (hidden ones left out), each with its
// value name, description, type, enumeration labels and default; parameters inside a container
// are marked as read from value files only. FILES names machine.config and the value files given
// with -loadConfiguration. Registry texts are escaped for roff, so that no text can start a
// request or an escape of its own.
#pragma once

#include <iosfwd>
#include <string>

namespace zelk::configuration {
class Specification;
}

namespace zelk::configtool {

// usage is the library's usage text of the specification (lines that start with a tab).
void writeManPage(std::ostream& out, const configuration::Specification& specification,
                  const std::string& usage);

}  // namespace zelk::configtool
