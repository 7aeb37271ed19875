#include "core/track.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "core/punt_vol.h"

namespace velantis {
namespace {

constexpr double kMetresPerDegreeEquator = 6378137.0 * M_PI / 180.0;
const TDateTime kT0 = TDateTime::FromCalendar(2018, 10, 12, 9, 30, 0);

// Points east along the equator: metres, seconds (negative: no time), altitude.
TTrack Equator(std::initializer_list<std::array<double, 3>> points) {
  TTrack t;
  for (const auto& [metres, seconds, altitude] : points)
    t.Anyade_Punto_Temps(0, metres / kMetresPerDegreeEquator, static_cast<float>(altitude),
                         seconds < 0 ? TDateTime() : kT0.PlusSeconds(seconds));
  return t;
}

TEST(Track, EditsMarkModifiedAndSideMapsFollowVacia) {
  TTrack t = Equator({{0, 0, 10}, {100, 10, 20}});
  TTextLabel label;
  label.text = "Bridge";
  t.SetPointLabel(1, label);
  t.EditPointProperties(0).Set("photo", "a.jpg");
  EXPECT_EQ(t.PointLabel(0), nullptr);
  EXPECT_EQ(t.PointLabel(1)->text, "Bridge");
  EXPECT_EQ(*t.PointProperties(0)->Find("photo"), "a.jpg");
  EXPECT_FALSE(t.SetText('N', "the name is the element's own"));
  void (*const edits[])(TTrack&) = {
      [](TTrack& x) { x.Vacia(); },
      [](TTrack& x) { x.SetColour({0, 128, 255}); },
      [](TTrack& x) { x.SetText('Z', "zone"); },
      [](TTrack& x) { x.SetTimeOffset(true, 1.0 / 24); },
      [](TTrack& x) { x.SetMarkedPairs({{1, 5}}); },
  };
  for (auto edit : edits) {
    t.MarkAsSaved();
    edit(t);
    EXPECT_TRUE(t.Modified());
  }
  EXPECT_EQ(t.Count(), 0u);
  EXPECT_EQ(t.PointLabel(1), nullptr);
  EXPECT_EQ(t.Text('Z'), "zone");
}

TEST(Track, DatosPorTiempoInterpolates) {
  // 0 m at 0 s (100 m up), 100 m at 10 s (200), an untimed point, 300 m at 30 s (100).
  const TTrack t = Equator({{0, 0, 100}, {100, 10, 200}, {150, -1, 999}, {300, 30, 100}});
  const struct {
    double seconds;  // NaN: a null time
    bool found;
    double metres, altitude;
  } cases[] = {{0, true, 0, 100},    {5, true, 50, 150},   {10, true, 100, 200}, {20, true, 200, 150},
               {30, true, 300, 100}, {-1, false, 0, 0},    {31, false, 0, 0},    {NAN, false, 0, 0}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.seconds);
    TrkPnt p;
    double distance = -1;
    const TDateTime when = std::isnan(c.seconds) ? TDateTime() : kT0.PlusSeconds(c.seconds);
    ASSERT_EQ(t.Datos_Por_Tiempo(when, p, distance), c.found);
    if (!c.found) continue;
    // Within 0.1 mm: the fraction of the interval comes from day counts.
    EXPECT_NEAR(p.lon * kMetresPerDegreeEquator, c.metres, 1e-4);
    EXPECT_NEAR(distance, c.metres, 1e-4);
    EXPECT_NEAR(p.altitude, c.altitude, 1e-3);
  }
}

TEST(Track, SummaryGivesTheStatistics) {
  // 10 legs of 0.01 degree on the equator, a minute each, 30 m up each:
  // a·0.1·pi/180 = 11131.949 m in 10 minutes.
  TTrack t;
  t.SetName("Equator");
  for (int i = 0; i <= 10; ++i) t.Anyade_Punto_Temps(0, i * 0.01, static_cast<float>(30 * i), kT0.PlusSeconds(60.0 * i));
  const std::string summary = t.GeneraResumen_TRK();
  for (const char* line : {"Track: Equator\r\n", "Points: 11\r\n", "Distance: 11.132 km\r\n",
                           "Start: 2018-10-12 09:30:00\r\n", "Duration: 0:10:00\r\n", "Moving time: 0:10:00\r\n",
                           "Average speed: 66.8 km/h\r\n", "Maximum altitude: 300 m\r\n", "Ascent: 300 m\r\n",
                           "Best climb: 0.5 m/s\r\n"})
    EXPECT_NE(summary.find(line), std::string::npos) << line << " in\n" << summary;
  const std::string untimed = Equator({{0, -1, -9999}, {1000, -1, -9999}}).GeneraResumen_TRK();
  EXPECT_NE(untimed.find("Distance: 1.000 km\r\n"), std::string::npos);
  for (const char* absent : {"Start", "speed", "altitude", "Ascent"}) EXPECT_EQ(untimed.find(absent), std::string::npos);
}

TEST(Track, FlightPoints) {
  // Fixes every 2 s, 20 m apart, climbing 3 m each; no altitude on the 4th.
  TTrack t;
  for (int i = 0; i < 12; ++i)
    t.Anyade_Punto_Temps(0, i * 20 / kMetresPerDegreeEquator, i == 3 ? -9999.0f : static_cast<float>(1000 + 3 * i),
                         kT0.PlusSeconds(2.0 * i));
  const std::vector<TPuntVolAVG> f = BuildFlightPoints(t, 10);
  ASSERT_EQ(f.size(), 12u);
  EXPECT_EQ(f[0].validity, 'A');
  EXPECT_EQ(f[3].validity, 'V');
  EXPECT_NEAR(f[2].climbMs, 1.5, 1e-5);
  EXPECT_EQ(f[4].climbMs, 0);          // no altitude at the fix before
  EXPECT_EQ(f[4].climbAverageMs, 0);   // only 8 s behind it
  EXPECT_NEAR(f[5].climbAverageMs, 1.5, 1e-5);
  EXPECT_NEAR(f[11].speedAverageKmh, 36, 1e-3);
}

}  // namespace
}  // namespace velantis
