// The program's table of speed units. The internal unit, in which every
// speed of the live fix record is held, is km/h (what the track points and
// the command line print); receivers send knots, which are converted on
// arrival.
#pragma once

namespace velantis {

enum class TSpeedUnit { Kmh = 0, Knots, MetresPerSecond, Mph };

inline constexpr TSpeedUnit kInternalSpeedUnit = TSpeedUnit::Kmh;

// km/h in one of each unit, by TSpeedUnit.
inline constexpr double kKmhPerUnit[] = {
    1.0,       // km/h
    1.852,     // knot: one international nautical mile (1852 m) an hour
    3.6,       // m/s
    1.609344,  // mile an hour: the international mile
};

inline constexpr double ConvertSpeed(double value, TSpeedUnit from, TSpeedUnit to) {
  return value * kKmhPerUnit[static_cast<int>(from)] / kKmhPerUnit[static_cast<int>(to)];
}

inline constexpr double KnotsToInternalSpeed(double knots) {
  return ConvertSpeed(knots, TSpeedUnit::Knots, kInternalSpeedUnit);
}
inline constexpr double InternalSpeedToKnots(double speed) {
  return ConvertSpeed(speed, kInternalSpeedUnit, TSpeedUnit::Knots);
}

}  // namespace velantis
