#include "core/track_statistics.h"

#include <geodesic.h>  // PROJ's geodesic routines, the code behind `geod -I`
#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "core/geodesic.h"
#include "core/track.h"
#include "formats/igc_file.h"
#include "tests/support/testdata.h"

namespace velantis {
namespace {

// On the equator the geodesic is the equator itself, a·Δλ long: metres map
// to longitude exactly, which lets the cases below state distances by hand.
constexpr double kWgs84SemiMajorM = 6378137.0;
constexpr double kMetresPerDegreeEquator = kWgs84SemiMajorM * M_PI / 180.0;

const TDateTime kStart = TDateTime::FromCalendar(2021, 3, 6, 10, 0, 0);

TrkPnt At(double metresEast, double seconds, float altitude = kAltitudeUnknownM, bool newSegment = false) {
  TrkPnt p;
  p.lon = metresEast / kMetresPerDegreeEquator;
  p.time = seconds < 0 ? TDateTime() : kStart.PlusSeconds(seconds);
  p.altitude = altitude;
  p.SetStartsSegment(newSegment);
  return p;
}

// Published geodesic distances on WGS 84; a track's own distance is
// compared with PROJ on real flights below.
TEST(TrackStatistics, LegsMatchPublishedGeodesics) {
  const struct {
    double lat1, lon1, lat2, lon2, metres;
    const char* source;
  } published[] = {
      {0, 0, 0, 1, 111319.491, "one degree along the equator, a*pi/180"},
      {0, 0, 1, 0, 110574.389, "meridian arc from the equator to 1 N"},
      {40.6, -73.8, 51.6, -0.5, 5551759.400, "JFK to LHR, GeographicLib's documented example"},
  };
  for (const auto& c : published) {
    EXPECT_NEAR(GeodesicDistanceM(c.lat1, c.lon1, c.lat2, c.lon2), c.metres, 0.001) << c.source;
  }
}

// Points one a second, all at one place, at these altitudes.
std::vector<TrkPnt> Standing(std::initializer_list<float> altitudes) {
  std::vector<TrkPnt> points;
  for (float altitude : altitudes) points.push_back(At(0, static_cast<double>(points.size()), altitude));
  return points;
}

// Moving time counts legs of half a metre a second and more; the top speed
// is taken over five seconds; a new segment's gap is not travelled; ascent
// and descent count changes past the 5 m hysteresis.
TEST(TrackStatistics, DistanceTimesTopSpeedAndClimb) {
  // 3 legs of 110 m in 10 s, 4 standing legs, 3 m in 10 s (drift), 6 m in 10 s (a slow walk).
  const std::vector<TrkPnt> walk = {At(0, 0),    At(110, 10), At(220, 20), At(330, 30), At(330, 40),
                                    At(330, 50), At(330, 60), At(330, 70), At(333, 80), At(339, 90)};
  // 10 m/s for 20 s with the fix at 10 s thrown 60 m ahead: over five
  // seconds the worst window holds 150 m (210 m at 11 s, 60 m at 6 s).
  std::vector<TrkPnt> glitch;
  for (int t = 0; t <= 20; ++t) glitch.push_back(At(t == 10 ? 160.0 : 10.0 * t, t));
  const std::vector<TrkPnt> gap = {At(0, 0), At(100, 10), At(1000, 600, kAltitudeUnknownM, true), At(1100, 610)};
  const struct {
    std::vector<TrkPnt> points;
    double distance, moving, duration, maxKmh, ascent, descent;
  } cases[] = {
      {walk, 339, 40, 90, NAN, 0, 0},
      {glitch, 300, 20, 20, 30 * kMsToKmh, 0, 0},
      {gap, 200, 20, 610, 36, 0, 0},
      {Standing({0, 10, 20, 30}), 0, 0, 3, 0, 30, 0},
      {Standing({0, 3, -2, 4, 1}), 0, 0, 4, 0, 0, 0},            // noise under 5 m adds nothing
      {Standing({100, 110, 104, 120, 90}), 0, 0, 4, 0, 26, 36},  // turns of 6 m and more count
      {Standing({0, 4, 8}), 0, 0, 2, 0, 8, 0},                   // a slow climb counts once past 5 m
      {Standing({0, -9999, 10}), 0, 0, 2, 0, 10, 0},             // unknown altitudes are skipped
      {Standing({50, 47}), 0, 0, 1, 0, 0, 0},                    // a last change under 5 m is not counted
      {{}, 0, 0, 0, 0, 0, 0},
  };
  for (size_t i = 0; i < std::size(cases); ++i) {
    SCOPED_TRACE(i);
    const TTrackStatistics s = ComputeTrackStatistics(cases[i].points, 0);
    EXPECT_NEAR(s.distanceM, cases[i].distance, 1e-6);
    EXPECT_NEAR(s.movingTimeS, cases[i].moving, 1e-5);
    EXPECT_NEAR(s.durationS, cases[i].duration, 1e-6);
    if (!std::isnan(cases[i].maxKmh)) {
      EXPECT_NEAR(s.maxSpeedKmh, cases[i].maxKmh, 1e-4);
    }
    EXPECT_EQ(s.ascentM, cases[i].ascent);
    EXPECT_EQ(s.descentM, cases[i].descent);
  }
  const std::vector<double> cumulative = CumulativeDistances(gap);
  ASSERT_EQ(cumulative.size(), 4u);
  EXPECT_NEAR(cumulative[2], 100.0, 1e-6);
  EXPECT_NEAR(cumulative[3], 200.0, 1e-6);
}

// Real flights: the track distance against PROJ's geodesic inverse summed
// over the same fixes (an independent implementation of the geodesic, the
// one `geod -I` prints). The flight logs are read by the IGC reader.
TTrack ReadIgc(const std::filesystem::path& file) {
  TTrack track;
  std::string error;
  EXPECT_TRUE(ReadIgcFile(file.string(), TNativeOptions(), track, error)) << error;
  return track;
}

TEST(TrackStatistics, RealFlightDistancesAgreeWithProjGeod) {
  geod_geodesic wgs84;
  geod_init(&wgs84, kWgs84SemiMajorM, 1 / 298.257223563);
  // Fix counts and durations against the manifest are the IGC reader's tests.
  for (const char* file : {"igc/marcourt.igc", "igc/tri.igc", "igc/flat-xcontest-8.01.igc", "igc/d3p.igc",
                           "igc/line.igc", "igc/9crx3101.igc", "igc/01lz1hq1.igc"}) {
    SCOPED_TRACE(file);
    VELANTIS_TESTDATA_OR_SKIP(path, file);
    TTrack track = ReadIgc(path);
    double reference = 0;
    for (size_t i = 1; i < track.Count(); ++i) {
      const TrkPnt &a = track.Point(i - 1), &b = track.Point(i);
      double s12 = 0, azi1 = 0, azi2 = 0;
      geod_inverse(&wgs84, a.lat, a.lon, b.lat, b.lon, &s12, &azi1, &azi2);
      reference += s12;
    }
    track.Recalculate();
    const TTrackStatistics& s = track.Statistics();
    EXPECT_GT(reference, 500.0);
    EXPECT_NEAR(s.distanceM, reference, 1e-3 + reference * 1e-12);
    EXPECT_LE(s.movingTimeS, s.durationS);
  }
}

}  // namespace
}  // namespace velantis
