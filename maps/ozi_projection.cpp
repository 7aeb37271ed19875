#include "maps/ozi_projection.h"

#include <array>
#include <cmath>

#include "app/decimal_text.h"
#include "formats/native_text.h"
#include "geodesy/british_grid.h"
#include "geodesy/irish_grid.h"
#include "geodesy/lambert_azimuthal_equal_area.h"
#include "geodesy/lambert_conformal_conic.h"
#include "geodesy/mercator.h"
#include "geodesy/new_zealand_grid.h"
#include "geodesy/polyconic.h"
#include "geodesy/projection_catalogue.h"
#include "geodesy/projection_file.h"
#include "geodesy/swiss_grid.h"
#include "geodesy/top50_grid.h"

namespace velantis {

namespace {

// OziExplorer's "Lambert Conformal Conic" is the two-parallel cone; the
// catalogue's kind of that same name is the one-parallel variant.
constexpr std::array kNames = {
    TOziProjectionName{"Latitude/Longitude", kLatLongName},
    TOziProjectionName{"Transverse Mercator", kTransverseMercatorName},
    TOziProjectionName{"(UTM) Universal Transverse Mercator", kUtmName},
    TOziProjectionName{"Mercator", kMercatorName},
    TOziProjectionName{"Lambert Conformal Conic", kLambertTwoParallelsName},
    TOziProjectionName{"(BNG) British National Grid", kBritishGridName},
    TOziProjectionName{"(IG) Irish Grid", kIrishGridName},
    TOziProjectionName{"(SUI) Swiss Grid", kSwissGridName},
    TOziProjectionName{"(NZG) New Zealand Grid", kNewZealandGridName},
    TOziProjectionName{"(NZTM2) New Zealand TM 2000", kTop50GridName},
    TOziProjectionName{"Polyconic (American)", kPolyconicName},
    TOziProjectionName{"(II) France Zone II", "France Lambert II"},
    TOziProjectionName{"(III) France Zone III", "France Lambert III"},
    TOziProjectionName{"(IV) France Zone IV", "France Lambert IV"},
    TOziProjectionName{"(A)Lambert Azimuthual Equal Area", kLambertAzimuthalName},
};

// The setup fields in the file's order.
constexpr std::array kSetupParams = {
    &TProjectionParams::latOrigin,     &TProjectionParams::lonOrigin,
    &TProjectionParams::scaleFactor,   &TProjectionParams::falseEasting,
    &TProjectionParams::falseNorthing, &TProjectionParams::lat1,
    &TProjectionParams::lat2,
};
constexpr std::string_view kUnusedSetupFields = ",,,";  // height, sat, path

char AsciiLower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

bool SameIgnoringCase(std::string_view one, std::string_view other) {
  if (one.size() != other.size()) return false;
  for (size_t i = 0; i < one.size(); ++i) {
    if (AsciiLower(one[i]) != AsciiLower(other[i])) return false;
  }
  return true;
}

bool TakesParameters(std::string_view catalogueName) {
  const TProjectionKind* kind = FindProjectionKind(catalogueName);
  return kind && !kind->captions.empty();
}

TProjectionParams ReadSetupFields(std::string_view setupFields) {
  std::array<std::string_view, kSetupParams.size() + 1> fields;
  const size_t count = SplitAt(setupFields, ',', fields.data(), fields.size());
  TProjectionParams params;
  for (size_t i = 0; i < kSetupParams.size() && i < count; ++i) {
    double value = 0;
    if (ParseReal(fields[i], value) && std::isfinite(value)) params.*kSetupParams[i] = value;
  }
  return params;
}

}  // namespace

std::span<const TOziProjectionName> OziProjectionNames() { return kNames; }

const TOziProjectionName* FindOziProjection(std::string_view oziName) {
  oziName = TrimBlanks(oziName);
  for (const TOziProjectionName& row : kNames) {
    if (SameIgnoringCase(row.ozi, oziName)) return &row;
  }
  return nullptr;
}

const TOziProjectionName* FindOziProjectionOfCatalogue(std::string_view catalogueName) {
  const TProjectionKind* kind = FindProjectionKind(catalogueName);
  if (!kind) return nullptr;
  for (const TOziProjectionName& row : kNames) {
    if (row.catalogue == kind->name) return &row;
  }
  return nullptr;
}

bool ReadOziProjection(std::string_view oziName, std::string_view setupFields,
                       TMapProjection& projection, std::string& error) {
  const TOziProjectionName* row = FindOziProjection(oziName);
  if (!row) {
    error = "Projection not supported: " + std::string(TrimBlanks(oziName));
    return false;
  }
  TMapProjection read;
  read.name = std::string(row->catalogue);
  if (TakesParameters(row->catalogue)) read.params = ReadSetupFields(setupFields);
  projection = std::move(read);
  return true;
}

std::string OziProjectionSetupFields(const TMapProjection& projection) {
  const bool takesParameters = TakesParameters(projection.name);
  std::string text;
  for (size_t i = 0; i < kSetupParams.size(); ++i) {
    if (i > 0) text += ',';
    if (takesParameters) text += ShortestDecimal(projection.params.*kSetupParams[i]);
  }
  text += kUnusedSetupFields;
  return text;
}

}  // namespace velantis
