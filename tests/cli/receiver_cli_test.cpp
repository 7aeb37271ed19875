// velantis detect and velantis nmea on live sources: a pseudo-terminal with a
// simulated receiver behind it, and a TCP NMEA source that goes away.
#include <gtest/gtest.h>

#include <ctime>
#include <thread>

#include "tests/cli/run_velantis.h"
#include "tests/comm/port_doubles.h"

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

}  // namespace
}  // namespace velantis::test
