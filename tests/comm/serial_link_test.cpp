// The serial link over real pseudo-terminals, loopback sockets, files and
// FIFOs: the port, its errors, the NMEA line reader and the commands on it.
#include "comm/serial_port.h"

#include <sys/stat.h>

#include <cerrno>
#include <fstream>

#include "app/config.h"
#include "comm/comm_commands.h"
#include "comm/nmea_line_reader.h"
#include "comm/nmea_protocol.h"
#include "comm/nmea_sentence_tx.h"
#include "comm/serial_error.h"
#include "tests/support/nmea_link.h"

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
// Whether the time fn takes is in [minMs, maxMs).
template <typename F>
bool TakesMs(long minMs, long maxMs, F fn) {
  const auto start = test::TTestClock::now();
  fn();
  const long ms = ElapsedMs(start);
  if (ms >= minMs && ms < maxMs) return true;
  ADD_FAILURE() << ms << " ms, not in [" << minMs << ", " << maxMs << ")";
  return false;
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
      {pty.SlaveName(), 9600, TPortKind::Serial, 0},  {server.Address(), 9600, TPortKind::TcpSource, 0},
      {file, 9600, TPortKind::Replay, 0},             {fifo, 9600, TPortKind::Replay, 0},
      {"/nonexistent/ttyUSB0", 4800, {}, ENOENT},     {"/dev/null", 4800, {}, ENOTTY},  // not a terminal
      {pty.SlaveName(), 1200, {}, EINVAL},  {pty.SlaveName(), 230400, {}, EINVAL},  // rates not offered
      {refused, 4800, {}, ECONNREFUSED},
  };
  for (const auto& [name, baud, kind, lastError] : cases) {
    try {
      const auto port = OpenSerialPort(name, baud);
      EXPECT_EQ(std::tuple(port->Kind(), port->IsSerialHandle(), port->BaudRate()),
                std::tuple(kind, kind == TPortKind::Serial, 9600)) << name;
      if (kind == TPortKind::Serial) continue;  // the others skip every time-out call
      EXPECT_TRUE(port->SetReadTimeout(250) && port->SetDefaultTimeouts(true) && port->Purge());
      EXPECT_EQ(port->Timeouts().readTotalConstant, 0u);
      EXPECT_NO_THROW(port->Write(kind == TPortKind::Replay ? "x" : ""));  // a replay is read only
    } catch (const TXErrorRScom& error) {
      EXPECT_EQ(std::pair(error.Code(), error.LastError()), std::pair(int32_t{kSerialPlatformError}, lastError)) << name;
      const std::string text = error.what();
      EXPECT_TRUE(text.find(name) != std::string::npos &&
                  text.find(" lasterror= " + std::to_string(lastError) + " (") != std::string::npos) << text;
    }
  }
}

TEST(SerialPort, SplitTcpAddress) {
  const std::tuple<std::string, std::string> cases[] = {
      {"localhost:10110", "localhost 10110"}, {"[::1]:2947", "::1 2947"},
      {"[::1:2947", "[::1 2947"},  // no closing bracket: taken as it stands
      {"COM3", ""}, {"/tmp/log:1", ""},  // a path, even with a colon
      {"host:", ""}, {":80", ""}, {"host:http", ""}, {"host:123456", ""},
  };
  for (const auto& [name, split] : cases) {
    std::string host, port;
    EXPECT_EQ(SplitTcpAddress(name, host, port), !split.empty()) << name;
    EXPECT_EQ(host + " " + port, split.empty() ? " " : split) << name;
  }
}

TEST(SerialPort, TimeoutsAndBursts) {
  test::TPtyPort link;
  TSerialPort& port = *link.port;
  EXPECT_EQ(port.Timeouts().readInterval, port.ReadIntervalValue());  // opening applies them
  EXPECT_EQ(port.Timeouts().writeTotalConstant, 1000u);
  ASSERT_TRUE(port.SetReadTimeout(250));
  EXPECT_EQ(port.Timeouts().readTotalConstant, 250u);
  const std::string first = Nmea("GPGSA,A,3,04,05,,09,12,,,24,,,,,2.5,1.3,2.1");
  const std::string second = Nmea("GPVTG,054.7,T,034.4,M,005.5,N,010.2,K,A");
  char buffer[1000];
  // Within the read interval a burst is one read; without, a read returns
  // with what has come; with nothing, after its wait.
  for (const auto& [interval, pauseMs, reads] : {std::tuple{50u, 5, 1}, {0u, 60, 2}}) {
    port.SetReadIntervalValue(interval);
    ASSERT_TRUE(port.SetDefaultTimeouts(true));
    EXPECT_EQ(std::pair(port.Timeouts().readInterval, port.Timeouts().readTotalConstant), std::pair(interval, 0u));
    test::TReceiver receiver(link.pty.Master(), {{0, first}, {pauseMs, second}});
    std::string got(buffer, port.Read(buffer, sizeof buffer, 300));
    receiver.Join();
    if (reads == 2) got.append(buffer, port.Read(buffer, sizeof buffer, 200));
    EXPECT_EQ(got, first + second) << interval;
  }
  EXPECT_TRUE(TakesMs(149, 250, [&] { EXPECT_EQ(port.Read(buffer, sizeof buffer, 150), 0u); }));
  port.Write(second);
  EXPECT_EQ(test::ReadFrom(link.pty.Master(), 300, second.size()), second);
}

// A write that cannot complete (nobody reads the master: its buffers fill up)
// fails after the write time-out. Linux gives the slave of a pseudo-terminal
// whose master closed an end of file, not EIO; the device itself then answers
// EIO, which the error carries.
TEST(SerialPort, WriteTimeoutAndAVanishedDevice) {
  test::TPtyPort link;
  TSerialPort& port = *link.port;
  EXPECT_TRUE(TakesMs(1000, 1300, [&] {
    EXPECT_EQ(Thrown([&] { port.Write(std::string(1 << 20, 'N')); }),
              std::pair(int32_t{kSerialTransmitError}, ETIMEDOUT));
  }));
  EXPECT_TRUE(TakesMs(0, 50, [&] { EXPECT_TRUE(port.Purge()); }));
  link.pty.CloseMaster();
  TLog::Instance().ClearEntries();
  EXPECT_FALSE(port.SetDefaultTimeouts(false));
  EXPECT_TRUE(TLog::Instance().Entries().empty());
  EXPECT_FALSE(port.SetDefaultTimeouts(true));
  EXPECT_FALSE(port.SetReadTimeout(300));
  EXPECT_EQ(test::LoggedTexts(), (std::vector<std::string>{"COMM Error: GetCommTimeOuts",
                                                           "COMM Error: SetCommTimeOuts2"}));
  char buffer[16];
  EXPECT_TRUE(TakesMs(0, 100, [&] {  // no waiting for a port that is gone
    EXPECT_EQ(Thrown([&] { port.Read(buffer, sizeof buffer, 500); }), std::pair(int32_t{kSerialPortClosed}, EIO));
  }));
  EXPECT_EQ(Thrown([&] { port.Write("$PXXX\r\n"); }), std::pair(int32_t{kSerialTransmitError}, EIO));
  EXPECT_TRUE(TakesMs(100, 300, [&] { EXPECT_FALSE(port.Purge()); }));  // tried again after a pause
  EXPECT_EQ(port.LastError(), EIO);
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
    TNmeaLineReader reader(100);  // the silence of a TCP source is reported, not logged
    TErrorSink errors;
    TLog::Instance().ClearEntries();
    std::string line;
    EXPECT_EQ(reader.ReadLine(*port, line, errors), -1);
    EXPECT_EQ(std::pair(errors.Records().at(0).message, test::LoggedTexts().size()),
              std::pair(std::string(kNmeaSilenceText), size_t{0}));
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
      {3, "", 5, "Error en la recepcion lasterror= 5 (Input/output error)"},
      {6, "", 0, "Error default"},
      {-1, "x", 0, "Error default x"},
  };
  for (const auto& [code, detail, lastError, text] : cases) {
    const TXErrorRScom error(code, detail, lastError);
    EXPECT_EQ(std::tuple(error.what(), error.Code(), error.Detail(), error.LastError()),
              std::tuple(text, code, detail, lastError));
  }
}

const std::string kNoNmea = kNmeaNoNmeaText;
const std::string kSilence = kNmeaSilenceText;
const std::string kGga = Nmea("GPGGA,101500.00,4124.8963,N,00211.6411,E,1,07,1.2,12.0,M,49.6,M,,");
const std::string kRmc = Nmea("GPRMC,101500.00,A,4124.8963,N,00211.6411,E,0.1,,150624,,,A");
const std::string kGsa = Nmea("GPGSA,A,3,04,05,,09,12,,,24,,,,,2.5,1.3,2.1");

// One reader on a pseudo-terminal per row, chunks sent on their schedule:
// the lines ReadLine gives in turn (-1 gives ""), how long the first read
// takes, where it ends, what it leaves in the buffer, the error and log
// entry. Silence leaves the "@" marker; 99 bytes and the "@" are still a
// short buffer, 100 are garbage (control bytes logged as dots), after which
// arriving bytes no longer keep the read alive; each read counts 100 ms.
TEST(NmeaLineReader, Scenarios) {
  const std::string noise = std::string("\x10\x06\xfe garbage\r\n", 13), cut = "$GPGGA,1015";
  const std::string bareLf = "$GPGLL,4124.8963,N,00211.6411,E,101015.00,A,A*6C\n";
  const std::string short99 = "\x01" + std::string(98, '~'), garbage = "\x01" + std::string(99, '~');
  std::vector<TChunk> trickle = {{0, "$GPGLL,4124.8963"}};  // 800 ms for a line, 300 ms time-out
  for (int i = 0; i < 9; ++i) trickle.push_back({80, ","});
  trickle.push_back({80, "*00\r\n"});
  const std::string packet = std::string("\x10\x0e\x03\xfe", 4) + std::string(34, 'B') + "\x10\x03";
  std::vector<TChunk> binary(20, TChunk{40, packet});
  binary.insert(binary.begin(), TChunk{0, packet + packet + packet});
  struct TCase {
    int timeoutMs;
    std::vector<TChunk> chunks;
    std::vector<std::string> lines;
    long minMs, maxMs;
    int firstEnd;  // 0: the first line's size less one
    std::string left, error = {}, detail = {}, logged = {};
  };
  const std::string any = "?";  // not checked
  const auto endAfter = [](const std::string& before, const std::string& line) {
    return static_cast<int>(before.size() + line.size() - 1);
  };
  const TCase cases[] = {
      {1000, {{0, kRmc.substr(0, 10)}, {60, kRmc.substr(10, 25)}, {60, kRmc.substr(35)}}, {kRmc}, 100, 1000, 0, ""},
      {1000, {{0, noise + kGga}}, {kGga}, 0, 1000, endAfter(noise, kGga), ""},
      {1000, {{0, cut + kRmc}}, {kRmc}, 0, 1000, endAfter(cut, kRmc), ""},  // cut short by the next
      {1000, {{0, kGga + kRmc + kGsa.substr(0, 12)}, {150, kGsa.substr(12)}}, {kGga, kRmc, kGsa}, 0, 1000, 0,
       kRmc + kGsa.substr(0, 12)},
      {1000, {{0, bareLf + kGga}}, {bareLf, kGga}, 0, 1000, 0, kGga},
      {300, {}, {""}, 300, 450, -1, "@", kSilence, "", "COMM Error: " + kSilence},
      {300, {{0, short99}}, {""}, 300, 450, -1, short99 + "@", kSilence, "", "COMM Error: " + kSilence},
      {300, {{0, garbage}}, {""}, 190, 300, -1, garbage + "@", kNoNmea, garbage + "@",
       "COMM Error: " + kNoNmea + " ." + garbage.substr(1) + "@"},
      {300, trickle, {"$GPGLL,4124.8963,,,,,,,,,*00\r\n"}, 700, 1200, 0, ""},
      {300, binary, {""}, 0, 200, -1, any, any},
  };
  for (const TCase& c : cases) {
    SCOPED_TRACE(c.lines.front() + " after " + std::to_string(c.chunks.size()) + " chunks");
    test::TPtyPort link;
    TConfig config;
    config.Comm_NNEA_Timeout = c.timeoutMs;
    TNmeaLineReader reader(config);
    TErrorSink errors;
    TLog::Instance().ClearEntries();
    test::TReceiver receiver(link.pty.Master(), c.chunks);
    std::string line = "stale";
    int end = 0;
    EXPECT_TRUE(TakesMs(c.minMs, c.maxMs, [&] { end = reader.ReadLine(*link.port, line, errors); }));
    EXPECT_EQ(end, c.firstEnd ? c.firstEnd : static_cast<int>(c.lines[0].size() - 1));
    EXPECT_EQ(reader.Buffer(), c.left == any ? reader.Buffer() : c.left);
    std::vector<std::string> lines = {line};
    for (; lines.size() < c.lines.size(); lines.push_back(line)) EXPECT_GT(reader.ReadLine(*link.port, line, errors), 0);
    EXPECT_EQ(lines, c.lines);
    if (c.error == any) continue;
    std::string reported;
    for (const auto& record : errors.Records()) reported += record.message + "|" + record.detail + ";";
    EXPECT_EQ(reported, c.error.empty() ? "" : c.error + "|" + c.detail + ";");
    EXPECT_EQ(test::LoggedTexts(), c.logged.empty() ? std::vector<std::string>{} : std::vector<std::string>{c.logged});
  }
}

// Up to 2999 ms the time-out ends the loop after one read; above, the loop
// goes on reading for what is left of it. No marker; a part line is kept.
TEST(NmeaLineReader, SingleReadReturnsAtOnce) {
  test::TPtyPort link;
  std::string line;
  for (const auto& [timeoutMs, minMs, maxMs] : {std::tuple{2999, 0L, 50L}, {3200, 200L, 400L}}) {
    TNmeaLineReader reader(timeoutMs);
    EXPECT_TRUE(TakesMs(minMs, maxMs, [&] { EXPECT_EQ(reader.ReadLineOnce(*link.port, line), -1); }));
    EXPECT_EQ(reader.Buffer(), "") << timeoutMs;
  }
  TNmeaLineReader reader;
  for (const auto& [sent, end, buffer] : {std::tuple{kRmc.substr(0, 20), -1, kRmc.substr(0, 20)},
                                          {kRmc.substr(20) + kGga, static_cast<int>(kRmc.size() - 1), kGga}}) {
    ASSERT_TRUE(test::WriteAllTo(link.pty.Master(), sent));
    std::this_thread::sleep_for(std::chrono::milliseconds(30));
    EXPECT_EQ(std::pair(reader.ReadLineOnce(*link.port, line), reader.Buffer()), std::pair(end, buffer));
  }
  EXPECT_EQ(line, kRmc);
  EXPECT_EQ(reader.ReadLineOnce(*link.port, line), static_cast<int>(kGga.size() - 1));
}

TEST(NmeaProtocol, DetectionOnAReceiver) {
  const std::string gga = Nmea("GPGGA,123519,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,");
  const std::string noFix = Nmea("GPGGA,123519,,,,,0,00,,,M,,M,,");  // still a receiver
  const std::string gsv = Nmea("GPGSV,3,1,11,03,03,111,00,04,15,270,00,06,01,010,00,13,06,292,00");
  const std::string zda = Nmea("GPZDA,201530.00,04,07,2002,00,00");
  const std::string none;
  struct TCase {
    std::string sent;
    bool skip, cancel, found;
    std::string_view error;  // the last one put in the sink
  };
  const TCase cases[] = {
      {gsv, false, false, true, none},  // only GSV at first
      {zda + noFix, false, false, true, none},
      {zda + zda + zda + zda + zda + gga, false, false, false, kNmeaDetectUnusable},
      {zda + zda + zda + zda + gga, false, false, true, none},
      {"$GPGGA,1*4\r\n" + gga, false, false, false, kNmeaErrorChecksumSection},
      {"", false, false, false, kNmeaSilenceText},
      {"", true, false, true, none},
      {zda + zda, false, true, false, "Cancelled"},
  };
  for (const TCase& c : cases) {
    SCOPED_TRACE(c.sent);
    test::TPtyPort link;
    test::TReceiver receiver(link.pty.Master(), {{20, c.sent}});
    TNmeaProtocol protocol({}, 300);
    TProgress progress;
    if (c.cancel) progress.Cancel();
    std::string result;
    TErrorSink errors;
    EXPECT_EQ(protocol.Detect(*link.port, result, errors, &progress, c.skip), c.found);
    EXPECT_EQ(result, c.found ? "NMEA" : "");
    EXPECT_EQ(errors.Records().empty() ? "" : errors.Records().back().message, c.error);
  }
}

// Both commands on one receiver: detection keeps the index of the protocol
// found; the moving-map test sends every point and ends on a closed port.
TEST(CommCommands, AutodetectAndTestMovingMap) {
  test::TPtyPort link;
  auto& [pty, port] = link;
  test::TReceiver receiver(pty.Master(), {{20, Nmea("GPGSV,1,1,01,03,03,111,00")}});
  std::vector<std::unique_ptr<TGpsProtocol>> protocols;
  protocols.push_back(std::make_unique<TNmeaProtocol>(TNmeaReceiverSettings{}, 300));
  TAutoDetectProtocol protocol(std::move(protocols));
  EXPECT_EQ(std::pair(protocol.LongName(), protocol.ShortName()), std::pair(std::string_view("Auto-Detect"), std::string_view("Auto")));
  TProgress cancelled;
  cancelled.Cancel();
  std::string result;
  TErrorSink errors;
  EXPECT_FALSE(protocol.Detect(*port, result, errors, &cancelled, false));
  EXPECT_EQ(protocol.LastDetected(), -1);
  TConfig config;
  config.Last_Autodetect_Protocol = 7;
  TThreadComm thread;
  ASSERT_TRUE(thread.Start(std::string(kCommandAutodetect),
                           AutodetectGpsCommand(*port, protocol, config, result, errors)));
  EXPECT_TRUE(thread.Wait());
  EXPECT_EQ(config.Last_Autodetect_Protocol, 0);

  TTrack track;
  for (int i = 0; i < 3; ++i)
    track.Anyade_Punto_Temps(48.1 + i * 0.001, 11.5, 500, TDateTime::FromCalendar(2024, 6, 5, 10, 0, i));
  TNmeaTestOutputOptions options;
  options.pause = std::chrono::milliseconds(10);
  ASSERT_TRUE(thread.Start(std::string(kCommandTestMovingMap), TestMovingMapCommand(*port, {&track}, options)));
  EXPECT_TRUE(thread.Wait());
  std::string expected;
  for (const TrkPnt& point : track.Points())
    expected += BuildNmeaSentence("GPGGA", point, 4) + BuildNmeaSentence("GPRMC", point, 4);
  EXPECT_EQ(test::ReadFrom(pty.Master(), 200), expected);
  pty.CloseMaster();  // the receiver's end goes away
  pty.CloseOwnSlave();
  ASSERT_TRUE(thread.Start(std::string(kCommandTestMovingMap), TestMovingMapCommand(*port, {&track}, options)));
  EXPECT_FALSE(thread.Wait());
  EXPECT_TRUE(thread.ErrorText().starts_with("TXErrorRScom error: Error, en la transmision!"));
}

// Failures end the command and are logged with their kind; one command at
// a time, and a cancel is seen between steps.
TEST(ThreadComm, FailuresCancelAndOneCommandAtATime) {
  const std::tuple<std::function<bool(TProgress&)>, TLogKind, std::string> cases[] = {
      {[](TProgress&) -> bool { throw TXErrorRScom(kSerialPortClosed, "COM3"); },
       TLogKind::CommError, "TXErrorRScom error: Error, puerto cerrado! COM3"},
      {[](TProgress&) -> bool { throw std::runtime_error("bad packet"); }, TLogKind::Error,
       "Error Exception en TThreadComm::Run () bad packet"},
      {[](TProgress&) -> bool { throw 7; }, TLogKind::Error, "Error indeterminado 2 (...) "},
  };
  TThreadComm thread;
  for (const auto& [command, kind, text] : cases) {
    TLog::Instance().ClearEntries();
    ASSERT_TRUE(thread.Start("x", command));
    EXPECT_FALSE(thread.Wait());
    const std::vector<TLogEntry> logged = TLog::Instance().Entries();
    EXPECT_EQ(std::tuple(thread.ErrorText(), logged.size(), logged.at(0).kind, logged[0].text),
              std::tuple(text, 1u, kind, text));
  }
  std::atomic<bool> started{false};
  ASSERT_TRUE(thread.Start("long", [&](TProgress& progress) {
    started = true;
    progress.SetTotal(1000000);
    while (progress.Step()) std::this_thread::sleep_for(std::chrono::milliseconds(1));
    return !progress.Cancelled();
  }));
  while (!started) std::this_thread::yield();
  EXPECT_TRUE(thread.Running());
  EXPECT_FALSE(thread.Start("another", [](TProgress&) { return true; }));
  thread.Cancel();
  EXPECT_FALSE(thread.Wait());
  EXPECT_FALSE(thread.Running());
  ASSERT_TRUE(thread.Start("again", [](TProgress& progress) { return progress.Step(); }));
  EXPECT_TRUE(thread.Wait());  // starts afresh, not cancelled
  EXPECT_EQ(thread.ErrorText(), "");
}

// Uses up the program's allowance of silence entries, so it stays last.
TEST(NmeaLineReader, SilenceIsLoggedAHundredTimesAtMost) {
  test::TPtyPort link;
  TNmeaLineReader reader(0);  // gives up without reading
  TErrorSink errors;
  TLog::Instance().ClearEntries();
  std::string line;
  for (int i = 0; i < 121; ++i) {
    reader.ClearBuffer();  // markers would pile up into "no-nmea bytes"
    reader.ReadLine(*link.port, line, errors);
  }
  EXPECT_LE(test::LoggedTexts().size(), 100u);  // earlier tests of this program used a few
  EXPECT_GE(test::LoggedTexts().size(), 95u);
  EXPECT_EQ(errors.Records().size(), 121u);
}

}  // namespace
}  // namespace velantis
