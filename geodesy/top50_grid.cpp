#include "geodesy/top50_grid.h"

namespace velantis {

namespace {

TProjectionParams Nztm2000Params() {
  TProjectionParams params;
  params.latOrigin = kNztmLatOriginDeg;
  params.lonOrigin = kNztmLonOriginDeg;
  params.scaleFactor = kNztmScaleFactor;
  params.falseEasting = kNztmFalseEasting;
  params.falseNorthing = kNztmFalseNorthing;
  return params;
}

}  // namespace

TTop50Grid::TTop50Grid(const TDatum& ellipsoid) : m_tm(ellipsoid, Nztm2000Params()) {}

bool TTop50Grid::Forward(const TLonLat& geo, TPlanePoint& plane, std::string& message) const {
  return m_tm.Forward(geo, plane, message);
}

bool TTop50Grid::Inverse(const TPlanePoint& plane, TLonLat& geo, std::string& message) const {
  return m_tm.Inverse(plane, geo, message);
}

}  // namespace velantis
