// The waypoint record of the native waypoint and route files: the "W" line,
// its extension line "w" and its text-label line "t".
//
//   W  NAME__ 41.391667ºN 2.175000ºE 05-JUN-24 13:07:00 123.000000 comment
//   w symbol,mode,scale,colour1,colour2,bit3,state,link,radius,0,size*2,nibble*10,bits67
//   t "label text",number,byte1,byte2,byte3, integer
//
// Names lose ",", CR, LF and "%", are padded with blanks to six characters
// and have every blank written as "_" ("VOID" reads as an empty name);
// comments lose the same characters. The symbol and link texts of the "w"
// line lose "," too, so that the line splits back into its thirteen fields.
// The label text loses CR and LF. A waypoint at -1000 m or lower has no
// altitude and is written -9999.000000.
#pragma once

#include <string>
#include <string_view>

#include "core/baliza.h"
#include "formats/native_file.h"

namespace velantis {

inline constexpr std::string_view kWptLineError = "Error in WPT file";

// The "W" line and, when extended and the waypoint needs them, its "w" line,
// its "t" line when it has a label, and its property block when extended.
bool WriteWaypointRecord(TNativeWriter& writer, const TBaliza& baliza, bool extended, bool shiftDatum,
                         std::string& error);

// A whole "W" line (letter included) into baliza, whose other fields stay.
bool ReadWaypointLine(const TNativeReader& reader, std::string_view line, bool shiftDatum, TBaliza& baliza,
                      std::string& error);
// The content of a "w" line (after "w ") into baliza. Earlier builds wrote
// "w" with two blanks, as the stand-alone letters are; the reader takes both.
void ReadExtensionLine(const TNativeReader& reader, std::string_view content, TBaliza& baliza);
// The content of a "t" line into baliza's label; a line of fewer than five
// fields is ignored.
void ReadLabelLine(const TNativeReader& reader, std::string_view content, TBaliza& baliza);

}  // namespace velantis
