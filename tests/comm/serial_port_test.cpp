#include "comm/serial_port.h"

#include <sys/stat.h>

#include <cerrno>
#include <filesystem>
#include <fstream>

#include <gtest/gtest.h>

#include "app/log.h"
#include "comm/serial_error.h"
#include "tests/support/testdata.h"
#include "tests/comm/port_doubles.h"

namespace velantis {
namespace {

using test::ElapsedMs;
using test::TTestClock;

// The code and last error of what fn throws; code -1 when it throws nothing.
using TThrown = std::pair<int32_t, int>;

template <typename F>
TThrown Thrown(F fn) {
  try {
    fn();
  } catch (const TXErrorRScom& error) {
    return {error.Code(), error.LastError()};
  }
  return {-1, 0};
}

TEST(SerialPort, NameChoosesTheKindOfPort) {
  const std::filesystem::path dir = test::ScratchDir("serial-kind");
  const std::string file = (dir / "track.nmea").string();
  std::ofstream(file) << test::Sentence("GPRMC,");
  const std::string fifo = (dir / "feed").string();
  ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
  test::TPtyPair pty;
  test::TLoopbackServer server;

  struct TCase {
    std::string name;
    TPortKind kind;
  };
  const TCase cases[] = {
      {pty.SlaveName(), TPortKind::Serial},
      {server.Address(), TPortKind::TcpSource},
      {file, TPortKind::Replay},
      {fifo, TPortKind::Replay},
  };
  for (const TCase& c : cases) {
    const auto port = OpenSerialPort(c.name, 9600);
    EXPECT_EQ(port->Kind(), c.kind) << c.name;
    EXPECT_EQ(port->IsSerialHandle(), c.kind == TPortKind::Serial) << c.name;
    EXPECT_EQ(port->Name(), c.name);
    EXPECT_EQ(port->BaudRate(), 9600);
  }
}

TEST(SerialPort, OpenFailuresAreCodeTwoWithTheReason) {
  test::TPtyPair pty;
  // Bound and closed again, so nothing listens there.
  std::string refused;
  {
    test::TLoopbackServer server;
    refused = server.Address();
  }
  struct TCase {
    std::string name;
    int baud;
    int lastError;
  };
  const TCase cases[] = {
      {"/nonexistent/ttyUSB0", 4800, ENOENT},
      {"/dev/null", 4800, ENOTTY},        // a device, but not a terminal
      {pty.SlaveName(), 1200, EINVAL},    // below the rates offered
      {pty.SlaveName(), 230400, EINVAL},  // above them
      {refused, 4800, ECONNREFUSED},
  };
  for (const TCase& c : cases) {
    try {
      OpenSerialPort(c.name, c.baud);
      ADD_FAILURE() << c.name << " opened";
    } catch (const TXErrorRScom& error) {
      EXPECT_EQ(error.Code(), kSerialPlatformError) << c.name;
      EXPECT_EQ(error.LastError(), c.lastError) << c.name;
      EXPECT_NE(std::string(error.what()).find(c.name), std::string::npos) << error.what();
    }
  }
}

TEST(SerialPort, SplitTcpAddress) {
  struct TCase {
    std::string name;
    bool address;
    std::string host, port;
  };
  const TCase cases[] = {
      {"localhost:10110", true, "localhost", "10110"},
      {"192.168.1.20:2947", true, "192.168.1.20", "2947"},
      {"[::1]:2947", true, "::1", "2947"},
      {"/dev/ttyUSB0", false, "", ""},
      {"COM3", false, "", ""},
      {"/tmp/log:1", false, "", ""},  // a path, even with a colon
      {"host:", false, "", ""},
      {":80", false, "", ""},
      {"host:http", false, "", ""},
      {"host:123456", false, "", ""},
  };
  for (const TCase& c : cases) {
    std::string host, port;
    EXPECT_EQ(SplitTcpAddress(c.name, host, port), c.address) << c.name;
    if (c.address) {
      EXPECT_EQ(host, c.host) << c.name;
      EXPECT_EQ(port, c.port) << c.name;
    }
  }
}

TEST(SerialPort, TimeoutsOfASerialHandle) {
  test::TPtyPair pty;
  const auto port = OpenSerialPort(pty.SlaveName(), 4800);
  // Opening applies the defaults.
  TCommTimeouts t = port->Timeouts();
  EXPECT_EQ(t.readInterval, port->ReadIntervalValue());
  EXPECT_EQ(t.readTotalConstant, 0u);
  EXPECT_EQ(t.writeTotalConstant, 1000u);

  ASSERT_TRUE(port->SetReadTimeout(250));
  EXPECT_EQ(port->Timeouts().readTotalConstant, 250u);
  EXPECT_EQ(port->Timeouts().writeTotalConstant, 1000u);

  port->SetReadIntervalValue(7);
  ASSERT_TRUE(port->SetDefaultTimeouts(true));
  t = port->Timeouts();
  EXPECT_EQ(t.readInterval, 7u);
  EXPECT_EQ(t.readTotalConstant, 0u);
  EXPECT_EQ(t.readTotalMultiplier + t.writeTotalMultiplier, 0u);
}

TEST(SerialPort, TimeoutCallsOfAVanishedDeviceFailAndAreLogged) {
  test::TPtyPair pty;
  const auto port = OpenSerialPort(pty.SlaveName(), 4800);
  pty.CloseMaster();
  TLog::Instance().ClearEntries();

  EXPECT_FALSE(port->SetDefaultTimeouts(false));
  EXPECT_TRUE(TLog::Instance().Entries().empty());
  EXPECT_FALSE(port->SetDefaultTimeouts(true));
  EXPECT_FALSE(port->SetReadTimeout(300));
  EXPECT_EQ(port->LastError(), EIO);

  std::vector<std::string> logged;
  for (const TLogEntry& entry : TLog::Instance().Entries()) logged.push_back(FormatLogEntry(entry));
  const std::vector<std::string> expected = {"COMM Error: GetCommTimeOuts",
                                             "COMM Error: SetCommTimeOuts2"};
  EXPECT_EQ(logged, expected);
}

TEST(SerialPort, PortsWithoutTimeoutsSkipTheCalls) {
  test::TLoopbackServer server;
  const auto tcp = OpenSerialPort(server.Address(), 4800);
  const std::filesystem::path file = test::ScratchDir("serial-skip") / "log.nmea";
  std::ofstream(file) << "x";
  const auto replay = OpenSerialPort(file.string(), 4800);
  // Not one of these is a terminal: applying anything would fail.
  for (TSerialPort* port : {tcp.get(), replay.get()}) {
    EXPECT_TRUE(port->SetReadTimeout(250)) << port->Name();
    EXPECT_EQ(port->Timeouts().readTotalConstant, 0u) << port->Name();
    port->SetReadIntervalValue(3);
    EXPECT_TRUE(port->SetDefaultTimeouts(true)) << port->Name();
    EXPECT_NE(port->Timeouts().readInterval, 3u) << port->Name();
    EXPECT_TRUE(port->Purge()) << port->Name();
  }
  // The replay is open for reading only: a write that reached it would fail.
  EXPECT_NO_THROW(replay->Write(test::Sentence("PMGNCMD,VERSION")));
}

TEST(SerialPort, BytesCrossAPseudoTerminalBothWays) {
  test::TPtyPair pty;
  const auto port = OpenSerialPort(pty.SlaveName(), 115200);
  const std::string fromDevice = test::Sentence("GPGLL,4124.8963,N,00211.6411,E,101015.00,A,A");
  const std::string toDevice = test::Sentence("GPWPL,4124.9000,N,00211.7000,E,CAMP01");
  // Raw mode: CR and LF cross untouched.
  ASSERT_TRUE(test::WriteAllTo(pty.Master(), fromDevice));
  std::string received;
  char buffer[64];
  const TTestClock::time_point start = TTestClock::now();
  while (received.size() < fromDevice.size() && ElapsedMs(start) < 1000) {
    received.append(buffer, port->Read(buffer, sizeof buffer, 100));
  }
  EXPECT_EQ(received, fromDevice);

  port->Write(toDevice);
  EXPECT_EQ(test::ReadFrom(pty.Master(), 300, toDevice.size()), toDevice);
}

TEST(SerialPort, ReadWithNothingWaitingTimesOut) {
  test::TPtyPair pty;
  const auto port = OpenSerialPort(pty.SlaveName(), 4800);
  char buffer[16];
  for (int waitMs : {1, 150}) {
    const TTestClock::time_point start = TTestClock::now();
    EXPECT_EQ(port->Read(buffer, sizeof buffer, waitMs), 0u);
    const long took = ElapsedMs(start);
    EXPECT_GE(took, waitMs - 1) << waitMs;
    EXPECT_LT(took, waitMs + 100) << waitMs;
  }
}

TEST(SerialPort, ReadTakesABurstWithinTheReadInterval) {
  test::TPtyPair pty;
  const auto port = OpenSerialPort(pty.SlaveName(), 4800);
  const std::string first = test::Sentence("GPGSA,A,3,04,05,,09,12,,,24,,,,,2.5,1.3,2.1");
  const std::string second = test::Sentence("GPVTG,054.7,T,034.4,M,005.5,N,010.2,K,A");
  char buffer[1000];
  port->SetReadIntervalValue(50);
  ASSERT_TRUE(port->SetDefaultTimeouts(true));
  {
    // The second sentence comes 5 ms after the first: well within the interval.
    test::TReceiver receiver(pty.Master(), {{0, first}, {5, second}});
    EXPECT_EQ(std::string(buffer, port->Read(buffer, sizeof buffer, 300)), first + second);
  }

  // With no interval a read returns with what has come.
  port->SetReadIntervalValue(0);
  ASSERT_TRUE(port->SetDefaultTimeouts(true));
  test::TReceiver receiver(pty.Master(), {{0, first}, {60, second}});
  EXPECT_EQ(std::string(buffer, port->Read(buffer, sizeof buffer, 200)), first);
  receiver.Join();
  EXPECT_EQ(std::string(buffer, port->Read(buffer, sizeof buffer, 200)), second);
}

// Linux gives the slave of a pseudo-terminal whose master closed an end of
// file (poll: POLLIN|POLLERR|POLLHUP, read: 0), not EIO; the device itself
// then answers EIO, which is what the error carries.
TEST(SerialPort, VanishedPseudoTerminalIsAClosedPort) {
  test::TPtyPair pty;
  const auto port = OpenSerialPort(pty.SlaveName(), 4800);
  ASSERT_TRUE(test::WriteAllTo(pty.Master(), "$GP"));
  char buffer[16];
  EXPECT_EQ(port->Read(buffer, sizeof buffer, 200), 3u);
  pty.CloseMaster();

  const TTestClock::time_point start = TTestClock::now();
  const auto [code, lastError] = Thrown([&] { port->Read(buffer, sizeof buffer, 500); });
  EXPECT_EQ(code, kSerialPortClosed);
  EXPECT_EQ(lastError, EIO);
  EXPECT_LT(ElapsedMs(start), 100);  // no waiting for a port that is gone
  EXPECT_EQ(port->LastError(), EIO);

  EXPECT_EQ(Thrown([&] { port->Write("$PXXX\r\n"); }), TThrown(kSerialTransmitError, EIO));
}

TEST(SerialPort, FailingPurgeIsTriedAgainAfterAPause) {
  test::TPtyPair pty;
  const auto port = OpenSerialPort(pty.SlaveName(), 4800);
  TTestClock::time_point start = TTestClock::now();
  EXPECT_TRUE(port->Purge());
  EXPECT_LT(ElapsedMs(start), 50);

  pty.CloseMaster();
  start = TTestClock::now();
  EXPECT_FALSE(port->Purge());
  const long took = ElapsedMs(start);
  EXPECT_GE(took, 100);
  EXPECT_LT(took, 300);
  EXPECT_EQ(port->LastError(), EIO);
}

TEST(SerialPort, WriteThatCannotCompleteFailsAfterTheWriteTimeout) {
  test::TPtyPair pty;
  const auto port = OpenSerialPort(pty.SlaveName(), 4800);
  // Nobody reads the master: the pseudo-terminal's buffers fill up.
  const std::string flood(1 << 20, 'N');
  const TTestClock::time_point start = TTestClock::now();
  const auto [code, lastError] = Thrown([&] { port->Write(flood); });
  const long took = ElapsedMs(start);
  EXPECT_EQ(code, kSerialTransmitError);
  EXPECT_EQ(lastError, ETIMEDOUT);
  EXPECT_GE(took, 1000);
  EXPECT_LT(took, 1300);
  RecordProperty("WriteTimeoutMs", static_cast<int>(took));
}

TEST(SerialPort, TcpSourceReadsWritesAndEnds) {
  test::TLoopbackServer server;
  const auto port = OpenSerialPort(server.Address(), 4800);
  const int peer = server.Accept();
  ASSERT_GE(peer, 0);
  const std::string sentence = test::Sentence("GPZDA,201530.00,04,07,2002,00,00");
  ASSERT_TRUE(test::WriteAllTo(peer, sentence));
  char buffer[256];
  EXPECT_EQ(std::string(buffer, port->Read(buffer, sizeof buffer, 500)), sentence);

  const std::string command = test::Sentence("PSRF103,00,01,00,01");
  port->Write(command);
  EXPECT_EQ(test::ReadFrom(peer, 300, command.size()), command);

  EXPECT_EQ(port->Read(buffer, sizeof buffer, 50), 0u);  // connected, silent
  server.CloseClient();
  EXPECT_EQ(Thrown([&] { port->Read(buffer, sizeof buffer, 500); }), TThrown(kSerialPortClosed, 0));
}

TEST(SerialPort, ResetTcpConnectionIsAClosedPort) {
  test::TLoopbackServer server;
  const auto port = OpenSerialPort(server.Address(), 4800);
  const int peer = server.Accept();
  ASSERT_GE(peer, 0);
  // Closing with a zero linger time sends a reset instead of an orderly end.
  const linger abort{1, 0};
  ASSERT_EQ(setsockopt(peer, SOL_SOCKET, SO_LINGER, &abort, sizeof abort), 0);
  server.CloseClient();
  char buffer[16];
  EXPECT_EQ(Thrown([&] { port->Read(buffer, sizeof buffer, 500); }),
            TThrown(kSerialPortClosed, ECONNRESET));
}

TEST(SerialPort, FifoReplayOutlivesItsWriters) {
  const std::filesystem::path fifo = test::ScratchDir("serial-fifo") / "feed";
  ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
  const auto port = OpenSerialPort(fifo.string(), 4800);
  char buffer[256];
  for (const char* body : {"GPGSV,1,1,01,07,79,048,42", "GPGSV,1,1,01,07,79,048,41"}) {
    // Each writer opens, sends one sentence and goes away.
    const int writer = open(fifo.c_str(), O_WRONLY | O_NONBLOCK);
    ASSERT_GE(writer, 0);
    ASSERT_TRUE(test::WriteAllTo(writer, test::Sentence(body)));
    close(writer);
    EXPECT_EQ(std::string(buffer, port->Read(buffer, sizeof buffer, 200)), test::Sentence(body));
    EXPECT_EQ(port->Read(buffer, sizeof buffer, 20), 0u);
  }
}

}  // namespace
}  // namespace velantis
