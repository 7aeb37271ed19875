// GeneraResumen_TRK: the track's statistics as text.
#include <cmath>
#include <cstdio>

#include "core/track.h"

namespace velantis {
namespace {

std::string Format(const char* format, double value) {
  char text[64];
  std::snprintf(text, sizeof text, format, value);
  return text;
}

// Whole seconds as h:mm:ss (hours not limited to 24).
std::string Clock(double seconds) {
  const long total = std::lround(seconds);
  char text[48];
  std::snprintf(text, sizeof text, "%ld:%02ld:%02ld", total / 3600, total / 60 % 60, total % 60);
  return text;
}

}  // namespace

std::string TTrack::GeneraResumen_TRK() const {
  const TTrackStatistics& s = Statistics();
  std::string out;
  auto line = [&](const char* caption, const std::string& value) {
    out += caption;
    out += ": ";
    out += value;
    out += "\r\n";
  };
  line("Track", Name());
  line("Points", std::to_string(s.pointCount));
  line("Distance", Format("%.3f km", s.distanceM / 1000.0));
  if (s.hasTime) {
    line("Start", s.start.ToIsoText());
    line("End", s.end.ToIsoText());
    line("Duration", Clock(s.durationS));
    line("Moving time", Clock(s.movingTimeS));
    if (s.durationS > 0) line("Average speed", Format("%.1f km/h", s.distanceM / s.durationS * kMsToKmh));
    if (s.movingTimeS > 0)
      line("Average moving speed", Format("%.1f km/h", s.distanceM / s.movingTimeS * kMsToKmh));
  }
  if (s.hasSpeed) line("Maximum speed", Format("%.1f km/h", s.maxSpeedKmh));
  if (s.hasAltitude) {
    line("Minimum altitude", Format("%.0f m", s.minAltitudeM));
    line("Maximum altitude", Format("%.0f m", s.maxAltitudeM));
    line("Ascent", Format("%.0f m", s.ascentM));
    line("Descent", Format("%.0f m", s.descentM));
  }
  if (s.hasClimb) {
    line("Best climb", Format("%.1f m/s", s.maxClimbMs));
    line("Worst sink", Format("%.1f m/s", s.maxSinkMs));
  }
  return out;
}

}  // namespace velantis
