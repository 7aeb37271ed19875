#include "geodesy/british_grid.h"

#include "geodesy/national_grid_letters.h"

namespace velantis {

namespace {

// The first letter's cell for the 500 km square at the false origin (S).
constexpr int kFirstLetterColumnOffset = 2;
constexpr int kFirstLetterRowOffset = 1;
constexpr int kSquaresPerLetter = 5;  // 100 km squares along a 500 km square

TProjectionParams NationalGridParams() {
  TProjectionParams params;
  params.latOrigin = kBngLatOriginDeg;
  params.lonOrigin = kBngLonOriginDeg;
  params.scaleFactor = kBngScaleFactor;
  params.falseEasting = kBngFalseEasting;
  params.falseNorthing = kBngFalseNorthing;
  return params;
}

}  // namespace

TBritishNationalGrid::TBritishNationalGrid(const TDatum& ellipsoid) : m_tm(ellipsoid, NationalGridParams()) {}

bool TBritishNationalGrid::Forward(const TLonLat& geo, TPlanePoint& plane, std::string& message) const {
  return m_tm.Forward(geo, plane, message);
}

bool TBritishNationalGrid::Inverse(const TPlanePoint& plane, TLonLat& geo, std::string& message) const {
  return m_tm.Inverse(plane, geo, message);
}

bool FormatBritishGridReference(const TPlanePoint& grid, int precisionMetres, std::string& text,
                                std::string& message) {
  int column = 0, row = 0;
  std::string digits;
  if (!GridReferenceDigits(grid.x, grid.y, kBngGridEastLimit, kBngGridNorthLimit, precisionMetres, column,
                           row, digits, message)) {
    return false;
  }
  text = {GridSquareLetter(kFirstLetterColumnOffset + column / kSquaresPerLetter,
                           kFirstLetterRowOffset + row / kSquaresPerLetter),
          GridSquareLetter(column % kSquaresPerLetter, row % kSquaresPerLetter), ' '};
  text += digits;
  return true;
}

bool ParseBritishGridReference(std::string_view text, TPlanePoint& grid, std::string& message,
                               int* precisionMetres) {
  TGridReferenceParts parts;
  if (!SplitGridReference(text, 2, parts, message)) return false;
  int column500 = 0, row500 = 0, column100 = 0, row100 = 0;
  const bool lettersKnown = GridSquareCell(parts.letters[0], column500, row500) &&
                            GridSquareCell(parts.letters[1], column100, row100);
  const double easting =
      ((column500 - kFirstLetterColumnOffset) * kSquaresPerLetter + column100) * kGridSquareMetres;
  const double northing =
      ((row500 - kFirstLetterRowOffset) * kSquaresPerLetter + row100) * kGridSquareMetres;
  if (!lettersKnown || easting < 0 || easting >= kBngGridEastLimit || northing < 0 ||
      northing >= kBngGridNorthLimit) {
    message = kGridReferenceSquareError + parts.letters;
    return false;
  }
  grid.x = easting + parts.easting;
  grid.y = northing + parts.northing;
  if (precisionMetres) *precisionMetres = parts.precisionMetres;
  return true;
}

}  // namespace velantis
