// The real receiver captures through `velantis nmea --json`, fix by fix
// against what a real gpsd reports for the same capture (`gpsfake -1 -q -p`
// replays it through a pseudo-terminal into gpsd and prints its TPV reports).
//
// A gpsd report is matched with our fixes at the same time of day: positions
// within 1e-7 degrees, altitudes within 1 cm, speed and course to the digits
// gpsd prints. Left out, because our rules differ on purpose:
// - dates: gpsd moves old receivers' dates by 1024-week rollovers and fills
//   dates from other sentences; only the time of day is compared;
// - cycles: gpsd merges a second's sentences into one report, we print a fix
//   for each GGA and RMC: any of our fixes of that second may match, and
//   values gpsd took from another sentence are compared only where ours has
//   them (altitude: a GGA's 0 m is none for us, RMC carries none; speed and
//   course: seconds with a moving RMC, since gpsd replaces a speed of 0);
// - GLL: after the first GGA or RMC the live handling takes no GLL positions;
//   an unmatched gpsd report must be a GLL position of that second;
// - altitude of Garmin receivers: gpsd takes $PGRMZ (whole feet) over GGA's.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <map>
#include <set>
#include <sstream>

#include "tests/cli/run_velantis.h"
#include "tests/support/testdata.h"

namespace velantis::test {
namespace {

constexpr double kDegreeTolerance = 1e-7, kAltitudeToleranceM = 0.01;
constexpr double kSpeedToleranceMs = 0.0011;  // gpsd prints m/s with 3 decimals
constexpr double kCourseToleranceDeg = 0.0001;

struct TReport {
  std::string time, second;  // "hh:mm:ss.sss" and "hhmmss", empty when gpsd trusts no time
  double lat = NAN, lon = NAN, alt = NAN, speedMs = NAN, courseDeg = NAN;
};

// The number after "key": in a JSON line, NaN when absent or null.
double Number(const std::string& line, const std::string& key) {
  const size_t at = line.find("\"" + key + "\":");
  if (at == std::string::npos) return NAN;
  char* end = nullptr;
  const double value = std::strtod(line.c_str() + at + key.size() + 3, &end);
  return end == line.c_str() + at + key.size() + 3 ? NAN : value;
}

// A report's time of day and values under the names gpsd or we give them.
TReport Report(const std::string& line, const char* alt, const char* speed, double speedScale,
               const char* course) {
  const size_t at = line.find("\"time\":\"");
  const std::string time = at == std::string::npos ? "" : line.substr(at + 19, 12);
  std::string second = time.substr(0, 8);
  std::erase(second, ':');
  return {time, second, Number(line, "lat"), Number(line, "lon"), Number(line, alt),
          Number(line, speed) * speedScale, Number(line, course)};
}

// gpsd's reports. gpsfake has been seen to hang when its gpsd dies at start:
// it is killed after a minute and tried once more.
std::vector<TReport> GpsdReports(const std::filesystem::path& capture, int tries = 2) {
  FILE* pipe = popen(("timeout -s KILL 60 gpsfake -1 -q -p '" + capture.string() + "' 2>/dev/null").c_str(), "r");
  std::vector<TReport> reports;
  char buffer[8192];
  while (pipe && std::fgets(buffer, sizeof buffer, pipe)) {
    const std::string line = buffer;
    if (line.find("\"class\":\"TPV\"") != std::string::npos && !std::isnan(Number(line, "lat")))
      reports.push_back(Report(line, "altMSL", "speed", 1, "track"));
  }
  if (pipe) pclose(pipe);
  return reports.empty() && tries > 1 ? GpsdReports(capture, tries - 1) : reports;
}

// Degrees of an NMEA "ddmm.mmmm" field and its hemisphere letter.
double Degrees(const std::string& value, const std::string& hemisphere, size_t degreeDigits) {
  char* end = nullptr;
  const double number = std::strtod(value.c_str(), &end);
  if (value.size() <= degreeDigits || *end != '\0') return NAN;
  const double whole = std::floor(number / 100);
  return (hemisphere == "S" || hemisphere == "W" ? -1 : 1) * (whole + (number - whole * 100) / 60);
}

// What the capture holds by second: its GLL positions, the seconds of a
// moving RMC, whether a Garmin altitude sentence stands in it.
struct TCaptureIndex {
  std::multimap<std::string, TReport> gll;
  std::set<std::string> movingRmc;
  bool garminAltitude = false;
};

TCaptureIndex IndexCapture(const std::filesystem::path& capture) {
  std::ifstream in(capture);
  TCaptureIndex index;
  for (std::string line; std::getline(in, line);) {
    const size_t dollar = line.find('$');
    if (dollar == std::string::npos || line.size() < dollar + 7) continue;
    std::vector<std::string> f;
    std::istringstream fields(line.substr(dollar, line.find('*', dollar) - dollar));
    for (std::string field; std::getline(fields, field, ',');) f.push_back(field);
    const std::string kind = f[0].size() > 3 ? f[0].substr(3) : "";  // past "$" and the talker
    if (kind == "RMC" && f.size() > 7 && std::atof(f[7].c_str()) > 0 && f[1].size() >= 6)
      index.movingRmc.insert(f[1].substr(0, 6));
    index.garminAltitude |= f[0] == "$PGRMZ";
    if (kind == "GLL" && f.size() > 5 && f[5].size() >= 6)
      index.gll.insert({f[5].substr(0, 6), {"", "", Degrees(f[1], f[2], 2), Degrees(f[3], f[4], 3)}});
  }
  return index;
}

bool SamePosition(const TReport& ours, const TReport& gpsd) {
  return std::fabs(ours.lat - gpsd.lat) <= kDegreeTolerance && std::fabs(ours.lon - gpsd.lon) <= kDegreeTolerance;
}

class NmeaAgainstGpsd : public ::testing::TestWithParam<const char*> {};

TEST_P(NmeaAgainstGpsd, EveryGpsdFixIsOneOfOurs) {
  if (std::system("command -v gpsfake > /dev/null 2>&1") != 0) GTEST_SKIP() << "gpsfake missing";
  VELANTIS_TESTDATA_OR_SKIP(capture, std::string("nmea/") + GetParam());
  const std::vector<TReport> reports = GpsdReports(capture);
  ASSERT_FALSE(reports.empty()) << "gpsd reported no position";
  const TRunResult run = RunVelantis({"nmea", "--json", capture.string()});
  ASSERT_EQ(run.exitCode, 0) << run.err;
  std::multimap<std::string, TReport> fixes;  // our valid fixes by time of day
  std::istringstream lines(run.out);
  for (std::string line; std::getline(lines, line);)
    if (line.find("\"valid\":true") != std::string::npos) {
      const TReport fix = Report(line, "alt", "speed_kmh", 1 / 3.6, "course_deg");
      fixes.insert({fix.time, fix});
    }
  const TCaptureIndex index = IndexCapture(capture);
  size_t matched = 0;
  for (const TReport& gpsd : reports) {
    // Without a time gpsd trusts (a receiver in demo mode) any fix may match.
    const auto [first, last] = gpsd.time.empty() ? std::pair{fixes.begin(), fixes.end()}
                                                 : fixes.equal_range(gpsd.time);
    std::vector<const TReport*> same;
    for (auto it = first; it != last; ++it)
      if (SamePosition(it->second, gpsd)) same.push_back(&it->second);
    if (same.empty()) {
      const auto [gllFirst, gllLast] = index.gll.equal_range(gpsd.second);
      EXPECT_TRUE(std::any_of(gllFirst, gllLast, [&](const auto& gll) { return SamePosition(gll.second, gpsd); }))
          << "gpsd's fix at " << gpsd.time << " " << gpsd.lat << " " << gpsd.lon << " is neither ours nor a GLL position";
      continue;
    }
    ++matched;
    const bool altitudes = !index.garminAltitude && !std::isnan(gpsd.alt) &&
                           std::any_of(same.begin(), same.end(), [](const TReport* o) { return !std::isnan(o->alt); });
    EXPECT_TRUE(!altitudes || std::any_of(same.begin(), same.end(), [&](const TReport* o) {
      return std::fabs(o->alt - gpsd.alt) <= kAltitudeToleranceM;
    })) << "altitude at " << gpsd.time << ": gpsd " << gpsd.alt;
    EXPECT_TRUE(!index.movingRmc.count(gpsd.second) || std::any_of(same.begin(), same.end(), [&](const TReport* o) {
      return (std::isnan(gpsd.speedMs) || std::fabs(o->speedMs - gpsd.speedMs) <= kSpeedToleranceMs) &&
             (std::isnan(gpsd.courseDeg) || std::fabs(o->courseDeg - gpsd.courseDeg) <= kCourseToleranceDeg);
    })) << "speed and course at " << gpsd.time << ": gpsd " << gpsd.speedMs << " m/s " << gpsd.courseDeg;
  }
  RecordProperty("matched", static_cast<int>(matched));
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
