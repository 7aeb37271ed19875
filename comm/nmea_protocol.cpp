#include "comm/nmea_protocol.h"

#include "app/log.h"
#include "comm/nmea_position_rules.h"
#include "comm/nmea_sentence.h"
#include "comm/port_line_source.h"

namespace velantis {

namespace {

void Found(std::string& result) {
  result = std::string(kNmeaProtocolName);
  TLog::Instance().Write(TLogKind::Debug, kNmeaDetected);
}

}  // namespace

bool TNmeaProtocol::Detect(TSerialPort& port, std::string& result, TErrorSink& errors,
                           const TProgress* progress, bool skip) {
  if (skip) {
    TLog::Instance().Write(TLogKind::Debug, kNmeaNotTrying);
    result = std::string(kNmeaProtocolName);
    return true;
  }
  port.Purge();
  TLog::Instance().Write(TLogKind::Debug, kNmeaTrying);
  TPortLineSource source(port, errors, m_readTimeoutMs);
  TComandaNMEA sentence;
  TPosicionNMEA record;
  std::string line;
  int unusable = 0;
  for (int tries = 0; tries < kNmeaDetectLines; ++tries) {
    if (source.ReadLine(line, true) < 1 || line.empty()) return false;
    if (!sentence.Parse(line, errors)) return false;
    if (InterpretPosition(sentence, record, m_settings) || sentence.Identifier() == "GSV") {
      Found(result);
      return true;
    }
    if (++unusable > kNmeaDetectUnusableLimit) {
      errors.Add(std::string(kNmeaDetectUnusable), line);
      return false;
    }
    if (progress && progress->Cancelled()) {
      errors.Add(m_cancelMessage);
      return false;
    }
  }
  errors.Add(std::string(kNmeaDetectGaveUp));
  return false;
}

}  // namespace velantis
