// Reals written for people and read back exactly: the shortest decimal text
// that reads back to the same double, in fixed notation for the magnitudes
// maps and projections use ("10000000", "0.9996", "-6289575") and in
// scientific notation only outside them.
#pragma once

#include <string>

namespace velantis {

// Fixed notation for magnitudes in [1e-5, 1e15) and for zero.
inline constexpr double kFixedNotationMin = 1e-5;
inline constexpr double kFixedNotationMax = 1e15;

std::string ShortestDecimal(double value);

}  // namespace velantis
