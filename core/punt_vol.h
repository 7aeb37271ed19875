// Flight points: a track point seen as a fix of a flight log.
//
// A flight log carries per fix what a ground track does not: whether the fix
// was three-dimensional, and the climb rate. The three records build on one
// another so that each reader takes only what it needs:
// - TPuntVol: the point and its fix validity, 'A' (three-dimensional: the GPS
//   altitude is known) or 'V', as a flight log's fix record marks it;
// - TPuntVolZ: plus the climb rate from the previous fix (m/s, the chosen
//   altitude), 0 on the first fix or when either altitude is invalid;
// - TPuntVolAVG: plus the climb rate and ground speed averaged over the
//   window ending at the fix, what a pilot's vario and speed display show.
// They are built on demand from a track (flight tracks keep plain TrkPnt),
// so a track costs nothing for them until a flight view asks.
#pragma once

#include <vector>

#include "core/track.h"

namespace velantis {

struct TPuntVol : TrkPnt {
  char validity = 'V';
};

struct TPuntVolZ : TPuntVol {
  float climbMs = 0;
};

struct TPuntVolAVG : TPuntVolZ {
  float climbAverageMs = 0;
  float speedAverageKmh = 0;
};

// One flight point per track point, with the track's altitude source.
// Averages span at least windowS seconds behind the fix (ForEachWindowRate;
// kVarioWindowS is the one of the track statistics); they stay 0 on fixes
// without that much time behind them in their segment and on fixes without
// a time, except that the last fix of a segment shorter than the window
// gets the segment's average.
std::vector<TPuntVolAVG> BuildFlightPoints(const TTrack& track, double windowS);

}  // namespace velantis
