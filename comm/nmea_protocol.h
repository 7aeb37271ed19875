// The NMEA protocol object: its names and its step of auto-detection.
//
// Detection reads up to 20 lines from the port (the waiting line reader):
// the first line that is a position (GGA, RMC or GGAM through the sentence
// filter) or a GSV, whose receiver is on but has no fix yet, detects NMEA.
// It fails at once when no line arrives (the reader has reported why) or a
// line does not parse, after the fifth unusable sentence with "Error in NMEA
// sentence received", after twenty lines with "NMEA no disponible aun en
// auto-detect", and on a cancel, read after every line, with the cancel
// message.
#pragma once

#include <string>
#include <string_view>

#include "comm/gps_protocol.h"
#include "comm/nmea_settings.h"

namespace velantis {

inline constexpr std::string_view kNmeaProtocolName = "NMEA";
inline constexpr std::string_view kNmeaNotTrying = "Not Trying NMEA protocol... ";
inline constexpr std::string_view kNmeaTrying = "Trying NMEA protocol...";
inline constexpr std::string_view kNmeaDetected = "NMEA protocol detected!";
inline constexpr std::string_view kNmeaDetectUnusable = "Error in NMEA sentence received";
inline constexpr std::string_view kNmeaDetectGaveUp = "NMEA no disponible aun en auto-detect";
inline constexpr int kNmeaDetectLines = 20;
inline constexpr int kNmeaDetectUnusableLimit = 4;  // more than this many ends the search

class TNmeaProtocol : public TGpsProtocol {
public:
  TNmeaProtocol(TNmeaReceiverSettings settings, int readTimeoutMs)
      : m_settings(std::move(settings)), m_readTimeoutMs(readTimeoutMs) {}

  std::string_view LongName() const override { return kNmeaProtocolName; }
  std::string_view ShortName() const override { return kNmeaProtocolName; }
  bool Detect(TSerialPort& port, std::string& result, TErrorSink& errors,
              const TProgress* progress, bool skip) override;

  // The text a cancel reports (the language file's, once there is one).
  void SetCancelMessage(std::string text) { m_cancelMessage = std::move(text); }

private:
  TNmeaReceiverSettings m_settings;
  int m_readTimeoutMs;
  std::string m_cancelMessage = "Cancelled";
};

}  // namespace velantis
