#include "formats/igc_records.h"

#include <cmath>
#include <cstdint>

namespace velantis {

namespace {

constexpr int kFirstExtensionByte = 36;  // the first byte after the fixed B record
constexpr int kCenturyPivotYear = 80;     // two-digit years below it are 20YY
constexpr int64_t kThousandthsPerDegree = 60000;  // DDMMmmm: minutes with three decimals
// "LAD"/"LOD" digits beyond these would carry a position finer than a double
// can hold them at 180 degrees; longer ones are kept as raw text.
constexpr int kMaxPositionDigits = 6;
constexpr int kSecondsPerHour = 3600;
constexpr int kSecondsPerMinute = 60;

bool ParseDigits(std::string_view text, int64_t& value) {
  if (text.empty() || text.size() > 18) return false;
  value = 0;
  for (const char c : text) {
    if (c < '0' || c > '9') return false;
    value = value * 10 + (c - '0');
  }
  return true;
}

int64_t PowerOfTen(int exponent) {
  int64_t p = 1;
  while (exponent-- > 0) p *= 10;
  return p;
}

void AppendDigits(std::string& out, int64_t value, int width) {
  std::string digits(static_cast<size_t>(width), '0');
  for (int i = width - 1; i >= 0 && value > 0; --i, value /= 10) digits[static_cast<size_t>(i)] = static_cast<char>('0' + value % 10);
  out += digits;
}

// The B record's fields with a TrkPnt field of their own: the value as
// digits of the extension's width (wider ones are kept as text).
struct TMappedExtension {
  std::string_view code;
  int maxWidth;
  void (*set)(TrkPnt&, int64_t);
  int64_t (*get)(const TrkPnt&);
};

const TMappedExtension kMappedExtensions[] = {
    // Fix accuracy, metres; a float holds six digits exactly.
    {"FXA", 6, [](TrkPnt& p, int64_t v) { p.accuracyM = static_cast<float>(v); },
     [](const TrkPnt& p) { return static_cast<int64_t>(std::llround(p.accuracyM)); }},
    // Satellites in use.
    {"SIU", 9, [](TrkPnt& p, int64_t v) { p.satellites = static_cast<int32_t>(v); },
     [](const TrkPnt& p) { return static_cast<int64_t>(p.satellites); }},
};

const TMappedExtension* FindMapped(std::string_view code) {
  for (const TMappedExtension& m : kMappedExtensions)
    if (m.code == code) return &m;
  return nullptr;
}

// The further minute digits of latitude ("LAD") and longitude ("LOD").
constexpr std::string_view kLatitudeDigits = "LAD";
constexpr std::string_view kLongitudeDigits = "LOD";

// "DDMMmmm" + hemisphere, with extra further digits of the minutes.
bool ParseAngle(std::string_view degrees, std::string_view thousandths, std::string_view extra, char hemisphere,
                char positive, char negative, int64_t maxDegrees, double& value) {
  int64_t d = 0, m = 0, x = 0;
  // Minutes of exactly 60.000 are what some loggers write for a value they
  // rounded up: they read as the next degree.
  if (!ParseDigits(degrees, d) || !ParseDigits(thousandths, m) || m > kThousandthsPerDegree) return false;
  if (!extra.empty() && !ParseDigits(extra, x)) return false;
  if (m == kThousandthsPerDegree && x > 0) return false;
  if (hemisphere != positive && hemisphere != negative) return false;
  const int64_t scale = PowerOfTen(static_cast<int>(extra.size()));
  const int64_t units = m * scale + x;
  if (d * kThousandthsPerDegree * scale + units > maxDegrees * kThousandthsPerDegree * scale) return false;
  const double magnitude = static_cast<double>(d) + static_cast<double>(units) / static_cast<double>(kThousandthsPerDegree * scale);
  value = hemisphere == negative ? -magnitude : magnitude;
  return true;
}

// Prints an angle as ParseAngle reads it; extra receives the further digits.
void AppendAngle(std::string& out, double value, int degreeWidth, int extraDigits, char positive, char negative,
                 std::string& extra) {
  const int64_t scale = PowerOfTen(extraDigits);
  const int64_t perDegree = kThousandthsPerDegree * scale;
  const int64_t total = std::llround(std::fabs(value) * static_cast<double>(perDegree));
  const int64_t units = total % perDegree;
  AppendDigits(out, total / perDegree, degreeWidth);
  AppendDigits(out, units / scale, 5);
  out.push_back(std::signbit(value) ? negative : positive);
  extra.clear();
  AppendDigits(extra, units % scale, extraDigits);
}

// Five bytes: "PPPPP", or "-" and four digits.
bool ParseAltitude(std::string_view text, int64_t& metres) {
  if (text.size() != 5) return false;
  if (text[0] != '-') return ParseDigits(text, metres);
  if (!ParseDigits(text.substr(1), metres)) return false;
  metres = -metres;
  return true;
}

constexpr int64_t kLowestAltitudeM = -9999;  // "-" and four digits
constexpr int64_t kHighestAltitudeM = 99999;

void AppendAltitude(std::string& out, double metres) {
  int64_t m = std::llround(metres);
  m = m < kLowestAltitudeM ? kLowestAltitudeM : (m > kHighestAltitudeM ? kHighestAltitudeM : m);
  if (m < 0) {
    out.push_back('-');
    AppendDigits(out, -m, 4);
  } else {
    AppendDigits(out, m, 5);
  }
}

bool ParseTime(std::string_view text, int& secondOfDay) {
  int64_t h = 0, m = 0, s = 0;
  if (!ParseDigits(text.substr(0, 2), h) || !ParseDigits(text.substr(2, 2), m) || !ParseDigits(text.substr(4, 2), s))
    return false;
  if (h >= 24 || m >= 60 || s >= 60) return false;
  secondOfDay = static_cast<int>(h * kSecondsPerHour + m * kSecondsPerMinute + s);
  return true;
}

// An extension that carries further minute digits in the point's position:
// its width when the point holds them, else 0 (they are kept as text then).
int PositionDigits(const TIgcExtensions& extensions, std::string_view code, const TPropertyList* extras) {
  for (const TIgcExtension& e : extensions) {
    if (e.code != code) continue;
    if (e.Width() > kMaxPositionDigits || (extras && extras->Find(e.code))) return 0;
    return e.Width();
  }
  return 0;
}

// Whether a record kept as it was read still says what the point holds.
bool RecordStillHolds(const std::string& record, const TrkPnt& point, int secondOfDay,
                      const TIgcExtensions& extensions, const TPropertyList& extras) {
  TrkPnt read;
  int second = 0;
  TPropertyList readExtras;
  if (!ParseIgcFix(record, extensions, read, second, readExtras)) return false;
  return second == secondOfDay && read.lat == point.lat && read.lon == point.lon && read.altitude == point.altitude &&
         read.altitudeBarometric == point.altitudeBarometric && read.accuracyM == point.accuracyM &&
         read.satellites == point.satellites && readExtras == extras;
}

}  // namespace

bool ParseIgcExtensions(std::string_view line, TIgcExtensions& extensions) {
  constexpr size_t kGroupBytes = 7;  // SSEECCC
  int64_t count = 0;
  if (line.size() < 3 || line[0] != 'I' || !ParseDigits(line.substr(1, 2), count)) return false;
  if (line.size() < 3 + kGroupBytes * static_cast<size_t>(count)) return false;
  extensions.clear();
  int next = kFirstExtensionByte;
  for (int64_t i = 0; i < count; ++i) {
    const std::string_view group = line.substr(3 + kGroupBytes * static_cast<size_t>(i), kGroupBytes);
    int64_t first = 0, last = 0;
    if (!ParseDigits(group.substr(0, 2), first) || !ParseDigits(group.substr(2, 2), last)) return false;
    if (first != next || last < first) return false;
    const std::string code(group.substr(4));
    for (const TIgcExtension& e : extensions)
      if (e.code == code) return false;
    extensions.push_back({static_cast<int>(first), static_cast<int>(last), code});
    next = static_cast<int>(last) + 1;
  }
  return true;
}

bool ParseIgcDate(std::string_view line, TDateTime& date, size_t& digitsAt) {
  constexpr std::string_view kDateWord = "DATE:";
  if (line.size() < 5 || line[0] != 'H' || line.substr(2, 3) != "DTE") return false;
  size_t at = 5;
  if (line.substr(at).starts_with(kDateWord)) at += kDateWord.size();
  int64_t day = 0, month = 0, year = 0;
  if (line.size() < at + 6 || !ParseDigits(line.substr(at, 2), day) || !ParseDigits(line.substr(at + 2, 2), month) ||
      !ParseDigits(line.substr(at + 4, 2), year))
    return false;
  year += year < kCenturyPivotYear ? 2000 : 1900;
  date = TDateTime::FromCalendar(static_cast<int>(year), static_cast<int>(month), static_cast<int>(day));
  // The calendar carries 31 February into March: such a date is refused.
  TCalendarTime back;
  if (date.IsNull() || !date.ToCalendar(back) || back.day != day || back.month != month) return false;
  digitsAt = at;
  return true;
}

std::string IgcDateDigits(TDateTime date) {
  TCalendarTime c;
  std::string digits;
  if (!date.ToCalendar(c)) return "000000";
  AppendDigits(digits, c.day, 2);
  AppendDigits(digits, c.month, 2);
  AppendDigits(digits, ((c.year % 100) + 100) % 100, 2);
  return digits;
}

std::string WithIgcDate(std::string_view line, TDateTime date) {
  TDateTime old;
  size_t at = 0;
  std::string out(line);
  if (ParseIgcDate(line, old, at)) out.replace(at, 6, IgcDateDigits(date));
  return out;
}

bool ParseIgcFix(std::string_view line, const TIgcExtensions& extensions, TrkPnt& point, int& secondOfDay,
                 TPropertyList& extras) {
  const size_t end = extensions.empty() ? kIgcFixBytes : static_cast<size_t>(extensions.back().last);
  if (line.size() < end || line[0] != 'B' || !ParseTime(line.substr(1, 6), secondOfDay)) return false;
  point = TrkPnt();
  extras.Clear();
  std::string_view latitudeDigits, longitudeDigits;
  for (const TIgcExtension& e : extensions) {
    const std::string_view raw = line.substr(static_cast<size_t>(e.first - 1), static_cast<size_t>(e.Width()));
    int64_t value = 0;
    const bool digits = ParseDigits(raw, value);
    const TMappedExtension* mapped = FindMapped(e.code);
    if (digits && e.Width() <= kMaxPositionDigits && e.code == kLatitudeDigits) {
      latitudeDigits = raw;
    } else if (digits && e.Width() <= kMaxPositionDigits && e.code == kLongitudeDigits) {
      longitudeDigits = raw;
    } else if (digits && mapped && e.Width() <= mapped->maxWidth) {
      mapped->set(point, value);
    } else {
      extras.Set(e.code, std::string(raw));
    }
  }
  if (line.size() > end) extras.Set(std::string(kIgcTailProperty), std::string(line.substr(end)));
  if (!ParseAngle(line.substr(7, 2), line.substr(9, 5), latitudeDigits, line[14], 'N', 'S', 90, point.lat) ||
      !ParseAngle(line.substr(15, 3), line.substr(18, 5), longitudeDigits, line[23], 'E', 'W', 180, point.lon))
    return false;
  int64_t pressure = 0, gnss = 0;
  if (!ParseAltitude(line.substr(25, 5), pressure) || !ParseAltitude(line.substr(30, 5), gnss)) return false;
  // Loggers without a pressure sensor write 00000: that is no altitude.
  if (pressure != 0 && pressure >= kAltitudeValidFromM) point.altitudeBarometric = static_cast<float>(pressure);
  switch (line[24]) {
    case 'A':
      if (gnss <= kAltitudeUnknownAtOrBelowM) return false;  // a 3D fix 1000 m below the sea
      point.altitude = static_cast<float>(gnss);
      break;
    case 'V':  // no 3D fix: the GNSS altitude is not valid
      break;
    default:
      return false;
  }
  // A record the writer would print otherwise (60.000 minutes, "-0000", the
  // digits of a 'V' fix's altitude) is kept as it stands.
  std::string printed;
  AppendIgcFix(printed, point, secondOfDay, extensions, &extras);
  if (printed != line) extras.Set(std::string(kIgcRecordProperty), std::string(line));
  return true;
}

void AppendIgcFix(std::string& out, const TrkPnt& point, int secondOfDay, const TIgcExtensions& extensions,
                  const TPropertyList* extras) {
  const std::string* record = extras ? extras->Find(std::string(kIgcRecordProperty)) : nullptr;
  if (record && RecordStillHolds(*record, point, secondOfDay, extensions, *extras)) {
    out += *record;
    return;
  }
  out.push_back('B');
  AppendDigits(out, secondOfDay / kSecondsPerHour, 2);
  AppendDigits(out, secondOfDay / kSecondsPerMinute % 60, 2);
  AppendDigits(out, secondOfDay % kSecondsPerMinute, 2);
  std::string latitudeDigits, longitudeDigits;
  AppendAngle(out, point.lat, 2, PositionDigits(extensions, kLatitudeDigits, extras), 'N', 'S', latitudeDigits);
  AppendAngle(out, point.lon, 3, PositionDigits(extensions, kLongitudeDigits, extras), 'E', 'W', longitudeDigits);
  out.push_back(point.HasAltitude() ? 'A' : 'V');
  AppendAltitude(out, IsValidAlternativeAltitude(point.altitudeBarometric) ? point.altitudeBarometric : 0.0);
  AppendAltitude(out, point.HasAltitude() ? point.altitude : 0.0);
  for (const TIgcExtension& e : extensions) {
    const std::string* raw = extras ? extras->Find(e.code) : nullptr;
    const TMappedExtension* mapped = FindMapped(e.code);
    if (raw) {
      std::string text = raw->substr(0, static_cast<size_t>(e.Width()));
      text.resize(static_cast<size_t>(e.Width()), ' ');
      out += text;
    } else if (e.code == kLatitudeDigits && e.Width() <= kMaxPositionDigits) {
      out += latitudeDigits;
    } else if (e.code == kLongitudeDigits && e.Width() <= kMaxPositionDigits) {
      out += longitudeDigits;
    } else if (mapped && e.Width() <= mapped->maxWidth) {
      const int64_t limit = PowerOfTen(e.Width()) - 1;
      const int64_t value = mapped->get(point);
      AppendDigits(out, value < 0 ? 0 : (value > limit ? limit : value), e.Width());
    } else {
      AppendDigits(out, 0, e.Width());  // a value the point never had
    }
  }
  if (const std::string* tail = extras ? extras->Find(std::string(kIgcTailProperty)) : nullptr) out += *tail;
}

}  // namespace velantis
