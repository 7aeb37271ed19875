// Where a character offset of a script text lies for a reader: its line and
// column, and the text of that line, so a debugger or an error report can
// show the line and mark the token under it.
#pragma once

#include <string>
#include <string_view>

namespace velantis {

struct TTextPosition {
  int line = 1;          // from 1
  int column = 1;        // from 1, in bytes (the text is 8-bit)
  std::string lineText;  // the whole line, without its line break
};

// A line ends at a line feed, a carriage return, or the pair CR LF (which is
// one break: the scanner treats all three as white space). An offset outside
// the text lies just behind its last character.
TTextPosition LocateOffset(std::string_view text, int offset);

}  // namespace velantis
