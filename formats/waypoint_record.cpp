#include "formats/waypoint_record.h"

#include <algorithm>

#include "formats/native_text.h"

namespace velantis {

namespace {

constexpr std::string_view kRemovedFromTexts = ",\r\n%";
constexpr size_t kMinNameLength = 6;
constexpr size_t kMaxWaypointFields = 20;
constexpr size_t kExtensionFields = 13;
constexpr std::string_view kVoidName = "VOID";
constexpr float kUnknownAltitudeWritten = -9999.0f;

std::string FileName(const std::string& name) {
  std::string text = RemoveChars(name, kRemovedFromTexts);
  if (text.size() < kMinNameLength) text.append(kMinNameLength - text.size(), ' ');
  // The reader splits the line at blanks and tabs: both travel as "_".
  for (char& c : text)
    if (c == ' ' || c == '\t') c = '_';
  return text;
}

void WriteExtensionLine(TNativeWriter& writer, const TBaliza& b) {
  const int sizeField = b.SizeByte() == kSizeByteUnset ? -1 : 2 * b.SizeByte();
  writer.Raw("w ").Text(RemoveChars(b.Symbol(), kRemovedFromTexts)).Raw(",").Int(b.DisplayMode()).Raw(",");
  writer.Real(b.DisplayScale()).Raw(",").Unsigned(b.LabelColour1()).Raw(",").Unsigned(b.LabelColour2()).Raw(",");
  writer.Int(b.DisplayFlag3() ? 1 : 0).Raw(",").Unsigned(b.State()).Raw(",");
  writer.Text(RemoveChars(b.Link(), kRemovedFromTexts)).Raw(",").Real(b.ProximityRadius()).Raw(",0,");
  writer.Int(sizeField).Raw(",").Int(b.LabelFontStep() * 10).Raw(",").Int(b.LabelPlacement());
  writer.EndLine();
}

void WriteLabelLine(TNativeWriter& writer, const TTextLabel& label) {
  writer.Raw("t \"").Text(ReplaceChars(label.text, "\r\n", ' ')).Raw("\",").Int(label.number).Raw(",");
  writer.Int(label.small1).Raw(",").Int(label.small2).Raw(",").Int(label.byteValue).Raw(", ").Int(label.integer);
  writer.EndLine();
}

}  // namespace

bool WriteWaypointRecord(TNativeWriter& writer, const TBaliza& b, bool extended, bool shiftDatum,
                         std::string& error) {
  writer.Raw("W  ").Text(FileName(b.Name())).Raw(" ");
  if (!writer.Position(b.Latitude(), b.Longitude(), shiftDatum, error)) return false;
  writer.Raw(" ").Date(b.Time()).Raw(" ");
  writer.Real(b.HasAltitude() ? b.Altitude() : kUnknownAltitudeWritten).Raw(" ");
  writer.Text(RemoveChars(b.Description(), kRemovedFromTexts)).EndLine();
  const TNativeOptions& options = writer.Options();
  if (extended && (options.forceExtensionLines || !b.HasDefaultExtension(options.defaults)))
    WriteExtensionLine(writer, b);
  if (b.Label() != nullptr) WriteLabelLine(writer, *b.Label());
  if (extended && b.Properties() != nullptr) writer.PropertyBlock(*b.Properties());
  return true;
}

bool ReadWaypointLine(const TNativeReader& reader, std::string_view line, bool shiftDatum, TBaliza& b,
                      std::string& error) {
  std::string_view fields[kMaxWaypointFields + 1];
  size_t count = SplitBlanks(line, fields, kMaxWaypointFields);
  // A line of seven fields lacks only its comment: it is read as if an empty
  // one followed.
  if (count == 7) fields[count++] = std::string_view();
  if (count < 8) {
    error = kWptLineError;
    return false;
  }
  double lat = 0, lon = 0;
  if (!reader.Position(fields[2], fields[3], shiftDatum, lat, lon, error)) return false;
  std::string name = fields[1] == kVoidName ? std::string() : reader.Text(fields[1]);
  std::replace(name.begin(), name.end(), '_', ' ');
  b.SetName(std::move(name));
  b.SetPosition(lat, lon);
  double altitude = kUnknownAltitudeWritten;
  if (ParseReal(fields[6], altitude)) b.SetAltitude(static_cast<float>(altitude));
  TDateTime time;
  if (ParseDateTime(fields[4], fields[5], time)) b.SetTime(time);
  std::string description;
  for (size_t i = 7; i < count; ++i) {
    if (i > 7) description.push_back(' ');
    description += fields[i];
  }
  b.SetDescription(reader.Text(description));
  b.ClearTransientMark();
  return true;
}

void ReadExtensionLine(const TNativeReader& reader, std::string_view content, TBaliza& b) {
  std::string_view f[kExtensionFields];
  const size_t count = SplitAt(content, ',', f, kExtensionFields);
  int value = 0;
  double real = 0;
  b.SetSymbol(reader.Text(f[0]));
  if (count > 1 && ParseInt(f[1], value)) b.SetDisplayMode(value);
  if (count > 2 && ParseReal(f[2], real)) b.SetDisplayScale(real);
  if (count > 3 && ParseInt(f[3], value)) b.SetLabelColour1(static_cast<uint32_t>(value));
  if (count > 4 && ParseInt(f[4], value)) b.SetLabelColour2(static_cast<uint32_t>(value));
  if (count > 5 && ParseInt(f[5], value)) b.SetDisplayFlag3(value != 0);
  if (count > 6 && ParseInt(f[6], value)) b.SetState(static_cast<uint8_t>(value));
  if (count > 7) b.SetLink(reader.Text(f[7]));
  if (count > 8 && ParseReal(f[8], real)) b.SetProximityRadius(real);
  if (count > 10 && ParseInt(f[10], value) && value >= 0) b.SetSizeByte(static_cast<uint8_t>(value / 2));
  if (count > 11 && ParseInt(f[11], value) && value > 0) b.SetLabelFontStep(value / 10);
  if (count > 12 && ParseInt(f[12], value)) b.SetLabelPlacement(value);
  b.ClearTransientMark();
}

void ReadLabelLine(const TNativeReader& reader, std::string_view content, TBaliza& b) {
  // The text may hold commas: the five numbers are the last five fields.
  std::string_view numbers[5];
  size_t found = 0;
  std::string_view rest = content;
  while (found < 5) {
    const size_t comma = rest.rfind(',');
    if (comma == std::string_view::npos) break;
    numbers[4 - found++] = rest.substr(comma + 1);
    rest = rest.substr(0, comma);
  }
  if (found < 4) return;
  if (found == 4) {  // four numbers after the text: the last is missing
    std::rotate(numbers, numbers + 1, numbers + 5);
    numbers[4] = std::string_view();
  }
  while (!rest.empty() && rest.front() == ' ') rest.remove_prefix(1);
  if (rest.size() >= 2 && rest.front() == '"' && rest.back() == '"') rest = rest.substr(1, rest.size() - 2);
  TTextLabel label;
  label.text = reader.Text(rest);
  ParseInt(numbers[0], label.number);
  ParseInt(numbers[1], label.small1);
  ParseInt(numbers[2], label.small2);
  ParseInt(numbers[3], label.byteValue);
  ParseInt(numbers[4], label.integer);
  b.SetLabel(label);
}

}  // namespace velantis
