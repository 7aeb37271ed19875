// velantis detect and velantis nmea on live sources: a pseudo-terminal with a
// simulated receiver behind it, and a TCP NMEA source that goes away.
#include <gtest/gtest.h>

#include <csignal>
#include <cstdio>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <thread>

#include "tests/cli/run_velantis.h"
#include "tests/comm/port_doubles.h"
#include "tests/support/testdata.h"

namespace velantis::test {
namespace {

const std::string kGga =
    Sentence("GPGGA,123519,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,");
const std::string kRmc =
    Sentence("GPRMC,123520,A,4807.040,N,01131.010,E,022.4,084.4,230394,003.1,W");

TEST(ReceiverCommands, DetectFindsNmeaOnAPseudoTerminal) {
  struct TCase {
    std::vector<TChunk> sent;
    int exitCode;
    std::string out;
    std::string err;
  };
  const TCase cases[] = {
      {{{50, kGga}, {200, kGga}}, 0, "NMEA\n", ""},
      // Silence: the line reader gives up after Comm_NNEA_Timeout (2 s).
      {{}, 1, "", "velantis:  Error receiving NMEA, no message received! \n"},
  };
  for (const TCase& c : cases) {
    TPtyPair pty;
    TReceiver receiver(pty.Master(), c.sent);
    const TRunResult run = RunVelantis({"detect", pty.SlaveName()});
    EXPECT_EQ(run.exitCode, c.exitCode) << run.err;
    EXPECT_EQ(run.out, c.out);
    EXPECT_EQ(run.err, c.err);
  }
}

TEST(ReceiverCommands, NmeaFollowsATcpSourceUntilItCloses) {
  TLoopbackServer server;
  std::thread sender([&server] {
    const int client = server.Accept();
    if (client < 0) return;
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    WriteAllTo(client, kGga + kRmc);
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    server.CloseClient();
  });
  const TRunResult run = RunVelantis({"nmea", "--json", server.Address()});
  sender.join();
  EXPECT_EQ(run.exitCode, 1);
  // The GGA carries no date: it is today's (UTC) until the RMC brings one.
  const std::time_t now = std::time(nullptr);
  char today[16];
  std::strftime(today, sizeof today, "%Y-%m-%d", std::gmtime(&now));
  EXPECT_EQ(run.out,
            "{\"time\":\"" + std::string(today) + "T12:35:19.000Z\",\"lat\":48.117300000,\"lon\":11.516666667,\"alt\":545.4,"
            "\"speed_kmh\":0.000,\"course_deg\":0.0000,\"valid\":true,\"sats\":8,\"hdop\":0.9}\n"
            "{\"time\":\"1994-03-23T12:35:20.000Z\",\"lat\":48.117333333,\"lon\":11.516833333,"
            "\"alt\":null,\"speed_kmh\":41.485,\"course_deg\":84.4000,\"valid\":true,\"sats\":8,"
            "\"hdop\":0.9}\n");
  EXPECT_EQ(run.err, "velantis: Error, puerto cerrado! " + server.Address() + "\n");
}

TEST(ReceiverCommands, RefusedPortNamesTheSystemsReason) {
  const TRunResult run = RunVelantis({"nmea", "/nonexistent/ttyVELANTIS"});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_EQ(run.err,
            "velantis: Error de Windows: /nonexistent/ttyVELANTIS lasterror= 2 (No such file or "
            "directory)\n");
}

// A lost fix prints once, when it is lost, and without a position.
TEST(ReceiverCommands, NmeaPrintsALostFixOnceWithoutPosition) {
  const std::string capture = (ScratchDir("nmea-lost") / "lost.nmea").string();
  std::ofstream(capture, std::ios::binary)
      << kRmc << Sentence("GPRMC,123521,V,,,,,,,230394,,") << Sentence("GPRMC,123522,V,,,,,,,230394,,")
      << Sentence("GPRMC,123523,A,4807.040,N,01131.010,E,022.4,084.4,230394,003.1,W");
  const std::string valid20 =
      "{\"time\":\"1994-03-23T12:35:20.000Z\",\"lat\":48.117333333,\"lon\":11.516833333,"
      "\"alt\":null,\"speed_kmh\":41.485,\"course_deg\":84.4000,\"valid\":true,\"sats\":0,"
      "\"hdop\":0}\n";
  std::string valid23 = valid20;
  valid23.replace(valid23.find(":20.000Z"), 8, ":23.000Z");
  const TRunResult json = RunVelantis({"nmea", "--json", capture});
  EXPECT_EQ(json.out, valid20 +
                          "{\"time\":\"1994-03-23T12:35:21.000Z\",\"lat\":null,\"lon\":null,"
                          "\"alt\":null,\"speed_kmh\":41.485,\"course_deg\":84.4000,"
                          "\"valid\":false,\"sats\":0,\"hdop\":0}\n" +
                          valid23);
  const TRunResult text = RunVelantis({"nmea", capture});
  EXPECT_EQ(text.out,
            "1994-03-23T12:35:20.000Z 48.117333333 11.516833333 - 41.485 84.4000 valid 0 0\n"
            "1994-03-23T12:35:21.000Z - - - 41.485 84.4000 invalid 0 0\n"
            "1994-03-23T12:35:23.000Z 48.117333333 11.516833333 - 41.485 84.4000 valid 0 0\n");
}

}  // namespace
}  // namespace velantis::test

namespace velantis::test {
namespace {

// One second of a receiver: the RMC (with its date) then the GGA.
std::string Second(int second) {
  char time[32], lat[32];
  std::snprintf(time, sizeof time, "1235%02d", second);
  std::snprintf(lat, sizeof lat, "4807.%03d", 100 + second);
  return Sentence(std::string("GPRMC,") + time + ",A," + lat +
                  ",N,01131.000,E,022.4,084.4,230394,003.1,W") +
         Sentence(std::string("GPGGA,") + time + "," + lat +
                  ",N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,");
}

size_t CountLines(const std::string& text, const std::string& start) {
  size_t count = 0;
  for (size_t at = text.find("\n" + start); at != std::string::npos;
       at = text.find("\n" + start, at + 1))
    ++count;
  return count;
}

// The live track's text once it holds points T lines (within 10 s).
std::string TrackWith(const std::filesystem::path& file, size_t points) {
  std::string text;
  for (int i = 0; i < 100 && CountLines(text, "T  ") < points; ++i) {
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    if (std::filesystem::exists(file)) text = FileBytes(file);
  }
  return text;
}

TEST(ReceiverCommands, LiveRecordsTheTrackAcrossAReconnectionAndAKill) {
  for (const int signal : {SIGINT, SIGKILL}) {
    const auto user = ScratchDir("live-user");
    TLoopbackServer server;
    std::thread receiver([&server] {
      for (const auto& seconds : {std::vector<int>{0, 1, 2}, std::vector<int>{10, 11}}) {
        const int client = server.Accept();  // the program comes back after the port closed
        for (const int s : seconds) {
          WriteAllTo(client, Second(s));
          std::this_thread::sleep_for(std::chrono::milliseconds(150));
        }
        server.CloseClient();
      }
    });
    TRunningVelantis live({"live", server.Address()}, user.string());
    const std::string track = TrackWith(user / "TrackMovingMap-1994-03-23.trk", 5);
    receiver.join();
    const TRunResult run = live.Stop(signal);
    // The GGA and the RMC of one second make one point; every point is in
    // the file as soon as it came, whatever ends the program.
    EXPECT_EQ(CountLines(track, "T  "), 5u) << track;
    EXPECT_NE(track.find("\nz  0000000005,+048.118333,+0011.516667,+048.118517,+0011.516667"),
              std::string::npos)
        << track;
    EXPECT_NE(track.find("\nm  1994-03-23 12:35:00|1994-03-23 12:35:11"), std::string::npos);
    EXPECT_NE(track.find("\nU  1\r\n"), std::string::npos) << track;  // whatever is configured
    if (signal == SIGINT) {
      EXPECT_EQ(run.exitCode, 0) << run.err;
      EXPECT_EQ(CountLines("\n" + run.out, "1994-03-23T12:35:"), 10u) << run.out;
      EXPECT_NE(run.err.find("velantis: Error, puerto cerrado! " + server.Address()),
                std::string::npos)
          << run.err;
    }
  }
}

}  // namespace
}  // namespace velantis::test
