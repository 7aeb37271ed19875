// UTM: the transverse Mercator zones of 6° with the system's zone and band
// rules, and the conversions between latitude/longitude on one datum and UTM
// on another.
//
// Zones: trunc(lon / 6) + 31, lowered by one more for every negative
// longitude, so −0.5° is zone 30 and exactly −6° is zone 29 (not 30). There
// are no Norway or Svalbard exceptions and no wrap at the antimeridian: 180°
// computes as zone 61 and −180° as zone 0, whose central meridians (183° and
// −183°) lie 3° beyond it, so such positions still convert and come back.
// Bands: 8° letters "C".."X" with the upper bound inside the band (0° is "M",
// 84° is "X"), "Z" above 84° and "A" at −80° and below. Bands "A".."M" are
// southern (false northing 10000000 m).
//
// Accuracy is that of TTransverseMercator: millimetres inside a zone.
// Every conversion returns false with the system's message on failure and
// then leaves its output untouched.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "geodesy/lista_datums.h"
#include "geodesy/lon_lat.h"
#include "geodesy/projection.h"

namespace velantis {

struct TZonaUTM {
  int8_t zone = 31;  // 1..60
  char band = 'T';   // "A".."M" southern
  bool operator==(const TZonaUTM&) const = default;
};

struct TUtmPosition {
  TZonaUTM zone;
  double x = 0;  // easting, metres
  double y = 0;  // northing, metres
};

// UTM zone parameters (the UTM definition of NGA / DMA TM 8358.2).
inline constexpr double kUtmScaleFactor = 0.9996;
inline constexpr double kUtmFalseEastingM = 500000;
inline constexpr double kUtmSouthFalseNorthingM = 10000000;
inline constexpr double kUtmZoneWidthDeg = 6;
inline constexpr char kUtmDefaultBand = 'T';  // a zone text without a band letter

// Inverse limits of the system: a northing of 9886785 m is 89.0° of latitude;
// a southern band allows twice that, 19773570 m, which with its false
// northing of 10000000 m still reaches 88.0°N.
inline constexpr double kUtmMaxNorthingM = 9886785;
inline constexpr double kUtmMaxSouthNorthingM = 19773570;
inline constexpr double kUtmMaxEastingM = 40000000;

// The system's messages, exactly.
inline constexpr const char* kUtmNorthingError = "utm.y superior a 9886785";
inline constexpr const char* kUtmEastingError = "utm.x big out of domail value";
inline constexpr const char* kUtmZoneError = "Error in the UTM zome. It must be a value between 1 and 60";
inline constexpr const char* kUtmDatumError = "UTM: datum index out of range";

bool IsSouthernBand(char band);

// The zone of a longitude in degrees (see above; not limited to 1..60).
int UtmZoneOfLongitude(double lonDeg);
// The band letter of a latitude in degrees.
char UtmBandOfLatitude(double latDeg);
// λ0 = 6·zone − 183, φ0 = 0, k0 = 0.9996, FE 500000, FN 10000000 in the
// southern bands.
TProjectionParams UtmZoneParams(const TZonaUTM& zone);

// The zone check made before a conversion: refuses a band that is not an
// upper-case "A".."Z" with kUtmZoneError. The message speaks of the zone
// number, but the zone number itself is not checked.
bool CheckUtmZone(const TZonaUTM& zone, std::string& message);

// A zone text of at least two characters: the zone from the first two (a
// leading blank is allowed), the band from the third, else "T". False with
// kUtmZoneError when the first two characters are not a number.
bool ParseUtmZone(std::string_view text, TZonaUTM& zone, std::string& message);
// "31T", "05M": two digits, so that the text reads back.
std::string FormatUtmZone(const TZonaUTM& zone);

// Latitude/longitude on fromDatum to UTM on toDatum: shifted first when the
// datums differ, then projected in the zone and band of the shifted position,
// or, with forceZone, in utm.zone as given.
bool LatLonToUtm(const TLonLat& geo, int fromDatum, int toDatum, TListaDatums& datums,
                 TUtmPosition& utm, std::string& message, bool forceZone = false);

// UTM on fromDatum to latitude/longitude on toDatum, within the northing and
// easting limits above.
bool UtmToLatLon(const TUtmPosition& utm, int fromDatum, int toDatum, TListaDatums& datums,
                 TLonLat& geo, std::string& message);

// UTM on one datum to UTM on another, in the zone of the shifted position;
// unchanged when both are the same datum.
bool UtmToUtm(TUtmPosition& utm, int fromDatum, int toDatum, TListaDatums& datums,
              std::string& message);

}  // namespace velantis
