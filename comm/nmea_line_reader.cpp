#include "comm/nmea_line_reader.h"

#include <algorithm>
#include <atomic>
#include <chrono>

#include "app/config.h"
#include "app/log.h"
#include "comm/error_sink.h"
#include "comm/serial_port.h"

namespace velantis {

namespace {

using TClock = std::chrono::steady_clock;

// The marker left in the buffer by a waiting read that found no line.
constexpr char kNoLineMarker = '@';

// Silent physical ports logged so far, program-wide: a receiver left
// unplugged must not fill the log.
std::atomic<int> g_silenceLogged{0};

struct TLineBounds {
  size_t start = std::string::npos;
  size_t end = std::string::npos;
  bool Complete() const { return end != std::string::npos; }
};

// Every "$" starts again, so a sentence cut short by the next one is dropped;
// the first line feed after the start ends the line. On purpose the scan
// stops at the first complete line: a scan that went on would let a later
// "$" already in the buffer forget that complete line, and a fast receiver
// (several sentences a read) would lose sentences. The rest stays in the
// buffer for the next call, so every complete line comes out, in order.
TLineBounds FindLine(const std::string& buffer) {
  TLineBounds bounds;
  for (size_t i = 0; i < buffer.size() && !bounds.Complete(); ++i) {
    if (buffer[i] == '$') {
      bounds.start = i;
    } else if (buffer[i] == '\n' && bounds.start != std::string::npos) {
      bounds.end = i;
    }
  }
  return bounds;
}

// The log keeps one entry a line: control bytes of the received garbage are
// shown as dots.
std::string Printable(const std::string& bytes) {
  std::string text = bytes;
  for (char& c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte < 0x20 || byte == 0x7F) c = '.';
  }
  return text;
}

}  // namespace

TNmeaLineReader::TNmeaLineReader(const TConfig& config) : m_timeoutMs(config.Comm_NNEA_Timeout) {}

int TNmeaLineReader::ReadLine(TSerialPort& port, std::string& line, TErrorSink& errors) {
  const int result = Read(port, line, true);
  if (result < 0) ReportFailure(port, errors);
  return result;
}

int TNmeaLineReader::ReadLineOnce(TSerialPort& port, std::string& line) {
  return Read(port, line, false);
}

int TNmeaLineReader::Read(TSerialPort& port, std::string& line, bool waiting) {
  line.clear();
  const int waitMs = waiting ? kNmeaWaitingReadMs : kNmeaSingleReadMs;
  TLineBounds bounds = FindLine(m_buffer);
  int spentMs = 0;
  bool first = true;
  char chunk[kNmeaReadBytes];
  while (!bounds.Complete() && spentMs < m_timeoutMs) {
    const TClock::time_point start = TClock::now();
    const size_t received = port.Read(chunk, sizeof chunk, waitMs);
    const auto tookMs =
        std::chrono::duration_cast<std::chrono::milliseconds>(TClock::now() - start).count();
    spentMs += std::max(waitMs, static_cast<int>(tookMs));
    m_buffer.append(chunk, received);
    if (m_buffer.size() > kNmeaBufferLimitBytes) {
      m_buffer.erase(0, m_buffer.size() - kNmeaBufferLimitBytes);
    }
    bounds = FindLine(m_buffer);
    if (waiting && received > 0 && m_buffer.size() < kNmeaShortBufferBytes) spentMs = 0;
    // With a time-out above 2999 ms the single-read form reads once more;
    // callers have always lived with that.
    if (!waiting && first) spentMs = kNmeaSingleReadSpentMs;
    first = false;
  }
  if (bounds.Complete()) {
    line = m_buffer.substr(bounds.start, bounds.end - bounds.start + 1);
    m_buffer.erase(0, bounds.end + 1);
    return static_cast<int>(bounds.end);
  }
  if (waiting) m_buffer += kNoLineMarker;
  return -1;
}

void TNmeaLineReader::ReportFailure(const TSerialPort& port, TErrorSink& errors) {
  if (m_buffer.size() > kNmeaShortBufferBytes) {
    TLog::Instance().Write(TLogKind::CommError,
                           std::string(kNmeaNoNmeaText) + " " + Printable(m_buffer));
    errors.Add(kNmeaNoNmeaText, m_buffer);
    return;
  }
  if (port.IsSerialHandle() && g_silenceLogged.load() < kNmeaSilenceLogLimit &&
      g_silenceLogged.fetch_add(1) < kNmeaSilenceLogLimit) {
    TLog::Instance().Write(TLogKind::CommError, kNmeaSilenceText);
  }
  errors.Add(kNmeaSilenceText);
}

}  // namespace velantis
