#include "script/text_import.h"

#include <charconv>
#include <cstdio>
#include <vector>

#include "core/altitude.h"

namespace velantis {

namespace {

constexpr double kMaxLatitude = 90, kMaxLongitude = 180;  // degrees
constexpr size_t kTimeTextLength = 19;                   // "YYYY-MM-DD hh:mm:ss"

std::vector<std::string_view> Fields(std::string_view line) {
  std::vector<std::string_view> fields;
  for (size_t tab; (tab = line.find('\t')) != std::string_view::npos; line.remove_prefix(tab + 1))
    fields.push_back(line.substr(0, tab));
  fields.push_back(line);
  return fields;
}

bool Number(std::string_view text, double& value) {
  if (!text.empty() && text.front() == '+') text.remove_prefix(1);
  const auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), value);
  return ec == std::errc() && end == text.data() + text.size() && !text.empty();
}

bool Position(std::string_view latText, std::string_view lonText, double& lat, double& lon) {
  return Number(latText, lat) && Number(lonText, lon) && lat >= -kMaxLatitude && lat <= kMaxLatitude &&
         lon >= -kMaxLongitude && lon <= kMaxLongitude;
}

// An empty or missing field is no altitude.
bool Altitude(const std::vector<std::string_view>& fields, size_t at, float& altitude) {
  double value = kAltitudeUnknownM;
  if (at < fields.size() && !fields[at].empty() && !Number(fields[at], value)) return false;
  altitude = static_cast<float>(value);
  return true;
}

bool Time(std::string_view text, TDateTime& time) {
  time = TDateTime();
  if (text.empty()) return true;
  int y, mo, d, h, mi, s, used = 0;
  const std::string copy(text);
  if (text.size() != kTimeTextLength ||
      std::sscanf(copy.c_str(), "%4d-%2d-%2d %2d:%2d:%2d%n", &y, &mo, &d, &h, &mi, &s, &used) != 6 ||
      used != static_cast<int>(kTimeTextLength))
    return false;
  time = TDateTime::FromCalendar(y, mo, d, h, mi, s);
  return !time.IsNull();
}

// Calls read(fields) for each line that holds data; stops at the first
// line it refuses.
template <typename TRead>
bool ForEachLine(std::string_view text, TRead read, std::string& error) {
  size_t number = 0;
  while (!text.empty()) {
    const size_t end = text.find('\n');
    std::string_view line = text.substr(0, end);
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    ++number;
    if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
    if (line.empty() || line.front() == '#') continue;
    if (!read(Fields(line))) {
      error = "Error in line " + std::to_string(number);
      return false;
    }
  }
  return true;
}

}  // namespace

bool ReadWaypointsText(std::string_view text, const TBalizaDefaults& defaults, TWaypoints& list,
                       std::string& error) {
  std::vector<TBaliza> read;
  const bool ok = ForEachLine(
      text,
      [&](const std::vector<std::string_view>& f) {
        double lat, lon;
        float altitude;
        if (f.size() < 3 || f.size() > 5 || !Position(f[1], f[2], lat, lon) || !Altitude(f, 3, altitude))
          return false;
        TBaliza& baliza = read.emplace_back(defaults);
        baliza.SetName(std::string(f[0]));
        baliza.SetPosition(lat, lon);
        baliza.SetAltitude(altitude);
        if (f.size() == 5) baliza.SetDescription(std::string(f[4]));
        return true;
      },
      error);
  if (!ok) return false;
  for (TBaliza& baliza : read) list.Add(std::move(baliza));
  return true;
}

bool ReadTrackText(std::string_view text, TTrack& track, std::string& error) {
  struct TRead {
    double lat, lon;
    float altitude;
    TDateTime time;
  };
  std::vector<TRead> read;
  const bool ok = ForEachLine(
      text,
      [&](const std::vector<std::string_view>& f) {
        TRead point{};
        return f.size() >= 2 && f.size() <= 4 && Position(f[0], f[1], point.lat, point.lon) &&
               Altitude(f, 2, point.altitude) && Time(f.size() == 4 ? f[3] : std::string_view(), point.time) &&
               (read.push_back(point), true);
      },
      error);
  if (!ok) return false;
  for (const TRead& p : read) track.Anyade_Punto_Temps(p.lat, p.lon, p.altitude, p.time);
  return true;
}

}  // namespace velantis
