#include "geodesy/datum.h"

#include <cmath>

namespace velantis {

namespace {

std::vector<std::string> SplitAliases(const std::string& text) {
  std::vector<std::string> parts;
  size_t start = 0;
  while (start <= text.size()) {
    const size_t end = std::min(text.find(';', start), text.size());
    if (end > start) parts.push_back(text.substr(start, end - start));
    start = end + 1;
  }
  return parts;
}

}  // namespace

bool TDatum::ComputeDerived() {
  aliases = SplitAliases(aliasText);
  f = 1.0 / invFlattening;
  if (f < 0) return false;
  e = std::sqrt(2 * f - f * f);
  e2 = e * e;
  ep2 = e2 / (1 - e2);
  b = a * std::sqrt(1 - e2);
  a2OverB = a * a / b;
  const double root = std::sqrt(1 - e2);
  n = (1 - root) / (1 + root);
  return true;
}

std::string TDatum::ShortLabel() const {
  if (!shortName.empty()) return shortName;
  // The cut counts characters, not bytes: UTF-8 continuation bytes are kept
  // with the character they belong to.
  size_t characters = 0;
  size_t end = 0;
  for (; end < name.size(); ++end) {
    const bool starts = (static_cast<unsigned char>(name[end]) & 0xC0) != 0x80;
    if (starts && characters++ == kShortLabelLength) break;
  }
  return name.substr(0, end);
}

bool SameDatumParameters(const TDatum& one, const TDatum& other) {
  const auto close = [](double x, double y) { return std::fabs(x - y) < kDatumParameterTolerance; };
  return close(one.invFlattening, other.invFlattening) && close(one.a, other.a) &&
         close(one.dX, other.dX) && close(one.dY, other.dY) && close(one.dZ, other.dZ);
}

}  // namespace velantis
