#include "comm/comm_commands.h"

#include <gtest/gtest.h>

#include "app/log.h"
#include "comm/nmea_protocol.h"
#include "tests/comm/port_doubles.h"

namespace velantis {
namespace {

TEST(CommCommands, AutodetectGpsKeepsTheProtocolFound) {
  test::TPtyPair pty;
  const std::unique_ptr<TSerialPort> port = OpenSerialPort(pty.SlaveName(), 4800);
  test::TReceiver receiver(pty.Master(), {{20, test::Sentence("GPGSV,1,1,01,03,03,111,00")}});
  std::vector<std::unique_ptr<TGpsProtocol>> protocols;
  protocols.push_back(std::make_unique<TNmeaProtocol>(TNmeaReceiverSettings{}, 300));
  TAutoDetectProtocol protocol(std::move(protocols));
  TConfig config;
  config.Last_Autodetect_Protocol = 7;
  std::string result;
  TErrorSink errors;
  TThreadComm thread;
  ASSERT_TRUE(thread.Start(std::string(kCommandAutodetect),
                           AutodetectGpsCommand(*port, protocol, config, result, errors)));
  EXPECT_TRUE(thread.Wait());
  EXPECT_EQ(result, "NMEA");
  EXPECT_EQ(config.Last_Autodetect_Protocol, 0);
}

TEST(CommCommands, TestMovingMapSendsEveryPointAndEndsOnAClosedPort) {
  TTrack track;
  for (int i = 0; i < 3; ++i) {
    track.Anyade_Punto_Temps(48.1 + i * 0.001, 11.5, 500, TDateTime::FromCalendar(2024, 6, 5, 10, 0, i));
  }
  TNmeaTestOutputOptions options;
  options.pause = std::chrono::milliseconds(10);
  test::TPtyPair pty;
  const std::unique_ptr<TSerialPort> port = OpenSerialPort(pty.SlaveName(), 4800);
  TThreadComm thread;
  ASSERT_TRUE(thread.Start(std::string(kCommandTestMovingMap),
                           TestMovingMapCommand(*port, {&track}, options)));
  EXPECT_TRUE(thread.Wait());
  const std::string sent = test::ReadFrom(pty.Master(), 200);
  size_t gga = 0, rmc = 0;
  for (size_t at = sent.find("$GPGGA,"); at != std::string::npos; at = sent.find("$GPGGA,", at + 1)) ++gga;
  for (size_t at = sent.find("$GPRMC,"); at != std::string::npos; at = sent.find("$GPRMC,", at + 1)) ++rmc;
  EXPECT_EQ(gga, 3u);
  EXPECT_EQ(rmc, 3u);

  // The receiver's end goes away: the write error ends the command and is logged.
  pty.CloseMaster();
  pty.CloseOwnSlave();
  TLog::Instance().ClearEntries();
  ASSERT_TRUE(thread.Start(std::string(kCommandTestMovingMap),
                           TestMovingMapCommand(*port, {&track}, options)));
  EXPECT_FALSE(thread.Wait());
  EXPECT_EQ(thread.ErrorText().rfind("TXErrorRScom error: Error, en la transmision!", 0), 0u)
      << thread.ErrorText();
}

}  // namespace
}  // namespace velantis
