#include "app/decimal_text.h"

#include <charconv>
#include <cmath>

namespace velantis {

std::string ShortestDecimal(double value) {
  char buffer[64];
  const double magnitude = std::fabs(value);
  const bool fixed =
      magnitude == 0 || (magnitude >= kFixedNotationMin && magnitude < kFixedNotationMax);
  const auto [end, ec] =
      fixed ? std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::fixed)
            : std::to_chars(buffer, buffer + sizeof buffer, value);
  return std::string(buffer, ec == std::errc() ? end : buffer);
}

}  // namespace velantis
