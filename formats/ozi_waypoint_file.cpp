#include "formats/ozi_waypoint_file.h"

#include "app/code_page.h"
#include "formats/native_text.h"
#include "formats/rte_file.h"
#include "formats/waypoint_record.h"
#include "geodesy/lista_datums.h"

namespace velantis {

namespace {

constexpr std::string_view kOziRouteHeader = "OziExplorer Route File";
constexpr size_t kHeaderLines = 4;
constexpr size_t kDatumLine = 2;
// A comma inside a text field is stored as this byte.
constexpr char kStoredComma = static_cast<char>(209);
constexpr double kMetresPerFoot = 0.3048;
constexpr double kNoAltitudeFeet = -777;

// The fields of a waypoint record, from 0. Fields past kSymbolSize are read
// into the last slot and ignored.
enum TOziField : size_t {
  kNumber,
  kName,
  kLatitude,
  kLongitude,
  kDate,
  kSymbolNumber,
  kStatus,
  kMapDisplayFormat,
  kForeground,
  kBackground,
  kDescription,
  kPointerDirection,
  kGarminDisplayFormat,
  kProximity,
  kAltitudeFeet,
  kFontSize,
  kFontStyle,
  kSymbolSize,
  kRecordFields,
};
constexpr size_t kRequiredFields = kLongitude + 1;

// A route file's "W" line: the letter, the route number and the point number
// come before the waypoint record.
constexpr size_t kRoutePointPrefixFields = 3;
// A route file's "R" line: letter, route number, name, description, colour.
enum TOziRouteField : size_t { kRouteLetter, kRouteNumber, kRouteName, kRouteDescription, kRouteFields };

// Splits at commas into fields, each trimmed; returns their number.
size_t SplitFields(std::string_view line, std::string_view* fields, size_t maxFields) {
  const size_t count = SplitAt(line, ',', fields, maxFields);
  for (size_t i = 0; i < count; ++i) fields[i] = TrimBlanks(fields[i]);
  return count;
}

// A text field in UTF-8, its stored commas restored.
std::string OziText(std::string_view field) { return Cp1252ToUtf8(ReplaceChars(field, {&kStoredComma, 1}, ',')); }

std::string_view FirstLine(std::string_view bytes) {
  TLineCursor lines(bytes);
  std::string_view line;
  return lines.Next(line) ? TrimBlanks(line) : std::string_view();
}

// A Windows COLORREF (0x00BBGGRR) as 0xRRGGBB.
uint32_t RgbOfColorRef(uint32_t colorRef) {
  return ((colorRef & 0xFF) << 16) | (colorRef & 0xFF00) | ((colorRef >> 16) & 0xFF);
}

// The lines of an OziExplorer file after its four header lines, the datum
// its second line names, and the progress over the records: every line after
// the header that is not blank is one record.
class TOziLines {
public:
  TOziLines(std::string_view bytes, const TNativeOptions& options)
      : m_lines(bytes), m_options(options), m_reader(options) {}

  // Reads the header and sets the progress total; fails with
  // "Unknown datum: " + name.
  bool ReadHeader(std::string& error) {
    std::string_view datumName;
    std::string_view line;
    for (size_t number = 1; number <= kHeaderLines && m_lines.Next(line); ++number)
      if (number == kDatumLine) datumName = TrimBlanks(line);
    bool ok = true;
    m_reader.HeaderLine('G', datumName, ok, error);
    ProgressSetTotal(m_options.progress, static_cast<int64_t>(RecordsLeft()));
    return ok;
  }

  // The next line that is not blank, trimmed; false at the end.
  bool Next(std::string_view& line) {
    while (m_lines.Next(line)) {
      line = TrimBlanks(line);
      if (!line.empty()) return true;
    }
    return false;
  }

  // Counts one record; false with the cancel error when the progress has
  // been cancelled.
  bool Step(std::string& error) {
    if (ProgressStep(m_options.progress)) return true;
    error = kCancelledError;
    return false;
  }

  int Datum() const { return m_reader.Datum(); }
  const TNativeOptions& Options() const { return m_options; }

private:
  TLineCursor m_lines;
  const TNativeOptions& m_options;
  TNativeReader m_reader;

  size_t RecordsLeft() const {
    TOziLines rest = *this;
    size_t count = 0;
    for (std::string_view line; rest.Next(line);) ++count;
    return count;
  }
};

// The position fields, shifted from the file datum to WGS 84.
bool ReadPosition(const std::string_view* fields, const TOziLines& file, TLonLat& position, std::string& error) {
  if (!ParseReal(fields[kLatitude], position.lat) || !ParseReal(fields[kLongitude], position.lon)) {
    error = kWptLineError;
    return false;
  }
  return file.Datum() == 0 || file.Options().datums->Transforma_Grados_Datum(position, file.Datum(), 0, error);
}

// The fields a record may leave out; an absent or unreadable one keeps the
// waypoint's default.
void ReadOptionalFields(const std::string_view* fields, size_t count, TBaliza& baliza) {
  const auto field = [&](TOziField which) { return which < count ? fields[which] : std::string_view(); };
  double days = 0;
  if (ParseReal(field(kDate), days) && days != 0) baliza.SetTime(TDateTime::FromDays(days));
  int64_t colour = 0;
  if (ParseInt(field(kForeground), colour)) baliza.SetLabelColour1(RgbOfColorRef(static_cast<uint32_t>(colour)));
  if (ParseInt(field(kBackground), colour)) baliza.SetLabelColour2(RgbOfColorRef(static_cast<uint32_t>(colour)));
  baliza.SetDescription(OziText(field(kDescription)));
  double proximity = 0;
  if (ParseReal(field(kProximity), proximity) && proximity > 0) {
    baliza.SetProximityRadius(proximity);
    baliza.SetProximityAlarm(true);
  }
  double feet = kNoAltitudeFeet;
  if (ParseReal(field(kAltitudeFeet), feet) && feet != kNoAltitudeFeet)
    baliza.SetAltitude(static_cast<float>(feet * kMetresPerFoot));
}

// One waypoint record (number, name, latitude, longitude, ...) into baliza:
// the one reader of both the waypoint lines and the route points.
bool ReadOziRecord(std::string_view record, const TOziLines& file, TBaliza& baliza, std::string& error) {
  std::string_view fields[kRecordFields + 1];
  const size_t count = SplitFields(record, fields, kRecordFields + 1);
  if (count < kRequiredFields) {
    error = kWptLineError;
    return false;
  }
  TLonLat position;
  if (!ReadPosition(fields, file, position, error)) return false;
  baliza.SetName(OziText(fields[kName]));
  baliza.SetPosition(position.lat, position.lon);
  ReadOptionalFields(fields, count, baliza);
  baliza.ClearTransientMark();
  return true;
}

// Where the route reader stands: before the first "R" line, inside the first
// route, or past it (the next "R" line ends the reading).
enum class TRouteSection { Before, First, After };

void ReadRouteLine(std::string_view line, TRuta& route) {
  std::string_view fields[kRouteFields + 1];
  const size_t count = SplitFields(line, fields, kRouteFields + 1);
  if (count > kRouteName) route.SetName(OziText(fields[kRouteName]));
  if (count > kRouteDescription) route.SetDescription(OziText(fields[kRouteDescription]));
}

bool ReadRoutePoint(std::string_view line, const TOziLines& file, TRuta& route, std::string& error) {
  std::string_view parts[kRoutePointPrefixFields + 1];
  if (SplitAt(line, ',', parts, kRoutePointPrefixFields + 1) <= kRoutePointPrefixFields) {
    error = kWptLineError;
    return false;
  }
  TBaliza baliza(file.Options().defaults);
  if (!ReadOziRecord(parts[kRoutePointPrefixFields], file, baliza, error)) return false;
  route.Add(std::move(baliza));
  return true;
}

// One line of a route file; a second "R" line moves section past the route.
bool ReadRouteFileLine(std::string_view line, const TOziLines& file, TRouteSection& section, TRuta& route,
                       std::string& error) {
  const std::string_view letter = TrimBlanks(line.substr(0, line.find(',')));
  if (letter == "R") {
    if (section == TRouteSection::Before) ReadRouteLine(line, route);
    section = section == TRouteSection::Before ? TRouteSection::First : TRouteSection::After;
    return true;
  }
  if (letter == "W" && section == TRouteSection::First) return ReadRoutePoint(line, file, route, error);
  return true;
}

}  // namespace

bool IsOziWaypointFile(std::string_view bytes) {
  const std::string_view first = FirstLine(bytes);
  for (const std::string_view header : kOziWaypointHeaders)
    if (first == header) return true;
  return false;
}

bool ReadOziWaypoints(std::string_view bytes, const TNativeOptions& options, TWaypoints& list, std::string& error) {
  TOziLines file(bytes, options);
  if (!file.ReadHeader(error)) return false;
  TWaypoints read;
  std::string_view line;
  while (file.Next(line)) {
    TBaliza baliza(options.defaults);
    if (!ReadOziRecord(line, file, baliza, error)) return false;
    read.Add(std::move(baliza));
    if (!file.Step(error)) return false;
  }
  read.SetFromOziExplorer(true);
  read.MarkAsSaved();
  list = std::move(read);
  return true;
}

bool IsOziRouteFile(std::string_view bytes) { return FirstLine(bytes).starts_with(kOziRouteHeader); }

bool ReadOziRoute(std::string_view bytes, const TNativeOptions& options, TRuta& route, std::string& error) {
  TOziLines file(bytes, options);
  if (!file.ReadHeader(error)) return false;
  TRuta read;
  TRouteSection section = TRouteSection::Before;
  std::string_view line;
  while (section != TRouteSection::After && file.Next(line)) {
    if (!ReadRouteFileLine(line, file, section, read, error) || !file.Step(error)) return false;
  }
  if (section == TRouteSection::Before) {
    error = kNoRteSections;
    return false;
  }
  read.SetFromOziExplorer(true);
  read.MarkAsSaved();
  route = std::move(read);
  return true;
}

}  // namespace velantis
