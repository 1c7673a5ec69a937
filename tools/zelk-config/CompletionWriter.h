// CompletionWriter: a bash, zsh or fish completion script for a tool, generated from its
// specification (CompletionModel), so that completion follows the registry instead of being
// written by hand.
//
//   writeBashCompletion(std::cout, *specification);
//   // then, in bash: source <(zelk-config -completion bash -specification zbackup)
//
// What the script offers: for a word that starts with "-", the tool's flags as declared (hidden
// parameters and parameters inside containers left out, -loadConfiguration added); after a flag
// of an enumeration, its labels; after a flag whose value names a file (its value name is "file",
// ends in "file" or is "path") file names, after one that names a directory ("directory", "dir")
// directory names; after a boolean switch, which takes no value, and after any other flag,
// nothing. The flag before the word is recognised in any letter case, as the library does.
//
// Registry texts are not trusted: every label and flag name is a single-quoted array element of
// the script (ShellText.h), never a word list that the shell expands, and a completion is
// inserted quoted (printf %q), so that a label such as "$(rm x)" is offered as those characters
// and runs neither when Tab is pressed nor when the command line is run.
#pragma once

#include <iosfwd>

namespace zelk::configuration {
class Specification;
}

namespace zelk::configtool {

void writeBashCompletion(std::ostream& out, const configuration::Specification& specification);

// The same completion for zsh (a function for compdef, words offered through compadd, which
// quotes what it inserts) and for fish (complete commands, whose word lists are quoted twice:
// fish reads them once when the script is sourced and again when Tab is pressed). Flags are
// matched in the letter case they are declared in, as zsh and fish match options.
void writeZshCompletion(std::ostream& out, const configuration::Specification& specification);
void writeFishCompletion(std::ostream& out, const configuration::Specification& specification);

}  // namespace zelk::configtool
