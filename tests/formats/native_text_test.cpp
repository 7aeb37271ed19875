// The number, date and field forms every native file shares.
#include "formats/native_text.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <random>
#include <vector>

namespace velantis {
namespace {

TEST(NativeText, RealsPrintLikePrintf) {
  std::mt19937_64 random(7);
  std::uniform_real_distribution<double> value(-1e7, 1e7);
  const double fixed[] = {0.0, -0.0, 0.5, 1.0000005, -9999.0, 123456789.125, 1e-7, 2.5e-6, 0.0000005};
  auto check = [](double v, int precision) {
    char expected[512];
    std::snprintf(expected, sizeof expected, "%.*f", precision, v);
    std::string text;
    AppendReal(text, v, precision);
    EXPECT_EQ(text, expected) << v;
  };
  for (const double v : fixed) check(v, 6);
  for (int i = 0; i < 20000; ++i) check(value(random), i % 2 ? 6 : 3);
}

TEST(NativeText, DateTextsAndTheirWindow) {
  struct Case {
    TCalendarTime time;
    const char* text;
  };
  const Case cases[] = {
      {{2024, 6, 5, 13, 7, 0}, "05-JUN-24 13:07:00"},
      {{1962, 3, 28, 0, 0, 0}, "28-MAR-62 00:00:00"},
      {{2061, 12, 31, 23, 59, 59}, "31-DEC-61 23:59:59"},
      {{1999, 1, 1, 0, 0, 0.4}, "01-JAN-99 00:00:00"},
      {{2000, 2, 29, 23, 59, 59.6}, "01-MAR-00 00:00:00"},
  };
  for (const Case& c : cases) {
    std::string text;
    AppendDateTime(text, TDateTime::FromCalendar(c.time));
    EXPECT_EQ(text, c.text);
    TDateTime back;
    ASSERT_TRUE(ParseDateTime(text.substr(0, 9), text.substr(10), back)) << text;
    EXPECT_NEAR(back.Days(), TDateTime::FromCalendar(c.time).Days(), 0.6 / kSecondsPerDay) << text;
  }
  std::string null;
  AppendDateTime(null, TDateTime());
  EXPECT_EQ(null, kNullDateText);
  TDateTime back = TDateTime::FromDays(1);
  ASSERT_TRUE(ParseDateTime("27-mar-62", "00:00:00", back));
  EXPECT_TRUE(back.IsNull());
  ASSERT_TRUE(ParseDateTime("5-Jun-2024", "13:07:30.5", back));
  EXPECT_EQ(back, TDateTime::FromCalendar(2024, 6, 5, 13, 7, 30.5));
  std::string whole;
  AppendDateTime(whole, TDateTime::FromDays(0.5), true);
  EXPECT_EQ(whole, "30-DEC-1899 12:00:00");
  for (const auto& [date, time] : {std::pair{"05-JUX-24", "13:07:00"}, {"05-JUN", "13:07:00"}, {"05-JUN-24", "13:07"},
                                   {"AA-JUN-24", "13:07:00"}, {"31-FEB-24", "25:00:00"}})
    EXPECT_FALSE(ParseDateTime(date, time, back)) << date << " " << time;
}

TEST(NativeText, FieldSplitting) {
  std::string_view f[4];
  const auto fields = [&f](size_t count) { return std::vector<std::string_view>(f, f + count); };
  using TFields = std::vector<std::string_view>;
  EXPECT_EQ(fields(SplitBlanks("  a \t b   c d e", f, 4)), (TFields{"a", "b", "c", "d e"}));
  EXPECT_EQ(SplitBlanks(" \t ", f, 4), 0u);
  EXPECT_EQ(fields(SplitAt("a,,b,c,d", ',', f, 4)), (TFields{"a", "", "b", "c,d"}));
  EXPECT_EQ(fields(SplitAt("", ',', f, 4)), (TFields{""}));
}

TEST(NativeText, NumbersWholeOrNothing) {
  double real = 1;
  int whole = 1;
  EXPECT_TRUE(ParseReal(" +12.5 ", real));
  EXPECT_EQ(real, 12.5);
  for (const char* bad : {"", "1.5x", "x", "1 2", "+"}) {
    EXPECT_FALSE(ParseReal(bad, real)) << bad;
    EXPECT_FALSE(ParseInt(bad, whole)) << bad;
  }
  EXPECT_FALSE(ParseInt("99999999999", whole));
  EXPECT_TRUE(ParseInt("-42", whole));
  EXPECT_EQ(whole, -42);
}

}  // namespace
}  // namespace velantis
