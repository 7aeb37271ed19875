// The real receiver captures through `velantis nmea --json`, fix by fix
// against what a real gpsd reports for the same capture (`gpsfake -1 -q -p`
// replays it through a pseudo-terminal into gpsd and prints its TPV reports).
//
// A gpsd report is matched with the fix of ours at the same time of day; both
// positions must agree within 1e-7 degrees, altitudes within 1 cm, speed and
// course to the digits gpsd prints. Differences that our rules cause, and
// that the comparison therefore leaves out:
// - dates: gpsd moves the dates of old receivers forward by 1024-week
//   rollovers and fills dates from other sentences; we keep the date the
//   stream carries (today's when it carries none), so only the time of day is
//   compared;
// - cycles: gpsd merges the sentences of one second into one report; we
//   print a fix for each GGA and each RMC, so a gpsd report is matched by any
//   of our fixes of that second, and values gpsd took from another sentence
//   of the cycle (a speed from VTG beside a GGA) are compared only where our
//   fix carries them;
// - altitude: a GGA altitude of exactly 0 m means "no altitude" for us, and
//   RMC carries none; gpsd keeps the last one, so altitudes are compared only
//   where our fix has one;
// - GLL: after the first GGA or RMC the live handling no longer takes GLL
//   positions (they come without a fix quality), where gpsd reports them;
//   reports of seconds with only a GLL position are counted apart and must be
//   GLL seconds in the capture.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <map>
#include <set>
#include <sstream>

#include "tests/cli/run_velantis.h"
#include "tests/support/testdata.h"

namespace velantis::test {
namespace {

constexpr double kDegreeTolerance = 1e-7;
constexpr double kAltitudeToleranceM = 0.01;
constexpr double kSpeedToleranceMs = 0.0011;  // gpsd prints m/s with 3 decimals
constexpr double kCourseToleranceDeg = 0.0001;
constexpr double kMetresPerSecondPerKmh = 1 / 3.6;

struct TReport {
  std::string timeOfDay;  // "hh:mm:ss.sss"
  double lat = NAN, lon = NAN, alt = NAN, speedMs = NAN, courseDeg = NAN;
};

// The number after "key": in a JSON object line, NaN when absent or null.
double Number(const std::string& line, const std::string& key) {
  const size_t at = line.find("\"" + key + "\":");
  if (at == std::string::npos) return NAN;
  const char* start = line.c_str() + at + key.size() + 3;
  char* end = nullptr;
  const double value = std::strtod(start, &end);
  return end == start ? NAN : value;
}

std::string TimeOfDay(const std::string& line) {
  const size_t at = line.find("\"time\":\"");
  return at == std::string::npos ? "" : line.substr(at + 19, 12);
}

// gpsd's reports for the capture. gpsfake has been seen to hang when its
// gpsd dies at start; it is killed after a minute and tried once more.
std::vector<TReport> GpsdReports(const std::filesystem::path& capture, int tries = 2) {
  const std::string command =
      "timeout -s KILL 60 gpsfake -1 -q -p '" + capture.string() + "' 2>/dev/null";
  FILE* pipe = popen(command.c_str(), "r");
  std::vector<TReport> reports;
  if (!pipe) return reports;
  char buffer[8192];
  while (std::fgets(buffer, sizeof buffer, pipe)) {
    const std::string line = buffer;
    if (line.find("\"class\":\"TPV\"") == std::string::npos) continue;
    TReport report{TimeOfDay(line), Number(line, "lat"), Number(line, "lon"),
                   Number(line, "altMSL"), Number(line, "speed"), Number(line, "track")};
    if (!std::isnan(report.lat)) reports.push_back(report);
  }
  pclose(pipe);
  return reports.empty() && tries > 1 ? GpsdReports(capture, tries - 1) : reports;
}

std::multimap<std::string, TReport> OurFixes(const std::filesystem::path& capture) {
  const TRunResult run = RunVelantis({"nmea", "--json", capture.string()});
  EXPECT_EQ(run.exitCode, 0) << run.err;
  std::multimap<std::string, TReport> fixes;
  std::istringstream lines(run.out);
  for (std::string line; std::getline(lines, line);) {
    if (line.find("\"valid\":true") == std::string::npos) continue;
    fixes.insert({TimeOfDay(line),
                  {TimeOfDay(line), Number(line, "lat"), Number(line, "lon"), Number(line, "alt"),
                   Number(line, "speed_kmh") * kMetresPerSecondPerKmh, Number(line, "course_deg")}});
  }
  return fixes;
}

// A field's number; NaN when the field is not one (captures hold garbage).
double FieldNumber(const std::string& field) {
  char* end = nullptr;
  const double value = std::strtod(field.c_str(), &end);
  return field.empty() || *end != '\0' ? NAN : value;
}

// Degrees of an NMEA "ddmm.mmmm" field and its hemisphere letter.
double Degrees(const std::string& value, const std::string& hemisphere, int degreeDigits) {
  if (value.size() <= static_cast<size_t>(degreeDigits)) return NAN;
  const double degrees = FieldNumber(value.substr(0, degreeDigits)) +
                         FieldNumber(value.substr(degreeDigits)) / 60;
  return hemisphere == "S" || hemisphere == "W" ? -degrees : degrees;
}

std::vector<std::string> Fields(const std::string& sentence) {
  std::vector<std::string> fields;
  std::istringstream in(sentence.substr(0, sentence.find('*')));
  for (std::string field; std::getline(in, field, ',');) fields.push_back(field);
  return fields;
}

// What the capture holds by second ("hhmmss"): the GLL positions, and
// whether an RMC with a speed stands there.
struct TCaptureIndex {
  std::multimap<std::string, TReport> gll;
  std::set<std::string> rmcSeconds;
  // gpsd takes Garmin's $PGRMZ altitude (whole feet) over the GGA's.
  bool garminAltitude = false;
};

TCaptureIndex IndexCapture(const std::filesystem::path& capture) {
  std::ifstream in(capture);
  TCaptureIndex index;
  for (std::string line; std::getline(in, line);) {
    const size_t dollar = line.find('$');
    if (dollar == std::string::npos || line.size() < dollar + 7) continue;
    const std::vector<std::string> f = Fields(line.substr(dollar));
    const std::string kind = f[0].size() > 3 ? f[0].substr(3) : "";  // past "$" and the talker
    // A receiver standing still sends a speed of 0, which gpsd replaces by
    // one from successive positions, dropping the course: such RMCs are not
    // compared.
    const bool moving = f.size() > 7 && FieldNumber(f[7]) > 0;
    if (kind == "RMC" && moving && f[1].size() >= 6) index.rmcSeconds.insert(f[1].substr(0, 6));
    if (f[0] == "$PGRMZ") index.garminAltitude = true;
    if (kind == "GLL" && f.size() > 5 && f[5].size() >= 6) {
      TReport position;
      position.lat = Degrees(f[1], f[2], 2);
      position.lon = Degrees(f[3], f[4], 3);
      index.gll.insert({f[5].substr(0, 6), position});
    }
  }
  return index;
}

std::string Second(const std::string& timeOfDay) {
  std::string second = timeOfDay.substr(0, 8);
  std::erase(second, ':');
  return second;
}

bool SamePosition(const TReport& ours, const TReport& gpsd) {
  return std::fabs(ours.lat - gpsd.lat) <= kDegreeTolerance &&
         std::fabs(ours.lon - gpsd.lon) <= kDegreeTolerance;
}

bool SameMotion(const TReport& ours, const TReport& gpsd) {
  return (std::isnan(gpsd.speedMs) || std::fabs(ours.speedMs - gpsd.speedMs) <= kSpeedToleranceMs) &&
         (std::isnan(gpsd.courseDeg) ||
          std::fabs(ours.courseDeg - gpsd.courseDeg) <= kCourseToleranceDeg);
}

class NmeaAgainstGpsd : public ::testing::TestWithParam<const char*> {};

TEST_P(NmeaAgainstGpsd, EveryGpsdFixIsOneOfOurs) {
  if (std::system("command -v gpsfake > /dev/null 2>&1") != 0) GTEST_SKIP() << "gpsfake missing";
  VELANTIS_TESTDATA_OR_SKIP(capture, std::string("nmea/") + GetParam());
  const std::vector<TReport> reports = GpsdReports(capture);
  ASSERT_FALSE(reports.empty()) << "gpsd reported no position";
  const std::multimap<std::string, TReport> fixes = OurFixes(capture);
  const TCaptureIndex index = IndexCapture(capture);
  size_t matched = 0;
  for (const TReport& gpsd : reports) {
    // Receivers in demo mode give gpsd no time it trusts: any of our fixes
    // may then match.
    const auto [first, last] = gpsd.timeOfDay.empty()
                                   ? std::pair{fixes.begin(), fixes.end()}
                                   : fixes.equal_range(gpsd.timeOfDay);
    std::vector<const TReport*> same;
    for (auto it = first; it != last; ++it) {
      if (SamePosition(it->second, gpsd)) same.push_back(&it->second);
    }
    const std::string second = Second(gpsd.timeOfDay);
    if (same.empty()) {
      const auto [gllFirst, gllLast] = index.gll.equal_range(second);
      EXPECT_TRUE(std::any_of(gllFirst, gllLast, [&](const auto& gll) {
        return SamePosition(gll.second, gpsd);
      })) << "gpsd's fix at " << gpsd.timeOfDay << " " << gpsd.lat << " " << gpsd.lon
          << " is neither ours nor a GLL position";
      continue;
    }
    ++matched;
    // Without a time (a receiver in demo mode) the same position may stand at
    // several seconds with other altitudes: one of them must be gpsd's.
    std::vector<double> altitudes;
    for (const TReport* ours : same) {
      if (!std::isnan(ours->alt)) altitudes.push_back(ours->alt);
    }
    if (!index.garminAltitude && !std::isnan(gpsd.alt) && !altitudes.empty()) {
      EXPECT_TRUE(std::any_of(altitudes.begin(), altitudes.end(), [&](double alt) {
        return std::fabs(alt - gpsd.alt) <= kAltitudeToleranceM;
      })) << "altitude at " << gpsd.timeOfDay << ": gpsd " << gpsd.alt << ", ours " << altitudes[0];
    }
    // Speed and course of a second with an RMC: our fix of that RMC has gpsd's.
    if (index.rmcSeconds.count(second)) {
      EXPECT_TRUE(std::any_of(same.begin(), same.end(),
                              [&](const TReport* ours) { return SameMotion(*ours, gpsd); }))
          << "speed and course at " << gpsd.timeOfDay << ": gpsd " << gpsd.speedMs << " m/s "
          << gpsd.courseDeg << " deg";
    }
  }
  RecordProperty("gpsd_reports", static_cast<int>(reports.size()));
  RecordProperty("matched", static_cast<int>(matched));
  EXPECT_GT(matched, reports.size() / 2) << matched << " of " << reports.size();
}

INSTANTIATE_TEST_SUITE_P(Captures, NmeaAgainstGpsd,
                         ::testing::Values("humminbird-M37.log", "hemi.log", "neo-m8n.log",
                                           "ublox-neo-m9n-nmea.log", "firefly-II.log",
                                           "GPSmap-76S.log", "garmin-geko201.log",
                                           "triton400.log", "et-332.log", "ais-nmea.log",
                                           "saab-r4.log", "gp-320fw-2019-04-07-coldboot.log"), TFileParamName());

}  // namespace
}  // namespace velantis::test
