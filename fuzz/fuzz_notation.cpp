// The latitude/longitude parser, and the formatter on every value it reads:
// a printed value must parse back within half its last unit and print the
// same again.
#include <cmath>
#include <cstdint>
#include <string>
#include <string_view>

#include "geodesy/coordinate_notation.h"

namespace {

constexpr double kHalfUnitDeg[velantis::kNotationCount] = {0.5e-6, 0.5 / 60000, 0.5 / 36000,
                                                           0.45e-6};
constexpr double kArithmeticSlackDeg = 1e-9;

bool Format(double degrees, bool latitude, int notation, std::string& text) {
  std::string message;
  return latitude ? velantis::FormatLatitude(degrees, notation, text, message)
                  : velantis::FormatLongitude(degrees, notation, text, message);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  double degrees = 0;
  bool isLatitude = false;
  std::string message;
  if (!velantis::ParseLatLon(text, degrees, isLatitude, message)) {
    if (message.empty()) __builtin_trap();
    return 0;
  }
  if (!std::isfinite(degrees)) __builtin_trap();
  for (int notation = 0; notation < velantis::kNotationCount; ++notation) {
    std::string printed, again;
    if (!Format(degrees, isLatitude, notation, printed)) {
      if (std::fabs(degrees) <= (isLatitude ? 90 : 360)) __builtin_trap();
      continue;
    }
    double back = 0;
    bool backIsLatitude = !isLatitude;
    if (!velantis::ParseLatLon(printed, back, backIsLatitude, message)) __builtin_trap();
    if (backIsLatitude != isLatitude) __builtin_trap();
    if (std::fabs(back - degrees) > kHalfUnitDeg[notation] + kArithmeticSlackDeg) __builtin_trap();
    if (!Format(back, isLatitude, notation, again) || again != printed) __builtin_trap();
  }
  return 0;
}
