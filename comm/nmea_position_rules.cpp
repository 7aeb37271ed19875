#include "comm/nmea_position_rules.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <optional>

#include "comm/nmea_fields.h"
#include "comm/speed_unit.h"

namespace velantis {
namespace {

// Field numbers, counted from 0 (the identifier). The latitude's hemisphere,
// the longitude and its hemisphere follow the latitude (ReadPosition).
namespace gga {
constexpr size_t kTime = 1, kLat = 2;
constexpr size_t kQuality = 6, kSatellites = 7, kHdop = 8, kAltitude = 9, kAltitudeUnit = 10;
constexpr size_t kGeoidSeparation = 11;
constexpr size_t kMinFields = 7;
constexpr size_t kAltitudeAfter = 10;  // more fields than this carry HDOP and altitude
}  // namespace gga
namespace ggam {
constexpr size_t kSpeedKnots = 15, kCourseDeg = 16, kDate = 17;
}  // namespace ggam
namespace rmc {
constexpr size_t kTime = 1, kStatus = 2, kLat = 3;
constexpr size_t kSpeedKnots = 7, kCourseDeg = 8, kDate = 9, kVariation = 10, kVariationSide = 11;
constexpr size_t kMinFields = 7;
}  // namespace rmc
namespace gll {
constexpr size_t kLat = 1, kTime = 5, kStatus = 6;
constexpr size_t kMinFields = 5;
}  // namespace gll

// A latitude field of this length or less holds no position.
constexpr size_t kNoPositionLength = 2;
constexpr double kRadiansPerDegree = std::numbers::pi * (1.0 / 180.0);
constexpr double kHalfDay = 0.5;

// The time of fix of a time-of-day field (see the header for the date).
TDateTime TimeOnHeldDate(const TPosicionNMEA& record, std::string_view field) {
  double seconds = 0;
  if (!ParseNmeaTime(field, seconds)) return TDateTime();
  const double timeOfDay = seconds / kSecondsPerDay;
  if (!record.datePresent || record.time.IsNull())
    return TDateTime::FromDays(std::floor(record.clock.Now().Days()) + timeOfDay);
  const double held = record.time.Days();
  double days = std::floor(held) + timeOfDay;
  if (days - held > kHalfDay) days -= 1;
  else if (held - days > kHalfDay) days += 1;
  return TDateTime::FromDays(days);
}

TDateTime TimeOnDate(double dateDays, std::string_view field) {
  double seconds = 0;
  if (!ParseNmeaTime(field, seconds)) return TDateTime();
  return TDateTime::FromDays(dateDays + seconds / kSecondsPerDay);
}

uint8_t ReadSatellites(const TComandaNMEA& sentence, size_t field) {
  int count = 0;
  if (!sentence.FieldInt(field, count)) return 0;
  return static_cast<uint8_t>(std::clamp(count, 0, 255));
}

bool MeetsMinimumSatellites(bool valid, int satellites, const TNmeaReceiverSettings& settings) {
  if (valid && settings.minSatellites > 0) return settings.minSatellites <= satellites;
  return valid;
}

bool ReadPosition(const TComandaNMEA& sentence, size_t latField, double& lat, double& lon) {
  return ParseNmeaLatitude(sentence.Field(latField), sentence.Field(latField + 1), lat) &&
         ParseNmeaLongitude(sentence.Field(latField + 2), sentence.Field(latField + 3), lon);
}

bool IsFeet(std::string_view unit) { return unit == "f" || unit == "F"; }

// GGA fields 9 to 11 with the receiver setting; kAltitudeUnknownM for an
// altitude of (about) 0.
float GgaAltitude(const TComandaNMEA& sentence, const TNmeaReceiverSettings& settings, double lat,
                  double lon) {
  double altitude = 0, separation = 0;
  sentence.FieldReal(gga::kAltitude, altitude);
  if (std::fabs(altitude) < kNmeaZeroAltitudeM) return kAltitudeUnknownM;
  sentence.FieldReal(gga::kGeoidSeparation, separation);
  if (IsFeet(sentence.Field(gga::kAltitudeUnit))) {
    altitude *= kMetresPerFoot;
    separation *= kMetresPerFoot;
  }
  altitude += settings.altitudeOffsetM;
  if (settings.geoidCorrection) {
    if (std::fabs(separation) < kNmeaZeroAltitudeM && settings.geoidModel)
      separation = settings.geoidModel(lat, lon);
    altitude -= separation;
  }
  return NarrowToFloat(altitude);
}

// The GGA rule; dateDays, when given, is the date of the sentence itself
// (GGAM) instead of the one held.
bool ApplyGgaFields(const TComandaNMEA& sentence, TPosicionNMEA& record,
                    const TNmeaReceiverSettings& settings, std::optional<double> dateDays) {
  const size_t count = sentence.FieldCount();
  if (count < gga::kMinFields) return false;
  const std::string_view quality = sentence.Field(gga::kQuality);
  bool valid = quality != "0";
  const uint8_t satellites =
      count > gga::kSatellites ? ReadSatellites(sentence, gga::kSatellites) : record.satellites;
  if (count > gga::kSatellites) valid = MeetsMinimumSatellites(valid, satellites, settings);
  double lat = record.lat, lon = record.lon;
  if (valid && sentence.Field(gga::kLat).size() > kNoPositionLength &&
      !ReadPosition(sentence, gga::kLat, lat, lon))
    return false;

  float hdop = record.hdop;
  float altitude = kAltitudeUnknownM;
  if (count > gga::kAltitudeAfter) {
    double value = 0;
    hdop = sentence.FieldReal(gga::kHdop, value) ? NarrowToFloat(value) : 0.0f;
    altitude = GgaAltitude(sentence, settings, lat, lon);
  }
  record.time = dateDays ? TimeOnDate(*dateDays, sentence.Field(gga::kTime))
                         : TimeOnHeldDate(record, sentence.Field(gga::kTime));
  record.rawSentence.assign(1, '$');
  record.rawSentence.append(sentence.Body());
  record.differential = quality == "2";
  record.satellites = satellites;
  record.lat = lat;
  record.lon = lon;
  record.hdop = hdop;
  record.altitude = altitude;
  record.valid = valid;
  return true;
}

// A speed in knots / a course in degrees of a field, when it is there.
void ReadSpeed(const TComandaNMEA& sentence, size_t field, double& speedKmh) {
  double knots = 0;
  if (sentence.FieldReal(field, knots)) speedKmh = KnotsToInternalSpeed(knots);
}
void ReadCourse(const TComandaNMEA& sentence, size_t field, double& courseRad) {
  double degrees = 0;
  if (sentence.FieldReal(field, degrees)) courseRad = degrees * kRadiansPerDegree;
}

}  // namespace

bool ApplyGgaRule(const TComandaNMEA& sentence, TPosicionNMEA& record,
                  const TNmeaReceiverSettings& settings) {
  return ApplyGgaFields(sentence, record, settings, std::nullopt);
}

bool ApplyGgamRule(const TComandaNMEA& sentence, TPosicionNMEA& record,
                   const TNmeaReceiverSettings& settings) {
  double dateDays = 0;
  const bool dated = ParseNmeaDate(sentence.Field(ggam::kDate), dateDays);
  if (!ApplyGgaFields(sentence, record, settings,
                      dated ? std::optional<double>(dateDays) : std::nullopt))
    return false;
  if (dated) record.datePresent = true;
  ReadSpeed(sentence, ggam::kSpeedKnots, record.speedKmh);
  ReadCourse(sentence, ggam::kCourseDeg, record.courseRad);
  return true;
}

bool ApplyRmcRule(const TComandaNMEA& sentence, TPosicionNMEA& record,
                  const TNmeaReceiverSettings& settings) {
  if (sentence.FieldCount() < rmc::kMinFields) return false;
  record.rawSentence.assign(1, '$');
  record.rawSentence.append(sentence.Body());

  double dateDays = 0;
  record.datePresent = ParseNmeaDate(sentence.Field(rmc::kDate), dateDays);
  if (!record.datePresent) dateDays = std::floor(record.clock.Now().Days());
  record.time = TimeOnDate(dateDays, sentence.Field(rmc::kTime));

  bool valid = sentence.Field(rmc::kStatus) == "A";
  valid = MeetsMinimumSatellites(valid, record.satellites, settings);
  if (valid && sentence.Field(rmc::kLat).size() > kNoPositionLength) {
    double lat = 0, lon = 0;
    if (ReadPosition(sentence, rmc::kLat, lat, lon)) {
      record.lat = lat;
      record.lon = lon;
      record.altitude = kAltitudeUnknownM;  // RMC carries none
    } else {
      valid = false;
    }
  }
  record.valid = valid;
  ReadSpeed(sentence, rmc::kSpeedKnots, record.speedKmh);
  ReadCourse(sentence, rmc::kCourseDeg, record.courseRad);
  double variation = 0;
  const std::string_view side = sentence.Field(rmc::kVariationSide);
  if (!side.empty() && sentence.FieldReal(rmc::kVariation, variation))
    record.magneticVariationDeg = side == "W" || side == "w" ? -variation : variation;
  return true;
}

bool ApplyGllRule(const TComandaNMEA& sentence, TPosicionNMEA& record,
                  const TNmeaReceiverSettings& /*settings*/) {
  const size_t count = sentence.FieldCount();
  if (count < gll::kMinFields) return false;
  double lat = 0, lon = 0;
  if (!ReadPosition(sentence, gll::kLat, lat, lon)) return false;
  const bool valid = count > gll::kStatus ? sentence.Field(gll::kStatus) == "A" : true;
  record.time = TimeOnHeldDate(record, sentence.Field(gll::kTime));
  if (valid) {
    record.lat = lat;
    record.lon = lon;
  }
  record.altitude = kAltitudeUnknownM;
  record.valid = valid;
  return true;
}

bool InterpretPosition(const TComandaNMEA& sentence, TPosicionNMEA& record,
                       const TNmeaReceiverSettings& settings, bool startsGsvCycle) {
  const std::string_view id = sentence.Identifier();
  if (id == "GGA" && settings.Accepts("GGA")) return ApplyGgaRule(sentence, record, settings);
  if (id == "RMC" && settings.Accepts("RMC")) return ApplyRmcRule(sentence, record, settings);
  if (id == "GLL") return false;  // never a position outside the live loop
  if (id == "GGAM") return ApplyGgamRule(sentence, record, settings);
  if (id == "GSV") {
    if (startsGsvCycle) record.satellitesInView.clear();
    record.satellitesInView.append(1, '$').append(sentence.Body());
  } else if (id == "GSA") {
    record.satellitesInUse.assign(1, '$').append(sentence.Body());
  }
  return false;
}

}  // namespace velantis
