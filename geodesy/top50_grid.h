// "TOP50": the grid of New Zealand's Topo50 map series, New Zealand
// Transverse Mercator 2000 (NZGD2000 / NZTM2000, EPSG:2193), on the GRS 80
// ellipsoid of the datum "NZGD2000" (which the caller resolves), computed by
// TTransverseMercator.
//
// Constants: Land Information New Zealand, "New Zealand Transverse Mercator
// 2000 (NZTM2000)" projection parameters: origin latitude 0°, central
// meridian 173° E, scale factor 0.9996, false easting 1600000, false northing
// 10000000.
//
// Accuracy: that of TTransverseMercator's series, within a millimetre of the
// exact projection over the main islands (166.4° E to 178.6° E, at most 6.6°
// from the central meridian at New Zealand's latitudes). Failures are the
// transverse Mercator's ("error in Grados_a_TM", "error in TM_a_Grados").
#pragma once

#include <string>

#include "geodesy/projection.h"
#include "geodesy/transverse_mercator.h"

namespace velantis {

inline constexpr const char* kTop50GridName = "TOP50";
inline constexpr const char* kTop50GridDatum = "NZGD2000";

inline constexpr double kNztmLatOriginDeg = 0;
inline constexpr double kNztmLonOriginDeg = 173;
inline constexpr double kNztmScaleFactor = 0.9996;
inline constexpr double kNztmFalseEasting = 1600000;
inline constexpr double kNztmFalseNorthing = 10000000;

class TTop50Grid : public TProjection {
public:
  explicit TTop50Grid(const TDatum& ellipsoid);

  bool Forward(const TLonLat& geo, TPlanePoint& plane, std::string& message) const override;
  bool Inverse(const TPlanePoint& plane, TLonLat& geo, std::string& message) const override;

private:
  TTransverseMercator m_tm;
};

}  // namespace velantis
