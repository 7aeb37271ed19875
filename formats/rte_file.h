// The native route file (RTE):
//
//   B  Windows-1252 / G  WGS 84 / U  n       (header; "U" only when n is not 0)
//   R  attribute0,name,attribute1,attribute2  (name: the file's own name)
//   z  minLat,minLon,maxLat,maxLon            (when the route has points)
//   W ... w ... t ... Y ...                   (each route point, waypoint_record.h)
//   p  lat lon altitude                       (its shape points, in order)
//   (an empty line twice at the end)
//
// Route points are written as the route holds them, in WGS 84, so the "G"
// line always names WGS 84; a file from elsewhere naming another datum is
// shifted on reading. The route's name is the file's: on reading, the name
// on the "R" line. The RTE entry also reads OziExplorer route files
// (ozi_waypoint_file.h) and Magellan "$PMG" route files
// (magellan_route_file.h), both marked as not to be saved back as RTE.
#pragma once

#include <string>
#include <string_view>

#include "core/ruta.h"
#include "formats/native_file.h"

namespace velantis {

inline constexpr std::string_view kNoRteSections = "No rte sections in this file!";

bool ReadRteFile(const std::string& path, const TNativeOptions& options, TRuta& route, std::string& error);
bool ReadRte(std::string_view bytes, const TNativeOptions& options, TRuta& route, std::string& error);

// Writes the route in the options' notation and code page through a
// temporary file. Refuses a route whose save-prohibited bit is set; stops
// with failure, leaving path as it was, when the progress is cancelled.
bool WriteRteFile(const std::string& path, const TRuta& route, const TNativeOptions& options, std::string& error);

// The name the "R" line carries for a file: without folder and without its
// last extension (a leading "." does not start an extension).
std::string RouteNameOfFile(const std::string& path);

}  // namespace velantis
