// The real receiver captures through `velantis nmea --json`, fix by fix
// against a real gpsd's TPV reports (gpsfake replays a capture through a
// pseudo-terminal into gpsd): positions within 1e-7 degrees, altitude 1 cm,
// speed and course to gpsd's digits. On purpose we differ: only the time of
// day is compared (gpsd applies week rollovers); gpsd merges a second into
// one report (altitude where one of ours has it, a Garmin's from $PGRMZ for
// gpsd; speed and course with a moving RMC); after the first GGA or RMC we
// take no GLL, so a report with no fix of ours must be a GLL position.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <set>
#include <sstream>

#include "tests/cli/run_velantis.h"
#include "tests/support/testdata.h"

namespace velantis::test {
namespace {

constexpr double kDegreeTolerance = 1e-7, kAltitudeToleranceM = 0.01;
constexpr double kSpeedToleranceMs = 0.0011, kCourseToleranceDeg = 0.0001;  // gpsd's digits

// A report or fix: "hhmmss" (empty when gpsd trusts no time), the full time of day, the values.
struct TFix {
  std::string second, time;
  double lat = NAN, lon = NAN, alt = NAN, speedMs = NAN, courseDeg = NAN;
};
double Number(const std::string& line, const std::string& key) {
  const size_t at = line.find("\"" + key + "\":");
  char* end = nullptr;
  const double value = at == std::string::npos ? NAN : std::strtod(line.c_str() + at + key.size() + 3, &end);
  return end == line.c_str() + at + key.size() + 3 ? NAN : value;
}
// The fixes of a text of JSON lines: gpsd's TPV reports or our valid fixes.
std::multimap<std::string, TFix> Fixes(const std::string& text, bool gpsd) {
  std::multimap<std::string, TFix> fixes;
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) {
    if (line.find(gpsd ? "\"class\":\"TPV\"" : "\"valid\":true") == std::string::npos || std::isnan(Number(line, "lat")))
      continue;
    const size_t at = line.find("\"time\":\"");
    const std::string time = at == std::string::npos ? "" : line.substr(at + 19, 12);
    const std::string second = time.empty() ? "" : time.substr(0, 2) + time.substr(3, 2) + time.substr(6, 2);
    fixes.insert({time, {second, time, Number(line, "lat"), Number(line, "lon"), Number(line, gpsd ? "altMSL" : "alt"),
                         Number(line, gpsd ? "speed" : "speed_kmh") / (gpsd ? 1 : 3.6),
                         Number(line, gpsd ? "track" : "course_deg")}});
  }
  return fixes;
}
// gpsfake has been seen to hang when its gpsd dies at start: killed after a minute, tried once more.
std::string GpsdOutput(const std::filesystem::path& capture) {
  std::string out;
  for (int tries = 0; tries < 2 && out.find("\"lat\":") == std::string::npos; ++tries) {
    FILE* pipe = popen(("timeout -s KILL 60 gpsfake -1 -q -p '" + capture.string() + "' 2>/dev/null").c_str(), "r");
    char buffer[8192];
    for (size_t n; pipe && (n = fread(buffer, 1, sizeof buffer, pipe)) > 0;) out.append(buffer, n);
    if (pipe) pclose(pipe);
  }
  return out;
}
double Degrees(const std::string& value, const std::string& side, size_t degreeDigits) {
  const double number = value.size() > degreeDigits ? std::atof(value.c_str()) : NAN, whole = std::floor(number / 100);
  return (side == "S" || side == "W" ? -1 : 1) * (whole + (number - whole * 100) / 60);
}
bool SamePosition(const TFix& a, const TFix& b) {
  return std::fabs(a.lat - b.lat) <= kDegreeTolerance && std::fabs(a.lon - b.lon) <= kDegreeTolerance;
}

class NmeaAgainstGpsd : public ::testing::TestWithParam<const char*> {};

TEST_P(NmeaAgainstGpsd, EveryGpsdFixIsOneOfOurs) {
  if (std::system("command -v gpsfake > /dev/null 2>&1") != 0) GTEST_SKIP() << "gpsfake missing";
  VELANTIS_TESTDATA_OR_SKIP(capture, std::string("nmea/") + GetParam());
  const auto reports = Fixes(GpsdOutput(capture), true);
  ASSERT_FALSE(reports.empty()) << "gpsd reported no position";
  const TRunResult run = RunVelantis({"nmea", "--json", capture.string()});
  ASSERT_EQ(run.exitCode, 0) << run.err;
  const auto fixes = Fixes(run.out, false);
  // The capture's GLL positions and moving RMCs by second; a Garmin altitude.
  std::multimap<std::string, TFix> gll;
  std::set<std::string> movingRmc;
  bool garminAltitude = false;
  std::istringstream in(FileBytes(capture));
  for (std::string line; std::getline(in, line);) {
    std::vector<std::string> f;
    std::istringstream fields(line.substr(std::min(line.find('$'), line.size()), line.find('*') - line.find('$')));
    for (std::string field; std::getline(fields, field, ',');) f.push_back(field);
    const std::string kind = f.empty() || f[0].size() < 6 ? "" : f[0].substr(3);
    if (kind == "RMC" && f.size() > 7 && std::atof(f[7].c_str()) > 0 && f[1].size() >= 6) movingRmc.insert(f[1].substr(0, 6));
    if (kind == "GLL" && f.size() > 5 && f[5].size() >= 6)
      gll.insert({f[5].substr(0, 6), {"", "", Degrees(f[1], f[2], 2), Degrees(f[3], f[4], 3)}});
    garminAltitude |= !f.empty() && f[0] == "$PGRMZ";
  }
  size_t matched = 0;
  for (const auto& [time, gpsd] : reports) {
    // Without a time gpsd trusts (a receiver in demo mode) any fix may match.
    const auto [first, last] = time.empty() ? std::pair{fixes.begin(), fixes.end()} : fixes.equal_range(time);
    std::vector<TFix> same;
    for (auto it = first; it != last; ++it)
      if (SamePosition(it->second, gpsd)) same.push_back(it->second);
    const auto [gllFirst, gllLast] = gll.equal_range(gpsd.second);
    if (same.empty()) {
      EXPECT_TRUE(std::any_of(gllFirst, gllLast, [&](const auto& g) { return SamePosition(g.second, gpsd); }))
          << "gpsd's fix at " << time << " " << gpsd.lat << " " << gpsd.lon << " is neither ours nor a GLL position";
      continue;
    }
    ++matched;
    const auto any = [&](auto test) { return std::any_of(same.begin(), same.end(), test); };
    const bool altitudes = !garminAltitude && !std::isnan(gpsd.alt) && any([](const TFix& o) { return !std::isnan(o.alt); });
    EXPECT_TRUE(!altitudes || any([&](const TFix& o) { return std::fabs(o.alt - gpsd.alt) <= kAltitudeToleranceM; }))
        << "altitude at " << time << ": gpsd " << gpsd.alt;
    EXPECT_TRUE(!movingRmc.count(gpsd.second) || any([&](const TFix& o) {
      return (std::isnan(gpsd.speedMs) || std::fabs(o.speedMs - gpsd.speedMs) <= kSpeedToleranceMs) &&
             (std::isnan(gpsd.courseDeg) || std::fabs(o.courseDeg - gpsd.courseDeg) <= kCourseToleranceDeg);
    })) << "speed and course at " << time << ": gpsd " << gpsd.speedMs << " m/s " << gpsd.courseDeg;
  }
  EXPECT_GT(matched, reports.size() / 2) << matched << " of " << reports.size();
}

INSTANTIATE_TEST_SUITE_P(Captures, NmeaAgainstGpsd,
                         ::testing::Values("humminbird-M37.log", "hemi.log", "neo-m8n.log", "ublox-neo-m9n-nmea.log",
                                           "firefly-II.log", "GPSmap-76S.log", "garmin-geko201.log", "triton400.log",
                                           "et-332.log", "ais-nmea.log", "saab-r4.log",
                                           "gp-320fw-2019-04-07-coldboot.log"),
                         TFileParamName());

}  // namespace
}  // namespace velantis::test
