#include "comm/nmea_fields.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>

#include "core/date_time.h"

namespace velantis {
namespace {

constexpr double kMinutesPerDegree = 60.0;
constexpr double kMaxLatitudeDeg = 90.0;
constexpr double kMaxLongitudeDeg = 180.0;
constexpr double kSecondsBelow = 61.0;  // a leap second is 60.x

bool IsDigit(char c) { return c >= '0' && c <= '9'; }
int Digit(char c) { return c - '0'; }
int TwoDigits(std::string_view text, size_t at) {
  return Digit(text[at]) * 10 + Digit(text[at + 1]);
}

int DaysInMonth(int year, int month) {
  constexpr int kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  const bool leap = (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
  return month == 2 && leap ? 29 : kDays[month - 1];
}

std::string_view WithoutPlus(std::string_view text) {
  if (!text.empty() && text.front() == '+') text.remove_prefix(1);
  return text;
}

// "ddmm.mmmm": the number as a real, split into whole degrees and minutes
// (the subtraction is exact: the value and its hundreds lie within a factor
// of two of each other or the minutes are the whole value).
bool ParseAngle(std::string_view value, double maxDegrees, double& degrees) {
  if (value.empty() || !IsDigit(value.front())) return false;
  double number = 0;
  const auto [end, ec] = std::from_chars(value.data(), value.data() + value.size(), number,
                                         std::chars_format::fixed);
  if (ec != std::errc() || end != value.data() + value.size()) return false;
  const double whole = std::floor(number / 100.0);
  const double minutes = number - whole * 100.0;
  if (!(minutes < kMinutesPerDegree)) return false;
  degrees = whole + minutes / kMinutesPerDegree;
  return degrees <= maxDegrees;
}

// +1 for the positive letter, -1 for the negative one, 0 for anything else.
int HemisphereSign(std::string_view letter, char positive, char negative) {
  if (letter.size() != 1) return 0;
  const char c = static_cast<char>(letter.front() & ~0x20);  // upper case
  return c == positive ? 1 : c == negative ? -1 : 0;
}

bool ParseSignedAngle(std::string_view value, std::string_view hemisphere, double maxDegrees,
                      char positive, char negative, double& degrees) {
  const int sign = HemisphereSign(hemisphere, positive, negative);
  double magnitude = 0;
  if (sign == 0 || !ParseAngle(value, maxDegrees, magnitude)) return false;
  degrees = sign * magnitude;
  return true;
}

}  // namespace

bool ParseNmeaReal(std::string_view text, double& value) {
  text = WithoutPlus(text);
  if (text.empty()) return false;
  double parsed = 0;
  const auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), parsed);
  if (ec != std::errc() || end != text.data() + text.size() || !std::isfinite(parsed)) return false;
  value = parsed;
  return true;
}

bool ParseNmeaInt(std::string_view text, int& value) {
  text = WithoutPlus(text);
  if (text.empty()) return false;
  int parsed = 0;
  const auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), parsed);
  if (ec != std::errc() || end != text.data() + text.size()) return false;
  value = parsed;
  return true;
}

bool ParseNmeaTime(std::string_view text, double& secondsOfDay) {
  if (text.size() < 6) return false;
  for (size_t i = 0; i < 6; ++i)
    if (!IsDigit(text[i])) return false;
  const int hours = TwoDigits(text, 0);
  const int minutes = TwoDigits(text, 2);
  double seconds = 0;
  const std::string_view rest = text.substr(4);
  const auto [end, ec] = std::from_chars(rest.data(), rest.data() + rest.size(), seconds,
                                         std::chars_format::fixed);
  if (ec != std::errc() || end != rest.data() + rest.size()) return false;
  if (hours > 23 || minutes > 59 || !(seconds < kSecondsBelow)) return false;
  secondsOfDay = hours * 3600.0 + minutes * 60.0 + seconds;
  return true;
}

bool ParseNmeaDate(std::string_view text, double& days) {
  if (text.size() != 6) return false;
  for (const char c : text)
    if (!IsDigit(c)) return false;
  const int yy = TwoDigits(text, 4);
  const int year = yy >= kNmeaCenturyPivot ? 1900 + yy : 2000 + yy;
  const int month = TwoDigits(text, 2);
  const int day = TwoDigits(text, 0);
  // The calendar would carry "310224" into March: a receiver's date is read
  // as it stands or not at all.
  if (month < 1 || month > 12 || day < 1 || day > DaysInMonth(year, month)) return false;
  const TDateTime date = TDateTime::FromCalendar(year, month, day);
  if (date.IsNull()) return false;
  days = date.Days();
  return true;
}

bool ParseNmeaLatitude(std::string_view value, std::string_view hemisphere, double& degrees) {
  return ParseSignedAngle(value, hemisphere, kMaxLatitudeDeg, 'N', 'S', degrees);
}

bool ParseNmeaLongitude(std::string_view value, std::string_view hemisphere, double& degrees) {
  return ParseSignedAngle(value, hemisphere, kMaxLongitudeDeg, 'E', 'W', degrees);
}

float NarrowToFloat(double value) {
  constexpr double kMax = std::numeric_limits<float>::max();
  if (std::isnan(value)) return std::numeric_limits<float>::quiet_NaN();
  return static_cast<float>(std::clamp(value, -kMax, kMax));
}

}  // namespace velantis
