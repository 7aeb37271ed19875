// velantis detect, nmea and live on live sources: a simulated receiver behind
// a pseudo-terminal, a TCP source that goes away, a port that does not exist.
#include <gtest/gtest.h>

#include <csignal>
#include <ctime>
#include <fstream>
#include <regex>

#include "tests/cli/run_velantis.h"
#include "tests/support/nmea_link.h"

namespace velantis::test {
namespace {

const std::string kRmc = Nmea("GPRMC,123520,A,4807.040,N,01131.010,E,022.4,084.4,230394,003.1,W");
const std::string kGga = Nmea("GPGGA,123519,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,");

TEST(ReceiverCommands, DetectOnAPseudoTerminalAndErrors) {
  const std::string missing = "/nonexistent/ttyVELANTIS";
  const std::tuple<std::vector<TChunk>, std::string, int, std::string, std::string> cases[] = {
      {{{50, kGga}, {200, kGga}}, "", 0, "NMEA\n", ""},
      // Silence: the reader gives up after Comm_NNEA_Timeout (2 s).
      {{}, "", 1, "", "velantis:  Error receiving NMEA, no message received! \n"},
      {{}, missing, 1, "",
       "velantis: Error de Windows: " + missing + " lasterror= 2 (No such file or directory)\n"},
  };
  for (const auto& [sent, port, exitCode, out, err] : cases) {
    TPtyPair pty;
    TReceiver receiver(pty.Master(), sent);
    const TRunResult run = RunVelantis({"detect", port.empty() ? pty.SlaveName() : port});
    EXPECT_EQ(std::tie(run.exitCode, run.out, run.err), std::tie(exitCode, out, err));
  }
}

// A TCP source until it closes: the GGA carries no date (today's, until the
// RMC brings one); a lost fix prints once, with no position. A file of the
// same sentences says the same in words.
TEST(ReceiverCommands, NmeaFollowsATcpSourceAndPrintsALostFixOnce) {
  const std::string sent = kGga + kRmc + Nmea("GPRMC,123521,V,,,,,,,230394,,") +
                           Nmea("GPRMC,123522,V,,,,,,,230394,,") +
                           Nmea("GPRMC,123523,A,4807.040,N,01131.010,E,022.4,084.4,230394,003.1,W");
  TLoopbackServer server;
  std::thread sender([&] {
    const int client = server.Accept();
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    WriteAllTo(client, sent);
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    server.CloseClient();
  });
  const TRunResult run = RunVelantis({"nmea", "--json", server.Address()});
  sender.join();
  const std::time_t now = std::time(nullptr);
  char today[16];
  std::strftime(today, sizeof today, "%Y-%m-%d", std::gmtime(&now));
  const std::string moving = "\"speed_kmh\":41.485,\"course_deg\":84.4000,\"valid\":";
  const std::string position = "\"lat\":48.117333333,\"lon\":11.516833333,\"alt\":null,";
  EXPECT_EQ(run.out,
            "{\"time\":\"" + std::string(today) + "T12:35:19.000Z\",\"lat\":48.117300000,\"lon\":11.516666667,"
            "\"alt\":545.4,\"speed_kmh\":0.000,\"course_deg\":0.0000,\"valid\":true,\"sats\":8,\"hdop\":0.9}\n"
            "{\"time\":\"1994-03-23T12:35:20.000Z\"," + position + moving + "true,\"sats\":8,\"hdop\":0.9}\n"
            "{\"time\":\"1994-03-23T12:35:21.000Z\",\"lat\":null,\"lon\":null,\"alt\":null," + moving +
            "false,\"sats\":8,\"hdop\":0.9}\n"
            "{\"time\":\"1994-03-23T12:35:23.000Z\"," + position + moving + "true,\"sats\":8,\"hdop\":0.9}\n");
  EXPECT_EQ(std::pair(run.exitCode, run.err), std::pair(1, "velantis: Error, puerto cerrado! " + server.Address() + "\n"));
  const std::string capture = (ScratchDir("nmea-lost") / "lost.nmea").string();
  std::ofstream(capture, std::ios::binary) << sent.substr(kGga.size());
  EXPECT_EQ(RunVelantis({"nmea", capture}).out,
            "1994-03-23T12:35:20.000Z 48.117333333 11.516833333 - 41.485 84.4000 valid 0 0\n"
            "1994-03-23T12:35:21.000Z - - - 41.485 84.4000 invalid 0 0\n"
            "1994-03-23T12:35:23.000Z 48.117333333 11.516833333 - 41.485 84.4000 valid 0 0\n");
}

// One second of a receiver: the RMC (with its date) then the GGA.
std::string Second(int s) {
  const std::string time = (s < 10 ? "12350" : "1235") + std::to_string(s), lat = "4807." + std::to_string(100 + s);
  return Nmea("GPRMC," + time + ",A," + lat + ",N,01131.000,E,022.4,084.4,230394,003.1,W") +
         Nmea("GPGGA," + time + "," + lat + ",N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,");
}
size_t CountLines(const std::string& text, const std::string& start) {
  const std::regex line("\n" + start);
  return std::distance(std::sregex_iterator(text.begin(), text.end(), line), std::sregex_iterator());
}

// The GGA and RMC of one second make one point, in the file as soon as it
// came whatever ends the program, in notation 1; the port is reopened.
TEST(ReceiverCommands, LiveRecordsTheTrackAcrossAReconnectionAndAKill) {
  for (const int signal : {SIGINT, SIGKILL}) {
    const auto user = ScratchDir("live-user");
    TLoopbackServer server;
    std::thread receiver([&server] {
      for (const auto& seconds : {std::vector<int>{0, 1, 2}, std::vector<int>{10, 11}}) {
        const int client = server.Accept();
        for (const int s : seconds) {
          WriteAllTo(client, Second(s));
          std::this_thread::sleep_for(std::chrono::milliseconds(150));
        }
        server.CloseClient();
      }
    });
    const auto file = user / "TrackMovingMap-1994-03-23.trk";
    std::string track;  // once it holds 5 points (within 10 s)
    const TRunResult run = RunVelantis({"live", server.Address()}, "", [&] {
      for (int i = 0; i < 100 && CountLines(track, "T  ") < 5; ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        if (std::filesystem::exists(file)) track = FileBytes(file);
      }
      receiver.join();
      return signal;
    }, user.string());
    EXPECT_EQ(CountLines(track, "T  "), 5u) << track;
    for (const char* line : {"\nz  0000000005,+048.118333,+0011.516667,+048.118517,+0011.516667",
                             "\nm  1994-03-23 12:35:00|1994-03-23 12:35:11", "\nU  1\r\n"})
      EXPECT_NE(track.find(line), std::string::npos) << track;
    if (signal == SIGKILL) continue;
    EXPECT_EQ(run.exitCode, 0) << run.err;
    EXPECT_EQ(CountLines("\n" + run.out, "1994-03-23T12:35:"), 10u) << run.out;
    EXPECT_NE(run.err.find("velantis: Error, puerto cerrado! " + server.Address()), std::string::npos);
  }
}

}  // namespace
}  // namespace velantis::test
