#include "core/date_time.h"

#include <cstdio>

namespace velantis {
namespace {

// Days from 1970-01-01 to 1899-12-30.
constexpr long kEpochShiftDays = -25569;

// Days since 1970-01-01 of a proleptic Gregorian date (H. Hinnant's
// days_from_civil: eras of 400 years, March-based years so that the leap day
// is the last of the year).
long DaysFromCivil(long y, unsigned m, unsigned d) {
  y -= m <= 2;
  const long era = (y >= 0 ? y : y - 399) / 400;
  const unsigned yoe = static_cast<unsigned>(y - era * 400);
  const unsigned doy = (153 * (m + (m > 2 ? -3 : 9)) + 2) / 5 + d - 1;
  const unsigned doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
  return era * 146097 + static_cast<long>(doe) - 719468;
}

void CivilFromDays(long z, int& year, int& month, int& day) {
  z += 719468;
  const long era = (z >= 0 ? z : z - 146096) / 146097;
  const unsigned doe = static_cast<unsigned>(z - era * 146097);
  const unsigned yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;
  const long y = static_cast<long>(yoe) + era * 400;
  const unsigned doy = doe - (365 * yoe + yoe / 4 - yoe / 100);
  const unsigned mp = (5 * doy + 2) / 153;
  day = static_cast<int>(doy - (153 * mp + 2) / 5 + 1);
  month = static_cast<int>(mp < 10 ? mp + 3 : mp - 9);
  year = static_cast<int>(y + (month <= 2));
}

}  // namespace

TDateTime TDateTime::FromCalendar(const TCalendarTime& t) {
  if (t.month < 1 || t.month > 12 || t.day < 1 || t.day > 31 || t.hour < 0 || t.hour > 23 ||
      t.minute < 0 || t.minute > 59 || !(t.second >= 0 && t.second < 61) || t.year > kMaxCalendarYear ||
      t.year < -kMaxCalendarYear)
    return TDateTime();
  const long days = DaysFromCivil(t.year, static_cast<unsigned>(t.month), static_cast<unsigned>(t.day)) -
                    kEpochShiftDays;
  const double seconds = t.hour * 3600.0 + t.minute * 60.0 + t.second;
  return TDateTime(static_cast<double>(days) + seconds / kSecondsPerDay);
}

bool TDateTime::ToCalendar(TCalendarTime& t) const {
  if (!(std::fabs(m_days) <= kMaxCalendarDays)) return false;
  double whole = std::floor(m_days);
  double millis = std::round((m_days - whole) * kSecondsPerDay * 1000.0);
  if (millis >= kSecondsPerDay * 1000.0) {
    whole += 1;
    millis -= kSecondsPerDay * 1000.0;
  }
  CivilFromDays(static_cast<long>(whole) + kEpochShiftDays, t.year, t.month, t.day);
  const long ms = static_cast<long>(millis);
  t.hour = static_cast<int>(ms / 3600000);
  t.minute = static_cast<int>(ms / 60000 % 60);
  t.second = static_cast<double>(ms % 60000) / 1000.0;
  return true;
}

std::string TDateTime::ToIsoText() const {
  if (IsNull()) return {};
  const TDateTime rounded(std::round(m_days * kSecondsPerDay) / kSecondsPerDay);
  TCalendarTime t;
  if (!rounded.ToCalendar(t)) return {};
  char text[40];
  std::snprintf(text, sizeof text, "%04d-%02d-%02d %02d:%02d:%02d", t.year, t.month, t.day, t.hour, t.minute,
                static_cast<int>(t.second));
  return text;
}

}  // namespace velantis
