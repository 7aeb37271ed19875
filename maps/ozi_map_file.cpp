#include "maps/ozi_map_file.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <optional>
#include <vector>

#include "app/decimal_text.h"
#include "app/file_io.h"
#include "formats/native_text.h"
#include "geodesy/utm.h"
#include "maps/ozi_projection.h"

// Choices the format leaves open:
//
// - Mixed point lines. The points are in latitude/longitude only when every
//   point gave them; otherwise they are the grid values, and a point that gave
//   only latitude/longitude is dropped. Converting it into the grid would need
//   the projection built on the datum's ellipsoid, which reading does not
//   otherwise do, and a file that mixes the forms is rare.
// - UTM. A grid point of a UTM map needs its zone field; the band letter is
//   'N' for the northern hemisphere and 'M' for the southern one (bands "A".."M"
//   are the southern ones, geodesy/utm.h), and the zone text has two digits
//   ("05N") so that ParseUtmZone reads it back. The map's zone is that of the
//   first calibration point with a zone field; for a latitude/longitude
//   calibration the writer puts the map's zone in every point's zone field.
// - Latitude and longitude are whole degrees (not negative) and minutes in
//   [0, 60), printed in full so that what was read is written back exactly.
// - A point whose pixel is (-1, -1) is the calibration's place holder and is
//   dropped; place holders are written as OziExplorer's empty point lines.
// - The image size is written only when known; "MM1B" (metres per pixel) is
//   not written, as it needs the pixel transform, and is not read.

namespace velantis {

namespace {

constexpr std::string_view kSignature = "OziExplorer";
constexpr std::string_view kMapProjectionKey = "Map Projection,";
constexpr std::string_view kProjectionSetupKey = "Projection Setup,";
constexpr std::string_view kPointKey = "Point";
constexpr std::string_view kPolygonPixelKey = "MMPXY,";
constexpr std::string_view kPolygonGeoKey = "MMPLL,";
constexpr std::string_view kImageSizeKey = "IWH,";
constexpr std::string_view kDefaultOziProjection = "Latitude/Longitude";

// Signature, name, image file, map code and datum are read by position; the
// keyed lines come after them.
constexpr size_t kHeaderLines = 5;
constexpr size_t kNameLine = 1;
constexpr size_t kImageLine = 2;
constexpr size_t kDatumLine = 4;

constexpr size_t kPointLines = 30;
constexpr size_t kMinCalibrationPoints = 2;
constexpr double kMinutesPerDegree = 60;
constexpr int kMinutesDecimals = 8;
constexpr int kMaxUtmZone = 60;

// Point line fields.
constexpr size_t kPointFields = 17;
constexpr size_t kPixelX = 2;
constexpr size_t kPixelY = 3;
constexpr size_t kLatDegrees = 6;
constexpr size_t kLatMinutes = 7;
constexpr size_t kLatHemisphere = 8;
constexpr size_t kLonDegrees = 9;
constexpr size_t kLonMinutes = 10;
constexpr size_t kLonHemisphere = 11;
constexpr size_t kGridZone = 13;
constexpr size_t kEasting = 14;
constexpr size_t kNorthing = 15;
constexpr size_t kGridHemisphere = 16;

// Field widths of OziExplorer's point lines; longer values widen the field.
constexpr size_t kPixelWidth = 5;
constexpr size_t kDegreesWidth = 4;
constexpr size_t kMinutesWidth = 8;
constexpr size_t kZoneWidth = 3;
constexpr size_t kGridWidth = 11;

constexpr char kNorthBand = 'N';
constexpr char kSouthBand = 'M';

// ---- Reading -------------------------------------------------------------

bool ReadNumber(std::string_view field, double& value) {
  double read = 0;
  if (!ParseReal(field, read) || !std::isfinite(read)) return false;
  value = read;
  return true;
}

double ComposeDegrees(double degrees, double minutes) {
  return degrees + minutes / kMinutesPerDegree;
}

bool IsLetter(std::string_view field, char upper) {
  field = TrimBlanks(field);
  return field.size() == 1 && (field[0] == upper || field[0] == upper - 'A' + 'a');
}

// Whole degrees and decimal minutes, negated for the hemisphere letter
// negative ('S' or 'W').
bool ReadAngle(std::string_view degreesField, std::string_view minutesField,
               std::string_view hemisphere, char negative, double& angle) {
  double degrees = 0, minutes = 0;
  if (!ReadNumber(degreesField, degrees) || !ReadNumber(minutesField, minutes)) return false;
  if (degrees < 0 || degrees != std::floor(degrees) || minutes < 0 ||
      minutes >= kMinutesPerDegree)
    return false;
  const double magnitude = ComposeDegrees(degrees, minutes);
  angle = IsLetter(hemisphere, negative) ? -magnitude : magnitude;
  return true;
}

// "37", or "37U" whose letter the hemisphere field overrides.
std::optional<TZonaUTM> ReadZone(std::string_view field, std::string_view hemisphere) {
  field = TrimBlanks(field);
  if (!field.empty() && std::isalpha(static_cast<unsigned char>(field.back()))) {
    field.remove_suffix(1);
  }
  int zone = 0;
  if (!ParseInt(field, zone) || zone < 1 || zone > kMaxUtmZone) return std::nullopt;
  return TZonaUTM{static_cast<int8_t>(zone), IsLetter(hemisphere, 'S') ? kSouthBand : kNorthBand};
}

struct TPointLine {
  TPlanePoint pixel;
  std::optional<TPlanePoint> geo;   // longitude, latitude
  std::optional<TPlanePoint> grid;  // easting, northing
  std::optional<TZonaUTM> zone;
};

std::optional<TPointLine> ReadPointLine(std::string_view line) {
  std::array<std::string_view, kPointFields + 1> fields{};
  SplitAt(line, ',', fields.data(), fields.size());
  TPointLine point;
  if (!ReadNumber(fields[kPixelX], point.pixel.x) || !ReadNumber(fields[kPixelY], point.pixel.y))
    return std::nullopt;
  if (point.pixel.x == kEmptyPointPixel && point.pixel.y == kEmptyPointPixel) return std::nullopt;
  TPlanePoint geo;
  if (ReadAngle(fields[kLatDegrees], fields[kLatMinutes], fields[kLatHemisphere], 'S', geo.y) &&
      ReadAngle(fields[kLonDegrees], fields[kLonMinutes], fields[kLonHemisphere], 'W', geo.x)) {
    point.geo = geo;
  }
  TPlanePoint grid;
  if (ReadNumber(fields[kEasting], grid.x) && ReadNumber(fields[kNorthing], grid.y)) {
    point.grid = grid;
  }
  point.zone = ReadZone(fields[kGridZone], fields[kGridHemisphere]);
  return point;
}

// Two numbers after a key and an index: "MMPXY,1,203,192".
std::optional<TPlanePoint> ReadPolygonLine(std::string_view line) {
  std::array<std::string_view, 4> fields{};
  if (SplitAt(line, ',', fields.data(), fields.size()) < fields.size()) return std::nullopt;
  TPlanePoint point;
  if (!ReadNumber(fields[2], point.x) || !ReadNumber(fields[3], point.y)) return std::nullopt;
  return point;
}

// What the keyed lines say, before the projection is known.
struct TKeyedLines {
  std::string_view projectionName = kDefaultOziProjection;
  std::string_view setupFields;
  std::vector<TPointLine> points;
  std::vector<TPlanePoint> polygonBitmap;
  std::vector<TPlanePoint> polygonGeo;
  std::optional<std::array<int, 2>> imageSize;
};

void ReadImageSize(std::string_view line, TKeyedLines& keyed) {
  std::array<std::string_view, 4> fields{};
  if (SplitAt(line, ',', fields.data(), fields.size()) < fields.size()) return;
  std::array<int, 2> size{};
  if (ParseInt(fields[2], size[0]) && ParseInt(fields[3], size[1])) keyed.imageSize = size;
}

void ReadKeyedLine(std::string_view line, TKeyedLines& keyed) {
  if (line.starts_with(kMapProjectionKey)) {
    std::array<std::string_view, 3> fields{};
    SplitAt(line, ',', fields.data(), fields.size());
    keyed.projectionName = fields[1];
  } else if (line.starts_with(kProjectionSetupKey)) {
    keyed.setupFields = line.substr(kProjectionSetupKey.size());
  } else if (line.starts_with(kPointKey)) {
    if (auto point = ReadPointLine(line)) keyed.points.push_back(*point);
  } else if (line.starts_with(kPolygonPixelKey)) {
    if (auto point = ReadPolygonLine(line)) keyed.polygonBitmap.push_back(*point);
  } else if (line.starts_with(kPolygonGeoKey)) {
    if (auto point = ReadPolygonLine(line)) keyed.polygonGeo.push_back(*point);
  } else if (line.starts_with(kImageSizeKey)) {
    ReadImageSize(line, keyed);
  }
}

TCalibrationPoint CalibrationPoint(const TPointLine& line, const TPlanePoint& coordinates) {
  TCalibrationPoint point;
  point.pixelX = line.pixel.x;
  point.pixelY = line.pixel.y;
  point.x = coordinates.x;
  point.y = coordinates.y;
  return point;
}

// Chooses the coordinate form (see the note at the top) and fills the points
// and, for a UTM map, its zone.
void TakePoints(const std::vector<TPointLine>& lines, TMapCalibration& map) {
  const bool utm = map.projection.IsUtm();
  const auto hasGrid = [utm](const TPointLine& p) { return p.grid && (!utm || p.zone); };
  const bool allGeo = std::all_of(lines.begin(), lines.end(), [&](const TPointLine& p) {
    return p.geo || !hasGrid(p);
  });
  map.coordinates = allGeo ? TCoordinateMode::LatLon
                    : utm  ? TCoordinateMode::Utm
                           : TCoordinateMode::Plane;
  for (const TPointLine& line : lines) {
    if (allGeo ? !line.geo : !hasGrid(line)) continue;
    TCalibrationPoint point = CalibrationPoint(line, allGeo ? *line.geo : *line.grid);
    if (map.coordinates == TCoordinateMode::Utm) point.zone = FormatUtmZone(*line.zone);
    if (utm && line.zone && !map.projection.zone) map.projection.zone = *line.zone;
    map.points.push_back(std::move(point));
  }
}

bool ReadDatum(std::string_view line, const TListaDatums& datums, TMapCalibration& map,
               std::string& error) {
  std::array<std::string_view, 2> fields{};
  SplitAt(line, ',', fields.data(), fields.size());
  const std::string_view name = TrimBlanks(fields[0]);
  const int index = datums.Find(name);
  const TDatum* datum = index < 0 ? nullptr : datums.Get(index);
  if (!datum) {
    error = "Unknown datum: " + std::string(name);
    return false;
  }
  map.datum = datum->name;
  return true;
}

std::vector<std::string_view> SplitLines(std::string_view text) {
  std::vector<std::string_view> lines;
  TLineCursor cursor(text);
  for (std::string_view line; cursor.Next(line);) lines.push_back(line);
  return lines;
}

// ---- Writing -------------------------------------------------------------

std::string Padded(std::string_view value, size_t width) {
  std::string text(width > value.size() ? width - value.size() : 0, ' ');
  text += value;
  return text;
}

std::string FixedText(double value) {
  char buffer[512];
  const auto [end, ec] = std::to_chars(buffer, buffer + sizeof buffer, value,
                                       std::chars_format::fixed);
  return std::string(buffer, ec == std::errc() ? end : buffer);
}

std::string MinutesText(double minutes) {
  std::string text = FixedText(minutes);
  size_t point = text.find('.');
  if (point == std::string::npos) {
    point = text.size();
    text += '.';
  }
  const size_t decimals = text.size() - point - 1;
  if (decimals < kMinutesDecimals) text.append(kMinutesDecimals - decimals, '0');
  return text;
}

struct TDegreesMinutes {
  double degrees = 0;
  double minutes = 0;
};

// Whole degrees and the fraction in minutes. The product rounds back through
// the reader's division to the same value for every value of a degree or
// more and for every value the reader can produce; below one degree others
// come back to within an ulp.
TDegreesMinutes SplitDegrees(double magnitude) {
  const double degrees = std::floor(magnitude);
  return {degrees, (magnitude - degrees) * kMinutesPerDegree};
}

// The texts of one point line's fields; the defaults make OziExplorer's
// empty line.
struct TPointTexts {
  std::string pixelX, pixelY;
  std::string latDegrees, latMinutes;
  char latHemisphere = 'N';
  std::string lonDegrees, lonMinutes;
  char lonHemisphere = 'W';
  std::string zone, easting, northing;
  char gridHemisphere = 'N';
};

void SetAngle(double angle, char positive, char negative, std::string& degrees,
              std::string& minutes, char& hemisphere) {
  const TDegreesMinutes split = SplitDegrees(std::fabs(angle));
  degrees = FixedText(split.degrees);
  minutes = MinutesText(split.minutes);
  hemisphere = angle < 0 ? negative : positive;
}

std::string PointLine(size_t number, const TPointTexts& t) {
  char label[16];
  std::snprintf(label, sizeof label, "Point%02zu,xy,", number);
  return label + Padded(t.pixelX, kPixelWidth) + ',' + Padded(t.pixelY, kPixelWidth) +
         ",in, deg," + Padded(t.latDegrees, kDegreesWidth) + ',' +
         Padded(t.latMinutes, kMinutesWidth) + ',' + t.latHemisphere + ',' +
         Padded(t.lonDegrees, kDegreesWidth) + ',' + Padded(t.lonMinutes, kMinutesWidth) + ',' +
         t.lonHemisphere + ", grid," + Padded(t.zone, kZoneWidth) + ',' +
         Padded(t.easting, kGridWidth) + ',' + Padded(t.northing, kGridWidth) + ',' +
         t.gridHemisphere;
}

void SetZone(const TZonaUTM& zone, TPointTexts& texts) {
  texts.zone = std::to_string(static_cast<int>(zone.zone));
  texts.gridHemisphere = IsSouthernBand(zone.band) ? 'S' : 'N';
}

// A Utm point's zone text as the grid fields can say it.
bool WritableZone(std::string_view text, TZonaUTM& zone) {
  std::string message;
  return ParseUtmZone(text, zone, message) && zone.zone >= 1 && zone.zone <= kMaxUtmZone &&
         zone.band >= 'A' && zone.band <= 'Z';
}

TPointTexts PointTexts(const TMapCalibration& map, const TCalibrationPoint& point) {
  TPointTexts texts;
  texts.pixelX = ShortestDecimal(point.pixelX);
  texts.pixelY = ShortestDecimal(point.pixelY);
  texts.lonHemisphere = 'E';
  if (map.coordinates == TCoordinateMode::LatLon) {
    SetAngle(point.y, 'N', 'S', texts.latDegrees, texts.latMinutes, texts.latHemisphere);
    SetAngle(point.x, 'E', 'W', texts.lonDegrees, texts.lonMinutes, texts.lonHemisphere);
    if (map.projection.IsUtm() && map.projection.zone) SetZone(*map.projection.zone, texts);
    return texts;
  }
  texts.easting = ShortestDecimal(point.x);
  texts.northing = ShortestDecimal(point.y);
  TZonaUTM zone;
  if (map.coordinates == TCoordinateMode::Utm && WritableZone(point.zone, zone)) {
    SetZone(zone, texts);
  }
  return texts;
}

bool Finite(const TPlanePoint& point) { return std::isfinite(point.x) && std::isfinite(point.y); }

bool FiniteNumbers(const TMapCalibration& map) {
  const TProjectionParams& p = map.projection.params;
  const std::array params = {p.lonOrigin, p.latOrigin, p.scaleFactor, p.falseEasting,
                             p.falseNorthing, p.lat1, p.lat2};
  return std::all_of(params.begin(), params.end(), [](double v) { return std::isfinite(v); }) &&
         std::all_of(map.polygonBitmap.begin(), map.polygonBitmap.end(), Finite) &&
         std::all_of(map.polygonCoords.begin(), map.polygonCoords.end(), Finite);
}

bool Refuse(std::string message, std::string& error) {
  error = std::move(message);
  return false;
}

// The datum is the first field of its line and is looked up by name.
bool WritableDatum(const std::string& datum) {
  return !datum.empty() && datum.find_first_of(",\r\n") == std::string::npos &&
         TrimBlanks(datum).size() == datum.size();
}

bool CheckTexts(const TMapCalibration& map, std::string& error) {
  if (map.name.find('\n') != std::string::npos || map.bitmap.find('\n') != std::string::npos) {
    return Refuse("The map name and image file of an OziExplorer map file are single lines", error);
  }
  if (!WritableDatum(map.datum)) {
    return Refuse("This datum name cannot be written in an OziExplorer map file: " + map.datum,
                  error);
  }
  return true;
}

// Latitude/longitude points go with any projection, UTM points only with UTM.
bool CheckCoordinateMode(const TMapCalibration& map, std::string& error) {
  const bool utmPoints = map.coordinates == TCoordinateMode::Utm;
  if (map.coordinates == TCoordinateMode::LatLon || utmPoints == map.projection.IsUtm()) {
    return true;
  }
  return Refuse(utmPoints ? "UTM calibration points need the UTM projection"
                          : "Plane calibration points of a UTM map need their zones",
                error);
}

bool PointFits(const TMapCalibration& map, const TCalibrationPoint& point) {
  TZonaUTM zone;
  return std::isfinite(point.pixelX) && std::isfinite(point.pixelY) && std::isfinite(point.x) &&
         std::isfinite(point.y) &&
         (map.coordinates != TCoordinateMode::Utm || WritableZone(point.zone, zone));
}

std::vector<const TCalibrationPoint*> RealPoints(const TMapCalibration& map) {
  std::vector<const TCalibrationPoint*> points;
  for (const TCalibrationPoint& point : map.points) {
    if (!point.Empty()) points.push_back(&point);
  }
  return points;
}

bool CheckValues(const TMapCalibration& map, const std::vector<const TCalibrationPoint*>& points,
                 std::string& error) {
  if (points.size() > kPointLines) {
    return Refuse("An OziExplorer map file holds at most 30 calibration points", error);
  }
  if (points.size() < kMinCalibrationPoints) {
    return Refuse("An OziExplorer map file needs at least 2 calibration points", error);
  }
  if (!CheckCoordinateMode(map, error)) return false;
  for (size_t i = 0; i < points.size(); ++i) {
    if (!PointFits(map, *points[i])) {
      return Refuse("Calibration point " + std::to_string(i + 1) +
                        " does not fit an OziExplorer map file",
                    error);
    }
  }
  if (!FiniteNumbers(map)) {
    return Refuse("The projection parameters or the main polygon are not all numbers", error);
  }
  return true;
}

void AppendLine(std::string& text, std::string_view line) {
  text += line;
  text += kCrLf;
}

void AppendPolygon(std::string& text, std::string_view key,
                   const std::vector<TPlanePoint>& polygon) {
  for (size_t i = 0; i < polygon.size(); ++i) {
    AppendLine(text, std::string(key) + std::to_string(i + 1) + ',' +
                         ShortestDecimal(polygon[i].x) + ',' + ShortestDecimal(polygon[i].y));
  }
}

void AppendHeader(const TMapCalibration& map, std::string_view oziProjection, std::string& text) {
  AppendLine(text, "OziExplorer Map Data File Version 2.2");
  AppendLine(text, map.name);
  AppendLine(text, map.bitmap);
  AppendLine(text, "1 ,Map Code,");
  AppendLine(text, map.datum + ",WGS 84,   0.0000,   0.0000,WGS 84");
  AppendLine(text, "Reserved 1");
  AppendLine(text, "Reserved 2");
  AppendLine(text, "Magnetic Variation,,,E");
  AppendLine(text, std::string(kMapProjectionKey) + std::string(oziProjection) +
                       ",PolyCal,No,AutoCalOnly,No,BSBUseWPX,No");
}

void AppendPoints(const TMapCalibration& map, const std::vector<const TCalibrationPoint*>& points,
                  std::string& text) {
  for (size_t i = 0; i < kPointLines; ++i) {
    const TPointTexts texts = i < points.size() ? PointTexts(map, *points[i]) : TPointTexts{};
    AppendLine(text, PointLine(i + 1, texts));
  }
}

void AppendMovingMap(const TMapCalibration& map, std::string& text) {
  AppendLine(text, std::string(kProjectionSetupKey) + OziProjectionSetupFields(map.projection));
  AppendLine(text, "Map Feature = MF ; Map Comment = MC     These follow if they exist");
  AppendLine(text, "Track File = TF      These follow if they exist");
  AppendLine(text, "Moving Map Parameters = MM?    These follow if they exist");
  AppendLine(text, "MM0,Yes");
  AppendLine(text, "MMPNUM," + std::to_string(map.polygonBitmap.size()));
  AppendPolygon(text, kPolygonPixelKey, map.polygonBitmap);
  if (map.coordinates == TCoordinateMode::LatLon) {
    AppendPolygon(text, kPolygonGeoKey, map.polygonCoords);
  }
  AppendLine(text, "MOP,Map Open Position,0,0");
  if (map.bitmapWidth != -1 || map.bitmapHeight != -1) {
    AppendLine(text, std::string(kImageSizeKey) + "Map Image Width/Height," +
                         std::to_string(map.bitmapWidth) + ',' + std::to_string(map.bitmapHeight));
  }
}

}  // namespace

bool ReadOziMapText(std::string_view text, const TListaDatums& datums, TMapCalibration& map,
                    std::string& error) {
  const std::vector<std::string_view> lines = SplitLines(text);
  if (lines.empty() || lines[0].find(kSignature) == std::string_view::npos) {
    error = kOziMapNotOzi;
    return false;
  }
  TMapCalibration read;
  if (lines.size() > kNameLine) read.name = std::string(lines[kNameLine]);
  if (lines.size() > kImageLine) read.bitmap = std::string(lines[kImageLine]);
  if (!ReadDatum(lines.size() > kDatumLine ? lines[kDatumLine] : "", datums, read, error)) {
    return false;
  }
  TKeyedLines keyed;
  for (size_t i = kHeaderLines; i < lines.size(); ++i) ReadKeyedLine(lines[i], keyed);
  if (!ReadOziProjection(keyed.projectionName, keyed.setupFields, read.projection, error)) {
    return false;
  }
  TakePoints(keyed.points, read);
  if (read.points.size() < kMinCalibrationPoints) {
    error = kOziMapFewPoints;
    return false;
  }
  read.polygonBitmap = std::move(keyed.polygonBitmap);
  if (read.coordinates == TCoordinateMode::LatLon) read.polygonCoords = std::move(keyed.polygonGeo);
  if (keyed.imageSize) {
    read.bitmapWidth = (*keyed.imageSize)[0];
    read.bitmapHeight = (*keyed.imageSize)[1];
  }
  map = std::move(read);
  return true;
}

bool ReadOziMapFile(const std::string& path, const TListaDatums& datums, TMapCalibration& map,
                    std::string& error) {
  std::error_code ec;
  if (!std::filesystem::is_regular_file(path, ec)) {
    error = kOziMapNotFound;
    return false;
  }
  std::string bytes;
  if (!ReadWholeFile(path, bytes, error)) return false;
  return ReadOziMapText(bytes, datums, map, error);
}

bool OziMapText(const TMapCalibration& map, std::string& text, std::string& error) {
  const TOziProjectionName* projection = FindOziProjectionOfCatalogue(map.projection.name);
  if (!projection) {
    return Refuse("OziExplorer map files have no name for the projection " + map.projection.name,
                  error);
  }
  const std::vector<const TCalibrationPoint*> points = RealPoints(map);
  if (!CheckTexts(map, error) || !CheckValues(map, points, error)) return false;
  std::string written;
  AppendHeader(map, projection->ozi, written);
  AppendPoints(map, points, written);
  AppendMovingMap(map, written);
  text = std::move(written);
  return true;
}

bool WriteOziMapFile(const std::string& path, const TMapCalibration& map, std::string& error) {
  std::string text;
  return OziMapText(map, text, error) && WriteFileAtomic(path, text, error);
}

}  // namespace velantis
