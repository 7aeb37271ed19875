#include "core/compact_real.h"

#include <gtest/gtest.h>

#include <cmath>

namespace velantis {
namespace {

// Raw values worked out by hand from the layout: top four bits the exponent
// e, low twelve the mantissa m, value m x 10^-e.
struct TCase {
  double value;
  TCompactReal raw;
  double decoded;
};

const TCase kCases[] = {
    {1.0, 0x33E8, 1.0},              // e 3, m 1000
    {-1.0, 0x3C18, -1.0},            // e 3, m -1000
    {0.00000005, 0x0000, 0.0},       // below 1e-7: zero
    {-0.00000009, 0x0000, 0.0},
    {2047.0, 0x07FF, 2047.0},        // largest mantissa at e 0
    {203.9, 0x17F7, 203.9},          // under 204: one digit more
    {2048.0, 0xF0CD, 2050.0},        // over 2047: one digit less, rounded
    {50.0, 0x11F4, 50.0},
    {0.1, 0x43E8, 0.1},
    {-123456.0, 0xEB2D, -123500.0},  // e -2, m -1235
    {1e-7, 0x73E8, 1e-4},            // e 10 clamped to 7, m kept: comes back wrong
    {1e12, 0x93E8, 1e10},            // e -9 clamped to -7, m kept: comes back wrong
};

TEST(CompactReal, EncodesAndDecodesTheTable) {
  for (const TCase& c : kCases) {
    SCOPED_TRACE(c.value);
    const TCompactReal raw = EncodeCompactReal(c.value);
    EXPECT_EQ(raw, c.raw) << std::hex << raw;
    EXPECT_DOUBLE_EQ(DecodeCompactReal(raw), c.decoded);
  }
  EXPECT_DOUBLE_EQ(DecodeCompactReal(0x8FFF), -1e8);  // e -8 decodes though never encoded
}

}  // namespace
}  // namespace velantis
