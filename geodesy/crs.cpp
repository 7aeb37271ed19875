#include "geodesy/crs.h"

#include <charconv>
#include <cstdio>
#include <vector>

#include "geodesy/mgrs.h"
#include "geodesy/projection_catalogue.h"
#include "geodesy/projection_file.h"
#include "geodesy/utm.h"

namespace velantis {

namespace {

constexpr int kDegreeDecimals = 9;
constexpr int kMetreDecimals = 3;
constexpr int kMgrsOutputDigits = 5;  // 1 m references

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

std::string Fixed(double value, int decimals) {
  char text[64];
  std::snprintf(text, sizeof text, "%.*f", decimals, value);
  return text;
}

bool ParsePair(std::string_view values, double& first, double& second, const char* expected,
               std::string& error) {
  const auto tokens = Tokens(values);
  if (tokens.size() != 2 || !ParseDouble(tokens[0], first) || !ParseDouble(tokens[1], second)) {
    error = "Bad coordinate: " + std::string(values) + " (" + expected + " expected)";
    return false;
  }
  return true;
}

bool ParseUtmValues(std::string_view values, TUtmPosition& utm, std::string& error) {
  auto tokens = Tokens(values);
  std::string zoneText;
  if (tokens.size() == 4) {
    zoneText = std::string(tokens[0]) + std::string(tokens[1]);
    tokens.erase(tokens.begin(), tokens.begin() + 2);
  } else if (tokens.size() == 3) {
    zoneText = std::string(tokens[0]);
    tokens.erase(tokens.begin());
  } else {
    error = "Bad coordinate: " + std::string(values) + " (ZONE BAND EASTING NORTHING expected)";
    return false;
  }
  // A one-digit zone is written with its leading zero, as zone texts are read
  // by their first two characters.
  if (zoneText.size() >= 2 && !std::isdigit(static_cast<unsigned char>(zoneText[1])))
    zoneText.insert(0, "0");
  if (!ParseUtmZone(zoneText, utm.zone, error)) return false;
  if (!ParseDouble(tokens[0], utm.x) || !ParseDouble(tokens[1], utm.y)) {
    error = "Bad coordinate: " + std::string(values) + " (ZONE BAND EASTING NORTHING expected)";
    return false;
  }
  return true;
}

std::string FormatUtm(const TUtmPosition& utm) {
  return std::to_string(utm.zone.zone) + " " + std::string(1, utm.zone.band) + " " +
         Fixed(utm.x, kMetreDecimals) + " " + Fixed(utm.y, kMetreDecimals);
}

// The position the values stand for, on the system's own datum.
bool ToGeographic(std::string_view values, const TCrs& crs, TListaDatums& datums, TLonLat& geo,
                  std::string& error) {
  switch (crs.kind) {
    case TCrsKind::Geographic:
      if (!ParsePair(values, geo.lat, geo.lon, "LAT LON in degrees", error)) return false;
      if (geo.lat < -90 || geo.lat > 90 || geo.lon < -180 || geo.lon > 180) {
        error = "Coordinate out of range: " + std::string(values);
        return false;
      }
      return true;
    case TCrsKind::Utm: {
      TUtmPosition utm;
      return ParseUtmValues(values, utm, error) &&
             UtmToLatLon(utm, crs.datum, crs.datum, datums, geo, error);
    }
    case TCrsKind::Mgrs: {
      const auto tokens = Tokens(values);
      std::string joined;
      for (const auto token : tokens) joined += token;
      return MgrsToLatLon(joined, *datums.Get(crs.datum), geo, error);
    }
    case TCrsKind::Plane: {
      TPlanePoint plane;
      return ParsePair(values, plane.x, plane.y, "X Y in metres", error) &&
             crs.projection->Inverse(plane, geo, error);
    }
  }
  return false;
}

bool FromGeographic(const TLonLat& geo, const TCrs& crs, TListaDatums& datums, std::string& output,
                    std::string& error) {
  switch (crs.kind) {
    case TCrsKind::Geographic:
      output = Fixed(geo.lat, kDegreeDecimals) + " " + Fixed(geo.lon, kDegreeDecimals);
      return true;
    case TCrsKind::Utm: {
      TUtmPosition utm;
      if (!LatLonToUtm(geo, crs.datum, crs.datum, datums, utm, error)) return false;
      output = FormatUtm(utm);
      return true;
    }
    case TCrsKind::Mgrs:
      return LatLonToMgrs(geo, *datums.Get(crs.datum), kMgrsOutputDigits, output, error);
    case TCrsKind::Plane: {
      TPlanePoint plane;
      if (!crs.projection->Forward(geo, plane, error)) return false;
      output = Fixed(plane.x, kMetreDecimals) + " " + Fixed(plane.y, kMetreDecimals);
      return true;
    }
  }
  return false;
}

TCrsError ResolveDatum(std::string_view name, const TListaDatums& datums, int& index,
                       std::string& error) {
  index = datums.Find(name);
  if (index >= 0) return TCrsError::None;
  error = "Unknown datum: " + std::string(name);
  return TCrsError::UnknownDatum;
}

TCrsError ParseProjectionFile(const std::string& path, const TListaDatums& datums, TCrs& crs,
                              std::string& error) {
  TDatosProyeccion definition;
  if (!ReadProjectionFile(path, &datums, definition, error)) return TCrsError::BadDefinition;
  crs.kind = TCrsKind::Plane;
  crs.datum = definition.preferredDatum >= 0 ? definition.preferredDatum : 0;
  crs.projection = CreateProjection(definition.projection, *datums.Get(crs.datum),
                                    definition.Params(), error);
  return crs.projection ? TCrsError::None : TCrsError::BadDefinition;
}

TCrsError ParseFixedGrid(std::string_view name, std::string_view datumName,
                         const TListaDatums& datums, TCrs& crs, std::string& error) {
  const TProjectionKind* kind = FindProjectionKind(name);
  if (!kind || !kind->create || kind->fixedDatum.empty()) return TCrsError::UnknownForm;
  if (datumName.empty()) datumName = kind->fixedDatum;
  if (const TCrsError result = ResolveDatum(datumName, datums, crs.datum, error);
      result != TCrsError::None)
    return result;
  crs.kind = TCrsKind::Plane;
  crs.projection = kind->create(*datums.Get(crs.datum), TProjectionParams{});
  return TCrsError::None;
}

}  // namespace

TCrsError ParseCrs(std::string_view text, const TListaDatums& datums, TCrs& crs,
                   std::string& error) {
  const size_t colon = text.find(':');
  const std::string_view kind = text.substr(0, colon);
  const std::string_view rest = colon == std::string_view::npos ? "" : text.substr(colon + 1);
  if (kind == "proj") return ParseProjectionFile(std::string(rest), datums, crs, error);
  const std::pair<std::string_view, TCrsKind> simple[] = {
      {"geo", TCrsKind::Geographic}, {"utm", TCrsKind::Utm}, {"mgrs", TCrsKind::Mgrs}};
  for (const auto& [prefix, simpleKind] : simple) {
    if (kind != prefix) continue;
    crs.kind = simpleKind;
    return ResolveDatum(rest, datums, crs.datum, error);
  }
  const TCrsError result = ParseFixedGrid(kind, rest, datums, crs, error);
  if (result == TCrsError::UnknownForm) error = "Unknown coordinate system: " + std::string(text);
  return result;
}

bool ConvertCrsLine(std::string_view values, const TCrs& from, const TCrs& to,
                    TListaDatums& datums, std::string& output, std::string& error) {
  // UTM to UTM keeps its zone when the datum does not change.
  if (from.kind == TCrsKind::Utm && to.kind == TCrsKind::Utm) {
    TUtmPosition utm;
    if (!ParseUtmValues(values, utm, error) || !UtmToUtm(utm, from.datum, to.datum, datums, error))
      return false;
    output = FormatUtm(utm);
    return true;
  }
  TLonLat geo;
  return ToGeographic(values, from, datums, geo, error) &&
         datums.Transforma_Grados_Datum(geo, from.datum, to.datum, error) &&
         FromGeographic(geo, to, datums, output, error);
}

}  // namespace velantis
