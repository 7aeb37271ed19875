#include "geodesy/mgrs.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>

#include "geodesy/mgrs_polar.h"
#include "geodesy/transverse_mercator.h"

namespace velantis {

namespace {

constexpr double kSquareM = 100000;          // the lettered square
constexpr double kRowCycleM = 2000000;       // 20 row letters of 100 km
constexpr int kColumnsPerZone = 8;
constexpr int kColumnSets = 3;
constexpr int kRowLetterCount = 20;
constexpr int kEvenZoneRowShift = 5;         // "F" for the first row of even zones
constexpr int kOldSchemeRowShift = 10;       // "AL" scheme: "L" / "R"
constexpr double kSouthernmostDeg = -80;
constexpr double kNorthernmostDeg = 84;      // exclusive
constexpr double kBandHeightDeg = 8;
constexpr int kLastBandIndex = 20;           // the second "X" of the band letters
// The 100 km squares of a band lie above the northing of its southern edge on
// the central meridian, less one square (a square may start below the edge)
// and less the sag of the edge parallel away from the central meridian in the
// southern hemisphere (under 5 km within a zone).
constexpr double kBandFloorSlackM = kSquareM + 10000;
// A decoded square may reach outside its band by half a square plus a few km.
constexpr double kBandToleranceExtraM = 10000;
constexpr double kMetresPerDegreeLow = 100000;  // less than any degree of latitude

int LetterIndex(const char* letters, char c) {
  if (c == 0) return -1;
  const char* found = std::strchr(letters, c);
  return found ? static_cast<int>(found - letters) : -1;
}

// The ellipsoids that keep the old ("AL") row lettering, by a and 1/f.
bool UsesOldRowLettering(const TDatum& ellipsoid) {
  struct TEllipsoid { double a, invF; };
  static constexpr TEllipsoid kOld[] = {
      {6378206.4, 294.9786982},    // Clarke 1866
      {6378249.145, 293.465},      // Clarke 1880 (RGS)
      {6378249.2, 293.4660212936}, // Clarke 1880 (IGN)
      {6377397.155, 299.1528128},  // Bessel 1841
      {6377483.865, 299.1528128},  // Bessel 1841 (Namibia)
  };
  for (const auto& old : kOld) {
    if (std::fabs(ellipsoid.a - old.a) < 0.01 && std::fabs(ellipsoid.invFlattening - old.invF) < 0.002)
      return true;
  }
  return false;
}

int RowShift(int zone, const TDatum& ellipsoid) {
  return (zone % 2 == 0 ? kEvenZoneRowShift : 0) + (UsesOldRowLettering(ellipsoid) ? kOldSchemeRowShift : 0);
}

double BandSouthDeg(char band) {
  return kSouthernmostDeg + kBandHeightDeg * LetterIndex(kMgrsBandLetters, band);
}

double BandNorthDeg(char band) {
  return band == 'X' ? kNorthernmostDeg : BandSouthDeg(band) + kBandHeightDeg;
}

}  // namespace

int MgrsZoneOfPosition(const TLonLat& geo) {
  const double lon = geo.lon >= 180 ? geo.lon - 360 : geo.lon;
  int zone = static_cast<int>(std::floor((lon + 180) / 6)) + 1;
  if (zone < 1) zone = 1;
  if (zone > 60) zone = 60;
  if (geo.lat >= 56 && geo.lat < 64 && lon >= 3 && lon < 12) return 32;  // southern Norway
  if (geo.lat >= 72 && lon >= 0 && lon < 42) {
    // Svalbard: 31X 0..9E, 33X 9..21E, 35X 21..33E, 37X 33..42E.
    return 2 * static_cast<int>(std::floor((lon + 3) / 12)) + 31;
  }
  return zone;
}

int MgrsDigitUnitM(int digits) {
  int unit = 1;
  for (int i = digits; i < kMgrsMaxDigits; ++i) unit *= 10;
  return unit;
}

std::string MgrsSquareDigits(int64_t eastingM, int64_t northingM, int digits) {
  if (digits <= 0) return {};
  // Bounded so that the compiler sees the printed width fits the buffer.
  digits = std::min(digits, kMgrsMaxDigits);
  const auto square = static_cast<int64_t>(kSquareM);
  const int64_t unit = MgrsDigitUnitM(digits);
  char buffer[16];
  std::snprintf(buffer, sizeof buffer, "%0*d%0*d", digits, static_cast<int>((eastingM % square) / unit), digits,
                static_cast<int>((northingM % square) / unit));
  return buffer;
}

bool ParseMgrs(std::string_view text, TMgrsReference& reference, std::string& message) {
  std::string compact;
  for (const char c : text) {
    if (c == ' ' || c == '\t') continue;
    compact += static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  }
  size_t pos = 0;
  int zone = 0;
  while (pos < compact.size() && pos < 2 && std::isdigit(static_cast<unsigned char>(compact[pos])))
    zone = zone * 10 + (compact[pos++] - '0');
  const bool polar = pos < compact.size() && IsMgrsPolarBand(compact[pos]);
  if (polar && pos > 0) {
    message = kMgrsPolarZoneError;
    return false;
  }
  if (!polar && (pos == 0 || zone < 1 || zone > 60)) {
    message = kMgrsZoneError;
    return false;
  }
  const char band = pos < compact.size() ? compact[pos++] : 0;
  if (!polar && LetterIndex(kMgrsBandLetters, band) < 0) {
    message = kMgrsBandError;
    return false;
  }
  if (compact.size() - pos < 2) {
    message = kMgrsSquareError;
    return false;
  }
  const char column = compact[pos++], row = compact[pos++];
  if (polar) {
    if (!PolarSquareLettersValid(band, column, row)) {
      message = kMgrsSquareError;
      return false;
    }
  } else {
    const int columnIndex = LetterIndex(kMgrsColumnLetters, column);
    if (columnIndex < 0 || LetterIndex(kMgrsRowLetters, row) < 0) {
      message = kMgrsSquareError;
      return false;
    }
    if (columnIndex / kColumnsPerZone != (zone - 1) % kColumnSets) {
      message = kMgrsColumnError;
      return false;
    }
  }
  const std::string_view numbers = std::string_view(compact).substr(pos);
  for (const char c : numbers) {
    if (!std::isdigit(static_cast<unsigned char>(c))) {
      message = kMgrsCharacterError;
      return false;
    }
  }
  if (numbers.size() % 2 != 0 || numbers.size() > 2 * kMgrsMaxDigits) {
    message = kMgrsDigitsError;
    return false;
  }
  const int digits = static_cast<int>(numbers.size() / 2);
  int easting = 0, northing = 0;
  for (int i = 0; i < digits; ++i) {
    easting = easting * 10 + (numbers[i] - '0');
    northing = northing * 10 + (numbers[digits + i] - '0');
  }
  reference = {zone, band, column, row, digits, easting, northing};
  return true;
}

bool LatLonToMgrs(const TLonLat& geo, const TDatum& ellipsoid, int digits, std::string& text,
                  std::string& message) {
  if (digits < 0 || digits > kMgrsMaxDigits) {
    message = kMgrsPrecisionError;
    return false;
  }
  if (!(std::fabs(geo.lat) <= 90) || !(std::fabs(geo.lon) <= 180)) {
    message = kMgrsPositionError;
    return false;
  }
  if (geo.lat < kSouthernmostDeg || geo.lat >= kNorthernmostDeg)
    return PolarLatLonToMgrs(geo, ellipsoid, digits, text, message);
  const int zone = MgrsZoneOfPosition(geo);
  int bandIndex = static_cast<int>(std::floor((geo.lat - kSouthernmostDeg) / kBandHeightDeg));
  if (bandIndex > kLastBandIndex) bandIndex = kLastBandIndex;
  const char band = kMgrsBandLetters[bandIndex];

  const TTransverseMercator projection(ellipsoid, UtmZoneParams({static_cast<int8_t>(zone), band}));
  TPlanePoint plane;
  if (!projection.Forward(geo, plane, message)) return false;
  // Truncated, never rounded: a finer reference stays inside a coarser one.
  const auto x = static_cast<int64_t>(std::floor(plane.x));
  const auto y = static_cast<int64_t>(std::floor(plane.y));
  const auto square = static_cast<int64_t>(kSquareM);
  const int column = static_cast<int>(x / square);
  if (x < 0 || column < 1 || column > kColumnsPerZone || y < 0) {
    message = kMgrsPositionError;
    return false;
  }
  const int row = static_cast<int>((y / square + RowShift(zone, ellipsoid)) % kRowLetterCount);
  char buffer[16];
  std::snprintf(buffer, sizeof buffer, "%d%c%c%c", zone, band,
                kMgrsColumnLetters[((zone - 1) % kColumnSets) * kColumnsPerZone + column - 1], kMgrsRowLetters[row]);
  text = buffer + MgrsSquareDigits(x, y, digits);
  return true;
}

bool MgrsToUtm(std::string_view text, const TDatum& ellipsoid, TUtmPosition& utm,
               std::string& message, bool centre) {
  TMgrsReference reference;
  if (!ParseMgrs(text, reference, message)) return false;
  if (reference.zone == 0) {
    message = kMgrsPolarUtmError;
    return false;
  }
  const TZonaUTM zone{static_cast<int8_t>(reference.zone), reference.band};
  const TTransverseMercator projection(ellipsoid, UtmZoneParams(zone));

  const double unit = MgrsDigitUnitM(reference.digits);
  const double half = centre ? unit / 2 : 0;
  const int column = LetterIndex(kMgrsColumnLetters, reference.column) % kColumnsPerZone + 1;
  const int row = (LetterIndex(kMgrsRowLetters, reference.row) - RowShift(reference.zone, ellipsoid) +
                   2 * kRowLetterCount) % kRowLetterCount;

  // The row letter gives the northing modulo 2000 km; the band picks the
  // cycle: the first one at or above the band's floor.
  TPlanePoint floor;
  const double lonCentral = UtmZoneParams(zone).lonOrigin;
  if (!projection.Forward({lonCentral, BandSouthDeg(reference.band)}, floor, message)) return false;
  double northing = row * kSquareM;
  const double lowest = floor.y - kBandFloorSlackM;
  if (northing < lowest) northing += kRowCycleM * std::ceil((lowest - northing) / kRowCycleM);

  TUtmPosition position;
  position.zone = zone;
  position.x = column * kSquareM + reference.easting * unit + half;
  position.y = northing + reference.northing * unit + half;

  // The square must lie in the band (give or take half a square).
  TLonLat middle;
  const double halfSquare = unit / 2;
  if (!projection.Inverse({position.x - half + halfSquare, position.y - half + halfSquare}, middle,
                          message))
    return false;
  const double tolerance = (halfSquare + kBandToleranceExtraM) / kMetresPerDegreeLow;
  if (middle.lat < BandSouthDeg(reference.band) - tolerance ||
      middle.lat > BandNorthDeg(reference.band) + tolerance) {
    message = kMgrsOutsideBandError;
    return false;
  }
  utm = position;
  return true;
}

bool MgrsToLatLon(std::string_view text, const TDatum& ellipsoid, TLonLat& geo, std::string& message,
                  bool centre) {
  TMgrsReference reference;
  if (!ParseMgrs(text, reference, message)) return false;
  if (reference.zone == 0) {
    const double unit = MgrsDigitUnitM(reference.digits);
    const double half = centre ? unit / 2 : 0;
    return PolarMgrsToLatLon(reference.band, reference.column, reference.row,
                             reference.easting * unit + half, reference.northing * unit + half, ellipsoid,
                             geo, message);
  }
  TUtmPosition utm;
  if (!MgrsToUtm(text, ellipsoid, utm, message, centre)) return false;
  const TTransverseMercator projection(ellipsoid, UtmZoneParams(utm.zone));
  return projection.Inverse({utm.x, utm.y}, geo, message);
}

}  // namespace velantis
