// Magellan route files, read in the entry of the native RTE files: lines of
// "$PMG" sentences, each with its "*hh" checksum,
//
//   $PMGNWPL,4809.434,N,01135.061,E,0000520,M,NAME,comment,icon*hh
//   $PMGNRTE,messages,message,c,route,[route name,]NAME,icon,NAME,icon*hh
//
// "PMGNWPL" gives a waypoint (latitude and longitude as degrees and minutes,
// altitude in metres ("M") or feet ("F"), name, comment, icon); "PMGNRTE" the
// waypoint names of a route, a route taking several messages when long
// (numbered from 1 to their count; the next message 1 starts another route). A
// message whose fields after the route number are odd in count starts with
// the route's name. Positions are in WGS 84; texts in the legacy code page.
#pragma once

#include <string_view>

#include "core/ruta.h"
#include "formats/native_file.h"

namespace velantis {

// Whether the first line that is not blank starts with "$PMG".
bool IsMagellanRouteFile(std::string_view bytes);
// Reads the first route of the file from the waypoints the file gives and
// marks it as born in a foreign format (it is not saved back as such).
// Sentences with a wrong checksum are skipped, as receivers skip them.
// Fails with "No rte sections in this file!" when no route message is left.
bool ReadMagellanRoute(std::string_view bytes, const TNativeOptions& options, TRuta& route, std::string& error);

}  // namespace velantis
