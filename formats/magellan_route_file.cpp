#include "formats/magellan_route_file.h"

#include <cmath>
#include <map>
#include <vector>

#include "app/code_page.h"
#include "formats/native_text.h"
#include "formats/rte_file.h"

namespace velantis {

namespace {

constexpr std::string_view kSentencePrefix = "$PMG";
constexpr std::string_view kWaypointSentence = "$PMGNWPL";
constexpr std::string_view kRouteSentence = "$PMGNRTE";
constexpr size_t kMaxFields = 64;
constexpr size_t kWaypointFields = 10;  // sentence, lat, N/S, lon, E/W, alt, unit, name, comment, icon
constexpr size_t kRouteHeaderFields = 5;  // sentence, messages, message, kind, route number
constexpr double kMetresPerFoot = 0.3048;
constexpr double kMinutesPerDegree = 60.0;

int HexValue(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  return -1;
}

// The sentence without "*hh", when its checksum (the exclusive or of the
// bytes between "$" and "*") is right; false for a wrong or missing one.
bool CheckedBody(std::string_view line, std::string_view& body) {
  const size_t star = line.rfind('*');
  if (star == std::string_view::npos || star + 3 != line.size()) return false;
  const int high = HexValue(line[star + 1]), low = HexValue(line[star + 2]);
  if (high < 0 || low < 0) return false;
  unsigned sum = 0;
  for (size_t i = 1; i < star; ++i) sum ^= static_cast<unsigned char>(line[i]);
  body = line.substr(0, star);
  return sum == static_cast<unsigned>(high * 16 + low);
}

// "4809.434" with "N": degrees and minutes to signed degrees.
bool ReadAngle(std::string_view text, std::string_view hemisphere, char negative, double& degrees) {
  double value = 0;
  if (!ParseReal(text, value) || value < 0 || hemisphere.size() != 1) return false;
  const double whole = std::floor(value / 100);
  degrees = whole + (value - whole * 100) / kMinutesPerDegree;
  if (hemisphere[0] == negative) degrees = -degrees;
  return true;
}

bool ReadWaypoint(const std::string_view* f, size_t count, const TNativeOptions& options, TBaliza& b) {
  double lat = 0, lon = 0, altitude = 0;
  if (count < kWaypointFields - 2 || !ReadAngle(f[1], f[2], 'S', lat) || !ReadAngle(f[3], f[4], 'W', lon))
    return false;
  b = TBaliza(options.defaults);
  b.SetPosition(lat, lon);
  if (ParseReal(f[5], altitude)) b.SetAltitude(static_cast<float>(f[6] == "F" ? altitude * kMetresPerFoot : altitude));
  b.SetName(Cp1252ToUtf8(f[7]));
  if (count > 8) b.SetDescription(Cp1252ToUtf8(f[8]));
  b.ClearTransientMark();
  return true;
}

struct TMagellanRoute {
  bool found = false;
  bool complete = false;  // its last message has been read
  std::string number;
  std::string name;
  std::vector<std::string> points;  // waypoint names in order
};

// A route's messages are numbered 1 to their count; the first route whose
// last message arrives is the one read, other routes' messages in between
// are passed over.
void ReadRouteMessage(const std::string_view* f, size_t count, TMagellanRoute& route) {
  if (count < kRouteHeaderFields || route.complete) return;
  if (route.found && f[4] != route.number) return;
  route.found = true;
  route.number = f[4];
  size_t at = kRouteHeaderFields;
  if ((count - at) % 2 == 1) route.name = Cp1252ToUtf8(f[at++]);
  for (; at < count; at += 2) route.points.push_back(Cp1252ToUtf8(f[at]));
  route.complete = f[1] == f[2];
}

}  // namespace

bool IsMagellanRouteFile(std::string_view bytes) {
  TLineCursor lines(bytes);
  std::string_view line;
  while (lines.Next(line)) {
    line = TrimBlanks(line);
    if (!line.empty()) return line.starts_with(kSentencePrefix);
  }
  return false;
}

bool ReadMagellanRoute(std::string_view bytes, const TNativeOptions& options, TRuta& route, std::string& error) {
  std::map<std::string, TBaliza> waypoints;
  TMagellanRoute found;
  const auto readLine = [&](std::string_view line, size_t) {
    std::string_view body, f[kMaxFields];
    if (!CheckedBody(TrimBlanks(line), body)) return true;
    const size_t count = SplitAt(body, ',', f, kMaxFields);
    TBaliza baliza;
    if (f[0] == kWaypointSentence && ReadWaypoint(f, count, options, baliza))
      waypoints.insert_or_assign(baliza.Name(), std::move(baliza));
    if (f[0] == kRouteSentence) ReadRouteMessage(f, count, found);
    return true;
  };
  if (!ReadLines(bytes, '$', options.progress, readLine, error)) return false;
  if (!found.found) {
    error = kNoRteSections;
    return false;
  }
  TRuta read;
  read.SetName(found.name);
  for (const std::string& name : found.points) {
    const auto at = waypoints.find(name);
    if (at == waypoints.end()) {
      error = "Unknown waypoint in route: " + name;
      return false;
    }
    read.Add(at->second);
  }
  read.SetFromOziExplorer(true);
  read.MarkAsSaved();
  route = std::move(read);
  return true;
}

}  // namespace velantis
