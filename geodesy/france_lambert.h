// The French Lambert grids with fixed parameters: "France Lambert II",
// "France Lambert III", "France Lambert IV" on NTF and "Lambert 93" (also
// written "Lambert-93") on RGF93.
//
// The NTF grids are the IGN "Lambert carto" forms, one standard parallel each
// on the Paris meridian, with the zone number as the millions digit of the
// northing: Lambert II étendu (EPSG:27572), Lambert III carto (EPSG:27573) and
// Lambert IV carto (EPSG:27574). Lambert II is the étendu ("extended") grid,
// not the zone grid Lambert II Centre (EPSG:27562, false northing 200000):
// the étendu grid has the same cone as zone II but covers the whole of
// mainland France, it is the grid of IGN's national maps and of French data
// sets until Lambert 93, and its northings (1.6 to 2.7 million) can never be
// mistaken for zone coordinates. III and IV take their carto forms for the
// same reason, so that the three NTF grids read alike.
//
// Each grid is a TLambertConformalConic with the constants below on the
// ellipsoid of the datum the caller passes: NTF (Clarke 1880 IGN, a 6378249.2,
// 1/f 293.466021293627) for II to IV and RGF93 (GRS 80) for Lambert 93; the
// caller resolves "NTF" or "RGF93" in the datum list (FranceLambertDatumName).
// Latitudes and longitudes are on that datum, longitudes from Greenwich: the
// Paris meridian is inside the grid's constants. Accuracy, domain and
// messages are those of TLambertConformalConic.
#pragma once

#include <string>
#include <string_view>

#include "geodesy/lambert_conformal_conic.h"

namespace velantis {

enum class TFranceLambertZone { LambertII, LambertIII, LambertIV, Lambert93 };

// Longitude of the Paris meridian east of Greenwich, degrees: 2°20'14.025"
// (IGN, NTG_71 and the NTF geodetic system definition; EPSG 8903, 2.5969213 gon).
inline constexpr double kParisMeridianDeg = 2 + 20.0 / 60 + 14.025 / 3600;

// The grid shown under a catalogue name ("France Lambert II" ... "Lambert 93",
// "Lambert-93"); false for any other name.
bool FranceLambertZoneOfName(std::string_view name, TFranceLambertZone& zone);
// The catalogue name of a grid.
const char* FranceLambertName(TFranceLambertZone zone);
// The name of the grid's datum in the datum list: "NTF" or "RGF93".
const char* FranceLambertDatumName(TFranceLambertZone zone);
// The grid's fixed parameters (degrees from Greenwich, metres).
TProjectionParams FranceLambertParams(TFranceLambertZone zone);

class TFranceLambert : public TProjection {
public:
  TFranceLambert(const TDatum& datum, TFranceLambertZone zone);

  bool Forward(const TLonLat& geo, TPlanePoint& plane, std::string& message) const override {
    return m_conic.Forward(geo, plane, message);
  }
  bool Inverse(const TPlanePoint& plane, TLonLat& geo, std::string& message) const override {
    return m_conic.Inverse(plane, geo, message);
  }

  TFranceLambertZone Zone() const { return m_zone; }

private:
  TFranceLambertZone m_zone;
  TLambertConformalConic m_conic;
};

}  // namespace velantis
