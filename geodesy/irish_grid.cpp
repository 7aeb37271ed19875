#include "geodesy/irish_grid.h"

#include "geodesy/national_grid_letters.h"

namespace velantis {

namespace {

TProjectionParams IrishGridParams() {
  TProjectionParams params;
  params.latOrigin = kIrishLatOriginDeg;
  params.lonOrigin = kIrishLonOriginDeg;
  params.scaleFactor = kIrishScaleFactor;
  params.falseEasting = kIrishFalseEasting;
  params.falseNorthing = kIrishFalseNorthing;
  return params;
}

}  // namespace

TIrishGrid::TIrishGrid(const TDatum& ellipsoid) : m_tm(ellipsoid, IrishGridParams()) {}

bool TIrishGrid::Forward(const TLonLat& geo, TPlanePoint& plane, std::string& message) const {
  return m_tm.Forward(geo, plane, message);
}

bool TIrishGrid::Inverse(const TPlanePoint& plane, TLonLat& geo, std::string& message) const {
  return m_tm.Inverse(plane, geo, message);
}

bool FormatIrishGridReference(const TPlanePoint& grid, int precisionMetres, std::string& text,
                              std::string& message) {
  int column = 0, row = 0;
  std::string digits;
  if (!GridReferenceDigits(grid.x, grid.y, kIrishGridLimit, kIrishGridLimit, precisionMetres, column, row,
                           digits, message)) {
    return false;
  }
  text = {GridSquareLetter(column, row), ' '};
  text += digits;
  return true;
}

bool ParseIrishGridReference(std::string_view text, TPlanePoint& grid, std::string& message,
                             int* precisionMetres) {
  TGridReferenceParts parts;
  if (!SplitGridReference(text, 1, parts, message)) return false;
  int column = 0, row = 0;
  if (!GridSquareCell(parts.letters[0], column, row)) {
    message = kGridReferenceSquareError + parts.letters;
    return false;
  }
  grid.x = column * kGridSquareMetres + parts.easting;
  grid.y = row * kGridSquareMetres + parts.northing;
  if (precisionMetres) *precisionMetres = parts.precisionMetres;
  return true;
}

}  // namespace velantis
