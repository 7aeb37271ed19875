#include "core/date_time.h"

#include <gtest/gtest.h>

#include <cmath>
#include <tuple>

namespace velantis {
namespace {

// Day counts from 30 December 1899, as spreadsheets and desktop programs
// count them (1 January 2000 is day 36526 in all of them).
TEST(DateTime, CalendarToDaysAndBack) {
  const struct {
    TCalendarTime time;
    double days;
  } cases[] = {
      {{1899, 12, 30, 0, 0, 0}, 0.0},          {{1900, 3, 1, 0, 0, 0}, 61.0},
      {{2000, 1, 1, 12, 0, 0}, 36526.5},       {{2000, 2, 29, 18, 0, 0}, 36585.75},
      {{1962, 3, 27, 0, 0, 0}, 22732.0},       {{1899, 12, 29, 18, 0, 0}, -0.25},  // floor before the epoch
      {{1800, 1, 1, 0, 0, 0}, -36522.0},
  };
  for (const auto& c : cases) {
    const TDateTime t = TDateTime::FromCalendar(c.time);
    EXPECT_DOUBLE_EQ(t.Days(), c.days);
    TCalendarTime back;
    ASSERT_TRUE(t.ToCalendar(back));
    EXPECT_EQ(std::tie(back.year, back.month, back.day, back.hour, back.minute),
              std::tie(c.time.year, c.time.month, c.time.day, c.time.hour, c.time.minute))
        << c.days;
  }
  EXPECT_TRUE(TDateTime().IsNull());
  EXPECT_FALSE(TDateTime() == TDateTime::FromDays(0));
  EXPECT_TRUE(TDateTime::FromCalendar(2021, 13, 1).IsNull());
  EXPECT_EQ(TDateTime::FromCalendar(2019, 12, 31, 23, 59, 59.9996).ToIsoText(), "2020-01-01 00:00:00");
}

TEST(DateTime, BeyondTheCalendarsReach) {
  TCalendarTime c;
  for (const double days : {kMaxCalendarDays * 1.01, -kMaxCalendarDays * 1.01, 1e300, HUGE_VAL, -HUGE_VAL}) {
    EXPECT_FALSE(TDateTime::FromDays(days).ToCalendar(c)) << days;
    EXPECT_EQ(TDateTime::FromDays(days).ToIsoText(), "") << days;
  }
  ASSERT_TRUE(TDateTime::FromDays(kMaxCalendarDays * 0.99).ToCalendar(c));
  EXPECT_GT(c.year, kMaxCalendarYear * 0.98);
  EXPECT_TRUE(TDateTime::FromCalendar(kMaxCalendarYear + 1, 1, 1).IsNull());
  EXPECT_TRUE(TDateTime::FromCalendar(-kMaxCalendarYear - 1, 1, 1).IsNull());
  EXPECT_FALSE(TDateTime::FromCalendar(kMaxCalendarYear, 12, 31).IsNull());
}

}  // namespace
}  // namespace velantis
