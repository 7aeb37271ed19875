#include "geodesy/coordinate_notation.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstdio>

namespace velantis {

namespace {

// The names of the chooser; "%s" stands for the degree sign.
constexpr std::array<std::string_view, kNotationCount> kNotationNames = {
    "dd.dddddd",
    "dd%s mm.mmm'",
    "dd%s mm'ss.s",
    "gr, France Decimal Degrees",
};

constexpr unsigned char kUtf8Lead = 0xC2;     // first byte of "°" and "º" in UTF-8
constexpr unsigned char kDegreeByte = 0xB0;   // "°": second UTF-8 byte, or the legacy byte
constexpr unsigned char kOrdinalByte = 0xBA;  // "º": second UTF-8 byte, or the legacy byte
constexpr size_t kMaxDegreeParts = 3;         // degrees, minutes, seconds
constexpr double kMaxLatitudeDeg = 90;
constexpr double kMaxLongitudeDeg = 360;

// Printed units: the value is rounded to a whole count of these.
constexpr long long kMicroUnitsPerUnit = 1000000;        // six decimals
constexpr long long kMilliMinutesPerDegree = 60 * 1000;  // three decimals of a minute
constexpr long long kMilliMinutesPerMinute = 1000;
constexpr long long kDeciSecondsPerDegree = 3600 * 10;  // one decimal of a second
constexpr long long kDeciSecondsPerMinute = 60 * 10;
constexpr long long kDeciSecondsPerSecond = 10;

char Upper(char c) { return (c >= 'a' && c <= 'z') ? static_cast<char>(c - 'a' + 'A') : c; }

bool IsBlank(char c) { return c == ' ' || c == '\t'; }

std::string_view Trim(std::string_view text) {
  while (!text.empty() && IsBlank(text.front())) text.remove_prefix(1);
  while (!text.empty() && IsBlank(text.back())) text.remove_suffix(1);
  return text;
}

bool IsHemisphereLetter(char upper) {
  return upper == 'N' || upper == 'S' || upper == 'E' || upper == 'W';
}

std::string NumberError(std::string_view text) {
  return "'" + std::string(text) + "' is not a valid floating point value";
}

// One whole decimal number, an optional "+" allowed; finite values only.
bool ReadNumber(std::string_view text, double& value) {
  if (!text.empty() && text.front() == '+') {
    text.remove_prefix(1);
    if (!text.empty() && text.front() == '-') return false;  // "+-1"
  }
  double read = 0;
  const auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), read);
  if (ec != std::errc() || end != text.data() + text.size() || !std::isfinite(read)) return false;
  value = read;
  return true;
}

// Length of the degree-sign sequence at text[i] that splits d m s: "°" or
// "º" in UTF-8 (2) or as a legacy byte (1); 0 when there is none.
size_t DegreeSignLength(std::string_view text, size_t i, bool ordinalOnly) {
  const auto byte = [&](size_t k) { return static_cast<unsigned char>(text[k]); };
  const auto isSign = [&](unsigned char b) {
    return b == kOrdinalByte || (!ordinalOnly && b == kDegreeByte);
  };
  if (byte(i) == kUtf8Lead && i + 1 < text.size() && isSign(byte(i + 1))) return 2;
  return isSign(byte(i)) ? 1 : 0;
}

// "d m' s"": at most three numbers between the separators.
bool ReadDegreesMinutesSeconds(std::string_view text, double& value) {
  std::array<double, kMaxDegreeParts> parts{};
  size_t count = 0;
  size_t i = 0;
  while (i < text.size()) {
    size_t start = i;
    size_t separator = 0;
    while (i < text.size()) {
      const char c = text[i];
      separator = (IsBlank(c) || c == '\'' || c == '"') ? 1 : DegreeSignLength(text, i, false);
      if (separator) break;
      ++i;
    }
    if (i > start) {
      if (count == kMaxDegreeParts || !ReadNumber(text.substr(start, i - start), parts[count]))
        return false;
      ++count;
    }
    i += separator;
  }
  const double sum = parts[0] + parts[1] / 60 + parts[2] / 3600;
  if (!std::isfinite(sum)) return false;
  value = sum;
  return true;
}

// A printed angle, built in place: whole numbers of at least width digits
// (leading zeros, as "%0*lld"), texts and characters.
class TAngleText {
public:
  TAngleText& Number(long long value, int width = 1) {
    char digits[24];
    const char* end = std::to_chars(digits, digits + sizeof digits, value).ptr;
    for (auto length = end - digits; length < width; ++length) m_text[m_size++] = '0';
    for (const char* d = digits; d != end; ++d) m_text[m_size++] = *d;
    return *this;
  }
  TAngleText& Text(std::string_view text) {
    for (const char c : text) m_text[m_size++] = c;
    return *this;
  }
  TAngleText& Char(char c) {
    m_text[m_size++] = c;
    return *this;
  }
  const char* Data() const { return m_text.data(); }
  size_t Size() const { return m_size; }

private:
  std::array<char, 64> m_text{};
  size_t m_size = 0;
};

bool FormatAngle(double degrees, bool latitude, int notation, std::string& text,
                 std::string& message) {
  if (!IsValidNotation(notation)) {
    message = "Unknown coordinate notation: " + std::to_string(notation);
    return false;
  }
  const double limit = latitude ? kMaxLatitudeDeg : kMaxLongitudeDeg;
  if (!std::isfinite(degrees) || std::fabs(degrees) > limit) {
    char value[40];
    std::snprintf(value, sizeof value, "%.17g", degrees);
    message = std::string(latitude ? "Latitude" : "Longitude") + " out of range: " + value;
    return false;
  }
  const double magnitude = std::fabs(degrees);
  long long units = 0;
  // The letter is chosen after rounding, so a value that prints as zero is N/E.
  const auto letter = [&] {
    if (units == 0 || degrees > 0) return latitude ? 'N' : 'E';
    return latitude ? 'S' : 'W';
  };
  // Written digit by digit rather than through printf: a track file prints
  // two of these per point, a million times over.
  TAngleText out;
  switch (notation) {
    case kNotationDecimalDegrees:
      units = std::llround(magnitude * kMicroUnitsPerUnit);
      out.Number(units / kMicroUnitsPerUnit).Char('.').Number(units % kMicroUnitsPerUnit, 6).Text(kDegreeSign);
      break;
    case kNotationDegreesMinutes: {
      units = std::llround(magnitude * kMilliMinutesPerDegree);
      const long long minutes = units % kMilliMinutesPerDegree;
      out.Number(units / kMilliMinutesPerDegree).Text(kDegreeSign).Number(minutes / kMilliMinutesPerMinute, 2);
      out.Char('.').Number(minutes % kMilliMinutesPerMinute, 3).Char('\'');
      break;
    }
    case kNotationDegreesMinutesSeconds: {
      units = std::llround(magnitude * kDeciSecondsPerDegree);
      const long long inDegree = units % kDeciSecondsPerDegree;
      const long long seconds = inDegree % kDeciSecondsPerMinute;
      out.Number(units / kDeciSecondsPerDegree).Text(kDegreeSign).Number(inDegree / kDeciSecondsPerMinute, 2);
      out.Char('\'').Number(seconds / kDeciSecondsPerSecond, 2).Char('.').Number(seconds % kDeciSecondsPerSecond);
      out.Char('"');
      break;
    }
    case kNotationGrads:
      units = std::llround(magnitude / kDegreesPerGrad * kMicroUnitsPerUnit);
      out.Number(units / kMicroUnitsPerUnit).Char('.').Number(units % kMicroUnitsPerUnit, 6).Text("GR");
      break;
  }
  out.Char(letter());
  text.assign(out.Data(), out.Size());
  return true;
}

// The form the native files print in notation 0, "41.391667ºN" (digits and
// a point, the degree sign in UTF-8 or as the legacy byte, one hemisphere
// letter), read without the general steps below, whose result it is: the
// only letter is the last, and removing it and the sign leaves the number.
// false, leaving the outputs, for any other form, a text too long to be a
// coordinate or an unreadable number.
bool ParsePrintedDecimal(std::string_view text, double& degrees, bool& isLatitude) {
  if (text.size() < 3 || text.size() - 1 > kMaxNotationText) return false;
  const char letter = Upper(text.back());
  if (!IsHemisphereLetter(letter)) return false;
  text.remove_suffix(1);
  if (text.size() >= 2 && static_cast<unsigned char>(text[text.size() - 2]) == kUtf8Lead &&
      static_cast<unsigned char>(text.back()) == kOrdinalByte) {
    text.remove_suffix(2);
  } else if (static_cast<unsigned char>(text.back()) == kOrdinalByte) {
    text.remove_suffix(1);
  } else {
    return false;
  }
  if (text.empty()) return false;
  for (const char c : text)
    if ((c < '0' || c > '9') && c != '.') return false;
  double value = 0;
  if (!ReadNumber(text, value)) return false;
  degrees = letter == 'S' || letter == 'W' ? -value : value;
  isLatitude = letter == 'N' || letter == 'S';
  return true;
}

}  // namespace

bool IsValidNotation(int notation) { return notation >= 0 && notation < kNotationCount; }

std::string NotationName(int notation, std::string_view degreeSign) {
  if (!IsValidNotation(notation)) return {};
  const std::string_view pattern = kNotationNames[static_cast<size_t>(notation)];
  std::string name;
  for (size_t i = 0; i < pattern.size(); ++i) {
    if (pattern.substr(i, 2) == "%s") {
      name += degreeSign;
      ++i;
    } else {
      name += pattern[i];
    }
  }
  return name;
}

std::string HemisphereChoiceLabel(char letter, std::string_view text) {
  return std::string(1, letter) + " (" + std::string(text) + ")";
}

bool ParseLatLon(std::string_view text, double& degrees, bool& isLatitude, std::string& message) {
  text = Trim(text);
  if (ParsePrintedDecimal(text, degrees, isLatitude)) return true;
  bool north = false, south = false, east = false, west = false, grads = false;
  for (size_t i = 0; i < text.size(); ++i) {
    switch (Upper(text[i])) {
      case 'N':
        north = true;
        break;
      case 'S':
        south = true;
        break;
      case 'E':
        east = true;
        break;
      case 'W':
        west = true;
        break;
      case 'G':
        grads = grads || (i + 1 < text.size() && Upper(text[i + 1]) == 'R');
        break;
      default:
        break;
    }
  }
  if (!north && !south && !east && !west) {
    message = std::string(kNotationFormatError) + std::string(kNoQuadrantLetter);
    return false;
  }
  const bool latitude = north || south;
  const bool negative = west || south;

  // The upper-case text without its hemisphere letters, then without "GR".
  std::array<char, kMaxNotationText> buffer;
  size_t length = 0;
  for (const char c : text) {
    const char upper = Upper(c);
    if (IsHemisphereLetter(upper)) continue;
    if (length == buffer.size()) {
      message = NumberError(text);
      return false;
    }
    buffer[length++] = upper;
  }
  size_t kept = 0;
  for (size_t i = 0; i < length; ++i) {
    if (buffer[i] == 'G' && i + 1 < length && buffer[i + 1] == 'R') {
      ++i;
      continue;
    }
    buffer[kept++] = buffer[i];
  }
  const std::string_view rest = Trim(std::string_view(buffer.data(), kept));

  double value = 0;
  bool read = false;
  if (grads) {
    read = ReadNumber(rest, value);
    value *= kDegreesPerGrad;
  } else if (rest.find('\'') != std::string_view::npos) {
    read = ReadDegreesMinutesSeconds(rest, value);
  } else {
    // Every "º" goes; "°" stays and makes the number unreadable.
    std::array<char, kMaxNotationText> number;
    size_t digits = 0;
    for (size_t i = 0; i < rest.size();) {
      if (const size_t sign = DegreeSignLength(rest, i, true)) {
        i += sign;
      } else {
        number[digits++] = rest[i++];
      }
    }
    read = ReadNumber(Trim(std::string_view(number.data(), digits)), value);
  }
  if (!read) {
    message = NumberError(rest);
    return false;
  }
  degrees = negative ? -value : value;
  isLatitude = latitude;
  return true;
}

double RoundToNotation(double degrees, int notation) {
  double unitsPerDegree = 0;
  switch (notation) {
    case kNotationDecimalDegrees:
      unitsPerDegree = kMicroUnitsPerUnit;
      break;
    case kNotationDegreesMinutes:
      unitsPerDegree = kMilliMinutesPerDegree;
      break;
    case kNotationDegreesMinutesSeconds:
      unitsPerDegree = kDeciSecondsPerDegree;
      break;
    case kNotationGrads:
      unitsPerDegree = kMicroUnitsPerUnit / kDegreesPerGrad;
      break;
    default:
      return degrees;
  }
  return std::round(degrees * unitsPerDegree) / unitsPerDegree;
}

bool FormatLatitude(double degrees, int notation, std::string& text, std::string& message) {
  return FormatAngle(degrees, true, notation, text, message);
}

bool FormatLongitude(double degrees, int notation, std::string& text, std::string& message) {
  return FormatAngle(degrees, false, notation, text, message);
}

bool FormatPosition(const TLonLat& position, int notation, std::string& text,
                    std::string& message) {
  std::string latitude, longitude;
  if (!FormatLatitude(position.lat, notation, latitude, message) ||
      !FormatLongitude(position.lon, notation, longitude, message))
    return false;
  text = latitude + " " + longitude;
  return true;
}

}  // namespace velantis
