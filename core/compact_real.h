// The compact real: a real number in 16 bits, used by the waypoint's
// display-scale threshold and proximity radius.
//
// Layout: the top four bits are a signed exponent e (two's complement, -8 to
// 7), the low twelve bits a signed mantissa m (-2048 to 2047); the value is
// m x 10^-e. Encoding keeps the mantissa between 204 and 2047 in magnitude,
// so a value in range comes back within 0.25 % (half a unit of a mantissa of
// at least 204); the range is about 2e-5 to 2e10 in magnitude, and values
// below 1e-7 in magnitude encode as 0.
//
// Outside the range the encoder clamps the exponent to -7..7 without
// adjusting the mantissa, so such values come back wrong (1e12 comes back as
// 1e10, 1e-7 as 1e-4). Existing files carry values encoded that way, so the
// encoder keeps doing it.
#pragma once

#include <cstdint>

namespace velantis {

using TCompactReal = uint16_t;

// The raw value that decodes to exactly -1.0 (e = 3, m = -1000).
inline constexpr TCompactReal kCompactRealMinusOne = 0x3C18;

TCompactReal EncodeCompactReal(double value);
double DecodeCompactReal(TCompactReal raw);

// The two halves of a raw value, sign-extended.
int CompactRealExponent(TCompactReal raw);
int CompactRealMantissa(TCompactReal raw);

}  // namespace velantis
