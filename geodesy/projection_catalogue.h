// The catalogue of plane coordinate systems: each projection kind with its
// name as shown, the other names it is known by, the captions of its
// parameters (the texts shown to the user, each tied to the parameter it
// sets), the datum of the fixed national grids, and how to build it.
//
// "Lat/Long", "Meters", "UTM" and "MGRS" are in the catalogue for their names
// and captions but are not built here: geographic, plain metric, UTM zone and
// MGRS coordinates have their own conversions (geodesy/utm.h, geodesy/mgrs.h).
#pragma once

#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "geodesy/projection.h"

namespace velantis {

struct TProjectionCaption {
  std::string_view text;
  double TProjectionParams::*param;
};

using TProjectionFactory = std::unique_ptr<TProjection> (*)(const TDatum& ellipsoid,
                                                             const TProjectionParams& params);

struct TProjectionKind {
  std::string_view name;                     // as shown in the chooser
  std::vector<std::string_view> otherNames;  // also accepted, letter case ignored
  std::vector<TProjectionCaption> captions;
  std::string_view fixedDatum;  // the datum a fixed grid is defined on, else empty
  TProjectionFactory create;    // nullptr for the kinds built elsewhere
};

std::span<const TProjectionKind> ProjectionCatalogue();

// The kind of that name or other name (letter case ignored), else nullptr.
const TProjectionKind* FindProjectionKind(std::string_view name);

// Builds a projection of the catalogue on the ellipsoid of a datum; nullptr
// with "Projection not supported: " + name for unknown names and for the
// kinds that are not plane projections.
std::unique_ptr<TProjection> CreateProjection(std::string_view name, const TDatum& ellipsoid,
                                              const TProjectionParams& params,
                                              std::string& message);

}  // namespace velantis
