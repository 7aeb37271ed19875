#include "geodesy/molodensky.h"

#include <cmath>
#include <numbers>

namespace velantis {

bool MolodenskyShift(TLonLat& position, const TDatum& from, const TDatum& to,
                     std::string& message) {
  constexpr double kPi = std::numbers::pi;
  const double phi = position.lat * kPi * (1.0 / 180);
  const double lambda = position.lon * kPi * (1.0 / 180);

  const double a1 = from.a;
  const double f1 = 1 / from.invFlattening;
  const double e2 = 2 * f1 - f1 * f1;
  const double dX = from.dX - to.dX;
  const double dY = from.dY - to.dY;
  const double dZ = from.dZ - to.dZ;
  const double da = to.a - from.a;
  const double df = 1 / to.invFlattening - f1;
  constexpr double h = 0;

  const double w2 = 1 - e2 * std::sin(phi * phi);
  if (w2 < 0) {
    message = "Transforma_Grados_Datum: error en carro_inf, Transforma_Grados_Datum";
    return false;
  }
  const double sinPhi = std::sin(phi), cosPhi = std::cos(phi);
  const double sinLambda = std::sin(lambda), cosLambda = std::cos(lambda);
  const double n = a1 / std::sqrt(w2);
  const double m = a1 * (1 - e2) / std::pow(w2, 1.5);

  const double dPhi = (-dX * sinPhi * cosLambda - dY * sinPhi * sinLambda + dZ * cosPhi +
                       da * n * e2 * sinPhi * cosPhi / a1 +
                       df * (m / (1 - f1) + n * (1 - f1)) * sinPhi * cosPhi) /
                      (m + h);
  const double dLambda = (-dX * sinLambda + dY * cosLambda) / ((n + h) * cosPhi);

  position.lat = (phi + dPhi) * 180 * (1 / kPi);
  position.lon = (lambda + dLambda) * 180 * (1 / kPi);
  return true;
}

}  // namespace velantis
