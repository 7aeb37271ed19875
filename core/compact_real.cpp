#include "core/compact_real.h"

#include <cmath>

namespace velantis {
namespace {

constexpr double kCompactRealZeroBelow = 0.0000001;
constexpr double kMantissaMax = 2047;  // 12-bit signed mantissa
constexpr double kMantissaMin = 204;   // one digit less than the maximum
constexpr int kExponentClamp = 7;

// 10^n for the 16 exponents a raw value can hold, exact in a double.
double PowerOfTen(int n) {
  double p = 1;
  for (int i = 0; i < n; ++i) p *= 10;
  return p;
}

}  // namespace

int CompactRealExponent(TCompactReal raw) {
  const int e = raw >> 12;
  return e >= 8 ? e - 16 : e;
}

int CompactRealMantissa(TCompactReal raw) {
  const int m = raw & 0xFFF;
  return m >= 2048 ? m - 4096 : m;
}

TCompactReal EncodeCompactReal(double value) {
  if (!(std::fabs(value) >= kCompactRealZeroBelow)) return 0;  // NaN too
  int e = 0;
  double x = std::fabs(value);
  // The steps multiply by 0.1 and 10 one at a time rather than dividing by a
  // power of ten: existing files were written that way, and a value exactly
  // on a rounding boundary must land on the same mantissa.
  while (x > kMantissaMax) {
    x *= 0.1;
    --e;
  }
  while (x < kMantissaMin) {
    x *= 10;
    ++e;
  }
  int m = static_cast<int>(std::lround(x));
  if (value < 0) m = -m;
  if (e > kExponentClamp) e = kExponentClamp;
  if (e < -kExponentClamp) e = -kExponentClamp;
  return static_cast<TCompactReal>((e * 4096) | (m & 0xFFF));
}

double DecodeCompactReal(TCompactReal raw) {
  if (raw == 0) return 0.0;
  if (raw == kCompactRealMinusOne) return -1.0;
  const int e = CompactRealExponent(raw);
  const double m = CompactRealMantissa(raw);
  // Dividing by an exact power of ten gives the correctly rounded decimal
  // (1000 / 10^3 is exactly 1), which multiplying by 10^-e would not.
  return e >= 0 ? m / PowerOfTen(e) : m * PowerOfTen(-e);
}

}  // namespace velantis
