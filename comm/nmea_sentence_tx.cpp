#include "comm/nmea_sentence_tx.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "comm/nmea_checksum.h"
#include "comm/speed_unit.h"

namespace velantis {
namespace {

constexpr std::string_view kHexDigits = "0123456789ABCDEF";
constexpr int64_t kCentisecondsPerDay = 8'640'000;
constexpr int kMaxSatellitesWritten = 99;  // "%02d"
constexpr std::string_view kMissingCourse = "000.0";
constexpr std::string_view kPositionFixQuality = "1";

constexpr int64_t kPowersOfTen[] = {1,          10,          100,          1000,
                                    10000,      100000,      1000000,      10000000,
                                    100000000,  1000000000};

// The whole day and the centiseconds of a point's time; false for no time.
bool SplitTime(TDateTime time, double& day, int64_t& centiseconds) {
  if (time.IsNull() || !(std::fabs(time.Days()) <= kMaxCalendarDays)) return false;
  day = std::floor(time.Days());
  centiseconds = std::llround((time.Days() - day) * static_cast<double>(kCentisecondsPerDay));
  if (centiseconds >= kCentisecondsPerDay) {
    day += 1;
    centiseconds -= kCentisecondsPerDay;
  }
  return true;
}

// "ddmm.mmmm" / "dddmm.mmmm": the minutes rounded once as a whole count of
// their last unit, so that 59.99999 minutes carry into the next degree.
std::string AngleText(double degrees, int degreeDigits, int decimals) {
  const int64_t unit = kPowersOfTen[decimals];
  const int64_t total = std::llround(std::fabs(degrees) * 60.0 * static_cast<double>(unit));
  const int64_t perDegree = 60 * unit;
  const auto whole = static_cast<int>(total / perDegree);
  const int64_t minuteUnits = total % perDegree;
  char text[48];
  if (decimals == 0) {
    std::snprintf(text, sizeof text, "%0*d%02lld", degreeDigits, whole,
                  static_cast<long long>(minuteUnits));
  } else {
    std::snprintf(text, sizeof text, "%0*d%02lld.%0*lld", degreeDigits, whole,
                  static_cast<long long>(minuteUnits / unit), decimals,
                  static_cast<long long>(minuteUnits % unit));
  }
  return text;
}

double Clean(double value, double limit) {
  if (!std::isfinite(value)) return 0;
  return std::clamp(value, -limit, limit);
}

std::string OneDecimalPadded(double value) {
  char text[64];
  std::snprintf(text, sizeof text, "%03.1f", value);
  return text;
}

}  // namespace

void TComandaNMEA_Tx::AppendIdentifier(std::string& body, std::string_view kind) const {
  body.append(kind);
}

void TComandaNMEA_Tx_Galileo::AppendIdentifier(std::string& body, std::string_view kind) const {
  if (kind.size() >= 4 && kind.substr(0, 2) == "GP") {
    body.append("GN");
    body.append(kind.substr(2));
  } else {
    body.append(kind);
  }
}

void TComandaNMEA_Tx::Begin(std::string_view kind) {
  m_line.clear();
  m_body.clear();
  AppendIdentifier(m_body, kind);
}

void TComandaNMEA_Tx::AddField(std::string_view text) {
  m_body.push_back(',');
  m_body.append(text);
}

const std::string& TComandaNMEA_Tx::Finish() {
  const int checksum = NmeaChecksum(m_body) & 0xFF;
  m_body.push_back('*');
  m_body.push_back(kHexDigits[checksum >> 4]);
  m_body.push_back(kHexDigits[checksum & 0x0F]);
  m_line.assign(1, '$').append(m_body).append("\r\n");
  SplitBody(m_line, nullptr);
  return m_line;
}

void TComandaNMEA_Tx::AddTime(const TrkPnt& point) {
  double day = 0;
  int64_t cs = 0;
  if (!SplitTime(point.time, day, cs)) return AddField("");
  char text[16];
  std::snprintf(text, sizeof text, "%02d%02d%02d.%02d", static_cast<int>(cs / 360000),
                static_cast<int>(cs / 6000 % 60), static_cast<int>(cs / 100 % 60),
                static_cast<int>(cs % 100));
  AddField(text);
}

void TComandaNMEA_Tx::AddDate(const TrkPnt& point) {
  double day = 0;
  int64_t cs = 0;
  TCalendarTime calendar;
  if (!SplitTime(point.time, day, cs) || !TDateTime::FromDays(day).ToCalendar(calendar))
    return AddField("");
  char text[16];
  std::snprintf(text, sizeof text, "%02d%02d%02d", calendar.day, calendar.month,
                ((calendar.year % 100) + 100) % 100);
  AddField(text);
}

void TComandaNMEA_Tx::AddPosition(const TrkPnt& point, int decimals) {
  decimals = std::clamp(decimals, 0, kNmeaMaxMinuteDecimals);
  const double lat = Clean(point.lat, 90), lon = Clean(point.lon, 180);
  AddField(AngleText(lat, 2, decimals));
  AddField(lat < 0 ? "S" : "N");
  AddField(AngleText(lon, 3, decimals));
  AddField(lon < 0 ? "W" : "E");
}

void TComandaNMEA_Tx::AddSpeedAndCourse(const TrkPnt& point) {
  const double speedKmh = std::isfinite(point.speedKmh) ? point.speedKmh : 0.0;
  AddField(OneDecimalPadded(InternalSpeedToKnots(speedKmh)));
  const bool hasCourse = std::isfinite(point.courseDeg) && point.courseDeg > 0;
  AddField(hasCourse ? OneDecimalPadded(point.courseDeg) : std::string(kMissingCourse));
}

void TComandaNMEA_Tx::AddGgaFields(const TrkPnt& point, int decimals) {
  AddTime(point);
  AddPosition(point, decimals);
  AddField(kPositionFixQuality);
  char text[64];
  std::snprintf(text, sizeof text, "%02d", std::clamp(point.satellites, 0, kMaxSatellitesWritten));
  AddField(text);
  std::snprintf(text, sizeof text, "%.1f", std::isfinite(point.hdop) ? point.hdop : 0.0f);
  AddField(text);
  if (point.HasAltitude() && std::isfinite(point.altitude)) {
    std::snprintf(text, sizeof text, "%.1f", static_cast<double>(point.altitude));
    AddField(text);
  } else {
    AddField("");
  }
  AddField("M");
  AddField("");  // geoid separation: the altitude is above mean sea level
  AddField("M");
  AddField("");  // age of differential data
  AddField("");  // station
}

bool TComandaNMEA_Tx::Build(std::string_view kind, const TrkPnt& point, int decimals) {
  if (kind == "GPRMC") {
    Begin(kind);
    AddTime(point);
    AddField("A");
    AddPosition(point, decimals);
    AddSpeedAndCourse(point);
    AddDate(point);
    AddField("");  // magnetic variation
    AddField("");
  } else if (kind == "GPGGA" || kind == "GPGGAM") {
    Begin(kind);
    AddGgaFields(point, decimals);
    if (kind == "GPGGAM") {
      AddSpeedAndCourse(point);
      AddDate(point);
    }
  } else {
    Clear();
    m_line.clear();
    return false;
  }
  Finish();
  return true;
}

std::string BuildNmeaSentence(std::string_view kind, const TrkPnt& point, int decimals) {
  TComandaNMEA_Tx sentence;
  return sentence.Build(kind, point, decimals) ? sentence.Line() : std::string();
}

}  // namespace velantis
