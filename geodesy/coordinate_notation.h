// Coordinate notations: how a latitude or a longitude is typed and printed.
//
// The notation is an integer, the configuration's Coordinate_Notation and the
// "U" line of native files. Printed forms, one value with no blank inside it
// (native files split their lines at blanks), the hemisphere letter last:
//
//   code  name                          latitude         longitude
//   0     "dd.dddddd"                   41.391667ºN      2.175000ºW
//   1     "ddº mm.mmm'"                 41º23.500'N      2º10.500'W
//   2     "ddº mm'ss.s"                 41º23'30.0"N     2º10'30.0"W
//   3     "gr, France Decimal Degrees"  45.990741GRN     2.416667GRW
//
// - The degree sign is "º" (U+00BA, two bytes in UTF-8); degrees carry no
//   leading zeros, minutes and seconds always two integer digits.
// - Decimals: six of a degree (0), three of a minute (1), one of a second (2),
//   six of a grad (3). The value is rounded once, as a whole count of the last
//   printed unit, and then split, so 59.9995' and 59.95" carry into the next
//   degree or minute: no "60" minute or second is ever printed.
// - Grads: 400 to the full circle, 0.9 degree to the grad, marked "GR". The
//   conversion is the same whatever the configured notation.
// - The letter is N or S for a latitude, E or W for a longitude; a value that
//   prints as zero takes N or E (so -0 and -0.0000001 print as 0.000000ºN).
// Every printed value parses back (ParseLatLon) to the value rounded to the
// notation's last unit, and printing that again gives the same text.
//
// The parser follows the system's rules, including their oddities:
// - the text is trimmed and read without regard to letter case;
// - the letters W, E, N and S are looked for anywhere and tested independently:
//   N or S makes a latitude, W or S a negative value (so "41N W" is -41, a
//   latitude); without any of them the text is refused with
//   "Error in format lat/lon NO quadrant leter found: (N,S,E,W)";
// - every W, E, N, S and then every "GR" is removed; with "GR" the rest is a
//   decimal number of grads;
// - otherwise a text with an apostrophe is split at blanks, tabs, "°", "º",
//   apostrophes and double quotes into at most three numbers d m s, the value
//   being d + m/60 + s/3600 (a sign typed on d stays on d alone);
// - otherwise every "º" is removed and the rest read as one decimal number
//   (so "33ºS" is -33, but "41º23.5N", with no apostrophe, reads 4123.5).
// A number that cannot be read fails with "'<text>' is not a valid floating
// point value". The degree signs are recognised in UTF-8 and as the single
// bytes of the legacy 8-bit code page.
//
// Nothing is allocated on the way to a parsed value; texts longer than
// kMaxNotationText bytes are not coordinates and fail as unreadable numbers.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "geodesy/lon_lat.h"

namespace velantis {

inline constexpr int kNotationDecimalDegrees = 0;
inline constexpr int kNotationDegreesMinutes = 1;
inline constexpr int kNotationDegreesMinutesSeconds = 2;
inline constexpr int kNotationGrads = 3;
inline constexpr int kNotationCount = 4;

// "º", MASCULINE ORDINAL INDICATOR U+00BA in UTF-8: the degree sign the
// system prints.
inline constexpr std::string_view kDegreeSign = "\xC2\xBA";
// 400 grads to the full circle.
inline constexpr double kDegreesPerGrad = 360.0 / 400.0;
inline constexpr size_t kMaxNotationText = 128;

inline constexpr std::string_view kNotationFormatError = "Error in format lat/lon ";
inline constexpr std::string_view kNoQuadrantLetter = "NO quadrant leter found: (N,S,E,W)";

bool IsValidNotation(int notation);

// The name shown in the notation chooser, with the user interface's degree
// sign; empty for an unknown notation.
std::string NotationName(int notation, std::string_view degreeSign = kDegreeSign);

// A hemisphere chooser's label: "N (" + text + ")", text from the language file.
std::string HemisphereChoiceLabel(char letter, std::string_view text);

// Reads a typed latitude or longitude. On success degrees holds the value and
// isLatitude says whether the text carried N or S; on failure both are left
// as they were and message holds the reason.
bool ParseLatLon(std::string_view text, double& degrees, bool& isLatitude, std::string& message);

// Print one value in a notation. They fail, leaving text as it was, for an
// unknown notation, a value that is not finite, a latitude beyond ±90 or a
// longitude beyond ±360 (a longitude a little past ±180 after a datum shift is
// printed as it is).
bool FormatLatitude(double degrees, int notation, std::string& text, std::string& message);
bool FormatLongitude(double degrees, int notation, std::string& text, std::string& message);

// The value a printed text in the notation reads back as: degrees rounded to
// the notation's last printed unit (the value itself for an unknown notation).
double RoundToNotation(double degrees, int notation);

// The coordinate text of a position as the native writer prints it: the
// latitude, one blank, the longitude.
bool FormatPosition(const TLonLat& position, int notation, std::string& text, std::string& message);

}  // namespace velantis
