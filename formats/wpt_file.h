// The native waypoint file (WPT):
//
//   B  Windows-1252            (when a code page is configured)
//   G  WGS 84
//   U  1                       (when the notation is not 0)
//   z  minLat,minLon,maxLat,maxLon     (six decimals, as the W lines give them)
//   D  list description        (when there is one)
//   Y  name=value              (the list's properties, one line each)
//   W  ... / w ... / t ... / Y ...     (each waypoint, see waypoint_record.h)
//   (an empty line twice at the end)
//
// The reader takes the lines in any order: "Y" lines before the first "W"
// belong to the list, later ones to the waypoint before them; "w" and "t"
// lines to the waypoint before them. Unknown letters and empty lines are
// skipped. An OziExplorer waypoint file is recognised by its first line and
// read by its own reader (ozi_waypoint_file.h).
#pragma once

#include <string>
#include <string_view>

#include "core/waypoints.h"
#include "formats/native_file.h"

namespace velantis {

bool ReadWptFile(const std::string& path, const TNativeOptions& options, TWaypoints& list, std::string& error);
// The same from the file's bytes.
bool ReadWpt(std::string_view bytes, const TNativeOptions& options, TWaypoints& list, std::string& error);

// Writes list in the options' datum, notation and code page through a
// temporary file. Refuses a list whose save-prohibited bit is set; stops
// with failure, leaving path as it was, when the progress is cancelled.
bool WriteWptFile(const std::string& path, const TWaypoints& list, const TNativeOptions& options,
                  std::string& error);

// The "z  " line of a waypoint or route file: the box of the positions as
// written (file datum, rounded to the notation), six decimals.
void WriteBoundsLine(TNativeWriter& writer, const TBoundingBox& box);

}  // namespace velantis
