#include "cli/fix_output.h"

#include <charconv>
#include <cstdio>
#include <numbers>

#include "cli/text_output.h"

namespace velantis::cli {

namespace {

constexpr int kDegreeDecimals = 9;
constexpr int kSpeedDecimals = 3;
constexpr int kCourseDecimals = 4;
constexpr double kDegreesPerRadian = 180 / std::numbers::pi;

// The shortest text that reads back to the same float ("0.9", "268").
std::string ShortFloat(float value) {
  char text[32];
  const auto [end, ec] = std::to_chars(text, text + sizeof text, value);
  return std::string(text, ec == std::errc() ? end : text);
}

std::string IsoMilliseconds(TDateTime time) {
  TCalendarTime c;
  if (!time.ToCalendar(c)) return "";
  char text[40];
  std::snprintf(text, sizeof text, "%04d-%02d-%02dT%02d:%02d:%06.3fZ", c.year, c.month, c.day,
                c.hour, c.minute, c.second);
  return text;
}

bool HasAltitude(const TPosicionNMEA& fix) {
  return fix.valid && fix.altitude != kAltitudeUnknownM;
}

// The position of a valid fix, absent for an invalid one.
std::string Degrees(const TPosicionNMEA& fix, double degrees, const char* absent) {
  return fix.valid ? Fixed(degrees, kDegreeDecimals) : std::string(absent);
}

}  // namespace

std::string FixJson(const TPosicionNMEA& fix) {
  const std::string time = IsoMilliseconds(fix.time);
  return "{\"time\":" + (time.empty() ? std::string("null") : JsonString(time)) +
         ",\"lat\":" + Degrees(fix, fix.lat, "null") +
         ",\"lon\":" + Degrees(fix, fix.lon, "null") +
         ",\"alt\":" + (HasAltitude(fix) ? ShortFloat(fix.altitude) : "null") +
         ",\"speed_kmh\":" + Fixed(fix.speedKmh, kSpeedDecimals) +
         ",\"course_deg\":" + Fixed(fix.courseRad * kDegreesPerRadian, kCourseDecimals) +
         ",\"valid\":" + (fix.valid ? "true" : "false") +
         ",\"sats\":" + std::to_string(fix.satellites) + ",\"hdop\":" + ShortFloat(fix.hdop) + "}";
}

std::string FixText(const TPosicionNMEA& fix) {
  const std::string time = IsoMilliseconds(fix.time);
  return (time.empty() ? std::string("-") : time) + " " + Degrees(fix, fix.lat, "-") + " " +
         Degrees(fix, fix.lon, "-") + " " +
         (HasAltitude(fix) ? ShortFloat(fix.altitude) : "-") + " " +
         Fixed(fix.speedKmh, kSpeedDecimals) + " " +
         Fixed(fix.courseRad * kDegreesPerRadian, kCourseDecimals) + " " +
         (fix.valid ? "valid" : "invalid") + " " + std::to_string(fix.satellites) + " " +
         ShortFloat(fix.hdop);
}

}  // namespace velantis::cli
