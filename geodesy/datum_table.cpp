#include "geodesy/datum_table.h"

#include <charconv>

namespace velantis {

namespace {

constexpr size_t kTableFields = 9;

std::string_view Trim(std::string_view text) {
  const size_t first = text.find_first_not_of(" \t\r");
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(" \t\r") - first + 1);
}

std::vector<std::string_view> SplitFields(std::string_view line) {
  std::vector<std::string_view> fields;
  size_t start = 0;
  for (size_t bar; (bar = line.find('|', start)) != std::string_view::npos; start = bar + 1) {
    fields.push_back(Trim(line.substr(start, bar - start)));
  }
  fields.push_back(Trim(line.substr(start)));
  return fields;
}

template <typename T>
bool ParseNumber(std::string_view text, T& value) {
  const auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), value);
  return ec == std::errc() && end == text.data() + text.size();
}

bool ParseRow(std::string_view line, TDatum& datum, std::string& what) {
  const auto fields = SplitFields(line);
  if (fields.size() != kTableFields) {
    what = std::to_string(fields.size()) + " fields, " + std::to_string(kTableFields) + " expected";
    return false;
  }
  datum.name = fields[0];
  datum.aliasText = fields[1];
  datum.shortName = fields[8];
  const bool numbers = ParseNumber(fields[2], datum.ellipsoidCode) && ParseNumber(fields[3], datum.a) &&
                       ParseNumber(fields[4], datum.invFlattening) &&
                       ParseNumber(fields[5], datum.dX) && ParseNumber(fields[6], datum.dY) &&
                       ParseNumber(fields[7], datum.dZ);
  if (datum.name.empty() || !numbers) {
    what = "empty name or a number that does not parse";
    return false;
  }
  if (!datum.ComputeDerived()) {
    what = "negative flattening";
    return false;
  }
  return true;
}

}  // namespace

bool ParseDatumTable(std::string_view text, std::vector<TDatum>& datums, std::string& error) {
  size_t lineNumber = 0;
  while (!text.empty()) {
    const size_t end = text.find('\n');
    const std::string_view line = Trim(text.substr(0, end));
    text = end == std::string_view::npos ? std::string_view() : text.substr(end + 1);
    ++lineNumber;
    if (line.empty() || line.front() == '#') continue;
    TDatum datum;
    std::string what;
    if (!ParseRow(line, datum, what)) {
      error = "datum table line " + std::to_string(lineNumber) + ": " + what;
      return false;
    }
    datums.push_back(std::move(datum));
  }
  return true;
}

}  // namespace velantis
