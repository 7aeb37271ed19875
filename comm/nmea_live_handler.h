// The NMEA protocol's handling of every line read while the moving map
// runs: it parses the line, updates the fix record and says whether the
// record is new. It keeps, between lines, what the protocol needs to
// remember: the GLL fallback, the count of unrecognised sentences, the GSV
// cycle being gathered, the time of the last GSA, the last depth and the
// last sentence nobody handled.
//
// Order of the handling (one line):
//   1. a line that does not parse changes nothing;
//   2. the NMEA log, when set, gets the line (without its line end), then
//      "ChecksumError!" right after it (no blank) when the checksum does
//      not match;
//   3. with Use_Checksum_NMEA a sentence whose checksum does not match (or
//      that has none) is dropped;
//   4-7. GGA, RMC, GLL (only until a GGA, RMC or GGAM has been accepted since
//      Start: the GLL fallback) and GGAM through their rules
//      (nmea_position_rules.h), GGA, RMC and GLL through the sentence filter;
//      an accepted one copies the last depth into the record and marks it new;
//   8-9. VTG and the marine sentences VWR, VWT, MTW, VHW, DBT, HDT update
//      their values and received flags;
//   10. WPL, when a waypoint list is attached, adds a waypoint (on WGS 84)
//      and marks the record new;
//   11. GSV gathers the cycle into satellitesInView (message 1 starts a new
//       cycle; one that never completes is dropped at kNmeaGsvMaxCycleChars;
//       with ChipGPS 4 only "GLGSV" counts); while more than 10 unrecognised
//       sentences have come since the last accepted position, a GSV marks
//       the fix invalid and the record new (a receiver that talks but sends
//       no position has lost its fix);
//   12. GSA adds its text to satellitesInUse (emptied first 300 s or more
//       after the previous GSA, or when more than 200 characters are held)
//       and reads PDOP and VDOP from 18 fields or more;
//   13. "D", "d", "TUA" and "VABD" go to the receiver-dialect reader set for
//       them; "D" and "TUA" mark the record new when it succeeds;
//   14. anything else is counted as unrecognised and kept as LastUnhandled.
// A known sentence with too few fields, or a position sentence the filter
// refuses, is passed over without counting.
//
// Handle returns true exactly when the line marked the record new. Values
// that only refresh the record beside the fix (speed and course of VTG, the
// marine values, DOPs, satellites, "d" and "VABD") return false: the live
// reading cycle waits for a position, not for a wind reading.
//
// Allocation: none per line once the buffers have grown (the sentence, the
// GSV and GSA texts, the log line and the last unhandled line keep their
// capacity), apart from WPL waypoints and what the hooks do.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <utility>

#include "comm/error_sink.h"
#include "comm/nmea_sentence.h"
#include "comm/nmea_settings.h"
#include "comm/posicion_nmea.h"

namespace velantis {

class TListaDatums;
class TWaypoints;

inline constexpr std::string_view kNmeaLogChecksumError = "ChecksumError!";
inline constexpr int kNmeaUnrecognisedBeforeInvalid = 10;
inline constexpr double kNmeaGsaRenewSeconds = 300;
inline constexpr size_t kNmeaGsaMaxHeldChars = 200;
inline constexpr size_t kNmeaGsvMaxCycleChars = 4096;

// A receiver-dialect reader: true when it changed the record.
using TNmeaDialectReader = std::function<bool(const TComandaNMEA&, TPosicionNMEA&)>;
// Where NMEA logging writes one entry (the writer adds its own line end).
using TNmeaLogWriter = std::function<void(std::string_view entry)>;

class TNmeaLiveHandler {
public:
  explicit TNmeaLiveHandler(TNmeaReceiverSettings settings = {});

  // The protocol starts (again): GLL fallback on, counts, cycle buffers and
  // the last depth forgotten.
  void Start();
  bool Handle(std::string_view line, TPosicionNMEA& record);

  // Parse failures go to sink when one is set (not owned).
  void SetErrorSink(TErrorSink* sink) { m_errors = sink; }
  // An empty writer switches NMEA logging off.
  void SetLogWriter(TNmeaLogWriter writer) { m_log = std::move(writer); }
  // Take waypoints from WPL sentences into list (not owned; null stops it).
  // datums shifts them from the receiver's datum to WGS 84; without it they
  // are kept as received.
  void SetWaypointList(TWaypoints* list, TListaDatums* datums = nullptr) {
    m_waypoints = list;
    m_datums = datums;
  }
  // The reader of "D", "d", "TUA" or "VABD"; false for another identifier.
  // Without a reader the identifier counts as unrecognised.
  bool SetDialectReader(std::string_view identifier, TNmeaDialectReader reader);

  // The live reading cycle, after a run of lines without a position.
  void EnableGllFallback() { m_gllFallback = true; }

  const TNmeaReceiverSettings& Settings() const { return m_settings; }
  bool GllFallback() const { return m_gllFallback; }
  int UnrecognisedCount() const { return m_unrecognised; }
  const std::string& LastUnhandled() const { return m_lastUnhandled; }
  // The sentence of the last line that parsed.
  const TComandaNMEA& Sentence() const { return m_sentence; }

private:
  enum class TDialect { D, LowerD, Tua, Vabd, Count };
  struct TRule;
  static const TRule kRules[];

  bool Dispatch(TPosicionNMEA& record);
  bool AcceptPosition(TPosicionNMEA& record, bool accepted);
  void LogLine(std::string_view line);

  bool OnGga(TPosicionNMEA& record);
  bool OnRmc(TPosicionNMEA& record);
  bool OnGll(TPosicionNMEA& record);
  bool OnGgam(TPosicionNMEA& record);
  bool OnVtg(TPosicionNMEA& record);
  bool OnVwr(TPosicionNMEA& record);
  bool OnVwt(TPosicionNMEA& record);
  bool OnMtw(TPosicionNMEA& record);
  bool OnVhw(TPosicionNMEA& record);
  bool OnDbt(TPosicionNMEA& record);
  bool OnHdt(TPosicionNMEA& record);
  bool OnWpl(TPosicionNMEA& record);
  bool OnGsv(TPosicionNMEA& record);
  bool OnGsa(TPosicionNMEA& record);
  bool OnDialect(TDialect dialect, TPosicionNMEA& record);
  bool OnD(TPosicionNMEA& record) { return OnDialect(TDialect::D, record); }
  bool OnLowerD(TPosicionNMEA& record) { return OnDialect(TDialect::LowerD, record); }
  bool OnTua(TPosicionNMEA& record) { return OnDialect(TDialect::Tua, record); }
  bool OnVabd(TPosicionNMEA& record) { return OnDialect(TDialect::Vabd, record); }
  // Step 14: counts the line and keeps it; false.
  bool Unrecognised();

  TNmeaReceiverSettings m_settings;
  TComandaNMEA m_sentence;
  TErrorSink* m_errors = nullptr;
  TNmeaLogWriter m_log;
  std::string m_logEntry;
  TWaypoints* m_waypoints = nullptr;
  TListaDatums* m_datums = nullptr;
  TNmeaDialectReader m_dialects[static_cast<int>(TDialect::Count)];

  bool m_gllFallback = true;
  int m_unrecognised = 0;
  std::string m_gsvCycle;
  TDateTime m_lastGsa;
  float m_lastDepthM = kDepthNoneM;
  std::string m_lastUnhandled;
  std::string_view m_line;  // the line being handled
};

}  // namespace velantis
