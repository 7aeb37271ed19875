// Protocol detection on a pseudo-terminal and the communication thread's
// commands: what is found, what is sent, how failures end a command.
#include "comm/comm_commands.h"

#include "comm/nmea_line_reader.h"
#include "comm/nmea_protocol.h"
#include "comm/nmea_sentence_tx.h"
#include "comm/serial_error.h"
#include "tests/comm/comm_test_support.h"

namespace velantis {
namespace {

using test::Nmea;

TEST(NmeaProtocol, DetectionOnAReceiver) {
  const std::string gga = Nmea("GPGGA,123519,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,");
  const std::string noFix = Nmea("GPGGA,123519,,,,,0,00,,,M,,M,,");  // still a receiver
  const std::string gsv = Nmea("GPGSV,3,1,11,03,03,111,00,04,15,270,00,06,01,010,00,13,06,292,00");
  const std::string zda = Nmea("GPZDA,201530.00,04,07,2002,00,00");
  const std::string none;
  struct TCase {
    std::vector<std::string> lines;
    bool skip, cancel, found;
    std::string_view error;  // the last one put in the sink
  };
  const TCase cases[] = {
      {{zda, gga}, false, false, true, none},
      {{gsv}, false, false, true, none},  // only GSV at first
      {{zda, noFix}, false, false, true, none},
      {{zda, zda, zda, zda, zda, gga}, false, false, false, kNmeaDetectUnusable},
      {{zda, zda, zda, zda, gga}, false, false, true, none},
      {{"$GPGGA,1*4\r\n", gga}, false, false, false, kNmeaErrorChecksumSection},
      {{}, false, false, false, kNmeaSilenceText},
      {{}, true, false, true, none},
      {{zda, zda}, false, true, false, "Cancelled"},
  };
  for (const TCase& c : cases) {
    SCOPED_TRACE(c.lines.empty() ? "silence" : c.lines.back());
    test::TPtyPort link;
    auto& [pty, port] = link;
    std::string all;
    for (const std::string& line : c.lines) all += line;
    test::TReceiver receiver(pty.Master(), {{20, all}});
    TNmeaProtocol protocol({}, 300);
    TProgress progress;
    if (c.cancel) progress.Cancel();
    std::string result;
    TErrorSink errors;
    EXPECT_EQ(protocol.Detect(*port, result, errors, &progress, c.skip), c.found);
    EXPECT_EQ(result, c.found ? "NMEA" : "");
    EXPECT_EQ(errors.Records().empty() ? "" : errors.Records().back().message, c.error);
  }
}

TEST(CommCommands, AutodetectKeepsTheProtocolFound) {
  test::TPtyPair pty;
  const auto port = OpenSerialPort(pty.SlaveName(), 4800);
  test::TReceiver receiver(pty.Master(), {{20, Nmea("GPGSV,1,1,01,03,03,111,00")}});
  std::vector<std::unique_ptr<TGpsProtocol>> protocols;
  protocols.push_back(std::make_unique<TNmeaProtocol>(TNmeaReceiverSettings{}, 300));
  TAutoDetectProtocol protocol(std::move(protocols));
  EXPECT_EQ(std::pair(protocol.LongName(), protocol.ShortName()), std::pair(std::string_view("Auto-Detect"), std::string_view("Auto")));
  TProgress cancelled;
  cancelled.Cancel();
  std::string none;
  TErrorSink quiet;
  EXPECT_FALSE(protocol.Detect(*port, none, quiet, &cancelled, false));
  EXPECT_EQ(protocol.LastDetected(), -1);
  TConfig config;
  config.Last_Autodetect_Protocol = 7;
  std::string result;
  TErrorSink errors;
  TThreadComm thread;
  ASSERT_TRUE(thread.Start(std::string(kCommandAutodetect),
                           AutodetectGpsCommand(*port, protocol, config, result, errors)));
  EXPECT_TRUE(thread.Wait());
  EXPECT_EQ(config.Last_Autodetect_Protocol, 0);
}

TEST(CommCommands, TestMovingMapSendsEveryPointAndEndsOnAClosedPort) {
  TTrack track;
  for (int i = 0; i < 3; ++i)
    track.Anyade_Punto_Temps(48.1 + i * 0.001, 11.5, 500, TDateTime::FromCalendar(2024, 6, 5, 10, 0, i));
  TNmeaTestOutputOptions options;
  options.pause = std::chrono::milliseconds(10);
  test::TPtyPair pty;
  const auto port = OpenSerialPort(pty.SlaveName(), 4800);
  TThreadComm thread;
  ASSERT_TRUE(thread.Start(std::string(kCommandTestMovingMap),
                           TestMovingMapCommand(*port, {&track}, options)));
  EXPECT_TRUE(thread.Wait());
  std::string expected;
  for (const TrkPnt& point : track.Points())
    expected += BuildNmeaSentence("GPGGA", point, 4) + BuildNmeaSentence("GPRMC", point, 4);
  EXPECT_EQ(test::ReadFrom(pty.Master(), 200), expected);
  pty.CloseMaster();  // the receiver's end goes away
  pty.CloseOwnSlave();
  ASSERT_TRUE(thread.Start(std::string(kCommandTestMovingMap),
                           TestMovingMapCommand(*port, {&track}, options)));
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
    EXPECT_EQ(thread.ErrorText(), text);
    ASSERT_EQ(TLog::Instance().Entries().size(), 1u);
    EXPECT_EQ(std::pair(TLog::Instance().Entries()[0].kind, TLog::Instance().Entries()[0].text), std::pair(kind, text));
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

}  // namespace
}  // namespace velantis
