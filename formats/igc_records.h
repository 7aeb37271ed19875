// The record lines of an IGC flight log that the reader interprets: the B
// fix record, the I record that lays out the B record's extensions, and the
// HFDTE date line. Every other record is kept as it stands (igc_file.h).
//
// B record, by byte (1-based, as the I record counts them):
//   1 "B", 2-7 HHMMSS (UTC), 8-15 DDMMmmmN, 16-24 DDDMMmmmE, 25 validity
//   'A' (three-dimensional fix) or 'V', 26-30 pressure altitude, 31-35 GNSS
//   altitude (metres, "-" and four digits below zero), then the extensions.
// I record: "I", the count NN, then NN groups SSEECCC: the extension CCC
//   fills bytes SS to EE of every later B record.
// HFDTE: "HFDTEDDMMYY" (before 2016) or "HFDTEDATE:DDMMYY,NN" (NN the
//   flight of the day).
//
// Each parser returns false, leaving its outputs unspecified, for a line it
// cannot read; the writers print what the parsers read back to the same
// values.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "core/date_time.h"
#include "core/property_list.h"
#include "core/trk_pnt.h"

namespace velantis {

// The bytes of a B record before its extensions.
inline constexpr size_t kIgcFixBytes = 35;

// One extension of the B record: bytes first to last (1-based, inclusive).
struct TIgcExtension {
  int first = 0;
  int last = 0;
  std::string code;  // three letters: "FXA", "SIU", "LAD", ...
  int Width() const { return last - first + 1; }
};
using TIgcExtensions = std::vector<TIgcExtension>;

// An I record. The extensions must follow one another from byte 36 with
// distinct codes, as the format lays them out.
bool ParseIgcExtensions(std::string_view line, TIgcExtensions& extensions);

// A date line ("H", any source letter, "DTE", an optional "DATE:", DDMMYY);
// date is the day at 00:00 UTC, two-digit years 80-99 being 1980-1999 and
// 00-79 2000-2079. digitsAt is where DDMMYY starts in the line.
bool ParseIgcDate(std::string_view line, TDateTime& date, size_t& digitsAt);
// The date line with its DDMMYY replaced by date's (the line must parse).
std::string WithIgcDate(std::string_view line, TDateTime date);
// DDMMYY of a date.
std::string IgcDateDigits(TDateTime date);

// A B record read with the extensions in force: the point's position,
// altitudes and mapped extensions ("FXA" the accuracy in metres, "SIU" the
// satellites, "LAD"/"LOD" further digits of the minutes), secondOfDay its
// time, extras the extensions the point has no field for (by code) and the
// bytes after the last extension (kIgcTailProperty) and the whole record
// when it is not printed as AppendIgcFix prints it (kIgcRecordProperty).
bool ParseIgcFix(std::string_view line, const TIgcExtensions& extensions, TrkPnt& point, int& secondOfDay,
                 TPropertyList& extras);
// Appends the B record of a point (without its line end).
void AppendIgcFix(std::string& out, const TrkPnt& point, int secondOfDay, const TIgcExtensions& extensions,
                  const TPropertyList* extras);

inline constexpr std::string_view kIgcTailProperty = "B tail";
// A record that AppendIgcFix would print otherwise is kept whole under this
// name, and printed as it stands while it still reads as the point.
inline constexpr std::string_view kIgcRecordProperty = "B record";

}  // namespace velantis
