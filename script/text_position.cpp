#include "script/text_position.h"

#include <algorithm>

namespace velantis {

namespace {

bool IsBreak(char c) { return c == '\n' || c == '\r'; }

}  // namespace

TTextPosition LocateOffset(std::string_view text, int offset) {
  // A negative offset, as size_t, is past the end as well.
  const size_t at = std::min(static_cast<size_t>(offset), text.size());
  TTextPosition position;
  size_t lineStart = 0;
  for (size_t i = 0; i < at; ++i) {
    if (!IsBreak(text[i])) continue;
    // CR LF is one break: the CR is skipped here, the LF ends the line.
    if (text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n') continue;
    ++position.line;
    lineStart = i + 1;
  }
  size_t lineEnd = lineStart;
  while (lineEnd < text.size() && !IsBreak(text[lineEnd])) ++lineEnd;
  position.column = static_cast<int>(at - lineStart) + 1;
  position.lineText.assign(text.substr(lineStart, lineEnd - lineStart));
  return position;
}

}  // namespace velantis
