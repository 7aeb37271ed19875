// Cuts NMEA sentences out of what a port receives: one line from "$" to the
// line feed, both included, per call.
//
// The reader keeps a receive buffer between calls, so bytes read past one
// sentence serve the next. The last "$" before a line feed starts the line:
// a sentence cut short by a new one is dropped, and so is anything before its
// "$". Checksums are not looked at.
//
// Timing: the waiting form reads in steps of up to 100 ms until a line is
// complete or the time-out (Comm_NNEA_Timeout, 2000 ms by default) is spent;
// every step counts at least its 100 ms, and while bytes keep arriving into a
// buffer of fewer than 100 bytes the count starts again, so a talking receiver
// keeps the read alive. The single-read form looks once (1 ms) and gives up,
// for a loop that must not wait; only with a time-out above 2999 ms does it
// go on reading (1 ms at a time) for what is left of it.
//
// Failures: nothing complete in time gives -1; the waiting form then logs and
// records in the error sink why (non-NMEA bytes, or nothing at all). Port
// failures (TXErrorRScom) pass through.
#pragma once

#include <cstddef>
#include <string>

namespace velantis {

class TConfig;
class TErrorSink;
class TSerialPort;

inline constexpr int kNmeaTimeoutDefaultMs = 2000;
inline constexpr size_t kNmeaReadBytes = 1000;
inline constexpr int kNmeaWaitingReadMs = 100;
inline constexpr int kNmeaSingleReadMs = 1;
// A buffer this short that is still growing is a receiver getting started.
inline constexpr size_t kNmeaShortBufferBytes = 100;
// The time spent after the single read: one step short of 3000 ms, so that
// the default time-out ends the loop.
inline constexpr int kNmeaSingleReadSpentMs = 2999;
// Times a silent physical port is logged in the life of the program.
inline constexpr int kNmeaSilenceLogLimit = 100;
// A stream without line feeds does not grow the buffer beyond this; the
// oldest bytes go, which can hold no line that any later "$" would not
// restart anyway.
inline constexpr size_t kNmeaBufferLimitBytes = 64 * 1024;

inline constexpr const char* kNmeaNoNmeaText =
    "Error: Receiving no-nmea bytes. Perhaps the GPS is using an other protocol.";
inline constexpr const char* kNmeaSilenceText = " Error receiving NMEA, no message received! ";

class TNmeaLineReader {
public:
  explicit TNmeaLineReader(int timeoutMs = kNmeaTimeoutDefaultMs) : m_timeoutMs(timeoutMs) {}
  // The time-out from the setting Comm_NNEA_Timeout.
  explicit TNmeaLineReader(const TConfig& config);

  int TimeoutMs() const { return m_timeoutMs; }
  void SetTimeoutMs(int ms) { m_timeoutMs = ms; }

  // The waiting form. On success line holds the sentence and the result is
  // the position of its line feed in the receive buffer (above 0); otherwise
  // line is empty, the result is -1 and errors has the reason.
  int ReadLine(TSerialPort& port, std::string& line, TErrorSink& errors);
  // The single-read form: the same result, and no error reported.
  int ReadLineOnce(TSerialPort& port, std::string& line);

  // What has been received and not yet handed out.
  const std::string& Buffer() const { return m_buffer; }
  void ClearBuffer() { m_buffer.clear(); }

private:
  int Read(TSerialPort& port, std::string& line, bool waiting);
  void ReportFailure(const TSerialPort& port, TErrorSink& errors);

  int m_timeoutMs;
  std::string m_buffer;
};

}  // namespace velantis
