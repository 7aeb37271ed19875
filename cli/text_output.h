// Number and text forms of the command line's output, the same on every
// platform.
#pragma once

#include <string>
#include <string_view>

namespace velantis::cli {

// Fixed-point with the given decimals ("%.*f"); a value that rounds to zero
// prints without a minus sign.
std::string Fixed(double value, int decimals);

// The shortest text that reads back to the same double.
std::string RoundTrip(double value);

// A JSON string literal, quotes included.
std::string JsonString(std::string_view text);

}  // namespace velantis::cli
