// Shared by the comm and receiver command tests: sentences, a fixed "today",
// capture lines, and the far end of a link (pseudo-terminal, TCP listener).
#pragma once

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <poll.h>
#include <pty.h>
#include <sys/socket.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <chrono>
#include <deque>
#include <cstdio>
#include <string>
#include <thread>
#include <vector>

#include "app/log.h"
#include "comm/nmea_line_source.h"
#include "comm/nmea_sentence.h"
#include "comm/nmea_settings.h"
#include "comm/posicion_nmea.h"
#include "comm/serial_port.h"
#include "tests/support/testdata.h"

namespace velantis::test {

// "$" body "*" checksum CR LF, summed here, independently of the code under test.
inline std::string Nmea(std::string_view body) {
  unsigned char sum = 0;
  for (const char c : body) sum ^= static_cast<unsigned char>(c);
  char digits[8];
  std::snprintf(digits, sizeof digits, "*%02X\r\n", sum);
  return "$" + std::string(body) + digits;
}
inline std::string Chomp(const std::string& line) { return line.substr(0, line.size() - 2); }

// 17 May 2024, 12:00 UTC: "today" of the tests.
inline TDateTime TestNow() { return TDateTime::FromCalendar(2024, 5, 17, 12, 0, 0); }
inline TPosicionNMEA RecordAtTestNow() {
  TPosicionNMEA record;
  record.clock = TNmeaClock::Fixed(TestNow());
  return record;
}
template <typename F>
TNmeaReceiverSettings Settings(F change) {
  TNmeaReceiverSettings settings;
  change(settings);
  return settings;
}
inline TComandaNMEA Parsed(std::string_view line) {
  TComandaNMEA sentence;
  sentence.Parse(line, nullptr);
  return sentence;
}
inline std::string IsoMillis(TDateTime time) {
  TCalendarTime c;
  if (!time.ToCalendar(c)) return "null";
  char text[40];
  std::snprintf(text, sizeof text, "%04d-%02d-%02dT%02d:%02d:%06.3f", c.year, c.month, c.day,
                c.hour, c.minute, c.second);
  return text;
}

// The lines of a gpsd capture with their own line ends, the "#" header skipped.
inline std::vector<std::string> CaptureLines(const std::filesystem::path& path) {
  const std::string bytes = FileBytes(path);
  std::vector<std::string> lines;
  for (size_t start = 0, end = 0; start < bytes.size(); start = end) {
    end = std::min(bytes.find('\n', start), bytes.size() - 1) + 1;
    if (lines.empty() && bytes[start] == '#') continue;
    lines.push_back(bytes.substr(start, end - start));
  }
  return lines;
}

inline std::vector<std::string> LoggedTexts() {
  std::vector<std::string> texts;
  for (const TLogEntry& entry : TLog::Instance().Entries()) texts.push_back(FormatLogEntry(entry));
  return texts;
}

using TTestClock = std::chrono::steady_clock;
inline long ElapsedMs(TTestClock::time_point start) {
  return static_cast<long>(
      std::chrono::duration_cast<std::chrono::milliseconds>(TTestClock::now() - start).count());
}

// Writes all bytes to a non-blocking descriptor, giving up after a second.
inline bool WriteAllTo(int fd, const std::string& bytes) {
  size_t done = 0;
  for (const auto start = TTestClock::now(); done < bytes.size() && ElapsedMs(start) < 1000;) {
    const ssize_t n = write(fd, bytes.data() + done, bytes.size() - done);
    pollfd entry{fd, POLLOUT, 0};
    if (n > 0) done += static_cast<size_t>(n);
    else poll(&entry, 1, 10);
  }
  return done == bytes.size();
}

// What arrives on fd within waitMs, stopping early once it has enough.
inline std::string ReadFrom(int fd, int waitMs, size_t enough = SIZE_MAX) {
  std::string bytes;
  char chunk[4096];
  for (const auto start = TTestClock::now(); bytes.size() < enough;) {
    const long left = waitMs - ElapsedMs(start);
    pollfd entry{fd, POLLIN, 0};
    if (left <= 0 || poll(&entry, 1, static_cast<int>(left)) <= 0) break;
    const ssize_t n = read(fd, chunk, sizeof chunk);
    if (n <= 0) break;
    bytes.append(chunk, static_cast<size_t>(n));
  }
  return bytes;
}

inline void CloseFd(int& fd) {
  if (fd >= 0) close(fd);
  fd = -1;
}

// The port under test opens SlaveName(); the test speaks on Master().
class TPtyPair {
public:
  TPtyPair() {
    char name[256] = {};
    if (openpty(&m_master, &m_slave, name, nullptr, nullptr) != 0) ADD_FAILURE() << "openpty";
    m_slaveName = name;
    fcntl(m_master, F_SETFL, fcntl(m_master, F_GETFL) | O_NONBLOCK);
  }
  ~TPtyPair() { CloseMaster(), CloseOwnSlave(); }
  int Master() const { return m_master; }
  const std::string& SlaveName() const { return m_slaveName; }
  void CloseMaster() { CloseFd(m_master); }  // the receiver goes away
  void CloseOwnSlave() { CloseFd(m_slave); }

private:
  int m_master = -1, m_slave = -1;
  std::string m_slaveName;
};

// Lines in memory; an empty one stands for a read that brought nothing.
class TMemoryPort : public TNmeaLineSource, public TNmeaLineSink {
public:
  explicit TMemoryPort(std::vector<std::string> lines) : m_lines(lines.begin(), lines.end()) {}
  int ReadLine(std::string& line, bool wait) override {
    waits.push_back(wait);
    if (m_lines.empty()) return -1;
    line = m_lines.front();
    m_lines.pop_front();
    return static_cast<int>(line.size());
  }
  void WriteLine(std::string_view line) override { written.emplace_back(line); }
  size_t Left() const { return m_lines.size(); }
  std::vector<bool> waits;
  std::vector<std::string> written;

private:
  std::deque<std::string> m_lines;
};

// A serial port on a pseudo-terminal, at 4800 baud.
struct TPtyPort {
  TPtyPair pty;
  std::unique_ptr<TSerialPort> port = OpenSerialPort(pty.SlaveName(), 4800);
};

// A receiver that sends each chunk after its pause, on its own thread.
struct TChunk {
  int pauseMs;
  std::string bytes;
};
class TReceiver {
public:
  TReceiver(int fd, std::vector<TChunk> chunks)
      : m_thread([fd, chunks = std::move(chunks)] {
          for (const TChunk& chunk : chunks) {
            std::this_thread::sleep_for(std::chrono::milliseconds(chunk.pauseMs));
            if (!WriteAllTo(fd, chunk.bytes)) return;
          }
        }) {}
  ~TReceiver() { Join(); }
  void Join() {
    if (m_thread.joinable()) m_thread.join();
  }

private:
  std::thread m_thread;
};

// A TCP server on the loopback interface at a port the system picks.
class TLoopbackServer {
public:
  TLoopbackServer() {
    m_listener = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address;
    if (bind(m_listener, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0 ||
        listen(m_listener, 1) != 0 ||
        getsockname(m_listener, reinterpret_cast<sockaddr*>(&address), &length) != 0)
      ADD_FAILURE() << "no loopback listener";
    m_port = ntohs(address.sin_port);
  }
  ~TLoopbackServer() { CloseClient(), CloseFd(m_listener); }
  std::string Address() const { return "127.0.0.1:" + std::to_string(m_port); }
  int Accept() {  // the connection a client made (the backlog holds it until then)
    m_client = accept(m_listener, nullptr, nullptr);
    if (m_client >= 0) fcntl(m_client, F_SETFL, fcntl(m_client, F_GETFL) | O_NONBLOCK);
    return m_client;
  }
  void CloseClient() { CloseFd(m_client); }

private:
  int m_listener = -1, m_client = -1, m_port = 0;
};

}  // namespace velantis::test
