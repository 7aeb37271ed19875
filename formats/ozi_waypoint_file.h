// OziExplorer waypoint and route files, read in the entries of the native
// WPT and RTE files.
//
// Waypoint file: four header lines (the version line, the datum name, two
// reserved lines), then one comma-separated record a waypoint: number, name,
// latitude, longitude (decimal degrees), date (days since 30 December 1899,
// 0 or empty for none), symbol, status, display format, foreground colour,
// background colour, description, pointer direction, garmin display format,
// proximity distance, altitude in feet (-777: none), font size, font style,
// symbol size, and further optional fields. Texts are in the legacy 8-bit
// code page; a comma inside a text is stored as the byte 209. Fields may be
// padded with blanks. A waypoint takes the name, position, date, the two
// colours (Windows BGR numbers), description, proximity distance (0: none)
// and altitude; the symbol number, status, display formats, pointer
// direction, font and symbol size are not taken. A record of fewer than four
// fields fails with "Error in WPT file"; later fields may be left out.
// Route file: the same four header lines, then "R" lines (route number,
// name, description, colour) each followed by its "W" lines (route number,
// point number, waypoint number, then a waypoint record as above).
#pragma once

#include <string_view>

#include "core/ruta.h"
#include "core/waypoints.h"
#include "formats/native_file.h"

namespace velantis {

// The first lines that mark OziExplorer files.
inline constexpr std::string_view kOziWaypointHeaders[] = {
    "OziExplorer Waypoint File Version 1.1",
    "OziExplorer Waypoint File Version 1.0",
    "OziExplorer CE Waypoint File Version 1.0",
};

// Whether the bytes start with one of the waypoint header lines.
bool IsOziWaypointFile(std::string_view bytes);
// Reads the waypoints, shifted from the file's datum to WGS 84, and marks the
// list as OziExplorer-born.
bool ReadOziWaypoints(std::string_view bytes, const TNativeOptions& options, TWaypoints& list, std::string& error);

// Whether the bytes start with "OziExplorer Route File".
bool IsOziRouteFile(std::string_view bytes);
// Reads the first route of the file (its "R" line and the "W" lines that
// follow) and marks it OziExplorer-born; fails with "No rte sections in this
// file!" when the file has no "R" line.
bool ReadOziRoute(std::string_view bytes, const TNativeOptions& options, TRuta& route, std::string& error);

}  // namespace velantis
