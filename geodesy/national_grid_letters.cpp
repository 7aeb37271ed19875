#include "geodesy/national_grid_letters.h"

#include <cctype>
#include <cmath>
#include <cstdint>
#include <cstdio>

namespace velantis {

namespace {

constexpr std::string_view kMatrixLetters = "ABCDEFGHJKLMNOPQRSTUVWXYZ";  // row by row from the north-west
constexpr int kMatrixSize = 5;

bool IsBlank(char c) { return c == ' ' || c == '\t'; }
bool IsDigit(char c) { return c >= '0' && c <= '9'; }
bool IsLetter(char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); }

std::string_view Trim(std::string_view text) {
  while (!text.empty() && IsBlank(text.front())) text.remove_prefix(1);
  while (!text.empty() && IsBlank(text.back())) text.remove_suffix(1);
  return text;
}

double Digits(std::string_view digits) {
  double value = 0;
  for (char c : digits) value = value * 10 + (c - '0');
  return value;
}

// 10^(5 - digits): the metres one unit of a group of that many digits stands for.
int PrecisionOfDigits(size_t digits) {
  int precision = 1;
  for (size_t i = digits; i < static_cast<size_t>(kGridReferenceMaxDigits); ++i) precision *= 10;
  return precision;
}

}  // namespace

char GridSquareLetter(int column, int rowFromSouth) {
  if (column < 0 || column >= kMatrixSize || rowFromSouth < 0 || rowFromSouth >= kMatrixSize) return '\0';
  return kMatrixLetters[(kMatrixSize - 1 - rowFromSouth) * kMatrixSize + column];
}

bool GridSquareCell(char letter, int& column, int& rowFromSouth) {
  if (!IsLetter(letter)) return false;
  const char upper = static_cast<char>(std::toupper(static_cast<unsigned char>(letter)));
  const size_t index = kMatrixLetters.find(upper);
  if (index == std::string_view::npos) return false;
  column = static_cast<int>(index) % kMatrixSize;
  rowFromSouth = kMatrixSize - 1 - static_cast<int>(index) / kMatrixSize;
  return true;
}

bool SplitGridReference(std::string_view text, int letterCount, TGridReferenceParts& parts,
                        std::string& message) {
  const std::string_view trimmed = Trim(text);
  const auto refuse = [&] {
    message = std::string(kGridReferenceFormatError) + std::string(text);
    return false;
  };
  if (trimmed.size() < static_cast<size_t>(letterCount)) return refuse();
  std::string letters;
  for (int i = 0; i < letterCount; ++i) {
    if (!IsLetter(trimmed[i])) return refuse();
    letters += static_cast<char>(std::toupper(static_cast<unsigned char>(trimmed[i])));
  }
  // At most two groups of digits, separated (and preceded) by blanks or not.
  std::string_view groups[2];
  int groupCount = 0;
  std::string_view rest = trimmed.substr(letterCount);
  while (!rest.empty()) {
    if (IsBlank(rest.front())) {
      rest.remove_prefix(1);
      continue;
    }
    size_t length = 0;
    while (length < rest.size() && IsDigit(rest[length])) ++length;
    if (length == 0 || groupCount == 2) return refuse();  // a stray character or a third group
    groups[groupCount++] = rest.substr(0, length);
    rest.remove_prefix(length);
  }
  std::string_view east, north;
  if (groupCount == 1 && groups[0].size() % 2 == 0) {
    east = groups[0].substr(0, groups[0].size() / 2);
    north = groups[0].substr(groups[0].size() / 2);
  } else if (groupCount == 2 && groups[0].size() == groups[1].size()) {
    east = groups[0];
    north = groups[1];
  } else {
    return refuse();
  }
  if (east.empty() || east.size() > static_cast<size_t>(kGridReferenceMaxDigits)) return refuse();
  parts.letters = letters;
  parts.precisionMetres = PrecisionOfDigits(east.size());
  parts.easting = Digits(east) * parts.precisionMetres;
  parts.northing = Digits(north) * parts.precisionMetres;
  return true;
}

bool GridReferenceDigits(double easting, double northing, double eastLimit, double northLimit,
                         int precisionMetres, int& squareColumn, int& squareRow, std::string& digits,
                         std::string& message) {
  int width = 0;
  switch (precisionMetres) {
    case 1: width = 5; break;
    case 10: width = 4; break;
    case 100: width = 3; break;
    case 1000: width = 2; break;
    case 10000: width = 1; break;
    default:
      message = kGridReferencePrecisionError;
      return false;
  }
  if (!(easting >= 0 && easting < eastLimit && northing >= 0 && northing < northLimit)) {
    message = kGridReferenceOutsideError;
    return false;
  }
  // Truncate to the precision first, then split off the square, so that both
  // come from the same whole number of metres.
  const int64_t square = static_cast<int64_t>(kGridSquareMetres);
  const int64_t east = static_cast<int64_t>(std::floor(easting / precisionMetres)) * precisionMetres;
  const int64_t north = static_cast<int64_t>(std::floor(northing / precisionMetres)) * precisionMetres;
  squareColumn = static_cast<int>(east / square);
  squareRow = static_cast<int>(north / square);
  char text[16];
  std::snprintf(text, sizeof text, "%0*lld %0*lld", width,
                static_cast<long long>(east % square / precisionMetres), width,
                static_cast<long long>(north % square / precisionMetres));
  digits = text;
  return true;
}

}  // namespace velantis
