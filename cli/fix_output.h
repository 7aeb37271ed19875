// How the command line prints a live fix: one line of text, or one JSON
// object {"time","lat","lon","alt","speed_kmh","course_deg","valid","sats",
// "hdop"} with the time as "YYYY-MM-DDThh:mm:ss.sssZ" and alt null when the
// fix has no altitude. A fix that is not valid has no position: lat, lon and
// alt are null (the text form prints "-" for each), so a program reading the
// output never takes the last good position for a current one.
#pragma once

#include <string>

#include "comm/posicion_nmea.h"

namespace velantis::cli {

std::string FixJson(const TPosicionNMEA& fix);
// The same values separated by blanks, "-" for no altitude and "valid" or
// "invalid".
std::string FixText(const TPosicionNMEA& fix);

// Which fixes are printed: every valid one, and an invalid one only when the
// fix is lost (the first invalid fix after a valid one, or the first fix of
// all); the sentences that follow while it stays lost print nothing.
class TFixPrintFilter {
public:
  bool Take(const TPosicionNMEA& fix) {
    const bool print = fix.valid || !m_lostPrinted;
    m_lostPrinted = !fix.valid;
    return print;
  }

private:
  bool m_lostPrinted = false;
};

}  // namespace velantis::cli
