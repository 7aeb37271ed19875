// "Irish Grid": the Irish national grid (TM65 / Irish Grid, EPSG:29902), a
// transverse Mercator on the Airy Modified ellipsoid of the datum
// "Ireland 1965" (which the caller resolves), computed by
// TTransverseMercator; and its lettered references ("O 15 34").
//
// Constants: Ordnance Survey Ireland and Ordnance Survey of Northern Ireland,
// "Making maps compatible with GPS" (2000), the Irish Grid: true origin
// 53°30' N, 8° W, scale factor 1.000035, false origin 200000, 250000 (the true
// origin, in Lough Ree, is grid reference N 000 500); also EPSG:29902.
//
// Accuracy: Ireland lies within 3° of the central meridian, where
// TTransverseMercator's series stay within a millimetre of the exact
// projection. Failures are the transverse Mercator's ("error in Grados_a_TM",
// "error in TM_a_Grados").
//
// References: one letter for the 100 km square (the 25 squares A to Z without
// I cover 0-500 km east and north of the false origin, V at the false origin),
// then 1 to 5 digits each of easting and northing
// (geodesy/national_grid_letters.h).
#pragma once

#include <string>
#include <string_view>

#include "geodesy/projection.h"
#include "geodesy/transverse_mercator.h"

namespace velantis {

inline constexpr const char* kIrishGridName = "Irish Grid";
inline constexpr const char* kIrishGridDatum = "Ireland 1965";

inline constexpr double kIrishLatOriginDeg = 53.5;
inline constexpr double kIrishLonOriginDeg = -8;
inline constexpr double kIrishScaleFactor = 1.000035;
inline constexpr double kIrishFalseEasting = 200000;
inline constexpr double kIrishFalseNorthing = 250000;
// The extent of the lettered squares, metres from the false origin.
inline constexpr double kIrishGridLimit = 500000;

class TIrishGrid : public TProjection {
public:
  explicit TIrishGrid(const TDatum& ellipsoid);

  bool Forward(const TLonLat& geo, TPlanePoint& plane, std::string& message) const override;
  bool Inverse(const TPlanePoint& plane, TLonLat& geo, std::string& message) const override;

private:
  TTransverseMercator m_tm;
};

// "O 15000 34000" for a grid point; precisionMetres 1, 10, 100, 1000 or 10000.
bool FormatIrishGridReference(const TPlanePoint& grid, int precisionMetres, std::string& text,
                              std::string& message);
// The south-west corner of the square a reference names; the precision it
// was given in goes to precisionMetres when asked for.
bool ParseIrishGridReference(std::string_view text, TPlanePoint& grid, std::string& message,
                             int* precisionMetres = nullptr);

}  // namespace velantis
