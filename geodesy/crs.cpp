#include "geodesy/crs.h"

#include <charconv>
#include <cstdio>
#include <vector>

namespace velantis {

namespace {

constexpr int kDegreeDecimals = 9;

std::vector<std::string_view> Tokens(std::string_view line) {
  std::vector<std::string_view> tokens;
  size_t pos = 0;
  while ((pos = line.find_first_not_of(" \t\r\n", pos)) != std::string_view::npos) {
    const size_t end = std::min(line.find_first_of(" \t\r\n", pos), line.size());
    tokens.push_back(line.substr(pos, end - pos));
    pos = end;
  }
  return tokens;
}

bool ParseDouble(std::string_view text, double& value) {
  if (!text.empty() && text.front() == '+') text.remove_prefix(1);
  const auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), value);
  return ec == std::errc() && end == text.data() + text.size();
}

bool ParseGeographic(std::string_view values, TLonLat& position, std::string& error) {
  const auto tokens = Tokens(values);
  if (tokens.size() != 2 || !ParseDouble(tokens[0], position.lat) ||
      !ParseDouble(tokens[1], position.lon)) {
    error = "Bad coordinate: " + std::string(values) + " (LAT LON in degrees expected)";
    return false;
  }
  if (position.lat < -90 || position.lat > 90 || position.lon < -180 || position.lon > 180) {
    error = "Coordinate out of range: " + std::string(values);
    return false;
  }
  return true;
}

std::string FormatDegrees(double value) {
  char text[40];
  std::snprintf(text, sizeof text, "%.*f", kDegreeDecimals, value);
  return text;
}

}  // namespace

TCrsError ParseCrs(std::string_view text, const TListaDatums& datums, TCrs& crs,
                   std::string& error) {
  const size_t colon = text.find(':');
  const std::string_view kind = text.substr(0, colon);
  if (colon == std::string_view::npos || kind != "geo") {
    error = "Unknown coordinate system: " + std::string(text);
    return TCrsError::UnknownForm;
  }
  const std::string_view datumName = text.substr(colon + 1);
  crs.kind = TCrsKind::Geographic;
  crs.datum = datums.Find(datumName);
  if (crs.datum < 0) {
    error = "Unknown datum: " + std::string(datumName);
    return TCrsError::UnknownDatum;
  }
  return TCrsError::None;
}

bool ConvertCrsLine(std::string_view values, const TCrs& from, const TCrs& to,
                    TListaDatums& datums, std::string& output, std::string& error) {
  TLonLat position;
  if (!ParseGeographic(values, position, error)) return false;
  if (!datums.Transforma_Grados_Datum(position, from.datum, to.datum, error)) return false;
  output = FormatDegrees(position.lat) + " " + FormatDegrees(position.lon);
  return true;
}

}  // namespace velantis
