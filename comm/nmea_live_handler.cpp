#include "comm/nmea_live_handler.h"

#include <climits>
#include <cstring>
#include <utility>

#include "comm/nmea_fields.h"
#include "comm/nmea_position_rules.h"
#include "comm/speed_unit.h"
#include "core/waypoints.h"
#include "geodesy/lista_datums.h"

namespace velantis {
namespace {

// Degrees to radians and a full turn as the receivers' single-precision
// firmware has them; VTG, VWR, VWT and HDT keep these values.
constexpr float kRadiansPerDegreeSingle = 0.017453292f;
constexpr float kFullTurnSingle = 6.2831855f;

constexpr size_t kMaxKeyChars = 7;

// An identifier as one number for the dispatch: up to 7 characters and the
// length in the top byte, so "GGA" and "GGA\0" differ. Longer identifiers
// get a key no rule has.
constexpr uint64_t IdentifierKey(std::string_view id) {
  if (id.size() > kMaxKeyChars) return UINT64_MAX;
  uint64_t key = static_cast<uint64_t>(id.size()) << 56;
  for (size_t i = 0; i < id.size(); ++i)
    key |= static_cast<uint64_t>(static_cast<unsigned char>(id[i])) << (8 * i);
  return key;
}

bool ReadAngle(const TComandaNMEA& sentence, size_t field, float& radians) {
  double degrees = 0;
  if (!sentence.FieldReal(field, degrees)) return false;
  radians = NarrowToFloat(degrees) * kRadiansPerDegreeSingle;
  return true;
}

bool ReadKnots(const TComandaNMEA& sentence, size_t field, float& speedKmh) {
  double knots = 0;
  if (!sentence.FieldReal(field, knots)) return false;
  speedKmh = NarrowToFloat(KnotsToInternalSpeed(knots));
  return true;
}

// VWR and VWT: angle off the bow (field 2 "L": to port, measured the other
// way round) and speed in knots.
bool ReadWind(const TComandaNMEA& sentence, float& angleRad, float& speedKmh) {
  float angle = 0;
  if (!ReadAngle(sentence, 1, angle)) return false;
  if (sentence.Field(2) == "L") angle = -angle;
  if (angle < 0) angle += kFullTurnSingle;
  angleRad = angle;
  ReadKnots(sentence, 3, speedKmh);
  return true;
}

bool IsFeet(std::string_view unit) { return unit == "f" || unit == "F"; }

}  // namespace

struct TNmeaLiveHandler::TRule {
  uint64_t key;
  size_t minFields;
  bool (TNmeaLiveHandler::*handle)(TPosicionNMEA&);
};

// The sentence table of the live handling: identifier, the fields it needs,
// its handler.
const TNmeaLiveHandler::TRule TNmeaLiveHandler::kRules[] = {
    {IdentifierKey("GGA"), 1, &TNmeaLiveHandler::OnGga},
    {IdentifierKey("RMC"), 1, &TNmeaLiveHandler::OnRmc},
    {IdentifierKey("GSV"), 4, &TNmeaLiveHandler::OnGsv},
    {IdentifierKey("GSA"), 1, &TNmeaLiveHandler::OnGsa},
    {IdentifierKey("VTG"), 7, &TNmeaLiveHandler::OnVtg},
    {IdentifierKey("GLL"), 1, &TNmeaLiveHandler::OnGll},
    {IdentifierKey("GGAM"), 1, &TNmeaLiveHandler::OnGgam},
    {IdentifierKey("VWR"), 5, &TNmeaLiveHandler::OnVwr},
    {IdentifierKey("VWT"), 5, &TNmeaLiveHandler::OnVwt},
    {IdentifierKey("MTW"), 2, &TNmeaLiveHandler::OnMtw},
    {IdentifierKey("VHW"), 2, &TNmeaLiveHandler::OnVhw},
    {IdentifierKey("DBT"), 3, &TNmeaLiveHandler::OnDbt},
    {IdentifierKey("HDT"), 2, &TNmeaLiveHandler::OnHdt},
    {IdentifierKey("WPL"), 6, &TNmeaLiveHandler::OnWpl},
    {IdentifierKey("D"), 1, &TNmeaLiveHandler::OnD},
    {IdentifierKey("d"), 1, &TNmeaLiveHandler::OnLowerD},
    {IdentifierKey("TUA"), 1, &TNmeaLiveHandler::OnTua},
    {IdentifierKey("VABD"), 1, &TNmeaLiveHandler::OnVabd},
};

TNmeaLiveHandler::TNmeaLiveHandler(TNmeaReceiverSettings settings)
    : m_settings(std::move(settings)) {}

void TNmeaLiveHandler::Start() {
  m_gllFallback = true;
  m_unrecognised = 0;
  m_gsvCycle.clear();
  m_lastGsa = TDateTime();
  m_lastDepthM = kDepthNoneM;
  m_lastUnhandled.clear();
}

bool TNmeaLiveHandler::SetDialectReader(std::string_view identifier, TNmeaDialectReader reader) {
  constexpr std::pair<std::string_view, TDialect> kNames[] = {{"D", TDialect::D},
                                                              {"d", TDialect::LowerD},
                                                              {"TUA", TDialect::Tua},
                                                              {"VABD", TDialect::Vabd}};
  for (const auto& [name, dialect] : kNames) {
    if (name == identifier) {
      m_dialects[static_cast<int>(dialect)] = std::move(reader);
      return true;
    }
  }
  return false;
}

bool TNmeaLiveHandler::Handle(std::string_view line, TPosicionNMEA& record) {
  if (!m_sentence.Parse(line, m_errors)) return false;
  if (m_log) LogLine(line);
  if (!m_sentence.ChecksumMatches() && m_settings.useChecksum) return false;
  m_line = line;
  return Dispatch(record);
}

void TNmeaLiveHandler::LogLine(std::string_view line) {
  while (!line.empty() && (line.back() == '\r' || line.back() == '\n')) line.remove_suffix(1);
  m_logEntry.assign(line);
  if (!m_sentence.ChecksumMatches()) m_logEntry.append(kNmeaLogChecksumError);
  m_log(m_logEntry);
}

bool TNmeaLiveHandler::Dispatch(TPosicionNMEA& record) {
  const uint64_t key = IdentifierKey(m_sentence.Identifier());
  for (const TRule& rule : kRules) {
    if (rule.key != key) continue;
    if (m_sentence.FieldCount() < rule.minFields) return false;
    return (this->*rule.handle)(record);
  }
  return Unrecognised();
}

bool TNmeaLiveHandler::Unrecognised() {
  if (m_unrecognised < INT_MAX) ++m_unrecognised;
  m_lastUnhandled.assign(m_line);
  return false;
}

bool TNmeaLiveHandler::AcceptPosition(TPosicionNMEA& record, bool accepted) {
  if (!accepted) return false;
  if (m_lastDepthM >= 0) record.depthM = m_lastDepthM;
  record.newData = true;
  m_gllFallback = false;
  m_unrecognised = 0;
  return true;
}

bool TNmeaLiveHandler::OnGga(TPosicionNMEA& record) {
  return m_settings.Accepts("GGA") &&
         AcceptPosition(record, ApplyGgaRule(m_sentence, record, m_settings));
}

bool TNmeaLiveHandler::OnRmc(TPosicionNMEA& record) {
  return m_settings.Accepts("RMC") &&
         AcceptPosition(record, ApplyRmcRule(m_sentence, record, m_settings));
}

bool TNmeaLiveHandler::OnGgam(TPosicionNMEA& record) {
  return AcceptPosition(record, ApplyGgamRule(m_sentence, record, m_settings));
}

bool TNmeaLiveHandler::OnGll(TPosicionNMEA& record) {
  if (!m_gllFallback || !m_settings.Accepts("GLL") || !ApplyGllRule(m_sentence, record, m_settings))
    return false;
  record.newData = true;
  m_unrecognised = 0;
  return true;
}

bool TNmeaLiveHandler::OnVtg(TPosicionNMEA& record) {
  float course = 0;
  if (ReadAngle(m_sentence, 1, course)) record.courseRad = course;
  double knots = 0;
  if (m_sentence.FieldReal(5, knots)) record.speedKmh = KnotsToInternalSpeed(knots);
  return false;
}

bool TNmeaLiveHandler::OnVwr(TPosicionNMEA& record) {
  if (ReadWind(m_sentence, record.relativeWindAngleRad, record.relativeWindSpeedKmh))
    record.vwrReceived = true;
  return false;
}

bool TNmeaLiveHandler::OnVwt(TPosicionNMEA& record) {
  if (ReadWind(m_sentence, record.trueWindAngleRad, record.trueWindSpeedKmh))
    record.vwtReceived = true;
  return false;
}

bool TNmeaLiveHandler::OnMtw(TPosicionNMEA& record) {
  double celsius = 0;
  if (m_sentence.FieldReal(1, celsius)) {
    record.waterTemperatureC = NarrowToFloat(celsius);
    record.mtwReceived = true;
  }
  return false;
}

// VHW: field 5 knots, else field 7 km/h.
bool TNmeaLiveHandler::OnVhw(TPosicionNMEA& record) {
  double kmh = 0;
  if (ReadKnots(m_sentence, 5, record.speedThroughWaterKmh)) {
    record.vhwReceived = true;
  } else if (m_sentence.FieldReal(7, kmh)) {
    record.speedThroughWaterKmh = NarrowToFloat(kmh);
    record.vhwReceived = true;
  }
  return false;
}

// DBT: field 1 with its unit in field 2 ("f"/"F" feet, else metres); when
// field 1 is empty, field 3 in metres, which some sounders fill alone.
bool TNmeaLiveHandler::OnDbt(TPosicionNMEA& record) {
  double depth = 0;
  if (m_sentence.FieldReal(1, depth)) {
    if (IsFeet(m_sentence.Field(2))) depth *= kMetresPerFoot;
  } else if (!m_sentence.FieldReal(3, depth)) {
    return false;
  }
  m_lastDepthM = NarrowToFloat(depth);
  record.depthM = m_lastDepthM;
  record.dbtReceived = true;
  return false;
}

bool TNmeaLiveHandler::OnHdt(TPosicionNMEA& record) {
  if (ReadAngle(m_sentence, 1, record.trueHeadingRad)) record.hdtReceived = true;
  return false;
}

bool TNmeaLiveHandler::OnWpl(TPosicionNMEA& record) {
  if (m_waypoints == nullptr) return false;
  TLonLat position;
  if (!ParseNmeaLatitude(m_sentence.Field(1), m_sentence.Field(2), position.lat) ||
      !ParseNmeaLongitude(m_sentence.Field(3), m_sentence.Field(4), position.lon))
    return false;
  std::string message;
  if (m_datums != nullptr && m_settings.datum != 0 &&
      !m_datums->Transforma_Grados_Datum(position, m_settings.datum, 0, message))
    return false;
  TBaliza waypoint;
  waypoint.SetName(std::string(m_sentence.Field(5)));
  waypoint.SetPosition(position.lat, position.lon);
  m_waypoints->Add(std::move(waypoint));
  record.newData = true;
  return true;
}

bool TNmeaLiveHandler::OnGsv(TPosicionNMEA& record) {
  int total = 0, number = 0;
  const bool counts = m_settings.chipGps != kChipGpsGlonassOnly ||
                      m_sentence.CompleteIdentifier() == "GLGSV";
  if (counts && m_sentence.FieldInt(1, total) && m_sentence.FieldInt(2, number)) {
    if (number == 1 || m_gsvCycle.size() > kNmeaGsvMaxCycleChars) m_gsvCycle.clear();
    m_gsvCycle.append(1, '$').append(m_sentence.Body());
    if (number == total) {
      std::swap(record.satellitesInView, m_gsvCycle);
      m_gsvCycle.clear();
    }
  }
  if (m_unrecognised <= kNmeaUnrecognisedBeforeInvalid) return false;
  record.valid = false;
  record.newData = true;
  return true;
}

bool TNmeaLiveHandler::OnGsa(TPosicionNMEA& record) {
  const TDateTime now = record.clock.Now();
  if (m_lastGsa.IsNull() || !(m_lastGsa.SecondsTo(now) < kNmeaGsaRenewSeconds) ||
      record.satellitesInUse.size() > kNmeaGsaMaxHeldChars)
    record.satellitesInUse.clear();
  m_lastGsa = now;
  record.satellitesInUse.append(1, '$').append(m_sentence.Body());
  constexpr size_t kPdop = 15, kVdop = 17, kMinFieldsWithDop = 18;
  double dop = 0;
  if (m_sentence.FieldCount() >= kMinFieldsWithDop) {
    if (m_sentence.FieldReal(kPdop, dop)) record.pdop = NarrowToFloat(dop);
    if (m_sentence.FieldReal(kVdop, dop)) record.vdop = NarrowToFloat(dop);
  }
  return false;
}

bool TNmeaLiveHandler::OnDialect(TDialect dialect, TPosicionNMEA& record) {
  const TNmeaDialectReader& reader = m_dialects[static_cast<int>(dialect)];
  if (!reader) return Unrecognised();
  const bool changed = reader(m_sentence, record);
  if (!changed || (dialect != TDialect::D && dialect != TDialect::Tua)) return false;
  record.newData = true;
  return true;
}

}  // namespace velantis
