// The readable source table of the built-in datums (data/datums.txt), from
// which the build makes "datumsb.dat". One datum a line, nine fields
// separated by "|":
//   name | aliases (";"-separated) | ellipsoid code | a | 1/f | dX | dY | dZ | short name
// Lines starting with "#" and blank lines are skipped.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "geodesy/datum.h"

namespace velantis {

// Parses the table; on failure error names the line and what is wrong.
bool ParseDatumTable(std::string_view text, std::vector<TDatum>& datums, std::string& error);

}  // namespace velantis
