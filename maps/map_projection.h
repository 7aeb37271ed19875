// The projection of a calibrated map, as the "Projection" key of a ".imp"
// file names it: a projection code, a comma, the projection name, then its
// parameters, each followed by a comma:
//
//   1,Lat/Long,
//   0,UTM,            the zone comes from the calibration points
//   0,UTM,31T,        a zone given
//   -1,Transversal Mercator,39,0,0,7500000,1,
//
// Codes: 1 geographic, 0 UTM, -1 every other plane system. The parameters
// are those of the projection's captions in the catalogue, in the
// catalogue's order (geodesy/projection_catalogue.h); a fixed grid takes
// none. When the value does not read this way, the text after the first comma
// (without the commas that end it) is taken as a projection name: a catalogue
// name, or a name of the data folder's "project.dat"; a text that still holds
// a comma is no name.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "geodesy/lista_datums.h"
#include "geodesy/projection.h"
#include "geodesy/utm.h"

namespace velantis {

inline constexpr int kProjectionCodeUtm = 0;
inline constexpr int kProjectionCodeLatLon = 1;
inline constexpr int kProjectionCodePlane = -1;

inline constexpr std::string_view kLatLongName = "Lat/Long";
inline constexpr std::string_view kUtmName = "UTM";

struct TMapProjection {
  std::string name{kLatLongName};  // a catalogue name or a "project.dat" name
  TProjectionParams params;        // those the kind's captions name
  std::optional<TZonaUTM> zone;    // UTM only

  int Code() const;
  bool IsLatLong() const;
  bool IsUtm() const;
  bool operator==(const TMapProjection&) const = default;
};

// Reads a "Projection" value; false with "Unknown projection: " + value when
// neither form reads.
bool ParseMapProjection(std::string_view value, TMapProjection& projection, std::string& error);
// The value as written in a ".imp" file; numbers in their shortest form that
// reads back to the same double.
std::string FormatMapProjection(const TMapProjection& projection);

}  // namespace velantis
