// How a datum name typed by a user or read from a file is brought to the form
// the datum list is searched with.
#pragma once

#include <string>
#include <string_view>

namespace velantis {

// Trims the name, turns "_" into blanks and applies the fixed rewrites
// ("Europeo 1979" -> "European 1979"; "WGS84", "WGS-84" and
// "World Geodetic System 1984" -> "WGS 84").
std::string NormaliseDatumName(std::string_view name);

// Names read from projection files: a leading "GCS_", then "Datum_", then
// "D_" is stripped (each on what the one before left), then "_" becomes blank.
std::string StripProjectionDatumName(std::string_view name);

// True when the normalised name asks for the configured datum ("Auto Shift...").
bool IsAutoShiftName(std::string_view normalised);

// Datum names compare without regard to ASCII letter case: users type
// "wgs 84" and files write "WGS 84" for the same datum.
bool SameDatumName(std::string_view one, std::string_view other);

}  // namespace velantis
