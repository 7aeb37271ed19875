#include "script/var_velan_script.h"

#include <charconv>
#include <cmath>
#include <cstdio>
#include <limits>

#include "script/script_error.h"

namespace velantis {

namespace {
constexpr double kExactIntegerLimit = 9007199254740992.0;  // 2^53
}

std::string NumberText(double value) {
  char buffer[64];
  if (std::trunc(value) == value && std::fabs(value) < kExactIntegerLimit) {
    std::snprintf(buffer, sizeof buffer, "%.0f", value == 0 ? 0.0 : value);
    return buffer;
  }
  const auto result = std::to_chars(buffer, buffer + sizeof buffer, value);
  return std::string(buffer, result.ptr);
}

std::string TVarVelanScript::AsText() const { return IsString() ? text : NumberText(number); }

long long ToInt64(double value) {
  if (std::isnan(value)) return 0;
  constexpr double kTop = 9223372036854775807.0;  // rounds to 2^63
  if (value >= kTop) return std::numeric_limits<long long>::max();
  if (value <= -kTop) return std::numeric_limits<long long>::min();
  return static_cast<long long>(value);
}

std::string WithName(const char* format, const std::string& name) {
  std::string out;
  for (const char* p = format; *p; ++p) {
    if (p[0] == '%' && p[1] == 's') {
      out += name;
      ++p;
    } else {
      out += *p;
    }
  }
  return out;
}

}  // namespace velantis
