// A user-defined projection: which catalogue projection, with which
// parameters, on which datum, as a projection definition file gives it.
//
// The record only holds what a file said; which numeric fields a projection
// reads depends on its kind (the catalogue's captions), and `fieldsPresent`
// tells which keys the file carried. Angles are degrees, false easting and
// northing metres whatever the unit of the plane system, which is only named
// here (metres, or feet when the file says "UNIT=FEET").
#pragma once

#include <cstdint>
#include <string>

#include "geodesy/projection.h"

namespace velantis {

// Bits of TDatosProyeccion::fieldsPresent, one per key of the file.
inline constexpr uint32_t kFieldVersion = 1;
inline constexpr uint32_t kFieldProjection = 2;
inline constexpr uint32_t kFieldName = 4;
inline constexpr uint32_t kFieldLonOrigin = 8;
inline constexpr uint32_t kFieldLatOrigin = 16;
inline constexpr uint32_t kFieldScaleFactor = 32;
inline constexpr uint32_t kFieldFalseNorthing = 64;
inline constexpr uint32_t kFieldFalseEasting = 128;
inline constexpr uint32_t kFieldLat1 = 256;
inline constexpr uint32_t kFieldLat2 = 512;

// Unit codes of a plane system: metres unless a file names feet.
inline constexpr int kUnitCodeMetres = 0;
inline constexpr int kUnitCodeFeet = 14;

struct TDatosProyeccion {
  std::string name;
  std::string projection;  // a catalogue name, e.g. "Transversal Mercator"
  double lonOrigin = 0;
  double latOrigin = 0;
  double falseNorthing = 0;
  double falseEasting = 0;
  double scaleFactor = 1;
  double lat1 = 0;  // first standard parallel
  double lat2 = 0;  // second standard parallel
  uint32_t fieldsPresent = 0;
  std::string otherNames;   // entries joined by ";"
  std::string verifPoints;  // entries joined by ";"
  int preferredDatum = -1;  // index into the datum list, -1 when unknown
  int unit = kUnitCodeMetres;

  bool Has(uint32_t field) const { return (fieldsPresent & field) != 0; }
  // The numeric fields in the form every TProjection constructor takes.
  TProjectionParams Params() const;

  bool operator==(const TDatosProyeccion&) const = default;
};

}  // namespace velantis
