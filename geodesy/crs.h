// The coordinate systems named on the command line ("geo:WGS 84", ...) and
// the conversion of one position between two of them.
#pragma once

#include <string>
#include <string_view>

#include "geodesy/lista_datums.h"

namespace velantis {

enum class TCrsKind { Geographic };

struct TCrs {
  TCrsKind kind = TCrsKind::Geographic;
  int datum = 0;
};

enum class TCrsError { None, UnknownForm, UnknownDatum };

// Parses "KIND:DATUM"; on failure says whether the form or the datum was bad.
TCrsError ParseCrs(std::string_view text, const TListaDatums& datums, TCrs& crs,
                   std::string& error);

// Converts one line of values written in `from` to the values of `to`
// ("LAT LON" in degrees with 9 decimals for geographic systems).
bool ConvertCrsLine(std::string_view values, const TCrs& from, const TCrs& to,
                    TListaDatums& datums, std::string& output, std::string& error);

}  // namespace velantis
