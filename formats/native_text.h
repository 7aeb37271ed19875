// The text pieces every native file (WPT, RTE, TRK) is made of: numbers
// printed the way the files print them, the date text, fields split the way
// the readers split them, and the walk over the lines of a file.
//
// Numbers: reals as "%lf" (six decimals) or with a set precision, signed
// integers as "%d", unsigned ones as "%u". std::to_chars gives the same
// digits as printf (both round the exact binary value) without the locale
// and several times faster, which matters for tracks of a million points.
//
// Date text: two-digit day, "-", upper-case English month, "-", two-digit
// year, a blank and hh:mm:ss, e.g. "05-JUN-24 13:07:00", in UTC. Two-digit
// years 62 to 99 are 1962 to 1999, 00 to 61 are 2000 to 2061. A null time is
// written "27-MAR-62 00:00:00", and that text reads back as null. Times are
// written to the nearest whole second.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "core/date_time.h"

namespace velantis {

inline constexpr std::string_view kCrLf = "\r\n";
inline constexpr std::string_view kNullDateText = "27-MAR-62 00:00:00";

void AppendReal(std::string& out, double value, int precision = 6);
void AppendInt(std::string& out, int64_t value);
void AppendUnsigned(std::string& out, uint64_t value);
// fourDigitYear writes the year whole ("30-DEC-1899 12:00:00"), for values
// outside the two-digit window.
void AppendDateTime(std::string& out, TDateTime time, bool fourDigitYear = false);

// Reads a date field ("05-JUN-24", month in any case; a four-digit year is
// taken as it is) and a time field ("13:07:00", seconds may have decimals).
// The null text gives a null time. False when either is unreadable.
bool ParseDateTime(std::string_view date, std::string_view time, TDateTime& result);

// The text without its leading and trailing blanks and tabs.
std::string_view TrimBlanks(std::string_view text);

// Whole numbers and reals of a field, the whole field or nothing; leading
// and trailing blanks are allowed, a leading "+" too.
bool ParseReal(std::string_view text, double& value);
bool ParseInt(std::string_view text, int64_t& value);
bool ParseInt(std::string_view text, int& value);

// Splits line at blanks and tabs; runs of them count as one and leading ones
// are skipped. At most maxFields fields: the last one then holds the rest of
// the line as it stands. Returns the number of fields.
size_t SplitBlanks(std::string_view line, std::string_view* fields, size_t maxFields);
// Splits at every occurrence of separator (empty fields kept), at most
// maxFields, the last holding the rest.
size_t SplitAt(std::string_view line, char separator, std::string_view* fields, size_t maxFields);

// The text with every character of remove taken out.
std::string RemoveChars(std::string_view text, std::string_view remove);
// The text with every character of from replaced by to.
std::string ReplaceChars(std::string_view text, std::string_view from, char to);

// The lines of a file's bytes, each without its CR LF (a lone LF ends a line
// too). Offset() is the byte offset of the line last returned.
class TLineCursor {
public:
  explicit TLineCursor(std::string_view bytes) : m_bytes(bytes) {}
  bool Next(std::string_view& line);
  size_t Offset() const { return m_lineStart; }

private:
  std::string_view m_bytes;
  size_t m_next = 0;
  size_t m_lineStart = 0;
};

// A record line's letter and its content: "W  text" gives 'W' and "text".
// The content starts after the blanks that follow the letter.
struct TRecordLine {
  char letter = 0;
  std::string_view content;
};
TRecordLine SplitRecord(std::string_view line);

}  // namespace velantis
