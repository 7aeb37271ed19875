// The plain text forms that ImportWptsTxt and ImportTrackTxt read: the
// tab-separated lines a spreadsheet or a simple export writes.
//
//   waypoints: name <TAB> latitude <TAB> longitude [<TAB> altitude [<TAB> description]]
//   track:     latitude <TAB> longitude [<TAB> altitude [<TAB> time]]
//
// Latitude and longitude in decimal degrees on WGS 84 (a point, not a
// comma, before the decimals), north and east positive; altitude in metres,
// an empty field for none; time "YYYY-MM-DD hh:mm:ss" in UTC, an empty field
// for none. Lines end in LF or CR LF; empty lines and lines starting with "#"
// are skipped. Anything else that does not read fails the whole import with
// "Error in line N" (N counted from 1), leaving the target as it was: a
// half-imported list would be worse than none.
#pragma once

#include <string>
#include <string_view>

#include "core/track.h"
#include "core/waypoints.h"

namespace velantis {

// Appends the waypoints of text to list.
bool ReadWaypointsText(std::string_view text, const TBalizaDefaults& defaults, TWaypoints& list,
                       std::string& error);
// Appends the points of text to track.
bool ReadTrackText(std::string_view text, TTrack& track, std::string& error);

}  // namespace velantis
