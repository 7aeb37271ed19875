// The Windows side of TSerialPort: COM ports through the communications API,
// replays through plain file handles (built under _WIN32 only). TCP sources
// are not offered here.
#ifdef _WIN32

#include <windows.h>

#include <string.h>

#include <algorithm>
#include <iterator>

#include "comm/serial_error.h"
#include "comm/serial_port.h"

namespace velantis {

namespace {

class TWin32Port final : public TSerialPort {
public:
  TWin32Port(TPortKind kind, std::string name, int baudRate, HANDLE handle)
      : TSerialPort(kind, std::move(name), baudRate), m_handle(handle) {}
  ~TWin32Port() override { CloseHandle(m_handle); }

protected:
  bool GetPlatformTimeouts(TCommTimeouts& timeouts) override {
    COMMTIMEOUTS values{};
    if (!GetCommTimeouts(m_handle, &values)) return Failed();
    timeouts = {values.ReadIntervalTimeout, values.ReadTotalTimeoutMultiplier,
                values.ReadTotalTimeoutConstant, values.WriteTotalTimeoutMultiplier,
                values.WriteTotalTimeoutConstant};
    return true;
  }

  bool SetPlatformTimeouts(const TCommTimeouts& timeouts) override {
    COMMTIMEOUTS values{timeouts.readInterval, timeouts.readTotalMultiplier,
                        timeouts.readTotalConstant, timeouts.writeTotalMultiplier,
                        timeouts.writeTotalConstant};
    return SetCommTimeouts(m_handle, &values) ? true : Failed();
  }

  bool PurgeTransmit() override { return PurgeComm(m_handle, PURGE_TXCLEAR) ? true : Failed(); }

  // The driver applies the write time-outs; a write it cut short reports
  // fewer bytes and no error.
  void WriteAll(std::string_view text) override {
    const DWORD size = static_cast<DWORD>(std::min<size_t>(text.size(), MAXDWORD));
    DWORD written = 0;
    if (!WriteFile(m_handle, text.data(), size, &written, nullptr)) {
      Fail(kSerialTransmitError, static_cast<int>(GetLastError()));
    }
    if (written < text.size()) Fail(kSerialTransmitError, ERROR_TIMEOUT);
  }

  size_t ReadSome(char* buffer, size_t max, int waitMs) override {
    // The wait is the read total constant; set it only when it changes, as
    // the reader asks for the same wait over and over.
    if (IsSerialHandle() && m_timeouts.readTotalConstant != static_cast<DWORD>(waitMs) &&
        !SetReadTimeout(static_cast<uint32_t>(waitMs))) {
      Fail(kSerialReceiveError, m_lastError);
    }
    const DWORD size = static_cast<DWORD>(std::min<size_t>(max, MAXDWORD));
    DWORD received = 0;
    if (!ReadFile(m_handle, buffer, size, &received, nullptr)) {
      const DWORD error = GetLastError();
      const bool gone = error == ERROR_INVALID_HANDLE || error == ERROR_BAD_COMMAND ||
                        error == ERROR_DEVICE_NOT_CONNECTED || error == ERROR_OPERATION_ABORTED;
      Fail(gone ? kSerialPortClosed : kSerialReceiveError, static_cast<int>(error));
    }
    // A replay that reached its end of file has nothing more to give.
    if (received == 0 && !IsSerialHandle()) Fail(kSerialPortClosed, 0);
    return received;
  }

private:
  bool Failed() {
    m_lastError = static_cast<int>(GetLastError());
    return false;
  }

  HANDLE m_handle;
};

// "COM1".."COM255" are devices in every folder: they must never be taken
// for a file to replay.
bool IsComName(const std::string& name) {
  return name.size() > 3 && _strnicmp(name.c_str(), "COM", 3) == 0 &&
         name.find_first_not_of("0123456789", 3) == std::string::npos;
}

[[noreturn]] void OpenFailed(const std::string& name) {
  throw TXErrorRScom(kSerialPlatformError, name, static_cast<int>(GetLastError()));
}

}  // namespace

std::unique_ptr<TSerialPort> OpenSerialPort(const std::string& name, int baudRate) {
  std::string host;
  std::string service;
  if (SplitTcpAddress(name, host, service)) {
    throw TXErrorRScom(kSerialPlatformError, name, ERROR_NOT_SUPPORTED);
  }
  const bool devicePath = name.rfind("\\\\", 0) == 0 || IsComName(name);
  const DWORD attributes = devicePath ? INVALID_FILE_ATTRIBUTES : GetFileAttributesA(name.c_str());
  if (attributes != INVALID_FILE_ATTRIBUTES && !(attributes & FILE_ATTRIBUTE_DIRECTORY)) {
    const HANDLE file = CreateFileA(name.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr,
                                    OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) OpenFailed(name);
    return std::make_unique<TWin32Port>(TPortKind::Replay, name, baudRate, file);
  }
  if (std::find(std::begin(kOfferedBaudRates), std::end(kOfferedBaudRates), baudRate) ==
      std::end(kOfferedBaudRates)) {
    throw TXErrorRScom(kSerialPlatformError, name + " " + std::to_string(baudRate) + " baud",
                       ERROR_INVALID_PARAMETER);
  }
  // "COM10" and above only open by their device path.
  const std::string path = name.rfind("\\\\", 0) == 0 ? name : "\\\\.\\" + name;
  const HANDLE handle = CreateFileA(path.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr,
                                    OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (handle == INVALID_HANDLE_VALUE) OpenFailed(name);
  DCB control{};
  control.DCBlength = sizeof control;
  if (!GetCommState(handle, &control)) {
    const DWORD error = GetLastError();
    CloseHandle(handle);
    throw TXErrorRScom(kSerialPlatformError, name, static_cast<int>(error));
  }
  // Raw 8N1, no flow control, as on every other platform.
  control.BaudRate = static_cast<DWORD>(baudRate);
  control.ByteSize = 8;
  control.Parity = NOPARITY;
  control.StopBits = ONESTOPBIT;
  control.fBinary = TRUE;
  control.fParity = FALSE;
  control.fOutxCtsFlow = FALSE;
  control.fOutxDsrFlow = FALSE;
  control.fDtrControl = DTR_CONTROL_ENABLE;
  control.fRtsControl = RTS_CONTROL_ENABLE;
  control.fOutX = FALSE;
  control.fInX = FALSE;
  control.fAbortOnError = FALSE;
  if (!SetCommState(handle, &control)) {
    const DWORD error = GetLastError();
    CloseHandle(handle);
    throw TXErrorRScom(kSerialPlatformError, name, static_cast<int>(error));
  }
  auto port = std::make_unique<TWin32Port>(TPortKind::Serial, name, baudRate, handle);
  port->SetDefaultTimeouts(true);
  return port;
}

}  // namespace velantis

#endif  // _WIN32
