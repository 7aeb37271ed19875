// "BGN (British National Grid)": the Ordnance Survey National Grid, a
// transverse Mercator on the Airy 1830 ellipsoid of OSGB36 (the datum
// "Ord Srvy Grt Britn", which the caller resolves), computed by
// TTransverseMercator; and its lettered references ("TG 51409 13177").
//
// Constants: Ordnance Survey, "A guide to coordinate systems in Great
// Britain" (v3.6, 2020), the National Grid's projection: true origin 49° N,
// 2° W, scale factor on the central meridian F0 = 0.9996012717, false origin
// E0 = 400000, N0 = -100000; also EPSG:27700.
//
// Accuracy: that of TTransverseMercator's series: within a millimetre of the
// exact projection up to 5° from the central meridian (all of Great Britain
// east of 7° W), some 7 mm at 7° W to 9° W (the Outer Hebrides and St Kilda).
// Failures are the transverse Mercator's ("error in Grados_a_TM",
// "error in TM_a_Grados").
//
// References: two letters for the 100 km square (the first for the 500 km
// square, whose south-west corner S is the false origin), then 1 to 5 digits
// each of easting and northing (geodesy/national_grid_letters.h). The grid's
// squares cover 0-700 km east and 0-1300 km north of the false origin (SV to
// HP and JM); other points and letters are refused.
#pragma once

#include <string>
#include <string_view>

#include "geodesy/projection.h"
#include "geodesy/transverse_mercator.h"

namespace velantis {

inline constexpr const char* kBritishGridName = "BGN (British National Grid)";
inline constexpr const char* kBritishGridDatum = "Ord Srvy Grt Britn";

inline constexpr double kBngLatOriginDeg = 49;
inline constexpr double kBngLonOriginDeg = -2;
inline constexpr double kBngScaleFactor = 0.9996012717;
inline constexpr double kBngFalseEasting = 400000;
inline constexpr double kBngFalseNorthing = -100000;
// The extent of the lettered squares, metres from the false origin.
inline constexpr double kBngGridEastLimit = 700000;
inline constexpr double kBngGridNorthLimit = 1300000;

class TBritishNationalGrid : public TProjection {
public:
  explicit TBritishNationalGrid(const TDatum& ellipsoid);

  bool Forward(const TLonLat& geo, TPlanePoint& plane, std::string& message) const override;
  bool Inverse(const TPlanePoint& plane, TLonLat& geo, std::string& message) const override;

private:
  TTransverseMercator m_tm;
};

// "TQ 30470 80480" for a grid point; precisionMetres 1, 10, 100, 1000 or 10000.
bool FormatBritishGridReference(const TPlanePoint& grid, int precisionMetres, std::string& text,
                                std::string& message);
// The south-west corner of the square a reference names; the precision it
// was given in goes to precisionMetres when asked for.
bool ParseBritishGridReference(std::string_view text, TPlanePoint& grid, std::string& message,
                               int* precisionMetres = nullptr);

}  // namespace velantis
