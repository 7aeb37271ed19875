#include "comm/live_track_log.h"

#include <cstdio>
#include <filesystem>
#include <numbers>

#include "formats/trk_file.h"

namespace velantis {

namespace {

std::string DayText(TDateTime time) {
  TCalendarTime c;
  if (!time.ToCalendar(c)) return "";
  char text[16];
  std::snprintf(text, sizeof text, "%04d-%02d-%02d", c.year, c.month, c.day);
  return text;
}

}  // namespace

std::string TLiveTrackLog::PathOfDay(TDateTime day) const {
  return (std::filesystem::path(m_folder) /
          (std::string(kLiveTrackPrefix) + DayText(day) + ".trk"))
      .string();
}

bool TLiveTrackLog::OpenDay(TDateTime day, std::string& error) {
  const std::string path = PathOfDay(day);
  TTrack track;
  if (std::filesystem::exists(path)) {
    if (!ReadTrkFile(path, m_options, track, error)) return false;
  } else {
    track.SetName(std::string(kLiveTrackPrefix) + DayText(day));
    if (!WriteTrkFile(path, track, m_options, error)) return false;
  }
  m_track = std::move(track);
  m_path = path;
  return true;
}

bool TLiveTrackLog::Record(const TPosicionNMEA& fix, std::string& error) {
  if (!fix.valid || fix.time.IsNull()) return true;
  if (m_path != PathOfDay(fix.time) && !OpenDay(fix.time, error)) return false;
  if (m_track.Count() > 0 && !(m_track.Point(m_track.Count() - 1).time.SecondsTo(fix.time) > 0))
    return true;  // the GGA and the RMC of one second make one point
  TrkPnt point;
  point.lat = fix.lat;
  point.lon = fix.lon;
  point.time = fix.time;
  point.altitude = fix.altitude;
  point.speedKmh = static_cast<float>(fix.speedKmh);
  point.courseDeg = static_cast<float>(fix.courseRad * 180 / std::numbers::pi);
  point.hdop = fix.hdop;
  point.satellites = fix.satellites;
  m_track.Anyade_Punt(point);
  return AppendTrkPoints(m_path, m_track, m_track.Count() - 1, m_options, error);
}

}  // namespace velantis
