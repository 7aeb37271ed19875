#include "formats/native_text.h"

#include <array>
#include <cctype>
#include <charconv>
#include <cmath>
#include <cstring>

namespace velantis {

namespace {

constexpr std::array<std::string_view, 12> kMonths = {"JAN", "FEB", "MAR", "APR", "MAY", "JUN",
                                                       "JUL", "AUG", "SEP", "OCT", "NOV", "DEC"};
constexpr int kTwoDigitYearPivot = 62;  // 62..99 are 19xx, 00..61 are 20xx
constexpr TCalendarTime kNullDate{1962, 3, 27, 0, 0, 0};

void AppendTwoDigits(std::string& out, int value) {
  out.push_back(static_cast<char>('0' + value / 10 % 10));
  out.push_back(static_cast<char>('0' + value % 10));
}

bool IsBlank(char c) { return c == ' ' || c == '\t'; }

int MonthNumber(std::string_view name) {
  if (name.size() != 3) return 0;
  for (size_t m = 0; m < kMonths.size(); ++m) {
    bool same = true;
    for (size_t k = 0; k < 3; ++k)
      same = same && std::toupper(static_cast<unsigned char>(name[k])) == kMonths[m][k];
    if (same) return static_cast<int>(m) + 1;
  }
  return 0;
}

template <typename TInt>
bool ParseWhole(std::string_view text, TInt& value) {
  text = TrimBlanks(text);
  if (!text.empty() && text.front() == '+') text.remove_prefix(1);
  if (text.empty()) return false;
  TInt parsed{};
  const auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), parsed);
  if (ec != std::errc() || end != text.data() + text.size()) return false;
  value = parsed;
  return true;
}

}  // namespace

void AppendReal(std::string& out, double value, int precision) {
  char buffer[400];
  const auto result = std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::fixed, precision);
  if (result.ec != std::errc()) {
    out += "0";
    return;
  }
  out.append(buffer, result.ptr);
}

void AppendInt(std::string& out, int64_t value) {
  char buffer[24];
  out.append(buffer, std::to_chars(buffer, buffer + sizeof buffer, value).ptr);
}

void AppendUnsigned(std::string& out, uint64_t value) {
  char buffer[24];
  out.append(buffer, std::to_chars(buffer, buffer + sizeof buffer, value).ptr);
}

void AppendDateTime(std::string& out, TDateTime time, bool fourDigitYear) {
  TCalendarTime c = kNullDate;
  if (!time.IsNull()) {
    const double seconds = std::round(time.Days() * kSecondsPerDay);
    if (!TDateTime::FromDays(seconds / kSecondsPerDay).ToCalendar(c)) c = kNullDate;
  }
  AppendTwoDigits(out, c.day);
  out.push_back('-');
  out += kMonths[static_cast<size_t>(c.month - 1)];
  out.push_back('-');
  if (fourDigitYear) {
    AppendInt(out, c.year);
  } else {
    AppendTwoDigits(out, ((c.year % 100) + 100) % 100);
  }
  out.push_back(' ');
  AppendTwoDigits(out, c.hour);
  out.push_back(':');
  AppendTwoDigits(out, c.minute);
  out.push_back(':');
  AppendTwoDigits(out, static_cast<int>(c.second));
}

bool ParseDateTime(std::string_view date, std::string_view time, TDateTime& result) {
  std::string_view d[3];
  std::string_view t[3];
  if (SplitAt(date, '-', d, 3) != 3 || SplitAt(time, ':', t, 3) != 3) return false;
  TCalendarTime c;
  const int month = MonthNumber(d[1]);
  if (month == 0 || !ParseInt(d[0], c.day) || !ParseInt(d[2], c.year) || !ParseInt(t[0], c.hour) ||
      !ParseInt(t[1], c.minute) || !ParseReal(t[2], c.second))
    return false;
  c.month = month;
  if (TrimBlanks(d[2]).size() <= 2) c.year += c.year >= kTwoDigitYearPivot ? 1900 : 2000;
  if (c.year == kNullDate.year && c.month == kNullDate.month && c.day == kNullDate.day && c.hour == 0 &&
      c.minute == 0 && c.second == 0) {
    result = TDateTime();
    return true;
  }
  const TDateTime parsed = TDateTime::FromCalendar(c);
  if (parsed.IsNull()) return false;
  result = parsed;
  return true;
}

std::string_view TrimBlanks(std::string_view text) {
  while (!text.empty() && IsBlank(text.front())) text.remove_prefix(1);
  while (!text.empty() && IsBlank(text.back())) text.remove_suffix(1);
  return text;
}

bool ParseReal(std::string_view text, double& value) {
  text = TrimBlanks(text);
  if (!text.empty() && text.front() == '+') text.remove_prefix(1);
  if (text.empty()) return false;
  double parsed = 0;
  const auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), parsed);
  if (ec != std::errc() || end != text.data() + text.size()) return false;
  value = parsed;
  return true;
}

bool ParseInt(std::string_view text, int64_t& value) { return ParseWhole(text, value); }
bool ParseInt(std::string_view text, int& value) { return ParseWhole(text, value); }

size_t SplitBlanks(std::string_view line, std::string_view* fields, size_t maxFields) {
  size_t count = 0;
  size_t i = 0;
  while (count < maxFields) {
    while (i < line.size() && IsBlank(line[i])) ++i;
    if (i == line.size()) break;
    if (count + 1 == maxFields) {
      fields[count++] = line.substr(i);
      break;
    }
    const size_t start = i;
    while (i < line.size() && !IsBlank(line[i])) ++i;
    fields[count++] = line.substr(start, i - start);
  }
  return count;
}

size_t SplitAt(std::string_view line, char separator, std::string_view* fields, size_t maxFields) {
  size_t count = 0;
  while (count + 1 < maxFields) {
    const size_t at = line.find(separator);
    if (at == std::string_view::npos) break;
    fields[count++] = line.substr(0, at);
    line.remove_prefix(at + 1);
  }
  if (maxFields > 0) fields[count++] = line;
  return count;
}

std::string RemoveChars(std::string_view text, std::string_view remove) {
  std::string out;
  out.reserve(text.size());
  for (const char c : text)
    if (remove.find(c) == std::string_view::npos) out.push_back(c);
  return out;
}

std::string ReplaceChars(std::string_view text, std::string_view from, char to) {
  std::string out(text);
  for (char& c : out)
    if (from.find(c) != std::string_view::npos) c = to;
  return out;
}

bool TLineCursor::Next(std::string_view& line) {
  if (m_next >= m_bytes.size()) return false;
  m_lineStart = m_next;
  const void* found = std::memchr(m_bytes.data() + m_next, '\n', m_bytes.size() - m_next);
  size_t end = found ? static_cast<size_t>(static_cast<const char*>(found) - m_bytes.data()) : m_bytes.size();
  m_next = found ? end + 1 : end;
  if (end > m_lineStart && m_bytes[end - 1] == '\r') --end;
  line = m_bytes.substr(m_lineStart, end - m_lineStart);
  return true;
}

TRecordLine SplitRecord(std::string_view line) {
  TRecordLine record;
  if (line.empty()) return record;
  record.letter = line[0];
  size_t skip = 1;
  for (int k = 0; k < 2 && skip < line.size() && line[skip] == ' '; ++k) ++skip;
  record.content = line.substr(skip);
  return record;
}

}  // namespace velantis
