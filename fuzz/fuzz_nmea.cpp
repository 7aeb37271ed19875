// NMEA sentences, line by line, through the parser, the interpretation
// outside the live loop and the live handling (as configured by default, and
// with checksums ignored, a geoid model, an altitude offset, a satellite
// minimum, waypoints and dialect readers) on a fixed clock. A failed parse
// reports one of its two messages; a parsed sentence's fields rebuild its body
// and its checksum is the body's; every valid fix, written back as GGAM and
// RMC in both sending forms, reads back to the same position within half a
// unit of the last decimal, and time, altitude, speed and course within their
// printed precision.
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <numbers>
#include <string>
#include <string_view>

#include "comm/nmea_checksum.h"
#include "comm/nmea_fields.h"
#include "comm/nmea_live_handler.h"
#include "comm/nmea_position_rules.h"
#include "comm/nmea_sentence_tx.h"
#include "comm/nmea_test_output.h"
#include "core/waypoints.h"
#include "fuzz/fuzz_failure.h"

namespace {

using namespace velantis;

constexpr int kDecimals = 6;
constexpr double kHalfUnitDeg = 0.5e-6 / 60 + 1e-12;
constexpr double kLargest = 1e6;  // beyond this the printed values are not compared
// Two steps of a float relative to its value: the record's float altitude
// printed with one decimal reads back into the nearest float of the text.
constexpr double kFloatStep = 2.5e-7;

TDateTime FuzzNow() { return TDateTime::FromCalendar(2024, 5, 17, 12, 0, 0); }

void CheckSentence(const TComandaNMEA& sentence) {
  const std::string_view body = sentence.BodyWithoutChecksum();
  if (sentence.ComputedChecksum() != NmeaChecksum(body)) fuzz::Fail("checksum", sentence.Body());
  std::string joined;
  for (size_t i = 0; i < sentence.FieldCount(); ++i) {
    if (i > 0) joined += ',';
    joined += sentence.Field(i);
  }
  if (joined != body) fuzz::Fail("fields do not rebuild the body", sentence.Body());
  const std::string_view complete = sentence.CompleteIdentifier();
  if (!complete.ends_with(sentence.Identifier())) fuzz::Fail("identifier", sentence.Body());
}

bool Near(double a, double b, double tolerance) { return std::fabs(a - b) <= tolerance; }

// The fix written back and read again.
void CheckRoundTrip(const TPosicionNMEA& record, std::string_view source) {
  TrkPnt point;
  point.lat = record.lat;
  point.lon = record.lon;
  point.time = record.time;
  point.altitude = record.altitude;
  point.speedKmh = NarrowToFloat(record.speedKmh);
  point.courseDeg = NarrowToFloat(record.courseRad * 180 / std::numbers::pi);
  point.satellites = record.satellites;
  point.hdop = record.hdop;
  TCalendarTime calendar;
  const bool datable = !point.time.IsNull() && point.time.ToCalendar(calendar) &&
                       calendar.year >= 1980 && calendar.year <= 2079;

  TComandaNMEA_Tx plain;
  TComandaNMEA_Tx_Galileo galileo;
  for (TComandaNMEA_Tx* form : {&plain, static_cast<TComandaNMEA_Tx*>(&galileo)}) {
    for (const std::string_view kind : {"GPGGAM", "GPRMC"}) {
      form->Build(kind, point, kDecimals);
      const std::string line = form->Line();
      const std::string what = std::string(source) + "\n--- built ---\n" + line;
      TComandaNMEA back;
      TErrorSink sink;
      if (!back.Parse(line, sink) || !back.ChecksumMatches())
        fuzz::Fail("does not parse back", what);
      TPosicionNMEA again;
      again.clock = TNmeaClock::Fixed(FuzzNow());
      if (!InterpretPosition(back, again, {}) || !again.valid) fuzz::Fail("no position", what);
      if (!Near(again.lat, point.lat, kHalfUnitDeg) || !Near(again.lon, point.lon, kHalfUnitDeg))
        fuzz::Fail("position", what);
      if (datable && !Near(again.time.SecondsTo(point.time), 0, 0.006)) fuzz::Fail("time", what);
      if (point.time.IsNull() != again.time.IsNull()) fuzz::Fail("time presence", what);
      const bool ggam = kind == "GPGGAM";
      if (ggam && point.HasAltitude() && std::fabs(point.altitude) > 0.1 &&
          std::fabs(point.altitude) < kLargest &&
          !Near(again.altitude, point.altitude, 0.051 + std::fabs(point.altitude) * kFloatStep))
        fuzz::Fail("altitude", what);
      if (std::isfinite(point.speedKmh) && point.speedKmh >= 0 && point.speedKmh < kLargest &&
          !Near(again.speedKmh, point.speedKmh, 0.051 * 1.852))
        fuzz::Fail("speed", what);
      const double courseDeg = again.courseRad * 180 / std::numbers::pi;
      if (point.courseDeg > 0 && point.courseDeg < kLargest &&
          !Near(courseDeg, point.courseDeg, 0.051))
        fuzz::Fail("course", what);
      // The test output's damage must leave a line the parser survives.
      std::string damaged = line;
      constexpr int kDraws[] = {kNmeaDamageNoDollar, kNmeaDamageCut, kNmeaDamageChecksum};
      DamageNmeaLine(damaged, kDraws[line.size() % 3]);
      back.Parse(damaged, sink);
    }
  }
}

struct TFuzzState {
  TNmeaLiveHandler strict;
  TNmeaLiveHandler lenient;
  TWaypoints waypoints;
  std::string log;

  TFuzzState() : lenient(LenientSettings()) {
    lenient.SetWaypointList(&waypoints);
    lenient.SetLogWriter([this](std::string_view entry) { log.assign(entry); });
    lenient.SetDialectReader("D", [](const TComandaNMEA& s, TPosicionNMEA& r) {
      double value = 0;
      if (!s.FieldReal(1, value)) return false;
      r.altitude = NarrowToFloat(value);
      return true;
    });
    lenient.SetDialectReader("TUA", [](const TComandaNMEA& s, TPosicionNMEA&) {
      return s.FieldCount() > 2;
    });
  }

  static TNmeaReceiverSettings LenientSettings() {
    TNmeaReceiverSettings settings;
    settings.useChecksum = false;
    settings.geoidCorrection = true;
    settings.geoidModel = [](double lat, double lon) { return 10 + lat / 10 - lon / 20; };
    settings.altitudeOffsetM = 12.5;
    settings.minSatellites = 3;
    settings.chipGps = 4;
    return settings;
  }
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string_view input(reinterpret_cast<const char*>(data), size);
  TFuzzState state;
  TPosicionNMEA strictRecord, lenientRecord, interpreted;
  for (TPosicionNMEA* record : {&strictRecord, &lenientRecord, &interpreted})
    record->clock = TNmeaClock::Fixed(FuzzNow());

  TComandaNMEA sentence;
  TErrorSink sink;
  size_t start = 0;
  bool firstGsv = true;
  while (start < input.size()) {
    size_t end = input.find('\n', start);
    end = end == std::string_view::npos ? input.size() : end + 1;
    const std::string_view line = input.substr(start, end - start);
    start = end;

    sink.Clear();
    if (sentence.Parse(line, sink)) {
      CheckSentence(sentence);
      if (InterpretPosition(sentence, interpreted, {}, firstGsv) && interpreted.valid)
        CheckRoundTrip(interpreted, line);
      firstGsv = sentence.Identifier() != "GSV";
    } else if (sink.Records().size() != 1 ||
               (sink.Records()[0].message != kNmeaErrorNoDollar &&
                sink.Records()[0].message != kNmeaErrorChecksumSection)) {
      fuzz::Fail("a failed parse without its message", std::string(line));
    }
    if (state.strict.Handle(line, strictRecord) && strictRecord.valid)
      CheckRoundTrip(strictRecord, line);
    state.lenient.Handle(line, lenientRecord);
  }
  return 0;
}
