// The POSIX side of TSerialPort: every kind of port is a non-blocking file
// descriptor and poll() stands in for the time-outs that Windows keeps in the
// device (built everywhere but _WIN32).
#ifndef _WIN32

#include <fcntl.h>
#include <netdb.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>

#include "comm/serial_error.h"
#include "comm/serial_port.h"

namespace velantis {

namespace {

using TClock = std::chrono::steady_clock;

constexpr int kTcpConnectTimeoutMs = 5000;

// The termios constant of an offered rate; B0 for any other.
speed_t SpeedOf(int baudRate) {
  switch (baudRate) {
    case 4800: return B4800;
    case 9600: return B9600;
    case 19200: return B19200;
    case 38400: return B38400;
    case 57600: return B57600;
    case 115200: return B115200;
    default: return B0;
  }
}

int MillisecondsSince(TClock::time_point start) {
  return static_cast<int>(
      std::chrono::duration_cast<std::chrono::milliseconds>(TClock::now() - start).count());
}

// poll() for one descriptor, carrying on after signals until timeoutMs (-1:
// no limit) is used up. Returns poll's result; revents is set when above 0.
int PollFor(int fd, short events, int timeoutMs, short& revents) {
  const TClock::time_point start = TClock::now();
  for (;;) {
    const int left = timeoutMs < 0 ? -1 : std::max(0, timeoutMs - MillisecondsSince(start));
    pollfd entry{fd, events, 0};
    const int result = poll(&entry, 1, left);
    if (result < 0 && errno == EINTR) continue;
    revents = entry.revents;
    return result;
  }
}

bool SetNonBlocking(int fd) {
  const int flags = fcntl(fd, F_GETFL);
  return flags >= 0 && fcntl(fd, F_SETFL, flags | O_NONBLOCK) == 0;
}

// The errors after which the port is not coming back: the device was
// unplugged, the other side of a pseudo-terminal or connection closed it.
bool IsPortGone(int error) {
  return error == EIO || error == ENXIO || error == ENODEV || error == ECONNRESET ||
         error == ENOTCONN || error == EPIPE || error == EBADF;
}

class TPosixPort final : public TSerialPort {
public:
  TPosixPort(TPortKind kind, std::string name, int baudRate, int fd)
      : TSerialPort(kind, std::move(name), baudRate), m_fd(fd) {}
  ~TPosixPort() override { close(m_fd); }

protected:
  // The device keeps no time-outs here: they live in the object and bound
  // every poll. Asking the device still tells whether it is there.
  bool GetPlatformTimeouts(TCommTimeouts& timeouts) override {
    if (!DeviceAnswers()) return false;
    timeouts = m_timeouts;
    return true;
  }
  bool SetPlatformTimeouts(const TCommTimeouts&) override { return DeviceAnswers(); }

  bool PurgeTransmit() override {
    if (tcflush(m_fd, TCOFLUSH) == 0) return true;
    m_lastError = errno;
    return false;
  }

  void WriteAll(std::string_view text) override;
  size_t ReadSome(char* buffer, size_t max, int waitMs) override;

private:
  bool DeviceAnswers() {
    termios settings{};
    if (tcgetattr(m_fd, &settings) == 0) return true;
    m_lastError = errno;
    return false;
  }
  size_t ReadAvailable(char* buffer, size_t max);

  int m_fd;
};

void TPosixPort::WriteAll(std::string_view text) {
  const uint64_t limitMs =
      uint64_t{m_timeouts.writeTotalMultiplier} * text.size() + m_timeouts.writeTotalConstant;
  const int limit = limitMs == 0 ? -1 : static_cast<int>(std::min<uint64_t>(limitMs, INT32_MAX));
  const TClock::time_point start = TClock::now();
  size_t done = 0;
  while (done < text.size()) {
    const char* data = text.data() + done;
    const size_t size = text.size() - done;
    // send() so that a closed connection is an error rather than SIGPIPE.
    const ssize_t n = Kind() == TPortKind::TcpSource ? send(m_fd, data, size, MSG_NOSIGNAL)
                                                     : write(m_fd, data, size);
    if (n > 0) {
      done += static_cast<size_t>(n);
      continue;
    }
    if (n < 0 && errno != EAGAIN && errno != EWOULDBLOCK && errno != EINTR) {
      Fail(kSerialTransmitError, errno);
    }
    const int left = limit < 0 ? -1 : limit - MillisecondsSince(start);
    if (limit >= 0 && left <= 0) Fail(kSerialTransmitError, ETIMEDOUT);
    short revents = 0;
    if (PollFor(m_fd, POLLOUT, left, revents) < 0) Fail(kSerialTransmitError, errno);
  }
}

size_t TPosixPort::ReadAvailable(char* buffer, size_t max) {
  const ssize_t n = read(m_fd, buffer, max);
  if (n > 0) return static_cast<size_t>(n);
  if (n == 0) {
    // The end: a file or connection has none to give; a tty whose other side
    // closed (Linux gives the slave of a pseudo-terminal end of file, not EIO)
    // names the reason when asked for its settings.
    int error = 0;
    if (IsSerialHandle() && !DeviceAnswers()) error = m_lastError;
    Fail(kSerialPortClosed, error);
  }
  if (errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR) return 0;
  Fail(IsPortGone(errno) ? kSerialPortClosed : kSerialReceiveError, errno);
}

size_t TPosixPort::ReadSome(char* buffer, size_t max, int waitMs) {
  const TClock::time_point start = TClock::now();
  short revents = 0;
  const int ready = PollFor(m_fd, POLLIN, waitMs, revents);
  if (ready < 0) Fail(kSerialReceiveError, errno);
  if (ready == 0) return 0;
  if (revents & POLLNVAL) Fail(kSerialPortClosed, EBADF);
  size_t count = ReadAvailable(buffer, max);
  // Once bytes come in, keep taking them while they follow each other within
  // the read interval, as the Windows driver does.
  const int interval = static_cast<int>(m_timeouts.readInterval);
  while (count > 0 && count < max && interval > 0) {
    const int left = waitMs - MillisecondsSince(start);
    if (left <= 0 || PollFor(m_fd, POLLIN, std::min(interval, left), revents) <= 0) break;
    // An end or an error after some bytes is reported by the next read.
    const ssize_t n = read(m_fd, buffer + count, max - count);
    if (n <= 0) break;
    count += static_cast<size_t>(n);
  }
  return count;
}

std::unique_ptr<TSerialPort> OpenTcpSource(const std::string& name, const std::string& host,
                                           const std::string& service, int baudRate) {
  addrinfo hints{};
  hints.ai_family = AF_UNSPEC;
  hints.ai_socktype = SOCK_STREAM;
  addrinfo* addresses = nullptr;
  const int resolved = getaddrinfo(host.c_str(), service.c_str(), &hints, &addresses);
  if (resolved != 0) {
    throw TXErrorRScom(kSerialPlatformError, name + " (" + gai_strerror(resolved) + ")",
                       resolved == EAI_SYSTEM ? errno : 0);
  }
  int fd = -1;
  int error = 0;
  for (addrinfo* address = addresses; address && fd < 0; address = address->ai_next) {
    fd = socket(address->ai_family, address->ai_socktype, address->ai_protocol);
    if (fd < 0 || !SetNonBlocking(fd)) {
      error = errno;
    } else if (connect(fd, address->ai_addr, address->ai_addrlen) == 0) {
      break;
    } else if (errno != EINPROGRESS) {
      error = errno;
    } else {
      // A host that does not answer would otherwise hold the command for
      // minutes.
      short revents = 0;
      socklen_t length = sizeof error;
      if (PollFor(fd, POLLOUT, kTcpConnectTimeoutMs, revents) <= 0) {
        error = ETIMEDOUT;
      } else if (getsockopt(fd, SOL_SOCKET, SO_ERROR, &error, &length) != 0) {
        error = errno;
      }
      if (error == 0) break;
    }
    if (fd >= 0) close(fd);
    fd = -1;
  }
  freeaddrinfo(addresses);
  if (fd < 0) throw TXErrorRScom(kSerialPlatformError, name, error);
  fcntl(fd, F_SETFD, FD_CLOEXEC);
  return std::make_unique<TPosixPort>(TPortKind::TcpSource, name, baudRate, fd);
}

// A FIFO is opened for writing too: then opening does not wait for a writer,
// and a writer that goes away looks like a silent receiver rather than the
// end, so that several writers can feed it in turn. A file ends at its last
// byte, which reads as a closed port.
std::unique_ptr<TSerialPort> OpenReplay(const std::string& name, bool fifo, int baudRate) {
  const int fd = open(name.c_str(), (fifo ? O_RDWR : O_RDONLY) | O_NONBLOCK | O_CLOEXEC);
  if (fd < 0) throw TXErrorRScom(kSerialPlatformError, name, errno);
  return std::make_unique<TPosixPort>(TPortKind::Replay, name, baudRate, fd);
}

std::unique_ptr<TSerialPort> OpenDevice(const std::string& name, int baudRate) {
  const speed_t speed = SpeedOf(baudRate);
  if (speed == B0) {
    throw TXErrorRScom(kSerialPlatformError, name + " " + std::to_string(baudRate) + " baud",
                       EINVAL);
  }
  const int fd = open(name.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
  if (fd < 0) throw TXErrorRScom(kSerialPlatformError, name, errno);
  termios settings{};
  if (tcgetattr(fd, &settings) != 0) {
    const int error = errno;
    close(fd);
    throw TXErrorRScom(kSerialPlatformError, name, error);
  }
  // Raw 8N1, no flow control: receivers send plain bytes and never hold the
  // line.
  cfmakeraw(&settings);
  settings.c_cflag &= ~(CSIZE | PARENB | CSTOPB);
  settings.c_cflag |= CS8 | CLOCAL | CREAD;
#ifdef CRTSCTS
  settings.c_cflag &= ~CRTSCTS;
#endif
  settings.c_iflag &= ~(IXON | IXOFF | IXANY);
  settings.c_cc[VMIN] = 0;
  settings.c_cc[VTIME] = 0;
  if (cfsetispeed(&settings, speed) != 0 || cfsetospeed(&settings, speed) != 0 ||
      tcsetattr(fd, TCSANOW, &settings) != 0) {
    const int error = errno;
    close(fd);
    throw TXErrorRScom(kSerialPlatformError, name, error);
  }
  auto port = std::make_unique<TPosixPort>(TPortKind::Serial, name, baudRate, fd);
  port->SetDefaultTimeouts(true);
  return port;
}

}  // namespace

std::unique_ptr<TSerialPort> OpenSerialPort(const std::string& name, int baudRate) {
  std::string host;
  std::string service;
  if (SplitTcpAddress(name, host, service)) return OpenTcpSource(name, host, service, baudRate);
  struct stat status {};
  if (stat(name.c_str(), &status) == 0 && (S_ISREG(status.st_mode) || S_ISFIFO(status.st_mode))) {
    return OpenReplay(name, S_ISFIFO(status.st_mode), baudRate);
  }
  return OpenDevice(name, baudRate);
}

}  // namespace velantis

#endif  // _WIN32
