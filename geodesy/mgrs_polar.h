// The polar areas of MGRS, over UPS (Universal Polar Stereographic): north of
// 84°N and south of 80°S. UPS is the polar stereographic projection about the
// pole with scale 0.994 there, false easting and northing 2000 km, and grid
// north along the meridian 0° (away from the north pole, towards the south
// pole). A polar reference has no zone number: the band letter is "A" (west,
// easting below 2000 km) or "B" (east) in the south, "Y" or "Z" in the north,
// then a column and a row letter of 100 km and the digits as in the UTM part
// ("ZGC2677330125"). Letter schemes of NGA/DMA TM 8358.1:
// - columns "JKLPQRSTUXYZ" (A) and "ABCFGHJKLPQR" (B) from 800 km of easting,
//   "RSTUXYZ" (Y) and "ABCFGHJ" (Z) from 1300 km, the eastern band's set
//   starting again at 2000 km;
// - rows "ABCDEFGHJKLMNPQRSTUVWXYZ" from 800 km of northing in the south,
//   "ABCDEFGHJKLMNP" from 1300 km in the north.
// Used by mgrs.cpp; the public interface is mgrs.h.
#pragma once

#include <string>

#include "geodesy/datum.h"
#include "geodesy/lon_lat.h"

namespace velantis {

inline constexpr const char* kMgrsPolarBandLetters = "ABYZ";

inline bool IsMgrsPolarBand(char band) {
  return band == 'A' || band == 'B' || band == 'Y' || band == 'Z';
}

// The band, square letters and digits of a polar position, truncated to
// `digits` (0..5, checked by the caller). Fails on a point of the other
// hemisphere's part or outside the lettered squares.
bool PolarLatLonToMgrs(const TLonLat& geo, const TDatum& ellipsoid, int digits, std::string& text,
                       std::string& message);

// The south-west corner (or the centre, offset `half` metres) of a polar
// square given by its band and letters and the offsets inside it in metres.
bool PolarMgrsToLatLon(char band, char column, char row, double eastingM, double northingM,
                       const TDatum& ellipsoid, TLonLat& geo, std::string& message);

// Whether the column and row letters belong to the polar band's sets.
bool PolarSquareLettersValid(char band, char column, char row);

}  // namespace velantis
