// The link to a GPS receiver or flight instrument: one open port and its
// time-outs, behind the platform seam.
//
// A port is a physical serial handle (a COM port, a tty, a pseudo-terminal
// slave) or one of two kinds that are not: a TCP NMEA source ("host:port")
// and a replay of a file or pipe. Only physical handles take time-outs; the
// other two skip every time-out call.
//
// Timing: reads wait at most the time they are given (poll on POSIX, the read
// total constant on Windows); a write that cannot hand over all its bytes
// within the write time-outs (1000 ms by default) fails. Not thread-safe: the
// communication thread owns the port for the length of a command.
//
// Failures: opening, reading and writing throw TXErrorRScom (2 on open,
// 3 or 4 on read, 5 on write) with the port name as detail and the platform's
// error number; the time-out calls and the purge return false, keep the error
// number in LastError() and log when asked to.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace velantis {

enum class TPortKind {
  Serial,     // a physical serial handle: the only kind that takes time-outs
  TcpSource,  // "host:port", a TCP client reading NMEA from a server
  Replay,     // an existing regular file or FIFO, read as received bytes
};

// The platform's five time-out values, in milliseconds, in the order of
// Windows' COMMTIMEOUTS. A write whose multiplier and constant are both 0
// waits as long as it takes.
struct TCommTimeouts {
  uint32_t readInterval = 0;
  uint32_t readTotalMultiplier = 0;
  uint32_t readTotalConstant = 0;
  uint32_t writeTotalMultiplier = 0;
  uint32_t writeTotalConstant = 0;
};

// NMEA 0183's own rate, what a port is opened at unless told otherwise.
inline constexpr int kNmeaBaudRate = 4800;
inline constexpr uint32_t kDefaultWriteTotalConstantMs = 1000;
// The gap between bytes that ends a read once bytes are coming in: at 4800 baud
// a byte takes about 2 ms, so a receiver's burst of sentences comes in one read.
inline constexpr uint32_t kDefaultReadIntervalMs = 20;
inline constexpr int kPurgeRetryPauseMs = 100;
// The rates a serial device is opened at; receivers speak NMEA at 4800.
inline constexpr int kOfferedBaudRates[] = {4800, 9600, 19200, 38400, 57600, 115200};

class TSerialPort {
public:
  virtual ~TSerialPort() = default;
  TSerialPort(const TSerialPort&) = delete;
  TSerialPort& operator=(const TSerialPort&) = delete;

  TPortKind Kind() const { return m_kind; }
  bool IsSerialHandle() const { return m_kind == TPortKind::Serial; }
  const std::string& Name() const { return m_name; }
  int BaudRate() const { return m_baudRate; }
  int LastError() const { return m_lastError; }

  const TCommTimeouts& Timeouts() const { return m_timeouts; }
  // The port's own read interval, which the default time-outs copy.
  uint32_t ReadIntervalValue() const { return m_readIntervalValue; }
  void SetReadIntervalValue(uint32_t ms) { m_readIntervalValue = ms; }

  // Reads the port's current time-outs, sets the read interval to the port's
  // value, both multipliers and the read constant to 0 and the write constant
  // to 1000 ms, and applies them. When reporting, a failure is logged as
  // "GetCommTimeOuts" or "SetCommTimeOuts". True on ports without time-outs.
  bool SetDefaultTimeouts(bool report);
  // Stores ms as the read total constant and applies the five values; a
  // failure is logged as "SetCommTimeOuts2". True on ports without time-outs.
  bool SetReadTimeout(uint32_t ms);

  // Sends the bytes as they stand (NMEA sentences with their CR LF). Throws
  // TXErrorRScom 5 when they cannot all be written within the write
  // time-outs, or the port refuses them. A replay has nobody to send to: its
  // writes are dropped.
  void Write(std::string_view text);

  // Clears what is waiting to be sent; a failing purge is tried once more
  // after 100 ms. Nothing to clear on ports that are not serial handles.
  bool Purge();

  // Reads at most max bytes, waiting up to waitMs for the first of them;
  // returns how many arrived, 0 when none did in time. A port that went away
  // (the device or the other end closed it) throws TXErrorRScom 4, any other
  // failure 3.
  size_t Read(char* buffer, size_t max, int waitMs);

protected:
  TSerialPort(TPortKind kind, std::string name, int baudRate);

  // The platform's side of the operations above. Failing calls leave their
  // error number in m_lastError.
  virtual bool GetPlatformTimeouts(TCommTimeouts& timeouts) = 0;
  virtual bool SetPlatformTimeouts(const TCommTimeouts& timeouts) = 0;
  virtual bool PurgeTransmit() = 0;
  virtual void WriteAll(std::string_view text) = 0;
  virtual size_t ReadSome(char* buffer, size_t max, int waitMs) = 0;

  [[noreturn]] void Fail(int32_t code, int lastError);

  TCommTimeouts m_timeouts;
  int m_lastError = 0;

private:
  TPortKind m_kind;
  std::string m_name;
  int m_baudRate;
  uint32_t m_readIntervalValue = kDefaultReadIntervalMs;
};

// Opens a port by name: "host:port" is a TCP source; an existing regular file
// or FIFO is a replay; anything else is a serial device (a tty, a
// pseudo-terminal slave, "COM3"), opened raw 8N1 at baudRate (one of
// kOfferedBaudRates). Serial devices get the default time-outs. Throws
// TXErrorRScom 2 with the name and the platform's error number when the port
// cannot be opened, or the rate is not offered (EINVAL).
std::unique_ptr<TSerialPort> OpenSerialPort(const std::string& name, int baudRate);

// Whether a name has the form "host:port" (a TCP source), with the host and
// port split out.
bool SplitTcpAddress(const std::string& name, std::string& host, std::string& port);

}  // namespace velantis
