// HelpGenerator: writes the help table of a specification: one row per visible parameter
// reference, in specification order, with the flag (and its value name) in the first column and
// the description word-wrapped in the second. Both columns are padded with blanks to their full
// widths, so every line is as long as the screen minus one.
//
// The name column is 3 wider than the widest visible flag; the description column takes the rest
// of the screen less one. A screen narrower than the name column leaves descriptions unwrapped.
//
//   HelpGenerator help(80, 30);
//   spec->accept(help);
//   help.getHelp();   // "-port port       The port to listen on          ...\n"
#pragma once

#include <cstddef>
#include <sstream>
#include <string>

#include "zelk/configuration/GroupItemVisitor.h"

namespace zelk::configuration::impl {

class HelpGenerator : public GroupItemVisitor {
public:
  // maxParameterNameWidth is checked by the caller against screenWidth; the layout does not use
  // it.
  HelpGenerator(size_t screenWidth, size_t maxParameterNameWidth);
  ~HelpGenerator() override;

  // Measures the widest flag and sets the two column widths.
  bool visitSpecificationStart(const Specification& specification) override;
  // Throws std::invalid_argument "invalid utf-8 string" for a description that is not UTF-8.
  bool visitParameterRef(const ParameterRef& ref) override;

  size_t getNameColumnWidth() const { return mNameColumnWidth; }
  size_t getDescriptionWidth() const { return mDescriptionWidth; }
  // The text written so far.
  std::string getHelp() const;

private:
  std::ostringstream mOut;
  size_t mScreenWidth;
  size_t mMaxParameterNameWidth;
  size_t mNameColumnWidth;
  size_t mDescriptionWidth;
};

}  // namespace zelk::configuration::impl
