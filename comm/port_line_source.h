// The serial link as the NMEA protocol's line source and sink: lines come
// from the port through the NMEA line reader (its waiting or single-read
// form), whose failures go to the given error sink; lines written go to the
// port as they stand.
#pragma once

#include <string>
#include <string_view>

#include "comm/error_sink.h"
#include "comm/nmea_line_reader.h"
#include "comm/nmea_line_source.h"
#include "comm/serial_port.h"

namespace velantis {

class TPortLineSource : public TNmeaLineSource, public TNmeaLineSink {
public:
  // Neither is owned; both outlive the source.
  TPortLineSource(TSerialPort& port, TErrorSink& errors, int timeoutMs = kNmeaTimeoutDefaultMs)
      : m_port(port), m_errors(errors), m_reader(timeoutMs) {}

  int ReadLine(std::string& line, bool wait) override {
    return wait ? m_reader.ReadLine(m_port, line, m_errors) : m_reader.ReadLineOnce(m_port, line);
  }
  void WriteLine(std::string_view line) override { m_port.Write(line); }

private:
  TSerialPort& m_port;
  TErrorSink& m_errors;
  TNmeaLineReader m_reader;
};

}  // namespace velantis
