#include "geodesy/utm.h"

#include <cmath>
#include <optional>

#include "geodesy/transverse_mercator.h"

namespace velantis {

namespace {

// The 8° bands from (−80°, −72°] to (64°, 72°], indexed by ceil(lat / 8) + 9.
constexpr char kUtmEightDegreeBands[] = "CDEFGHJKLMNPQRSTUVW";
constexpr int kUtmBandIndexOffset = 9;
constexpr double kUtmBandHeightDeg = 8;
constexpr double kUtmBandXSouthDeg = 72;
constexpr double kUtmBandXNorthDeg = 84;
constexpr double kUtmBandCSouthDeg = -80;

bool ValidGeographic(const TLonLat& geo) {
  return std::fabs(geo.lat) <= 90 && std::fabs(geo.lon) <= 180;  // false for a NaN too
}

// The projection of a zone on an ellipsoid. Building one costs a few dozen
// operations, as much as a conversion: the last one used on this thread is
// kept and reused while the ellipsoid, zone and hemisphere stay the same,
// which is the common case of a track or a file.
const TTransverseMercator& ZoneProjection(const TDatum& ellipsoid, const TZonaUTM& zone) {
  struct TCache {
    double a = 0, e2 = -1;
    int zone = 0;
    bool south = false;
    std::optional<TTransverseMercator> projection;
  };
  thread_local TCache cache;
  const bool south = IsSouthernBand(zone.band);
  if (!cache.projection || cache.a != ellipsoid.a || cache.e2 != ellipsoid.e2 || cache.zone != zone.zone ||
      cache.south != south) {
    cache.projection.emplace(ellipsoid, UtmZoneParams(zone));
    cache.a = ellipsoid.a;
    cache.e2 = ellipsoid.e2;
    cache.zone = zone.zone;
    cache.south = south;
  }
  return *cache.projection;
}

// Whether two indexes name the same datum once −1 is resolved.
bool SameDatum(const TListaDatums& datums, int from, int to) {
  if (from == to) return true;
  const TDatum* one = datums.Get(from);
  return one && one == datums.Get(to);
}

}  // namespace

bool IsSouthernBand(char band) { return band >= 'A' && band <= 'M'; }

int UtmZoneOfLongitude(double lonDeg) {
  // Truncated toward zero, then lowered by one for every negative longitude:
  // −0.5° gives 30 and −6° gives 29. Files and calibrations were made so.
  int zone = static_cast<int>(std::trunc(lonDeg / kUtmZoneWidthDeg)) + 31;
  if (lonDeg < 0) --zone;
  return zone;
}

char UtmBandOfLatitude(double latDeg) {
  if (latDeg > kUtmBandXNorthDeg) return 'Z';
  if (latDeg > kUtmBandXSouthDeg) return 'X';
  if (!(latDeg > kUtmBandCSouthDeg)) return 'A';  // a NaN lands here too
  const int index = static_cast<int>(std::ceil(latDeg / kUtmBandHeightDeg)) + kUtmBandIndexOffset;
  return kUtmEightDegreeBands[index];
}

TProjectionParams UtmZoneParams(const TZonaUTM& zone) {
  TProjectionParams params;
  params.lonOrigin = kUtmZoneWidthDeg * zone.zone - 183;
  params.latOrigin = 0;
  params.scaleFactor = kUtmScaleFactor;
  params.falseEasting = kUtmFalseEastingM;
  params.falseNorthing = IsSouthernBand(zone.band) ? kUtmSouthFalseNorthingM : 0;
  return params;
}

bool CheckUtmZone(const TZonaUTM& zone, std::string& message) {
  if (zone.band >= 'A' && zone.band <= 'Z') return true;
  message = kUtmZoneError;
  return false;
}

bool ParseUtmZone(std::string_view text, TZonaUTM& zone, std::string& message) {
  if (text.size() < 2) {
    message = kUtmZoneError;
    return false;
  }
  const char tens = text[0], units = text[1];
  const bool tensOk = tens == ' ' || (tens >= '0' && tens <= '9');
  if (!tensOk || units < '0' || units > '9') {
    message = kUtmZoneError;
    return false;
  }
  zone.zone = static_cast<int8_t>((tens == ' ' ? 0 : tens - '0') * 10 + (units - '0'));
  zone.band = text.size() > 2 ? text[2] : kUtmDefaultBand;
  return true;
}

std::string FormatUtmZone(const TZonaUTM& zone) {
  // Two digits: a zone text gives its zone from its first two characters.
  const int number = zone.zone;
  return std::string(number >= 0 && number < 10 ? "0" : "") + std::to_string(number) + zone.band;
}

bool LatLonToUtm(const TLonLat& geo, int fromDatum, int toDatum, TListaDatums& datums,
                 TUtmPosition& utm, std::string& message, bool forceZone) {
  if (forceZone && !CheckUtmZone(utm.zone, message)) return false;
  TLonLat position = geo;
  if (fromDatum != toDatum && !datums.Transforma_Grados_Datum(position, fromDatum, toDatum, message))
    return false;
  const TDatum* ellipsoid = datums.Get(toDatum);
  if (!ellipsoid) {
    message = kUtmDatumError;
    return false;
  }
  if (!ValidGeographic(position)) {
    message = kTmForwardError;
    return false;
  }
  TZonaUTM zone = utm.zone;
  if (!forceZone) {
    zone.zone = static_cast<int8_t>(UtmZoneOfLongitude(position.lon));
    zone.band = UtmBandOfLatitude(position.lat);
  }
  TPlanePoint plane;
  if (!ZoneProjection(*ellipsoid, zone).Forward(position, plane, message)) return false;
  utm.zone = zone;
  utm.x = plane.x;
  utm.y = plane.y;
  return true;
}

bool UtmToLatLon(const TUtmPosition& utm, int fromDatum, int toDatum, TListaDatums& datums,
                 TLonLat& geo, std::string& message) {
  if (!CheckUtmZone(utm.zone, message)) return false;
  const double maxNorthing = IsSouthernBand(utm.zone.band) ? kUtmMaxSouthNorthingM : kUtmMaxNorthingM;
  if (!(std::fabs(utm.y) <= maxNorthing)) {
    message = kUtmNorthingError;
    return false;
  }
  if (!(std::fabs(utm.x) < kUtmMaxEastingM)) {
    message = kUtmEastingError;
    return false;
  }
  const TDatum* ellipsoid = datums.Get(fromDatum);
  if (!ellipsoid) {
    message = kUtmDatumError;
    return false;
  }
  TLonLat position;
  if (!ZoneProjection(*ellipsoid, utm.zone).Inverse({utm.x, utm.y}, position, message)) return false;
  if (fromDatum != toDatum && !datums.Transforma_Grados_Datum(position, fromDatum, toDatum, message))
    return false;
  geo = position;
  return true;
}

bool UtmToUtm(TUtmPosition& utm, int fromDatum, int toDatum, TListaDatums& datums,
              std::string& message) {
  if (SameDatum(datums, fromDatum, toDatum)) return true;
  TLonLat geo;
  if (!UtmToLatLon(utm, fromDatum, toDatum, datums, geo, message)) return false;
  TUtmPosition shifted = utm;
  if (!LatLonToUtm(geo, toDatum, toDatum, datums, shifted, message)) return false;
  utm = shifted;
  return true;
}

}  // namespace velantis
