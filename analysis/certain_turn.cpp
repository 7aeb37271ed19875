#include "analysis/certain_turn.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace velantis {

namespace {

struct TInterval {
  double low;
  double high;
  double Magnitude() const { return std::max(std::fabs(low), std::fabs(high)); }
};

TInterval Minus(TInterval p, TInterval q) { return {p.low - q.high, p.high - q.low}; }

TInterval Times(TInterval p, TInterval q) {
  const double products[] = {p.low * q.low, p.low * q.high, p.high * q.low, p.high * q.high};
  return {*std::min_element(std::begin(products), std::end(products)),
          *std::max_element(std::begin(products), std::end(products))};
}

struct TLegInterval {
  TInterval east;
  TInterval north;
};

// The leg from a point of range a to a point of range b: the longitude
// difference times the mean of the two latitude cosines, and the latitude
// difference.
TLegInterval Leg(const TPlaneRanges& a, const TPlaneRanges& b) {
  const TInterval lon = Minus({b.lonLow, b.lonHigh}, {a.lonLow, a.lonHigh});
  const TInterval meanCos{0.5 * (a.cosLow + b.cosLow), 0.5 * (a.cosHigh + b.cosHigh)};
  return {Times(lon, meanCos), Minus({b.latLow, b.latHigh}, {a.latLow, a.latHigh})};
}

}  // namespace

bool TurnsDecidable(const TIndexRangeBoxes& boxes) {
  if (boxes.Empty()) return false;
  const TPlaneRanges& all = boxes.Plane(boxes.Root());
  return all.lonHigh - all.lonLow < std::numbers::pi;
}

int CertainTurn(const TIndexRangeBoxes& boxes, int a, int b, int c) {
  const TLegInterval in = Leg(boxes.Plane(a), boxes.Plane(b));
  const TLegInterval out = Leg(boxes.Plane(b), boxes.Plane(c));
  const TInterval cross = Minus(Times(in.east, out.north), Times(in.north, out.east));
  const double size = in.east.Magnitude() * out.north.Magnitude() + in.north.Magnitude() * out.east.Magnitude();
  const double margin = kTurnRelativeMargin * size;
  if (cross.low > margin) return 1;
  if (cross.high < -margin) return -1;
  return 0;
}

}  // namespace velantis
