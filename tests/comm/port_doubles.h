// Stand-ins for the other end of a link, shared by the comm tests: a
// pseudo-terminal whose master side plays the receiver, a thread that sends
// bytes on a schedule, a listening TCP socket, and NMEA sentences with their
// checksums.
#pragma once

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <poll.h>
#include <pty.h>
#include <sys/socket.h>
#include <unistd.h>

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

namespace velantis::test {

using TTestClock = std::chrono::steady_clock;

inline long ElapsedMs(TTestClock::time_point start) {
  return static_cast<long>(
      std::chrono::duration_cast<std::chrono::milliseconds>(TTestClock::now() - start).count());
}

// "GPGGA,..." becomes "$GPGGA,...*hh\r\n" with the XOR of the body as hh.
inline std::string Sentence(const std::string& body) {
  unsigned char sum = 0;
  for (char c : body) sum ^= static_cast<unsigned char>(c);
  char tail[8];
  std::snprintf(tail, sizeof tail, "*%02X\r\n", sum);
  return "$" + body + tail;
}

// Writes all bytes to a non-blocking descriptor, giving up after a second so
// that a stuck reader cannot hang the test.
inline bool WriteAllTo(int fd, const std::string& bytes) {
  size_t done = 0;
  const TTestClock::time_point start = TTestClock::now();
  while (done < bytes.size() && ElapsedMs(start) < 1000) {
    const ssize_t n = write(fd, bytes.data() + done, bytes.size() - done);
    if (n > 0) {
      done += static_cast<size_t>(n);
    } else {
      pollfd entry{fd, POLLOUT, 0};
      poll(&entry, 1, 10);
    }
  }
  return done == bytes.size();
}

// Reads what arrives on fd within waitMs, stopping early once it has enough.
inline std::string ReadFrom(int fd, int waitMs, size_t enough = SIZE_MAX) {
  std::string bytes;
  char chunk[4096];
  const TTestClock::time_point start = TTestClock::now();
  while (bytes.size() < enough) {
    const long left = waitMs - ElapsedMs(start);
    pollfd entry{fd, POLLIN, 0};
    if (left <= 0 || poll(&entry, 1, static_cast<int>(left)) <= 0) break;
    const ssize_t n = read(fd, chunk, sizeof chunk);
    if (n <= 0) break;
    bytes.append(chunk, static_cast<size_t>(n));
  }
  return bytes;
}

// A pseudo-terminal: the port under test opens SlaveName(), the test speaks
// for the receiver on Master().
class TPtyPair {
public:
  TPtyPair() {
    char name[256] = {};
    if (openpty(&m_master, &m_slave, name, nullptr, nullptr) != 0) {
      ADD_FAILURE() << "openpty failed";
      return;
    }
    m_slaveName = name;
    fcntl(m_master, F_SETFL, fcntl(m_master, F_GETFL) | O_NONBLOCK);
  }
  ~TPtyPair() {
    CloseMaster();
    if (m_slave >= 0) close(m_slave);
  }
  TPtyPair(const TPtyPair&) = delete;
  TPtyPair& operator=(const TPtyPair&) = delete;

  int Master() const { return m_master; }
  const std::string& SlaveName() const { return m_slaveName; }
  // The receiver goes away: the pseudo-terminal is gone once every slave
  // descriptor but the port's is closed too.
  void CloseMaster() {
    if (m_master >= 0) close(m_master);
    m_master = -1;
  }
  void CloseOwnSlave() {
    if (m_slave >= 0) close(m_slave);
    m_slave = -1;
  }

private:
  int m_master = -1;
  int m_slave = -1;
  std::string m_slaveName;
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
        getsockname(m_listener, reinterpret_cast<sockaddr*>(&address), &length) != 0) {
      ADD_FAILURE() << "no loopback listener";
      return;
    }
    m_port = ntohs(address.sin_port);
  }
  ~TLoopbackServer() {
    CloseClient();
    if (m_listener >= 0) close(m_listener);
  }
  TLoopbackServer(const TLoopbackServer&) = delete;
  TLoopbackServer& operator=(const TLoopbackServer&) = delete;

  std::string Address() const { return "127.0.0.1:" + std::to_string(m_port); }
  // The connection a client made (the backlog holds it until then).
  int Accept() {
    m_client = accept(m_listener, nullptr, nullptr);
    if (m_client >= 0) fcntl(m_client, F_SETFL, fcntl(m_client, F_GETFL) | O_NONBLOCK);
    return m_client;
  }
  void CloseClient() {
    if (m_client >= 0) close(m_client);
    m_client = -1;
  }

private:
  int m_listener = -1;
  int m_client = -1;
  int m_port = 0;
};

}  // namespace velantis::test
