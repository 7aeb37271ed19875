#include "geodesy/datum_names.h"

#include <algorithm>
#include <array>
#include <utility>

namespace velantis {

namespace {

constexpr std::array<std::pair<std::string_view, std::string_view>, 4> kRewrites = {{
    {"Europeo 1979", "European 1979"},
    {"WGS84", "WGS 84"},
    {"WGS-84", "WGS 84"},
    {"World Geodetic System 1984", "WGS 84"},
}};

constexpr std::string_view kAutoShift = "Auto Shift";

char Lower(char c) { return (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c; }

std::string_view Trim(std::string_view text) {
  const size_t first = text.find_first_not_of(" \t\r\n");
  if (first == std::string_view::npos) return {};
  const size_t last = text.find_last_not_of(" \t\r\n");
  return text.substr(first, last - first + 1);
}

void StripPrefix(std::string_view& text, std::string_view prefix) {
  if (text.starts_with(prefix)) text.remove_prefix(prefix.size());
}

}  // namespace

bool SameDatumName(std::string_view one, std::string_view other) {
  return one.size() == other.size() &&
         std::equal(one.begin(), one.end(), other.begin(),
                    [](char x, char y) { return Lower(x) == Lower(y); });
}

std::string NormaliseDatumName(std::string_view name) {
  std::string text(Trim(name));
  std::replace(text.begin(), text.end(), '_', ' ');
  for (const auto& [from, to] : kRewrites) {
    if (SameDatumName(text, from)) return std::string(to);
  }
  return text;
}

std::string StripProjectionDatumName(std::string_view name) {
  StripPrefix(name, "GCS_");
  StripPrefix(name, "Datum_");
  StripPrefix(name, "D_");
  std::string text(name);
  std::replace(text.begin(), text.end(), '_', ' ');
  return text;
}

bool IsAutoShiftName(std::string_view normalised) {
  return normalised.size() >= kAutoShift.size() &&
         SameDatumName(normalised.substr(0, kAutoShift.size()), kAutoShift);
}

}  // namespace velantis
