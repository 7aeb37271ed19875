// The record of one track point in the native track file:
//
//   T  lat lon DD-MMM-YY hh:mm:ss N|s altitude speed course hdop satellites
//      accuracy temperature signed barometric size heartrate cadence quarter
//   t number|text|small1|small2|real|byte      (when the point has a label)
//   y  name=value                              (the label's properties)
//   Y  name=value                              (the point's properties)
//
// The twelve values after the altitude: ground speed (km/h), course
// (degrees), HDOP, satellites ("%d"), the receiver's accuracy estimate (m),
// the temperature in kelvin (-1.000000 when absent), the signed byte, the
// barometric altitude (m), the size byte doubled (-1 when unset), the heart
// rate, the cadence ("%d", -1 when absent) and the quarter-unit value (-1.000000
// when absent). The terrain altitude comes from the elevation model and is
// not written. "s" marks a point that starts a new segment. The GPS altitude
// is written "-9999" only below -1000 m: a point at exactly -1000 m keeps its
// value (a waypoint there is written as unknown). Times are held and written
// in UTC, so no conversion applies on either side.
#pragma once

#include <string>
#include <string_view>

#include "core/track.h"
#include "formats/native_file.h"

namespace velantis {

inline constexpr std::string_view kTrkLineError = "Error in TRK file";

// The point's record, its label and its properties, each line ending in CR LF.
bool WriteTrackPointRecord(TNativeWriter& writer, const TTrack& track, size_t index, std::string& error);

// A whole "T" line (letter included) into point.
bool ReadTrackPointLine(const TNativeReader& reader, std::string_view line, TrkPnt& point, std::string& error);
// The content of a track "t" line.
TTextLabel ReadTrackLabelLine(const TNativeReader& reader, std::string_view content);

}  // namespace velantis
