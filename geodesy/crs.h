// The coordinate systems named on the command line and the conversion of one
// line of values between two of them:
//   geo:DATUM      LAT LON in degrees
//   utm:DATUM      ZONE BAND EASTING NORTHING ("31 T 430959.059 4583866.910";
//                  "31T" is accepted too); as a target the zone is computed
//   mgrs:DATUM     one MGRS reference
//   proj:FILE      X Y in metres in a projection definition file, on its
//                  PREFERED_DATUM, else WGS 84
//   NAME[:DATUM]   E N in metres in a catalogue projection with fixed
//                  parameters ("CH-1903", "Irish Grid", "bng", ...), on its own
//                  datum unless one is named
// Output: degrees with 9 decimals, metres with 3, fields separated by one blank.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "geodesy/lista_datums.h"
#include "geodesy/projection.h"

namespace velantis {

enum class TCrsKind { Geographic, Utm, Mgrs, Plane };

struct TCrs {
  TCrsKind kind = TCrsKind::Geographic;
  int datum = 0;
  std::shared_ptr<const TProjection> projection;  // for plane systems
};

enum class TCrsError { None, UnknownForm, UnknownDatum, BadDefinition };

// Parses a system's text; on failure says whether the form, the datum or the
// projection definition was at fault.
TCrsError ParseCrs(std::string_view text, const TListaDatums& datums, TCrs& crs,
                   std::string& error);

// Converts one line of values written in `from` to the values of `to`.
bool ConvertCrsLine(std::string_view values, const TCrs& from, const TCrs& to,
                    TListaDatums& datums, std::string& output, std::string& error);

}  // namespace velantis
