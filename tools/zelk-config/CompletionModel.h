// CompletionModel: what the completion of a tool's command line offers, read once from its
// specification; each shell's script (CompletionWriter.h) is written from it, so that bash, zsh
// and fish complete by the same rules.
//
//   const CompletionModel model = CompletionModel::of(*specification);
//   for (const std::string& flag : model.flags) ...          // "-database", ..., "-loadConfiguration"
//   model.values.at("-mode").labels                           // {"full", "incremental", ...}
#pragma once

#include <map>
#include <string>
#include <vector>

namespace zelk::configuration {
class Specification;
}

namespace zelk::configtool {

struct CompletionModel {
  // What the word after a flag that takes a value completes to.
  enum ValueKind {
    TYPED,        // the user's to type: nothing is offered
    LABELS,       // the labels of an enumeration
    FILES,        // file names (the value name is "file", ends in "file", or is "path")
    DIRECTORIES,  // directory names (the value name ends in "directory" or "dir")
  };
  struct ValueCompletion {
    ValueKind kind = TYPED;
    std::vector<std::string> labels;  // for LABELS, in the order declared
  };

  std::string tool;           // the tool's name, which the completion is registered for
  std::string specification;  // its specification's id
  // The flags offered for a word that starts with "-": the tool's flags as declared, in
  // specification order (hidden parameters and parameters inside containers left out), then
  // -loadConfiguration.
  std::vector<std::string> flags;
  // Every flag that takes a value (hidden ones included), in lower case, with what its value
  // completes to. Boolean switches take none.
  std::map<std::string, ValueCompletion> values;

  // What the value after flag (any letter case) completes to; null for a flag that takes none.
  const ValueCompletion* valueAfter(const std::string& flag) const;

  // A shell function name for the script: "_zelk_complete_" and the letters, digits and
  // underscores of the tool's name (any other character becomes "_").
  std::string functionName() const;

  static CompletionModel of(const configuration::Specification& specification);
};

}  // namespace zelk::configtool
