#include "geodesy/mgrs_polar.h"

#include <cmath>
#include <cstdint>
#include <cstring>

#include "geodesy/mgrs.h"
#include "geodesy/stereographic.h"

namespace velantis {

namespace {

constexpr double kSquareM = 100000;
constexpr double kUpsScaleFactor = 0.994;       // at the pole
constexpr double kUpsFalseOriginM = 2000000;    // false easting and northing
constexpr int kUpsCentreSquare = 20;            // 2000 km: the eastern bands start here
constexpr int kSouthFirstSquare = 8;            // 800 km, columns and rows
constexpr int kNorthFirstSquare = 13;           // 1300 km

struct TPolarBand {
  char letter;
  bool north;
  const char* columns;
  int firstColumn;  // in squares from the false origin's west edge
};
// Band order: south-west, south-east, north-west, north-east.
constexpr TPolarBand kPolarBands[] = {
    {'A', false, "JKLPQRSTUXYZ", kSouthFirstSquare},
    {'B', false, "ABCFGHJKLPQR", kUpsCentreSquare},
    {'Y', true, "RSTUXYZ", kNorthFirstSquare},
    {'Z', true, "ABCFGHJ", kUpsCentreSquare},
};
constexpr const char* kSouthRows = "ABCDEFGHJKLMNPQRSTUVWXYZ";
constexpr const char* kNorthRows = "ABCDEFGHJKLMNP";

const TPolarBand* FindBand(char letter) {
  for (const auto& band : kPolarBands)
    if (band.letter == letter) return &band;
  return nullptr;
}

const char* Rows(bool north) { return north ? kNorthRows : kSouthRows; }
int FirstRow(bool north) { return north ? kNorthFirstSquare : kSouthFirstSquare; }

int IndexIn(const char* letters, char c) {
  const char* found = c == 0 ? nullptr : std::strchr(letters, c);
  return found ? static_cast<int>(found - letters) : -1;
}

TStereographic UpsProjection(const TDatum& ellipsoid, bool north) {
  TProjectionParams params;
  params.latOrigin = north ? 90 : -90;
  params.scaleFactor = kUpsScaleFactor;
  params.falseEasting = kUpsFalseOriginM;
  params.falseNorthing = kUpsFalseOriginM;
  return TStereographic(ellipsoid, params);
}

}  // namespace

bool PolarSquareLettersValid(char band, char column, char row) {
  const TPolarBand* found = FindBand(band);
  return found && IndexIn(found->columns, column) >= 0 && IndexIn(Rows(found->north), row) >= 0;
}

bool PolarLatLonToMgrs(const TLonLat& geo, const TDatum& ellipsoid, int digits, std::string& text,
                       std::string& message) {
  const bool north = geo.lat > 0;
  TPlanePoint plane;
  if (!UpsProjection(ellipsoid, north).Forward(geo, plane, message)) return false;
  // Truncated, never rounded, as in the UTM part.
  const auto x = static_cast<int64_t>(std::floor(plane.x));
  const auto y = static_cast<int64_t>(std::floor(plane.y));
  const auto square = static_cast<int64_t>(kSquareM);
  const bool east = x >= kUpsCentreSquare * square;
  const TPolarBand& band = kPolarBands[(north ? 2 : 0) + (east ? 1 : 0)];
  const int64_t column = x / square - band.firstColumn;
  const int64_t row = y / square - FirstRow(north);
  if (x < 0 || y < 0 || column < 0 || column >= static_cast<int64_t>(std::strlen(band.columns)) ||
      row < 0 || row >= static_cast<int64_t>(std::strlen(Rows(north)))) {
    message = kMgrsPositionError;
    return false;
  }
  text = {band.letter, band.columns[column], Rows(north)[row]};
  text += MgrsSquareDigits(x, y, digits);
  return true;
}

bool PolarMgrsToLatLon(char band, char column, char row, double eastingM, double northingM,
                       const TDatum& ellipsoid, TLonLat& geo, std::string& message) {
  const TPolarBand* found = FindBand(band);
  if (!found || !PolarSquareLettersValid(band, column, row)) {
    message = kMgrsSquareError;
    return false;
  }
  const TPlanePoint plane{(found->firstColumn + IndexIn(found->columns, column)) * kSquareM + eastingM,
                          (FirstRow(found->north) + IndexIn(Rows(found->north), row)) * kSquareM + northingM};
  return UpsProjection(ellipsoid, found->north).Inverse(plane, geo, message);
}

}  // namespace velantis
