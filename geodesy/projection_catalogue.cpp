#include "geodesy/projection_catalogue.h"

#include "geodesy/british_grid.h"
#include "geodesy/datum_names.h"
#include "geodesy/france_lambert.h"
#include "geodesy/irish_grid.h"
#include "geodesy/lambert_azimuthal_equal_area.h"
#include "geodesy/lambert_conformal_conic.h"
#include "geodesy/mercator.h"
#include "geodesy/new_zealand_grid.h"
#include "geodesy/oblique_stereographic.h"
#include "geodesy/polyconic.h"
#include "geodesy/stereographic.h"
#include "geodesy/swiss_grid.h"
#include "geodesy/top50_grid.h"
#include "geodesy/transverse_mercator.h"

namespace velantis {

namespace {

using P = TProjectionParams;

// Captions as the user sees them; spellings are the program's own.
const TProjectionCaption kLonOrigin{"Lon Origin", &P::lonOrigin};
const TProjectionCaption kLatOrigin{"Lat Origin", &P::latOrigin};
const TProjectionCaption kFalseNorthing{"False Northing", &P::falseNorthing};
const TProjectionCaption kFalseEasting{"False Easting", &P::falseEasting};
const TProjectionCaption kScaleFactor{"Scale Factor", &P::scaleFactor};
const TProjectionCaption kLatitudeOfOrigin{"Latitude of Origin", &P::latOrigin};
const TProjectionCaption kLongitudOfOrigin{"Longitud of Origin", &P::lonOrigin};

template <typename T, auto... Extra>
std::unique_ptr<TProjection> Make(const TDatum& ellipsoid, const TProjectionParams& params) {
  return std::make_unique<T>(ellipsoid, params, Extra...);
}

template <TFranceLambertZone Zone>
std::unique_ptr<TProjection> MakeFranceLambert(const TDatum& ellipsoid, const TProjectionParams&) {
  return std::make_unique<TFranceLambert>(ellipsoid, Zone);
}

template <typename T>
std::unique_ptr<TProjection> MakeFixed(const TDatum& ellipsoid, const TProjectionParams&) {
  return std::make_unique<T>(ellipsoid);
}

const std::vector<TProjectionKind>& Catalogue() {
  static const std::vector<TProjectionKind> kinds = {
      {"Lat/Long", {}, {}, "", nullptr},
      {"Meters", {}, {}, "", nullptr},
      {"UTM", {}, {}, "", nullptr},
      {"Transversal Mercator", {"Transveral Mercator"},
       {kLonOrigin, kLatOrigin, kFalseNorthing, kFalseEasting, kScaleFactor}, "",
       Make<TTransverseMercator>},
      {kMercatorName, {}, {kLonOrigin, kLatOrigin, kFalseNorthing, kFalseEasting, kScaleFactor}, "",
       Make<TMercator, TMercatorVariant::Mercator>},
      {kMercatorSphericalName, {}, {kLonOrigin, kFalseNorthing, kFalseEasting}, "",
       Make<TMercator, TMercatorVariant::Spherical>},
      {kEllipticalMercatorName, {}, {kLonOrigin, kFalseNorthing, kFalseEasting, kScaleFactor}, "",
       Make<TMercator, TMercatorVariant::Elliptical>},
      {kLambertOneParallelName, {},
       {kLatitudeOfOrigin, kLongitudOfOrigin, kFalseEasting, kFalseNorthing, kScaleFactor}, "",
       Make<TLambertConformalConic, TLambertVariant::OneStandardParallel>},
      {kLambertTwoParallelsName, {},
       {{"Lat Standard 1", &P::lat1}, {"Lat Standard 2", &P::lat2}, {"Origin Lat:", &P::latOrigin},
        {"Origin Lon:", &P::lonOrigin}, kFalseEasting, kFalseNorthing},
       "", Make<TLambertConformalConic, TLambertVariant::TwoStandardParallels>},
      {"France Lambert II", {}, {}, "NTF", MakeFranceLambert<TFranceLambertZone::LambertII>},
      {"France Lambert III", {}, {}, "NTF", MakeFranceLambert<TFranceLambertZone::LambertIII>},
      {"France Lambert IV", {}, {}, "NTF", MakeFranceLambert<TFranceLambertZone::LambertIV>},
      {"Lambert 93", {"Lambert-93"}, {}, "RGF93", MakeFranceLambert<TFranceLambertZone::Lambert93>},
      {kLambertAzimuthalName, {kLambertAzimuthalShownName},
       {kLatitudeOfOrigin, kLongitudOfOrigin, kFalseEasting, kFalseNorthing}, "",
       Make<TLambertAzimuthalEqualArea>},
      {kObliqueStereographicName, {},
       {kLatitudeOfOrigin, kLongitudOfOrigin, kFalseEasting, kFalseNorthing, kScaleFactor}, "",
       Make<TObliqueStereographic>},
      {kStereographicName, {}, {kLatitudeOfOrigin, kLongitudOfOrigin, kFalseEasting, kFalseNorthing},
       "", Make<TStereographic>},
      {kPolyconicName, {}, {kLonOrigin}, "", Make<TPolyconic>},
      {kSwissGridName, {kSwissGridShownName, "swiss"}, {}, "CH-1903", MakeFixed<TSwissGrid>},
      {kNewZealandGridName, {"NZMG"}, {}, "NZGD49", MakeFixed<TNewZealandMapGrid>},
      {kTop50GridName, {"NZTM"}, {}, kTop50GridDatum, MakeFixed<TTop50Grid>},
      {kBritishGridName, {"bng"}, {}, "Ord Srvy Grt Britn", MakeFixed<TBritishNationalGrid>},
      {kIrishGridName, {"irish"}, {}, "Ireland 1965", MakeFixed<TIrishGrid>},
      {"MGRS", {}, {}, "", nullptr},
  };
  return kinds;
}

}  // namespace

std::span<const TProjectionKind> ProjectionCatalogue() { return Catalogue(); }

const TProjectionKind* FindProjectionKind(std::string_view name) {
  for (const TProjectionKind& kind : Catalogue()) {
    if (SameDatumName(kind.name, name)) return &kind;
    for (const std::string_view other : kind.otherNames) {
      if (SameDatumName(other, name)) return &kind;
    }
  }
  return nullptr;
}

std::unique_ptr<TProjection> CreateProjection(std::string_view name, const TDatum& ellipsoid,
                                              const TProjectionParams& params,
                                              std::string& message) {
  const TProjectionKind* kind = FindProjectionKind(name);
  if (!kind || !kind->create) {
    message = "Projection not supported: " + std::string(name);
    return nullptr;
  }
  return kind->create(ellipsoid, params);
}

}  // namespace velantis
