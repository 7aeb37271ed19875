#include "geodesy/france_lambert.h"

#include <iterator>

namespace velantis {

namespace {

constexpr double kDegreesPerGrad = 0.9;

struct TZoneDefinition {
  TFranceLambertZone zone;
  const char* name;
  const char* alternativeName;  // nullptr when there is none
  const char* datum;
  TLambertVariant variant;
  TProjectionParams params;
};

// IGN's definitions, as carried by the EPSG dataset and checked with
// `projinfo EPSG:27572`, `EPSG:27573`, `EPSG:27574` and `EPSG:2154` (PROJ 9.1.1).
// NTF grids: latitude of origin in grads as IGN gives it, k0 on that parallel,
// Paris meridian; IGN NTG_71 and "Projections coniques conformes de Lambert"
// tables. Lambert 93: Décret 2000-1276 (26 Dec 2000) and IGN's RGF93 notice.
const TZoneDefinition kZones[] = {
    // NTF (Paris) / Lambert zone II étendu: 52 gon, k0 0.99987742, FE 600000,
    // FN 2200000 (EPSG:27572).
    {TFranceLambertZone::LambertII, "France Lambert II", nullptr, "NTF",
     TLambertVariant::OneStandardParallel,
     {.lonOrigin = kParisMeridianDeg, .latOrigin = 52 * kDegreesPerGrad,
      .scaleFactor = 0.99987742, .falseEasting = 600000, .falseNorthing = 2200000}},
    // NTF (Paris) / Lambert zone III carto: 49 gon, k0 0.999877499, FE 600000,
    // FN 3200000 (EPSG:27573; IGN's tables round k0 to 0.99987750).
    {TFranceLambertZone::LambertIII, "France Lambert III", nullptr, "NTF",
     TLambertVariant::OneStandardParallel,
     {.lonOrigin = kParisMeridianDeg, .latOrigin = 49 * kDegreesPerGrad,
      .scaleFactor = 0.999877499, .falseEasting = 600000, .falseNorthing = 3200000}},
    // NTF (Paris) / Lambert zone IV carto: 46.85 gon, k0 0.99994471,
    // FE 234.358, FN 4185861.369 (EPSG:27574).
    {TFranceLambertZone::LambertIV, "France Lambert IV", nullptr, "NTF",
     TLambertVariant::OneStandardParallel,
     {.lonOrigin = kParisMeridianDeg, .latOrigin = 46.85 * kDegreesPerGrad,
      .scaleFactor = 0.99994471, .falseEasting = 234.358, .falseNorthing = 4185861.369}},
    // RGF93 / Lambert-93: standard parallels 49 and 44 N, false origin
    // 46.5 N 3 E, FE 700000, FN 6600000 (EPSG:2154).
    {TFranceLambertZone::Lambert93, "Lambert 93", "Lambert-93", "RGF93",
     TLambertVariant::TwoStandardParallels,
     {.lonOrigin = 3, .latOrigin = 46.5, .falseEasting = 700000, .falseNorthing = 6600000,
      .lat1 = 49, .lat2 = 44}},
};

const TZoneDefinition& Definition(TFranceLambertZone zone) {
  for (const TZoneDefinition& definition : kZones) {
    if (definition.zone == zone) return definition;
  }
  return kZones[std::size(kZones) - 1];  // unreachable: every zone is in the table
}

}  // namespace

bool FranceLambertZoneOfName(std::string_view name, TFranceLambertZone& zone) {
  for (const TZoneDefinition& definition : kZones) {
    if (name == definition.name ||
        (definition.alternativeName != nullptr && name == definition.alternativeName)) {
      zone = definition.zone;
      return true;
    }
  }
  return false;
}

const char* FranceLambertName(TFranceLambertZone zone) { return Definition(zone).name; }

const char* FranceLambertDatumName(TFranceLambertZone zone) { return Definition(zone).datum; }

TProjectionParams FranceLambertParams(TFranceLambertZone zone) { return Definition(zone).params; }

TFranceLambert::TFranceLambert(const TDatum& datum, TFranceLambertZone zone)
    : m_zone(zone), m_conic(datum, Definition(zone).params, Definition(zone).variant) {}

}  // namespace velantis
