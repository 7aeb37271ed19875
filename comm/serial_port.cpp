#include "comm/serial_port.h"

#include <chrono>
#include <thread>

#include "app/log.h"
#include "comm/serial_error.h"

namespace velantis {

namespace {

TCommTimeouts DefaultTimeouts(uint32_t readInterval) {
  TCommTimeouts timeouts;
  timeouts.readInterval = readInterval;
  timeouts.writeTotalConstant = kDefaultWriteTotalConstantMs;
  return timeouts;
}

}  // namespace

bool SplitTcpAddress(const std::string& name, std::string& host, std::string& port) {
  // A path is never an address, even with a colon in it.
  if (name.find_first_of("/\\") != std::string::npos) return false;
  const size_t colon = name.rfind(':');
  if (colon == std::string::npos || colon == 0 || colon + 1 == name.size()) return false;
  const std::string digits = name.substr(colon + 1);
  if (digits.size() > 5 || digits.find_first_not_of("0123456789") != std::string::npos)
    return false;
  host = name.substr(0, colon);
  // "[::1]:10110": an IPv6 host is bracketed so that its colons stay apart.
  if (host.size() > 2 && host.front() == '[' && host.back() == ']')
    host = host.substr(1, host.size() - 2);
  port = digits;
  return true;
}

// Ports that never take time-outs still start from the defaults, so that
// their writes are bounded the same way.
TSerialPort::TSerialPort(TPortKind kind, std::string name, int baudRate)
    : m_timeouts(DefaultTimeouts(kDefaultReadIntervalMs)),
      m_kind(kind),
      m_name(std::move(name)),
      m_baudRate(baudRate) {}

bool TSerialPort::SetDefaultTimeouts(bool report) {
  if (!IsSerialHandle()) return true;
  TCommTimeouts timeouts;
  if (!GetPlatformTimeouts(timeouts)) {
    if (report) TLog::Instance().Write(TLogKind::CommError, "GetCommTimeOuts");
    return false;
  }
  const TCommTimeouts defaults = DefaultTimeouts(m_readIntervalValue);
  if (!SetPlatformTimeouts(defaults)) {
    if (report) TLog::Instance().Write(TLogKind::CommError, "SetCommTimeOuts");
    return false;
  }
  m_timeouts = defaults;
  return true;
}

bool TSerialPort::SetReadTimeout(uint32_t ms) {
  if (!IsSerialHandle()) return true;
  m_timeouts.readTotalConstant = ms;
  if (!SetPlatformTimeouts(m_timeouts)) {
    TLog::Instance().Write(TLogKind::CommError, "SetCommTimeOuts2");
    return false;
  }
  return true;
}

void TSerialPort::Write(std::string_view text) {
  if (m_kind == TPortKind::Replay || text.empty()) return;
  WriteAll(text);
}

bool TSerialPort::Purge() {
  if (!IsSerialHandle()) return true;
  if (PurgeTransmit()) return true;
  std::this_thread::sleep_for(std::chrono::milliseconds(kPurgeRetryPauseMs));
  return PurgeTransmit();
}

size_t TSerialPort::Read(char* buffer, size_t max, int waitMs) {
  if (max == 0) return 0;
  return ReadSome(buffer, max, waitMs < 0 ? 0 : waitMs);
}

void TSerialPort::Fail(int32_t code, int lastError) {
  m_lastError = lastError;
  throw TXErrorRScom(code, m_name, lastError);
}

}  // namespace velantis
