// The values inside NMEA fields: reals, whole numbers, the time of day
// "hhmmss(.sss)", the date "ddmmyy" and the angles "ddmm.mmmm" / "dddmm.mmmm"
// with their hemisphere letter. Each reads the whole field or nothing, with
// std::from_chars (no locale, no allocation).
#pragma once

#include <string_view>

namespace velantis {

// A finite real; one leading "+" allowed. "nan" and "inf" are refused.
bool ParseNmeaReal(std::string_view text, double& value);
// A whole number; one leading "+" allowed.
bool ParseNmeaInt(std::string_view text, int& value);

// Seconds since midnight of "hhmmss" with any decimals of the seconds; hours
// 0-23, minutes 0-59, seconds below 61 (a leap second reads as 60.x).
bool ParseNmeaTime(std::string_view text, double& secondsOfDay);

// The day count of TDateTime (whole days) of "ddmmyy". GPS began in 1980, so
// two-digit years 80-99 are 1980-1999 and 00-79 are 2000-2079.
bool ParseNmeaDate(std::string_view text, double& days);
inline constexpr int kNmeaCenturyPivot = 80;

// Signed degrees of "ddmm.mmmm" with "N"/"S" (latitude, at most 90) or of
// "dddmm.mmmm" with "E"/"W" (longitude, at most 180); the letter in either
// case. Minutes must be below 60.
bool ParseNmeaLatitude(std::string_view value, std::string_view hemisphere, double& degrees);
bool ParseNmeaLongitude(std::string_view value, std::string_view hemisphere, double& degrees);

// A double narrowed to a float field of the record, held within the float
// range (a damaged sentence may carry 1e300; the plain cast would be UB).
float NarrowToFloat(double value);

}  // namespace velantis
