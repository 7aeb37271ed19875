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

// Reals are most of what a track file holds, so the common cases take a
// short way that gives the very same text and values as the general one.
//
// Printing: a value a float holds exactly (the altitudes, speeds and other
// receiver values of a track point) with at most six decimals. Its count of
// the last printed unit, value x 10^precision, is exact in a double (24 bits
// of float times 5^6 < 2^14 fit in 53), so rounding that count to nearest,
// ties to even, gives the digits to_chars and printf give.
constexpr int kMaxExactDecimals = 6;
constexpr double kPowersOfTen[] = {1e0, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8, 1e9, 1e10, 1e11,
                                   1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
constexpr uint64_t kWholePowersOfTen[] = {1, 10, 100, 1000, 10000, 100000, 1000000};
constexpr double kMaxExactMagnitude = 1e12;

bool AppendExactReal(std::string& out, double value, int precision) {
  if (precision < 0 || precision > kMaxExactDecimals || !(std::fabs(value) < kMaxExactMagnitude) ||
      static_cast<double>(static_cast<float>(value)) != value)
    return false;
  const double scaled = std::fabs(value) * kPowersOfTen[precision];
  double units = std::floor(scaled);
  const double rest = scaled - units;  // exact: both below 2^53
  if (rest > 0.5 || (rest == 0.5 && std::fmod(units, 2.0) != 0)) units += 1;
  const auto count = static_cast<uint64_t>(units);
  const uint64_t unit = kWholePowersOfTen[precision];
  char buffer[48];
  char* end = buffer;
  if (std::signbit(value)) *end++ = '-';
  end = std::to_chars(end, buffer + sizeof buffer, count / unit).ptr;
  if (precision > 0) {
    *end++ = '.';
    uint64_t fraction = count % unit;
    for (int k = precision - 1; k >= 0; --k) {
      end[k] = static_cast<char>('0' + fraction % 10);
      fraction /= 10;
    }
    end += precision;
  }
  out.append(buffer, end);
  return true;
}

// Reading: "[-]digits[.digits]" with at most 19 digits in all. When they
// make a whole number up to 2^53 with at most 22 decimals, the number and
// the power of ten are exact doubles and one division, correctly rounded
// (the default rounding mode), gives the correctly rounded value, as
// from_chars does. Anything else ("1.", ".5", exponents, longer texts) goes
// the general way.
constexpr size_t kMaxPlainDigits = 19;
constexpr uint64_t kMaxExactWhole = uint64_t{1} << 53;

bool ParsePlainReal(std::string_view text, double& value) {
  size_t i = 0;
  const bool negative = text[0] == '-';
  if (negative) ++i;
  uint64_t digits = 0;
  size_t count = 0, decimals = 0;
  const size_t wholeStart = i;
  while (i < text.size() && text[i] >= '0' && text[i] <= '9') digits = digits * 10 + static_cast<uint64_t>(text[i++] - '0');
  if (i == wholeStart) return false;
  count = i - wholeStart;
  if (i < text.size() && text[i] == '.') {
    const size_t fractionStart = ++i;
    while (i < text.size() && text[i] >= '0' && text[i] <= '9' && count < kMaxPlainDigits) {
      digits = digits * 10 + static_cast<uint64_t>(text[i++] - '0');
      ++count;
    }
    decimals = i - fractionStart;
    if (decimals == 0) return false;
  }
  if (i != text.size() || count > kMaxPlainDigits || digits > kMaxExactWhole ||
      decimals >= std::size(kPowersOfTen))
    return false;
  const double magnitude = static_cast<double>(digits) / kPowersOfTen[decimals];
  value = negative ? -magnitude : magnitude;
  return true;
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
  if (AppendExactReal(out, value, precision)) return;
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
    // A time beyond the calendar's reach (only a damaged file gives one) is
    // written like a null one.
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
  if (ParsePlainReal(text, value)) return true;
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
  const char* at = line.data();
  const char* const end = at + line.size();
  while (count < maxFields) {
    while (at != end && IsBlank(*at)) ++at;
    if (at == end) break;
    if (count + 1 == maxFields) {
      fields[count++] = std::string_view(at, static_cast<size_t>(end - at));
      break;
    }
    const char* const start = at;
    while (at != end && !IsBlank(*at)) ++at;
    fields[count++] = std::string_view(start, static_cast<size_t>(at - start));
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
