// ShellText: registry texts (labels, flag names, tool names) made safe to put into a generated
// shell script or a line of a report. Registry files are not trusted: a label such as "$(rm x)"
// must reach the user as those characters and never run, and a file name with a newline must not
// forge a second report line.
//
//   script << "words=(" << shellWord(label) << ")\n";     // bash and zsh
//   script << "complete -c tool -a " << fishWord(label);   // fish
//   std::cout << printable(path) << ": " << message << '\n';
#pragma once

#include <string>
#include <vector>

namespace zelk::configtool {

// text as one single-quoted word of bash, zsh or any POSIX shell: nothing inside is expanded.
// A quote inside is written as '\'' (close, escaped quote, reopen).
std::string shellWord(const std::string& text);
// A bash or zsh array assignment, name=('w1' 'w2' ...), each word quoted by shellWord.
std::string shellArray(const char* name, const std::vector<std::string>& words);

// text as one single-quoted word of fish, where a backslash and a quote inside single quotes are
// escaped with a backslash.
std::string fishWord(const std::string& text);

// text with every control character (below 0x20, and 0x7F) written as a C escape ("\n", "\t",
// "\x1b"), so that it takes exactly one line of output or of a script comment. Other bytes,
// UTF-8 included, are kept.
std::string printable(const std::string& text);

}  // namespace zelk::configtool
