// IGC flight logs (.igc): the fixes of the B records become the points of a
// track; every other line is kept with the track (TTrack::KeptRecords) so
// that the writer gives the file back byte for byte where the track still
// holds what the file had. The choices the format leaves open are listed at
// the top of igc_file.cpp.
//
// Bad records (a B, I or date line that does not read) are skipped and
// counted, never fatal: the count goes to options.header->badRecords when a
// header is given. Readers set the progress total to the number of lines
// and count one step a line; writers one step a point. A cancelled progress
// ends either with failure (kCancelledError), the old file left as it was.
#pragma once

#include <string>
#include <string_view>

#include "core/track.h"
#include "formats/native_file.h"

namespace velantis {

// The format name a read track's kept records carry.
inline constexpr std::string_view kIgcFormatName = "IGC";

bool ReadIgcFile(const std::string& path, const TNativeOptions& options, TTrack& track, std::string& error);
bool ReadIgc(std::string_view bytes, const TNativeOptions& options, TTrack& track, std::string& error);

// The file's text: the kept records in their place between the fixes, or
// for a track that did not come from an IGC file, a header of its own.
bool WriteIgc(const TTrack& track, const TNativeOptions& options, std::string& text, std::string& error);
// Writes through a temporary file renamed over path; refuses a track whose
// save-prohibited bit is set.
bool WriteIgcFile(const std::string& path, TTrack& track, const TNativeOptions& options, std::string& error);

}  // namespace velantis
