#include "tests/geodesy/transverse_mercator_gie.h"

#include <fstream>
#include <sstream>

namespace velantis::test {

namespace {

double ToleranceInMetres(double value, const std::string& unit) {
  if (unit == "mm") return value / 1000;
  if (unit == "cm") return value / 100;
  if (unit == "um") return value / 1e6;
  return value;  // "m", and a bare number
}

std::string Collapse(const std::string& text) {
  std::istringstream words(text);
  std::string word, out;
  while (words >> word) {
    if (word == "\\") continue;
    if (!out.empty()) out += ' ';
    out += word;
  }
  return out;
}

}  // namespace

bool ReadGieBlocks(const std::filesystem::path& file, const std::vector<std::string>& geographicCodes,
                   std::vector<TGieBlock>& blocks, std::string& error) {
  std::ifstream in(file);
  if (!in) {
    error = "cannot open " + file.string();
    return false;
  }
  std::string line, operation;
  bool continuing = false;
  double tolerance = 0;
  TGiePair pending;
  bool havePending = false;
  int number = 0;
  while (std::getline(in, line)) {
    ++number;
    if (!line.empty() && line.back() == '\r') line.pop_back();
    if (continuing) {
      operation += ' ' + line;
      continuing = !line.empty() && line.back() == '\\';
      if (!continuing) {
        TGieBlock block;
        block.operation = Collapse(operation);
        const size_t second = block.operation.find("+step", block.operation.find("+step") + 1);
        const std::string first = block.operation.substr(0, second);
        for (const auto& code : geographicCodes)
          if (first.find(code) != std::string::npos) block.fromGeographic = true;
        blocks.push_back(block);
      }
      continue;
    }
    std::istringstream words(line);
    std::string keyword;
    words >> keyword;
    if (keyword == "operation") {
      operation = line.substr(line.find("operation") + 9);
      continuing = !line.empty() && line.back() == '\\';
      if (!continuing) blocks.push_back({Collapse(operation), false, {}});
    } else if (keyword == "tolerance") {
      double value = 0;
      std::string unit;
      words >> value >> unit;
      tolerance = ToleranceInMetres(value, unit);
    } else if (keyword == "accept") {
      havePending = static_cast<bool>(words >> pending.accept[0] >> pending.accept[1]);
    } else if (keyword == "expect" && havePending && !blocks.empty()) {
      if (words >> pending.expect[0] >> pending.expect[1]) {
        pending.toleranceM = tolerance;
        pending.line = number;
        blocks.back().pairs.push_back(pending);
      }
      havePending = false;
    }
  }
  if (blocks.empty()) {
    error = "no operation in " + file.string();
    return false;
  }
  return true;
}

}  // namespace velantis::test
