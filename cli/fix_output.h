// How the command line prints a live fix: one line of text, or one JSON
// object {"time","lat","lon","alt","speed_kmh","course_deg","valid","sats",
// "hdop"} with the time as "YYYY-MM-DDThh:mm:ss.sssZ" and alt null when the
// fix has no altitude.
#pragma once

#include <string>

#include "comm/posicion_nmea.h"

namespace velantis::cli {

std::string FixJson(const TPosicionNMEA& fix);
// The same values separated by blanks, "-" for no altitude and "valid" or
// "invalid".
std::string FixText(const TPosicionNMEA& fix);

}  // namespace velantis::cli
