// The rules that turn a position sentence into the fix record: GGA, RMC, GLL
// and GGAM, the program's own extended GGA. Each returns true when the record
// took the sentence (valid or not: an invalid fix is news too) and false when
// the sentence is no position (too few fields, a position that does not
// read); a false leaves the record as it was. None touches newData: the
// caller decides what is new.
//
// Dates: RMC carries one (field 9); GGA and GLL carry only the time of day,
// joined to the date the record holds when an RMC gave one (the day before
// or after when that is nearer: the first GGA after midnight comes before
// the RMC with the new date), else to today's date by the record's clock.
//
// GGAM is written by the program when it acts as a position source: the 15
// fields of GGA, then speed over ground in knots (field 15), course over
// ground in degrees (16) and the date ddmmyy (17), so that one sentence
// carries the whole fix. Each extra field counts only when present.
#pragma once

#include "comm/nmea_sentence.h"
#include "comm/nmea_settings.h"
#include "comm/posicion_nmea.h"

namespace velantis {

inline constexpr double kMetresPerFoot = 0.3048;
// Below this (metres) a GGA altitude counts as absent, so a receiver that
// reports exactly 0 m has no altitude, and a geoid separation as not given.
inline constexpr double kNmeaZeroAltitudeM = 0.001;

bool ApplyGgaRule(const TComandaNMEA& sentence, TPosicionNMEA& record,
                  const TNmeaReceiverSettings& settings);
bool ApplyRmcRule(const TComandaNMEA& sentence, TPosicionNMEA& record,
                  const TNmeaReceiverSettings& settings);
// Latitude, longitude, time and status from fields 1-6 (the status "A"
// when the sentence is too old to carry one). No altitude.
bool ApplyGllRule(const TComandaNMEA& sentence, TPosicionNMEA& record,
                  const TNmeaReceiverSettings& settings);
bool ApplyGgamRule(const TComandaNMEA& sentence, TPosicionNMEA& record,
                   const TNmeaReceiverSettings& settings);

// The interpretation outside the live loop (auto-detection, file import):
// GGA and RMC through the sentence filter, GGAM; GLL never gives a position
// here. GSV adds its text to the satellites in view (cleared first when
// startsGsvCycle), GSA replaces the satellites in use; both return false, as
// does anything else. True when the record received a new position.
bool InterpretPosition(const TComandaNMEA& sentence, TPosicionNMEA& record,
                       const TNmeaReceiverSettings& settings, bool startsGsvCycle = false);

}  // namespace velantis
