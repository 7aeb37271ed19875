// The serial link over real pseudo-terminals, loopback sockets, files and
// FIFOs: the port, its errors and the NMEA line reader.
#include "comm/serial_port.h"

#include <sys/stat.h>

#include <cerrno>
#include <fstream>

#include "app/config.h"
#include "comm/nmea_line_reader.h"
#include "comm/serial_error.h"
#include "tests/comm/comm_test_support.h"

namespace velantis {
namespace {

using test::ElapsedMs;
using test::Nmea;
using test::TChunk;

// The code and last error of what fn throws; code -1 when it throws nothing.
template <typename F>
std::pair<int32_t, int> Thrown(F fn) {
  try {
    fn();
  } catch (const TXErrorRScom& error) {
    return {error.Code(), error.LastError()};
  }
  return {-1, 0};
}

TEST(SerialPort, NameChoosesTheKindOfPortOrTheReasonItFails) {
  const std::filesystem::path dir = test::ScratchDir("serial-kind");
  const std::string file = (dir / "track.nmea").string(), fifo = (dir / "feed").string();
  std::ofstream(file) << Nmea("GPRMC,");
  ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
  test::TPtyPair pty;
  test::TLoopbackServer server;
  std::string refused;  // bound and closed again: nothing listens there
  {
    test::TLoopbackServer gone;
    refused = gone.Address();
  }
  const std::tuple<std::string, int, TPortKind, int> cases[] = {
      {pty.SlaveName(), 9600, TPortKind::Serial, 0},
      {server.Address(), 9600, TPortKind::TcpSource, 0},
      {file, 9600, TPortKind::Replay, 0},
      {fifo, 9600, TPortKind::Replay, 0},
      {"/nonexistent/ttyUSB0", 4800, {}, ENOENT},
      {"/dev/null", 4800, {}, ENOTTY},  // a device, but not a terminal
      {pty.SlaveName(), 1200, {}, EINVAL},  // below the rates offered
      {pty.SlaveName(), 230400, {}, EINVAL},
      {refused, 4800, {}, ECONNREFUSED},
  };
  for (const auto& [name, baud, kind, lastError] : cases) {
    try {
      const auto port = OpenSerialPort(name, baud);
      EXPECT_EQ(port->Kind(), kind) << name;
      EXPECT_EQ(port->IsSerialHandle(), kind == TPortKind::Serial) << name;
      EXPECT_EQ(port->BaudRate(), 9600);
      if (kind == TPortKind::Serial) continue;  // the others skip every time-out call
      EXPECT_TRUE(port->SetReadTimeout(250) && port->SetDefaultTimeouts(true) && port->Purge());
      EXPECT_EQ(port->Timeouts().readTotalConstant, 0u);
      EXPECT_NO_THROW(port->Write(kind == TPortKind::Replay ? "x" : ""));  // a replay is read only
    } catch (const TXErrorRScom& error) {
      EXPECT_EQ(error.Code(), kSerialPlatformError) << name;
      EXPECT_EQ(error.LastError(), lastError) << name;
      const std::string text = error.what();
      EXPECT_NE(text.find(name), std::string::npos) << text;
      EXPECT_NE(text.find(" lasterror= " + std::to_string(lastError) + " ("), std::string::npos);
    }
  }
}

TEST(SerialPort, SplitTcpAddress) {
  const std::tuple<std::string, std::string, std::string> cases[] = {
      {"localhost:10110", "localhost", "10110"}, {"[::1]:2947", "::1", "2947"},
      {"[::1:2947", "[::1", "2947"},  // no closing bracket: taken as it stands
      {"COM3", "", ""},  {"/tmp/log:1", "", ""},  // a path, even with a colon
      {"host:", "", ""}, {":80", "", ""},        {"host:http", "", ""}, {"host:123456", "", ""},
  };
  for (const auto& [name, host, port] : cases) {
    std::string h, p;
    EXPECT_EQ(SplitTcpAddress(name, h, p), !host.empty()) << name;
    EXPECT_EQ(h + " " + p, host.empty() ? " " : host + " " + port) << name;
  }
}

TEST(SerialPort, TimeoutsAndBursts) {
  test::TPtyPair pty;
  const auto port = OpenSerialPort(pty.SlaveName(), 4800);
  EXPECT_EQ(port->Timeouts().readInterval, port->ReadIntervalValue());  // opening applies them
  EXPECT_EQ(port->Timeouts().writeTotalConstant, 1000u);
  ASSERT_TRUE(port->SetReadTimeout(250));
  EXPECT_EQ(port->Timeouts().readTotalConstant, 250u);
  const std::string first = Nmea("GPGSA,A,3,04,05,,09,12,,,24,,,,,2.5,1.3,2.1");
  const std::string second = Nmea("GPVTG,054.7,T,034.4,M,005.5,N,010.2,K,A");
  char buffer[1000];
  // Within the read interval a burst is one read; without, a read returns
  // with what has come; with nothing, after its wait.
  for (const auto& [interval, pauseMs, reads] : {std::tuple{50u, 5, 1}, {0u, 60, 2}}) {
    port->SetReadIntervalValue(interval);
    ASSERT_TRUE(port->SetDefaultTimeouts(true));
    EXPECT_EQ(port->Timeouts().readInterval, interval);
    EXPECT_EQ(port->Timeouts().readTotalConstant, 0u);
    test::TReceiver receiver(pty.Master(), {{0, first}, {pauseMs, second}});
    std::string got(buffer, port->Read(buffer, sizeof buffer, 300));
    receiver.Join();
    if (reads == 2) got.append(buffer, port->Read(buffer, sizeof buffer, 200));
    EXPECT_EQ(got, first + second) << interval;
  }
  const auto start = test::TTestClock::now();
  EXPECT_EQ(port->Read(buffer, sizeof buffer, 150), 0u);
  EXPECT_GE(ElapsedMs(start), 149);
  EXPECT_LT(ElapsedMs(start), 250);
  port->Write(second);
  EXPECT_EQ(test::ReadFrom(pty.Master(), 300, second.size()), second);
}

// Linux gives the slave of a pseudo-terminal whose master closed an end of
// file, not EIO; the device itself then answers EIO, which the error carries.
TEST(SerialPort, VanishedDeviceIsAClosedPort) {
  test::TPtyPair pty;
  const auto port = OpenSerialPort(pty.SlaveName(), 4800);
  auto start = test::TTestClock::now();
  EXPECT_TRUE(port->Purge());
  EXPECT_LT(ElapsedMs(start), 50);
  pty.CloseMaster();
  TLog::Instance().ClearEntries();
  EXPECT_FALSE(port->SetDefaultTimeouts(false));
  EXPECT_TRUE(TLog::Instance().Entries().empty());
  EXPECT_FALSE(port->SetDefaultTimeouts(true));
  EXPECT_FALSE(port->SetReadTimeout(300));
  EXPECT_EQ(test::LoggedTexts(), (std::vector<std::string>{"COMM Error: GetCommTimeOuts",
                                                           "COMM Error: SetCommTimeOuts2"}));
  char buffer[16];
  start = test::TTestClock::now();
  EXPECT_EQ(Thrown([&] { port->Read(buffer, sizeof buffer, 500); }),
            std::pair(int32_t{kSerialPortClosed}, EIO));
  EXPECT_LT(ElapsedMs(start), 100);  // no waiting for a port that is gone
  EXPECT_EQ(Thrown([&] { port->Write("$PXXX\r\n"); }),
            std::pair(int32_t{kSerialTransmitError}, EIO));
  start = test::TTestClock::now();
  EXPECT_FALSE(port->Purge());  // tried again after a pause
  EXPECT_GE(ElapsedMs(start), 100);
  EXPECT_LT(ElapsedMs(start), 300);
  EXPECT_EQ(port->LastError(), EIO);
}

TEST(SerialPort, WriteThatCannotCompleteFailsAfterTheWriteTimeout) {
  test::TPtyPair pty;  // nobody reads the master: its buffers fill up
  const auto port = OpenSerialPort(pty.SlaveName(), 4800);
  const auto start = test::TTestClock::now();
  EXPECT_EQ(Thrown([&] { port->Write(std::string(1 << 20, 'N')); }),
            std::pair(int32_t{kSerialTransmitError}, ETIMEDOUT));
  EXPECT_GE(ElapsedMs(start), 1000);
  EXPECT_LT(ElapsedMs(start), 1300);
}

TEST(SerialPort, TcpSourceReadsWritesAndEnds) {
  for (const bool reset : {false, true}) {
    test::TLoopbackServer server;
    const auto port = OpenSerialPort(server.Address(), 4800);
    const int peer = server.Accept();
    ASSERT_GE(peer, 0);
    const std::string sentence = Nmea("GPZDA,201530.00,04,07,2002,00,00");
    ASSERT_TRUE(test::WriteAllTo(peer, sentence));
    char buffer[256];
    EXPECT_EQ(std::string(buffer, port->Read(buffer, sizeof buffer, 500)), sentence);
    port->Write(sentence);
    EXPECT_EQ(test::ReadFrom(peer, 300, sentence.size()), sentence);
    EXPECT_EQ(port->Read(buffer, sizeof buffer, 50), 0u);  // connected, silent
    const linger abort{1, 0};  // a zero linger time sends a reset
    ASSERT_TRUE(!reset || setsockopt(peer, SOL_SOCKET, SO_LINGER, &abort, sizeof abort) == 0);
    server.CloseClient();
    EXPECT_EQ(Thrown([&] { port->Read(buffer, sizeof buffer, 500); }),
              std::pair(int32_t{kSerialPortClosed}, reset ? ECONNRESET : 0));
  }
}

TEST(SerialPort, FifoReplayOutlivesItsWriters) {
  const std::filesystem::path fifo = test::ScratchDir("serial-fifo") / "feed";
  ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
  const auto port = OpenSerialPort(fifo.string(), 4800);
  char buffer[256];
  for (const char* body : {"GPGSV,1,1,01,07,79,048,42", "GPGSV,1,1,01,07,79,048,41"}) {
    const int writer = open(fifo.c_str(), O_WRONLY | O_NONBLOCK);  // one sentence, then gone
    ASSERT_TRUE(test::WriteAllTo(writer, Nmea(body)));
    close(writer);
    EXPECT_EQ(std::string(buffer, port->Read(buffer, sizeof buffer, 200)), Nmea(body));
    EXPECT_EQ(port->Read(buffer, sizeof buffer, 20), 0u);
  }
}

TEST(SerialError, TextIsCodeThenDetailThenTheSystemsReason) {
  const std::tuple<int32_t, std::string, int, std::string> cases[] = {
      {0, "", 0, "Ya conectado"},
      {1, "", 0, ""},
      {2, "/dev/ttyUSB0", 2, "Error de Windows: /dev/ttyUSB0 lasterror= 2 (No such file or directory)"},
      {3, "", 5, "Error en la recepcion lasterror= 5 (Input/output error)"},
      {4, "COM3", 0, "Error, puerto cerrado! COM3"},
      {5, "", 0, "Error, en la transmision!"},
      {6, "", 0, "Error default"},
      {-1, "x", 0, "Error default x"},
  };
  for (const auto& [code, detail, lastError, text] : cases) {
    const TXErrorRScom error(code, detail, lastError);
    EXPECT_EQ(std::string(error.what()), text);
    EXPECT_EQ(std::tuple(error.Code(), error.Detail(), error.LastError()), std::tuple(code, detail, lastError));
  }
}

const std::string kNoNmea = kNmeaNoNmeaText;
const std::string kSilence = kNmeaSilenceText;
const std::string kGga = Nmea("GPGGA,101500.00,4124.8963,N,00211.6411,E,1,07,1.2,12.0,M,49.6,M,,");
const std::string kRmc = Nmea("GPRMC,101500.00,A,4124.8963,N,00211.6411,E,0.1,,150624,,,A");
const std::string kGsa = Nmea("GPGSA,A,3,04,05,,09,12,,,24,,,,,2.5,1.3,2.1");

// What is left in the buffer after the first line, and where that line ended.
TEST(NmeaLineReader, LinesComeOutWholeAndInOrder) {
  const std::string noise = std::string("\x10\x06\xfe garbage\r\n", 13), cut = "$GPGGA,1015";
  const std::string bareLf = "$GPGLL,4124.8963,N,00211.6411,E,101015.00,A,A*6C\n";
  struct TCase {
    std::vector<TChunk> chunks;
    std::vector<std::string> lines;
    size_t firstEnd;
    std::string leftAfterFirst;
  };
  const TCase cases[] = {
      {{{0, kRmc.substr(0, 10)}, {60, kRmc.substr(10, 25)}, {60, kRmc.substr(35)}}, {kRmc},
       kRmc.size() - 1, ""},
      {{{0, noise + kGga}}, {kGga}, noise.size() + kGga.size() - 1, ""},
      {{{0, cut + kRmc}}, {kRmc}, cut.size() + kRmc.size() - 1, ""},  // cut short by the next
      // Several complete lines in one read all come out, in order (a scan
      // that forgot a line before a later "$" would lose the GGA).
      {{{0, kGga + kRmc + kGsa.substr(0, 12)}, {150, kGsa.substr(12)}}, {kGga, kRmc, kGsa},
       kGga.size() - 1, kRmc + kGsa.substr(0, 12)},
      {{{0, bareLf + kGga}}, {bareLf, kGga}, bareLf.size() - 1, kGga},
  };
  for (const TCase& c : cases) {
    SCOPED_TRACE(c.lines.front());
    test::TPtyPair pty;
    const auto port = OpenSerialPort(pty.SlaveName(), 4800);
    TNmeaLineReader reader(1000);
    TErrorSink errors;
    test::TReceiver receiver(pty.Master(), c.chunks);
    std::string line;
    for (size_t i = 0; i < c.lines.size(); ++i) {
      const int end = reader.ReadLine(*port, line, errors);
      EXPECT_EQ(line, c.lines[i]) << i;
      EXPECT_GT(end, 0);
      if (i > 0) continue;
      EXPECT_EQ(end, static_cast<int>(c.firstEnd));
      EXPECT_EQ(reader.Buffer(), c.leftAfterFirst);
    }
    EXPECT_TRUE(errors.Records().empty());
  }
}

// A silent receiver: the setting's time-out, the marker, one log entry.
// 99 bytes and the "@" are still a short buffer, 100 and the "@" are garbage,
// reported with what came (control bytes logged as dots).
TEST(NmeaLineReader, SilenceAndGarbage) {
  for (const size_t noiseBytes : {0, 99, 100}) {
    test::TPtyPair pty;
    const auto port = OpenSerialPort(pty.SlaveName(), 4800);
    TConfig config;
    config.Comm_NNEA_Timeout = 300;
    TNmeaLineReader reader(config);
    TErrorSink errors;
    TLog::Instance().ClearEntries();
    const std::string noise = noiseBytes ? "\x01" + std::string(noiseBytes - 1, '~') : "";
    ASSERT_TRUE(test::WriteAllTo(pty.Master(), noise));
    std::string line = "stale";
    const auto start = test::TTestClock::now();
    EXPECT_EQ(reader.ReadLine(*port, line, errors), -1);
    // 100 bytes at once no longer keep the read alive: the first read counts its
    // 100 ms though it returned at once.
    const bool garbage = noiseBytes == 100;
    EXPECT_GE(ElapsedMs(start), garbage ? 190 : 300);
    EXPECT_LT(ElapsedMs(start), garbage ? 300 : 450);
    EXPECT_EQ(line, "");
    EXPECT_EQ(reader.Buffer(), noise + "@");
    ASSERT_EQ(errors.Records().size(), 1u);
    EXPECT_EQ(errors.Records()[0].message, garbage ? kNoNmea : kSilence);
    EXPECT_EQ(errors.Records()[0].detail, garbage ? noise + "@" : "");
    const std::string logged = garbage ? kNoNmea + " ." + noise.substr(1) + "@" : kSilence;
    EXPECT_EQ(test::LoggedTexts(), std::vector<std::string>{"COMM Error: " + logged});
  }
}

TEST(NmeaLineReader, ArrivingBytesKeepTheReadAliveWhileTheBufferIsShort) {
  // A line that takes 800 ms to come, where the time-out is 300 ms.
  std::vector<TChunk> trickle = {{0, "$GPGLL,4124.8963"}};
  for (int i = 0; i < 9; ++i) trickle.push_back({80, ","});
  trickle.push_back({80, "*00\r\n"});
  // A binary protocol: with 100 bytes in the buffer arriving bytes no longer
  // count, and each read counts at least its 100 ms.
  const std::string packet = std::string("\x10\x0e\x03\xfe", 4) + std::string(34, 'B') + "\x10\x03";
  std::vector<TChunk> binary(20, TChunk{40, packet});
  binary.insert(binary.begin(), TChunk{0, packet + packet + packet});
  for (const auto& [chunks, minMs, maxMs] : {std::tuple{trickle, 700L, 1200L}, {binary, 0L, 200L}}) {
    test::TPtyPair pty;
    const auto port = OpenSerialPort(pty.SlaveName(), 4800);
    TNmeaLineReader reader(300);
    TErrorSink errors;
    test::TReceiver receiver(pty.Master(), chunks);
    std::string line;
    const auto start = test::TTestClock::now();
    EXPECT_EQ(reader.ReadLine(*port, line, errors) > 0, minMs > 0);
    EXPECT_GE(ElapsedMs(start), minMs);
    EXPECT_LT(ElapsedMs(start), maxMs);
    EXPECT_EQ(line, minMs > 0 ? "$GPGLL,4124.8963,,,,,,,,,*00\r\n" : "");
  }
}

TEST(NmeaLineReader, SingleReadReturnsAtOnce) {
  test::TPtyPair pty;
  const auto port = OpenSerialPort(pty.SlaveName(), 4800);
  std::string line;
  // Up to 2999 ms the time-out ends the loop after one read; above, the
  // loop goes on reading for what is left of it.
  for (const auto& [timeoutMs, minMs, maxMs] : {std::tuple{2999, 0L, 50L}, {3200, 200L, 400L}}) {
    TNmeaLineReader reader(timeoutMs);
    const auto start = test::TTestClock::now();
    EXPECT_EQ(reader.ReadLineOnce(*port, line), -1) << timeoutMs;
    EXPECT_GE(ElapsedMs(start), minMs) << timeoutMs;
    EXPECT_LT(ElapsedMs(start), maxMs) << timeoutMs;
    EXPECT_EQ(reader.Buffer(), "") << timeoutMs;  // no marker
  }
  TNmeaLineReader reader;
  ASSERT_TRUE(test::WriteAllTo(pty.Master(), kRmc.substr(0, 20)));
  std::this_thread::sleep_for(std::chrono::milliseconds(30));
  EXPECT_EQ(reader.ReadLineOnce(*port, line), -1);
  EXPECT_EQ(reader.Buffer(), kRmc.substr(0, 20));  // kept until the line is complete
  ASSERT_TRUE(test::WriteAllTo(pty.Master(), kRmc.substr(20) + kGga));
  std::this_thread::sleep_for(std::chrono::milliseconds(30));
  EXPECT_EQ(reader.ReadLineOnce(*port, line), static_cast<int>(kRmc.size() - 1));
  EXPECT_EQ(line, kRmc);
  EXPECT_EQ(reader.ReadLineOnce(*port, line), static_cast<int>(kGga.size() - 1));
}

TEST(NmeaLineReader, SilentTcpSourceIsNotLoggedAndAFileEnds) {
  test::TLoopbackServer server;
  const auto tcp = OpenSerialPort(server.Address(), 4800);
  TNmeaLineReader reader(200);
  TErrorSink errors;
  TLog::Instance().ClearEntries();
  std::string line;
  EXPECT_EQ(reader.ReadLine(*tcp, line, errors), -1);
  EXPECT_EQ(errors.Records().at(0).message, kSilence);
  EXPECT_TRUE(test::LoggedTexts().empty());

  const std::filesystem::path file = test::ScratchDir("line-replay") / "walk.nmea";
  std::ofstream(file, std::ios::binary) << kGga << kRmc << "$GPGGA,1016";
  const auto replay = OpenSerialPort(file.string(), 4800);
  TNmeaLineReader fileReader;
  for (const std::string& expected : {kGga, kRmc}) {
    EXPECT_GT(fileReader.ReadLine(*replay, line, errors), 0);
    EXPECT_EQ(line, expected);
  }
  EXPECT_THROW(fileReader.ReadLine(*replay, line, errors), TXErrorRScom);
  EXPECT_EQ(fileReader.Buffer(), "$GPGGA,1016");
}

// Uses up the program's allowance of silence entries, so it stays last.
TEST(NmeaLineReader, SilenceIsLoggedAHundredTimesAtMost) {
  test::TPtyPair pty;
  const auto port = OpenSerialPort(pty.SlaveName(), 4800);
  TNmeaLineReader reader(0);  // gives up without reading
  TErrorSink errors;
  TLog::Instance().ClearEntries();
  std::string line;
  for (int i = 0; i < 121; ++i) {
    reader.ClearBuffer();  // markers would pile up into "no-nmea bytes"
    reader.ReadLine(*port, line, errors);
  }
  const size_t logged = test::LoggedTexts().size();
  EXPECT_LE(logged, 100u);  // earlier tests of this program used a few
  EXPECT_GE(logged, 95u);
  EXPECT_EQ(errors.Records().size(), 121u);
}

}  // namespace
}  // namespace velantis
