// Date-time of the data model: a count of days as a double, the whole part
// the date and the fraction the time of day, with a distinct null state (no
// time).
//
// Day 0 is 30 December 1899 at 00:00 (the usual day-count epoch of desktop
// programs), so 1 January 2000 is day 36526. The calendar is the proleptic
// Gregorian one, in whatever time zone the owner keeps (the elements keep
// UTC). Dates before the epoch use floor semantics: day -0.25 is 29 December
// 1899 at 18:00. Null is held as a NaN, so a TDateTime is eight bytes and a
// plain value inside packed point records.
#pragma once

#include <cmath>
#include <limits>
#include <string>

namespace velantis {

// A broken-down date and time; second may carry a fraction.
struct TCalendarTime {
  int year = 1899;
  int month = 12;  // 1..12
  int day = 30;    // 1..31
  int hour = 0;
  int minute = 0;
  double second = 0;
};

inline constexpr double kSecondsPerDay = 86400.0;
// The calendar's reach: years -1,000,000 to 1,000,000, some 365 million days
// either side of the epoch. Times beyond it (only damaged files give them)
// have no calendar form.
inline constexpr int kMaxCalendarYear = 1'000'000;
inline constexpr double kMaxCalendarDays = 365.2425 * kMaxCalendarYear;

class TDateTime {
public:
  constexpr TDateTime() = default;  // null
  static constexpr TDateTime FromDays(double days) { return TDateTime(days); }
  // No range check beyond the calendar's: month 1..12, day 1..31, hour
  // 0..23, minute 0..59, second 0..<61, a year within kMaxCalendarYear;
  // anything else gives a null time.
  static TDateTime FromCalendar(const TCalendarTime& time);
  static TDateTime FromCalendar(int year, int month, int day, int hour = 0, int minute = 0,
                                double second = 0) {
    return FromCalendar(TCalendarTime{year, month, day, hour, minute, second});
  }

  bool IsNull() const { return std::isnan(m_days); }
  // The day count; NaN when null.
  double Days() const { return m_days; }

  // False for a null time and one beyond kMaxCalendarDays (or not finite). Seconds are rounded to whole milliseconds first,
  // so 23:59:59.9996 reads as the next day at 00:00:00.
  bool ToCalendar(TCalendarTime& time) const;

  // Seconds from this time to later (negative when later is earlier); NaN
  // when either is null.
  double SecondsTo(TDateTime later) const { return (later.m_days - m_days) * kSecondsPerDay; }
  TDateTime PlusSeconds(double seconds) const { return TDateTime(m_days + seconds / kSecondsPerDay); }

  // "YYYY-MM-DD hh:mm:ss" (whole seconds, rounded), or "" when null.
  std::string ToIsoText() const;

  // Two nulls are equal; a null never equals a time.
  friend bool operator==(TDateTime a, TDateTime b) {
    return (a.IsNull() && b.IsNull()) || a.m_days == b.m_days;
  }

private:
  constexpr explicit TDateTime(double days) : m_days(days) {}
  double m_days = std::numeric_limits<double>::quiet_NaN();
};

}  // namespace velantis
