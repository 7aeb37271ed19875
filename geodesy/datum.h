// One geodetic datum: its ellipsoid, its three-parameter geocentric shift to
// WGS 84 and the constants derived from them.
//
// The derived constants are computed whenever a record is read or copied into
// a list (ComputeDerived). A record whose flattening computes as negative is
// refused; f = 0 and a not-a-number pass, as they always have.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace velantis {

class TDatumFileNTV2;

struct TDatum {
  std::string name;
  std::string aliasText;             // further names separated by ";"
  std::vector<std::string> aliases;  // aliasText split at ";", built after reading
  int32_t ellipsoidCode = 0;         // stored and written back, never computed with
  double invFlattening = 0;
  double a = 0;  // semi-major axis, metres
  double dX = 0, dY = 0, dZ = 0;  // geocentric shift to WGS 84, metres
  std::string shortName;          // empty when the file had none
  std::shared_ptr<TDatumFileNTV2> grid;  // attached grid-shift file, if any

  // Derived constants.
  double f = 0;
  double e = 0;
  double e2 = 0;      // first eccentricity squared
  double ep2 = 0;     // second eccentricity squared
  double b = 0;       // semi-minor axis
  double a2OverB = 0; // polar radius of curvature
  double n = 0;       // third flattening, for the transverse Mercator series

  // Splits the alias text and computes the derived constants; false when the
  // flattening is negative.
  bool ComputeDerived();

  // The label used where there is little room: the short name, else the first
  // kShortLabelLength characters of the name.
  std::string ShortLabel() const;

  static constexpr size_t kShortLabelLength = 15;
};

// True when the ellipsoids and shifts of both datums are equal within
// kDatumParameterTolerance (strictly less).
bool SameDatumParameters(const TDatum& one, const TDatum& other);

inline constexpr double kDatumParameterTolerance = 0.00001;

}  // namespace velantis
