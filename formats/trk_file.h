// The native track file (TRK). After the "B", "G" and "U" lines (the "U"
// line always), the track's header:
//
//   P Q N I b D d  texts, each only when not empty ("N" the name, "D" the
//                  description)
//   C  red green blue style width mode "pattern" text   (blanks of the
//                  pattern written as "*")
//   L  DD-MMM-YYYY hh:mm:ss   the time offset, as the date-time that many
//                  days after 30 December 1899 (only when the offset is set)
//   V  real real int int int int real real small   (display and filter values)
//   M  text        one line for each non-empty line of the multi-line text
//   Z R s l        texts, each only when not empty
//   E flags|kind|date-time|date-time|last|point count
//   i j k g e f    texts; "i" the identifier, derived from the first point's
//                  time (YYYYMMDDhhmmss) when the track has none
//   c a:b c:d ...  the marked pairs, when there are any
//   z  count,minLat,minLon,maxLat,maxLon   fixed width, see below
//   m  first time|last time                fixed width, see below
//   Y  name=value  the track's properties
// then a record for each point (track_point_record.h).
//
// The "z" and "m" texts have a fixed width (a ten-digit count, coordinates
// as "%+012.6f"/"%+011.6f", times as "YYYY-MM-DD hh:mm:ss" or 19 blanks), so
// that appending points to the file rewrites them in place: the track
// keeps the offset of the "z" text (ZLinePosition). The point count of the
// "E" line is the count when the header was last written; readers go by the
// "T" lines.
#pragma once

#include <string>
#include <string_view>

#include "core/track.h"
#include "formats/native_file.h"

namespace velantis {

bool ReadTrkFile(const std::string& path, const TNativeOptions& options, TTrack& track, std::string& error);
bool ReadTrk(std::string_view bytes, const TNativeOptions& options, TTrack& track, std::string& error);

// Writes the track in the options' datum, notation and code page through a
// temporary file and stores the "z" text's offset in the track. Refuses a
// track whose save-prohibited bit is set; stops with failure, leaving path
// as it was, when the progress is cancelled.
bool WriteTrkFile(const std::string& path, TTrack& track, const TNativeOptions& options, std::string& error);

// Appends the points from index first on to the file the track was last
// written to or read from (path), and rewrites its "z" and "m" texts in place.
// The options must be those the file was written with. Each call ends with
// the bytes handed to the system, so a killed program loses nothing appended.
bool AppendTrkPoints(const std::string& path, const TTrack& track, size_t first, const TNativeOptions& options,
                     std::string& error);

}  // namespace velantis
