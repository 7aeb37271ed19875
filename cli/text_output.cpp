#include "cli/text_output.h"

#include <charconv>
#include <cmath>
#include <cstdio>

namespace velantis::cli {

std::string Fixed(double value, int decimals) {
  char text[64];
  std::snprintf(text, sizeof text, "%.*f", decimals, value);
  std::string result = text;
  // A value that rounds to zero prints as zero, whichever side it came from.
  if (result.front() == '-' && result.find_first_not_of("-0.") == std::string::npos)
    result.erase(0, 1);
  return result;
}

std::string RoundTrip(double value) {
  if (!std::isfinite(value)) return "null";
  char text[32];
  const auto [end, ec] = std::to_chars(text, text + sizeof text, value);
  return std::string(text, end);
}

std::string JsonString(std::string_view text) {
  std::string out = "\"";
  for (const char c : text) {
    switch (c) {
      case '"': out += "\\\""; break;
      case '\\': out += "\\\\"; break;
      case '\n': out += "\\n"; break;
      case '\r': out += "\\r"; break;
      case '\t': out += "\\t"; break;
      default:
        if (static_cast<unsigned char>(c) < 0x20) {
          char escaped[8];
          std::snprintf(escaped, sizeof escaped, "\\u%04x", c);
          out += escaped;
        } else {
          out += c;
        }
    }
  }
  return out + "\"";
}

}  // namespace velantis::cli
