#include "formats/track_point_record.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "formats/native_text.h"

namespace velantis {

namespace {

constexpr size_t kPointFields = 19;  // "T", seven fixed fields, twelve values
constexpr size_t kMinPointFields = 7;
constexpr size_t kLabelFields = 6;

void WriteLabel(TNativeWriter& writer, const TTextLabel& label) {
  writer.Raw("t ").Int(label.number).Raw("|").Text(ReplaceChars(label.text, "\r\n|", ' ')).Raw("|");
  writer.Int(label.small1).Raw("|").Int(label.small2).Raw("|").Real(label.real).Raw("|").Int(label.byteValue);
  writer.EndLine();
  writer.PropertyBlock(label.properties, 'y');
}

// A byte field: the value read, or the absent marker for -1.
template <typename TSetter>
void ReadOptional(std::string_view field, TSetter set) {
  double value = 0;
  if (ParseReal(field, value)) set(value);
}

float AsFloat(double value) { return static_cast<float>(value); }

// value as an integer of type TInt, clamped into its range (NaN gives 0).
template <typename TInt>
TInt Clamped(double value) {
  if (std::isnan(value)) return 0;
  const double low = std::numeric_limits<TInt>::min();
  const double high = std::numeric_limits<TInt>::max();
  return static_cast<TInt>(std::clamp(value, low, high));
}

}  // namespace

bool WriteTrackPointRecord(TNativeWriter& writer, const TTrack& track, size_t index, std::string& error) {
  const TrkPnt& p = track.Point(index);
  writer.Raw("T  ");
  if (!writer.Position(p.lat, p.lon, true, error)) return false;
  writer.Raw(" ").Date(p.time).Raw(p.StartsSegment() ? " s " : " N ");
  if (p.altitude < kAltitudeUnknownAtOrBelowM) {
    writer.Raw("-9999");
  } else {
    writer.Real(p.altitude);
  }
  writer.Raw(" ").Real(p.speedKmh).Raw(" ").Real(p.courseDeg).Raw(" ").Real(p.hdop).Raw(" ").Int(p.satellites);
  writer.Raw(" ").Real(p.accuracyM).Raw(" ").Real(p.TemperatureK()).Raw(" ").Int(p.signedValue);
  writer.Raw(" ").Real(p.altitudeBarometric).Raw(" ");
  if (p.size == kTrkPntByteAbsent) {
    writer.Raw("-1");
  } else {
    writer.Unsigned(2u * p.size);
  }
  writer.Raw(" ").Int(static_cast<int64_t>(p.HeartRate())).Raw(" ").Int(static_cast<int64_t>(p.Cadence()));
  writer.Raw(" ").Real(p.QuarterUnit()).EndLine();
  if (const TTextLabel* label = track.PointLabel(index)) WriteLabel(writer, *label);
  if (const TPropertyList* properties = track.PointProperties(index)) writer.PropertyBlock(*properties);
  return true;
}

bool ReadTrackPointLine(const TNativeReader& reader, std::string_view line, TrkPnt& p, std::string& error) {
  std::string_view f[kPointFields];
  const size_t count = SplitBlanks(line, f, kPointFields);
  if (count < kMinPointFields) {
    error = kTrkLineError;
    return false;
  }
  if (!reader.Position(f[1], f[2], true, p.lat, p.lon, error)) return false;
  ParseDateTime(f[3], f[4], p.time);
  p.SetStartsSegment(f[5] == "s");
  ReadOptional(f[6], [&](double v) { p.altitude = AsFloat(v); });
  const auto value = [&](size_t i, auto set) {
    if (i < count) ReadOptional(f[i], set);
  };
  value(7, [&](double v) { p.speedKmh = AsFloat(v); });
  value(8, [&](double v) { p.courseDeg = AsFloat(v); });
  value(9, [&](double v) { p.hdop = AsFloat(v); });
  value(10, [&](double v) { p.satellites = Clamped<int32_t>(v); });
  value(11, [&](double v) { p.accuracyM = AsFloat(v); });
  value(12, [&](double v) { p.SetTemperatureK(v); });
  value(13, [&](double v) { p.signedValue = Clamped<int8_t>(v); });
  value(14, [&](double v) { p.altitudeBarometric = AsFloat(v); });
  value(15, [&](double v) { p.size = v < 0 || v > 510 ? kTrkPntByteAbsent : static_cast<uint8_t>(v / 2); });
  value(16, [&](double v) { p.SetHeartRate(v); });
  value(17, [&](double v) { p.SetCadence(v); });
  value(18, [&](double v) { p.SetQuarterUnit(v); });
  return true;
}

TTextLabel ReadTrackLabelLine(const TNativeReader& reader, std::string_view content) {
  std::string_view f[kLabelFields];
  const size_t count = SplitAt(content, '|', f, kLabelFields);
  TTextLabel label;
  ParseInt(f[0], label.number);
  if (count > 1) label.text = reader.Text(f[1]);
  if (count > 2) ParseInt(f[2], label.small1);
  if (count > 3) ParseInt(f[3], label.small2);
  if (count > 4) ParseReal(f[4], label.real);
  if (count > 5) ParseInt(f[5], label.byteValue);
  return label;
}

}  // namespace velantis

