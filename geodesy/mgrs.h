// MGRS, the Military Grid Reference System over UTM: a grid zone (UTM zone
// number and 8° latitude band), a 100 km square (column and row letters) and
// 0 to 5 digits each of easting and northing inside it (100 km, 10 km, 1 km,
// 100 m, 10 m, 1 m). Letter schemes of NGA/DMA TM 8358.1 "Datums,
// Ellipsoids, Grids and Grid Reference Systems":
// - columns "ABCDEFGHJKLMNPQRSTUVWXYZ", eight a zone, starting again every
//   three zones;
// - rows "ABCDEFGHJKLMNPQRSTUV" repeating every 2000 km of northing, starting
//   at the equator with "A" in odd zones and "F" in even ones (the "AA"
//   scheme), or ten letters later, "L" and "R", on the Clarke 1866, Clarke
//   1880 and Bessel 1841 ellipsoids (the "AL" scheme);
// - bands "CDEFGHJKLMNPQRSTUVWXX" from 80°S by 8°, the last one, "X", 12°
//   high; here a band holds its southern edge (0° is "N").
// Unlike the plain UTM of utm.h, MGRS uses the standard zones: longitude 180°
// is zone 1, zone 32V is widened to 3°..12°E over southern Norway and
// Svalbard (72°N..84°N) has only 31X, 33X, 35X and 37X.
//
// The polar areas (84°N and north, south of 80°S) are UPS squares with bands
// "A", "B", "Y", "Z" and no zone number ("ZGC2677330125", "BAN0000000000"):
// see mgrs_polar.h.
//
// References are written without blanks ("31TDF8123456789"), the zone
// without a leading zero; they are read with or without blanks, in either
// case. A reference names the south-west corner of its square; reading it
// back gives that corner or, on request, the centre of the square.
#pragma once

#include <string>
#include <string_view>

#include <cstdint>
#include <string>

#include "geodesy/datum.h"
#include "geodesy/lon_lat.h"
#include "geodesy/utm.h"

namespace velantis {

inline constexpr const char* kMgrsColumnLetters = "ABCDEFGHJKLMNPQRSTUVWXYZ";
inline constexpr const char* kMgrsRowLetters = "ABCDEFGHJKLMNPQRSTUV";
inline constexpr const char* kMgrsBandLetters = "CDEFGHJKLMNPQRSTUVWXX";
inline constexpr int kMgrsMaxDigits = 5;  // 1 m

inline constexpr const char* kMgrsPolarZoneError = "MGRS: a polar band (A, B, Y, Z) takes no zone number";
inline constexpr const char* kMgrsPolarUtmError = "MGRS: a polar reference has no UTM position";
inline constexpr const char* kMgrsPositionError = "MGRS: invalid latitude or longitude";
inline constexpr const char* kMgrsPrecisionError = "MGRS: the precision must be 0 to 5 digits";
inline constexpr const char* kMgrsZoneError = "MGRS: the zone number must be 1 to 60";
inline constexpr const char* kMgrsBandError = "MGRS: invalid latitude band letter";
inline constexpr const char* kMgrsSquareError = "MGRS: invalid 100 km square letters";
inline constexpr const char* kMgrsColumnError = "MGRS: the column letter does not belong to the zone";
inline constexpr const char* kMgrsDigitsError =
    "MGRS: the easting and northing need the same number of digits, at most 5 each";
inline constexpr const char* kMgrsCharacterError = "MGRS: unexpected character in the reference";
inline constexpr const char* kMgrsOutsideBandError = "MGRS: the square does not lie in its latitude band";

// The pieces of a reference as written.
struct TMgrsReference {
  int zone = 0;
  char band = 0;
  char column = 0;
  char row = 0;
  int digits = 0;    // per coordinate, 0..5
  int easting = 0;   // inside the square, in units of 10^(5 − digits) m
  int northing = 0;
};

// The size in metres of the last digit of a reference with `digits` digits
// per coordinate: 10^(5 - digits).
int MgrsDigitUnitM(int digits);

// The easting and northing inside their 100 km square, truncated to `digits`
// digits each and written one after the other ("" for 0 digits).
std::string MgrsSquareDigits(int64_t eastingM, int64_t northingM, int digits);

// Syntax only: zone 1..60 and a UTM band letter, or no zone and a polar band
// letter (zone 0); two square letters of the zone's or polar band's sets; an
// even count of up to 10 digits.
bool ParseMgrs(std::string_view text, TMgrsReference& reference, std::string& message);

// The reference of a position on the ellipsoid, truncated to `digits`.
bool LatLonToMgrs(const TLonLat& geo, const TDatum& ellipsoid, int digits, std::string& text,
                  std::string& message);

// A reference to UTM on the ellipsoid (zone, band letter of the reference,
// easting and northing): the square's south-west corner, or its centre.
// Polar references fail with kMgrsPolarUtmError.
bool MgrsToUtm(std::string_view text, const TDatum& ellipsoid, TUtmPosition& utm,
               std::string& message, bool centre = false);

// A reference to latitude/longitude on the ellipsoid.
bool MgrsToLatLon(std::string_view text, const TDatum& ellipsoid, TLonLat& geo,
                  std::string& message, bool centre = false);

// The standard UTM zone of MGRS for a position inside 80°S..84°N.
int MgrsZoneOfPosition(const TLonLat& geo);

}  // namespace velantis
