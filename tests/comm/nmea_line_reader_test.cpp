#include "comm/nmea_line_reader.h"

#include <filesystem>
#include <fstream>

#include <gtest/gtest.h>

#include "app/config.h"
#include "app/log.h"
#include "comm/error_sink.h"
#include "comm/serial_error.h"
#include "comm/serial_port.h"
#include "tests/comm/port_doubles.h"
#include "tests/support/testdata.h"

namespace velantis {
namespace {

using test::ElapsedMs;
using test::Sentence;
using test::TChunk;
using test::TTestClock;

const std::string kNoNmea =
    "Error: Receiving no-nmea bytes. Perhaps the GPS is using an other protocol.";
const std::string kSilence = " Error receiving NMEA, no message received! ";

const std::string kGga =
    Sentence("GPGGA,101500.00,4124.8963,N,00211.6411,E,1,07,1.2,12.0,M,49.6,M,,");
const std::string kRmc = Sentence("GPRMC,101500.00,A,4124.8963,N,00211.6411,E,0.1,,150624,,,A");
const std::string kGsa = Sentence("GPGSA,A,3,04,05,,09,12,,,24,,,,,2.5,1.3,2.1");

std::vector<std::string> LoggedTexts() {
  std::vector<std::string> texts;
  for (const TLogEntry& entry : TLog::Instance().Entries()) texts.push_back(FormatLogEntry(entry));
  return texts;
}

size_t CountLogged(const std::string& text) {
  size_t count = 0;
  for (const std::string& logged : LoggedTexts()) count += logged == text;
  return count;
}

TEST(NmeaLineReader, LinesComeOutWhole) {
  const std::string noise = std::string("\x10\x06\xfe garbage\r\n", 13);
  const std::string cut = "$GPGGA,1015";
  const std::string badSum =
      "$GPGGA,101501.00,4124.8970,N,00211.6420,E,1,07,1.2,12.1,M,49.6,M,,*00\r\n";
  const std::string bareLf = "$GPGLL,4124.8963,N,00211.6411,E,101015.00,A,A*6C\n";
  const std::string gsv1 =
      Sentence("GPGSV,2,1,05,07,79,048,42,08,41,089,37,11,17,292,33,13,33,175,40");
  const std::string gsv2 = Sentence("GPGSV,2,2,05,30,10,320,");
  struct TCase {
    const char* what;
    std::vector<TChunk> chunks;
    std::vector<std::string> lines;
    size_t firstEnd;             // where the first line feed is in what was received
    std::string leftAfterFirst;  // the receive buffer after the first line
  };
  const TCase cases[] = {
      {"whole", {{0, kGga}}, {kGga}, kGga.size() - 1, ""},
      {"split across reads",
       {{0, kRmc.substr(0, 10)}, {60, kRmc.substr(10, 25)}, {60, kRmc.substr(35)}},
       {kRmc},
       kRmc.size() - 1,
       ""},
      {"noise before the start", {{0, noise + kGga}}, {kGga}, noise.size() + kGga.size() - 1, ""},
      {"cut short by the next sentence",
       {{0, cut + kRmc}},
       {kRmc},
       cut.size() + kRmc.size() - 1,
       ""},
      {"several in one read, the rest kept",
       {{0, kGga + kRmc + kGsa.substr(0, 12)}, {150, kGsa.substr(12)}},
       {kGga, kRmc, kGsa},
       kGga.size() - 1,
       kRmc + kGsa.substr(0, 12)},
      {"only satellites in view", {{0, gsv1 + gsv2}}, {gsv1, gsv2}, gsv1.size() - 1, gsv2},
      {"bad checksum", {{0, badSum}}, {badSum}, badSum.size() - 1, ""},
      {"line feed without carriage return",
       {{0, bareLf + kGga}},
       {bareLf, kGga},
       bareLf.size() - 1,
       kGga},
  };
  for (const TCase& c : cases) {
    SCOPED_TRACE(c.what);
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
      if (i == 0) {
        EXPECT_EQ(end, static_cast<int>(c.firstEnd));
        EXPECT_EQ(reader.Buffer(), c.leftAfterFirst);
      }
    }
    EXPECT_EQ(reader.Buffer(), "");
    EXPECT_TRUE(errors.Records().empty());
  }
}

TEST(NmeaLineReader, SilentReceiverTimesOutAfterTheSetting) {
  test::TPtyPair pty;
  const auto port = OpenSerialPort(pty.SlaveName(), 4800);
  TConfig config;
  config.Comm_NNEA_Timeout = 300;
  TNmeaLineReader reader(config);
  TErrorSink errors;
  TLog::Instance().ClearEntries();

  std::string line = "stale";
  const TTestClock::time_point start = TTestClock::now();
  EXPECT_EQ(reader.ReadLine(*port, line, errors), -1);
  const long took = ElapsedMs(start);
  RecordProperty("SilenceMs", static_cast<int>(took));
  EXPECT_GE(took, 300);
  EXPECT_LT(took, 450);
  EXPECT_EQ(line, "");
  EXPECT_EQ(reader.Buffer(), "@");
  ASSERT_EQ(errors.Records().size(), 1u);
  EXPECT_EQ(errors.Records()[0].message, kSilence);
  EXPECT_EQ(LoggedTexts(), std::vector<std::string>{"COMM Error: " + kSilence});

  // The marker goes with the next line, as anything before its "$" does.
  test::TReceiver receiver(pty.Master(), {{0, kGsa}});
  EXPECT_EQ(reader.ReadLine(*port, line, errors), static_cast<int>(kGsa.size()));
  EXPECT_EQ(line, kGsa);
}

TEST(NmeaLineReader, NonNmeaBytesAreReportedWithWhatCame) {
  test::TPtyPair pty;
  const auto port = OpenSerialPort(pty.SlaveName(), 4800);
  TNmeaLineReader reader(300);
  TErrorSink errors;
  TLog::Instance().ClearEntries();
  // A binary protocol talking for a second: 120 bytes at once, then 40 bytes
  // every 40 ms.
  const std::string packet = std::string("\x10\x0e\x03\xfe", 4) + std::string(34, 'B') + "\x10\x03";
  std::vector<TChunk> chunks(20, TChunk{40, packet});
  chunks.insert(chunks.begin(), TChunk{0, packet + packet + packet});
  test::TReceiver receiver(pty.Master(), chunks);

  std::string line;
  const TTestClock::time_point start = TTestClock::now();
  EXPECT_EQ(reader.ReadLine(*port, line, errors), -1);
  const long took = ElapsedMs(start);
  RecordProperty("NoNmeaMs", static_cast<int>(took));
  // With 100 bytes in the buffer arriving bytes no longer keep the read
  // alive, and each read counts at least its 100 ms although a packet ends
  // it sooner: three reads, about 100 ms, where the time-out is 300.
  EXPECT_LT(took, 200);

  ASSERT_EQ(errors.Records().size(), 1u);
  const TErrorRecord& record = errors.Records()[0];
  EXPECT_EQ(record.message, kNoNmea);
  EXPECT_EQ(record.detail, reader.Buffer());
  ASSERT_GT(record.detail.size(), 3 * packet.size());
  EXPECT_EQ(record.detail.substr(0, 3 * packet.size()), packet + packet + packet);
  EXPECT_EQ(record.detail.back(), '@');

  const std::vector<std::string> logged = LoggedTexts();
  ASSERT_EQ(logged.size(), 1u);
  const std::string head = "COMM Error: " + kNoNmea + " ";
  EXPECT_EQ(logged[0].substr(0, head.size()), head);
  EXPECT_EQ(logged[0].substr(head.size(), 6),
            "...\xfe"
            "BB");  // control bytes as dots
  EXPECT_EQ(logged[0].size(), head.size() + record.detail.size());
}

// The marker counts: 99 bytes and the "@" are still a short buffer, 100 and
// the "@" are garbage.
TEST(NmeaLineReader, HundredBytesSeparateSilenceFromGarbage) {
  struct TCase {
    size_t noiseBytes;
    std::string message;
    bool withDetail;
  };
  const TCase cases[] = {{99, kSilence, false}, {100, kNoNmea, true}};
  for (const TCase& c : cases) {
    test::TPtyPair pty;
    const auto port = OpenSerialPort(pty.SlaveName(), 4800);
    TNmeaLineReader reader(200);
    TErrorSink errors;
    const std::string noise(c.noiseBytes, '~');
    ASSERT_TRUE(test::WriteAllTo(pty.Master(), noise));
    std::string line;
    EXPECT_EQ(reader.ReadLine(*port, line, errors), -1);
    EXPECT_EQ(reader.Buffer(), noise + "@");
    ASSERT_EQ(errors.Records().size(), 1u) << c.noiseBytes;
    EXPECT_EQ(errors.Records()[0].message, c.message) << c.noiseBytes;
    EXPECT_EQ(errors.Records()[0].detail, c.withDetail ? noise + "@" : "") << c.noiseBytes;
  }
}

TEST(NmeaLineReader, TricklingReceiverKeepsTheReadAlive) {
  test::TPtyPair pty;
  const auto port = OpenSerialPort(pty.SlaveName(), 4800);
  TNmeaLineReader reader(300);
  TErrorSink errors;
  // A line that takes 800 ms to arrive, while the buffer stays short.
  std::vector<TChunk> chunks = {{0, "$GPGLL,4124.8963"}};
  for (int i = 0; i < 9; ++i) chunks.push_back({80, ","});
  chunks.push_back({80, "*00\r\n"});
  test::TReceiver receiver(pty.Master(), chunks);

  std::string line;
  const TTestClock::time_point start = TTestClock::now();
  EXPECT_GT(reader.ReadLine(*port, line, errors), 0);
  EXPECT_GE(ElapsedMs(start), 700);
  EXPECT_EQ(line, "$GPGLL,4124.8963,,,,,,,,,*00\r\n");
  EXPECT_TRUE(errors.Records().empty());
}

TEST(NmeaLineReader, SingleReadReturnsAtOnce) {
  test::TPtyPair pty;
  const auto port = OpenSerialPort(pty.SlaveName(), 4800);
  std::string line;
  // Up to 2999 ms the time-out ends the loop after one read; above, the loop
  // goes on reading for what is left of it.
  struct TCase {
    int timeoutMs;
    long minMs, maxMs;
  };
  for (const TCase& c :
       {TCase{kNmeaTimeoutDefaultMs, 0, 50}, TCase{2999, 0, 50}, TCase{3200, 200, 400}}) {
    TNmeaLineReader reader(c.timeoutMs);
    const TTestClock::time_point start = TTestClock::now();
    EXPECT_EQ(reader.ReadLineOnce(*port, line), -1) << c.timeoutMs;
    const long took = ElapsedMs(start);
    RecordProperty("SingleReadMs" + std::to_string(c.timeoutMs), static_cast<int>(took));
    EXPECT_GE(took, c.minMs) << c.timeoutMs;
    EXPECT_LT(took, c.maxMs) << c.timeoutMs;
    EXPECT_EQ(reader.Buffer(), "") << c.timeoutMs;  // no marker
  }

  // What arrives in pieces is kept until the line is complete.
  TNmeaLineReader reader;
  ASSERT_TRUE(test::WriteAllTo(pty.Master(), kRmc.substr(0, 20)));
  std::this_thread::sleep_for(std::chrono::milliseconds(30));
  EXPECT_EQ(reader.ReadLineOnce(*port, line), -1);
  EXPECT_EQ(reader.Buffer(), kRmc.substr(0, 20));
  ASSERT_TRUE(test::WriteAllTo(pty.Master(), kRmc.substr(20) + kGga));
  std::this_thread::sleep_for(std::chrono::milliseconds(30));
  const TTestClock::time_point start = TTestClock::now();
  EXPECT_EQ(reader.ReadLineOnce(*port, line), static_cast<int>(kRmc.size() - 1));
  EXPECT_LT(ElapsedMs(start), 50);
  EXPECT_EQ(line, kRmc);
  // A line already buffered needs no read at all.
  EXPECT_EQ(reader.ReadLineOnce(*port, line), static_cast<int>(kGga.size() - 1));
  EXPECT_EQ(line, kGga);
}

TEST(NmeaLineReader, SilentTcpSourceIsNotLogged) {
  test::TLoopbackServer server;
  const auto port = OpenSerialPort(server.Address(), 4800);
  TNmeaLineReader reader(200);
  TErrorSink errors;
  TLog::Instance().ClearEntries();
  std::string line;
  EXPECT_EQ(reader.ReadLine(*port, line, errors), -1);
  ASSERT_EQ(errors.Records().size(), 1u);
  EXPECT_EQ(errors.Records()[0].message, kSilence);
  EXPECT_TRUE(LoggedTexts().empty());

  // The same source, talking.
  const int peer = server.Accept();
  ASSERT_GE(peer, 0);
  ASSERT_TRUE(test::WriteAllTo(peer, kGga + kRmc));
  EXPECT_GT(reader.ReadLine(*port, line, errors), 0);
  EXPECT_EQ(line, kGga);
}

TEST(NmeaLineReader, FileReplayGivesItsLinesThenEnds) {
  const std::filesystem::path file = test::ScratchDir("line-replay") / "walk.nmea";
  std::ofstream(file, std::ios::binary) << kGga << kRmc << kGsa << "$GPGGA,1016";
  const auto port = OpenSerialPort(file.string(), 4800);
  TNmeaLineReader reader;
  TErrorSink errors;
  std::string line;
  for (const std::string& expected : {kGga, kRmc, kGsa}) {
    EXPECT_GT(reader.ReadLine(*port, line, errors), 0);
    EXPECT_EQ(line, expected);
  }
  try {
    reader.ReadLine(*port, line, errors);
    ADD_FAILURE() << "read past the end";
  } catch (const TXErrorRScom& error) {
    EXPECT_EQ(error.Code(), kSerialPortClosed);
  }
  EXPECT_EQ(reader.Buffer(), "$GPGGA,1016");
}

TEST(NmeaLineReader, ReceiverVanishingMidSentenceEndsTheRead) {
  test::TPtyPair pty;
  const auto port = OpenSerialPort(pty.SlaveName(), 4800);
  TNmeaLineReader reader(1000);
  TErrorSink errors;
  ASSERT_TRUE(test::WriteAllTo(pty.Master(), "$GPRMC,1015"));
  std::thread unplug([&pty] {
    std::this_thread::sleep_for(std::chrono::milliseconds(150));
    pty.CloseMaster();
  });
  std::string line;
  const TTestClock::time_point start = TTestClock::now();
  try {
    reader.ReadLine(*port, line, errors);
    ADD_FAILURE() << "no error";
  } catch (const TXErrorRScom& error) {
    EXPECT_EQ(error.Code(), kSerialPortClosed);
  }
  unplug.join();
  EXPECT_LT(ElapsedMs(start), 500);
  EXPECT_EQ(reader.Buffer(), "$GPRMC,1015");
}

// Uses up the program's allowance of silence entries, so it stays last.
TEST(NmeaLineReader, SilenceIsLoggedAHundredTimesAtMost) {
  test::TPtyPair pty;
  const auto port = OpenSerialPort(pty.SlaveName(), 4800);
  TNmeaLineReader reader(0);  // gives up without reading
  TErrorSink errors;
  TLog::Instance().ClearEntries();
  std::string line;
  for (int i = 0; i < 120; ++i) {
    reader.ClearBuffer();  // markers would pile up into "no-nmea bytes"
    reader.ReadLine(*port, line, errors);
  }
  const size_t logged = CountLogged("COMM Error: " + kSilence);
  // Earlier tests of this program may have used a few.
  EXPECT_LE(logged, 100u);
  EXPECT_GE(logged, 95u);
  reader.ClearBuffer();
  reader.ReadLine(*port, line, errors);
  EXPECT_EQ(CountLogged("COMM Error: " + kSilence), logged);
  EXPECT_EQ(errors.Records().size(), 121u);
}

}  // namespace
}  // namespace velantis
