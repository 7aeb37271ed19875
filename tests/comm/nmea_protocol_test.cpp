#include "comm/nmea_protocol.h"

#include <gtest/gtest.h>

#include "comm/nmea_line_reader.h"
#include "comm/serial_port.h"
#include "tests/comm/port_doubles.h"

namespace velantis {
namespace {

// A receiver on a pseudo-terminal sends lines; detection runs on the port.
struct TDetection {
  bool found = false;
  std::string result;
  std::vector<TErrorRecord> errors;
};

TDetection Detect(const std::vector<std::string>& lines, bool skip = false,
                  const TProgress* progress = nullptr) {
  test::TPtyPair pty;
  const std::unique_ptr<TSerialPort> port = OpenSerialPort(pty.SlaveName(), 4800);
  std::string all;
  for (const std::string& line : lines) all += line;
  test::TReceiver receiver(pty.Master(), {{20, all}});
  TNmeaProtocol protocol({}, 300);
  TDetection detection;
  TErrorSink errors;
  detection.found = protocol.Detect(*port, detection.result, errors, progress, skip);
  detection.errors = errors.Records();
  return detection;
}

TEST(NmeaProtocol, DetectionOnAReceiver) {
  using test::Sentence;
  const std::string gga = Sentence("GPGGA,123519,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,");
  // A GGA without a fix still comes from an NMEA receiver.
  const std::string noFix = Sentence("GPGGA,123519,,,,,0,00,,,M,,M,,");
  const std::string gsa = Sentence("GPGSA,A,3,04,05,,09,12,,,24,,,,,2.5,1.3,2.1");
  const std::string gsv = Sentence("GPGSV,3,1,11,03,03,111,00,04,15,270,00,06,01,010,00,13,06,292,00");
  const std::string zda = Sentence("GPZDA,201530.00,04,07,2002,00,00");
  struct TCase {
    const char* what;
    std::vector<std::string> lines;
    bool found;
    std::string error;  // the last error put in the sink
  };
  const TCase cases[] = {
      {"a position", {zda, gga}, true, ""},
      {"only GSV at first", {gsv, gsv}, true, ""},
      {"a receiver without a fix", {zda, noFix}, true, ""},
      {"five unusable sentences", {zda, zda, gsa, zda, zda, gga}, false,
       std::string(kNmeaDetectUnusable)},
      {"four unusable, then a position", {zda, zda, zda, zda, gga}, true, ""},
      {"nothing at all", {}, false, kNmeaSilenceText},
  };
  for (const TCase& c : cases) {
    const TDetection d = Detect(c.lines);
    EXPECT_EQ(d.found, c.found) << c.what;
    EXPECT_EQ(d.result, c.found ? "NMEA" : "") << c.what;
    EXPECT_EQ(d.errors.empty() ? "" : d.errors.back().message, c.error) << c.what;
  }
}

TEST(NmeaProtocol, SkippingAndCancelling) {
  const TDetection skipped = Detect({}, true);
  EXPECT_TRUE(skipped.found);
  EXPECT_EQ(skipped.result, "NMEA");

  TProgress progress;
  progress.Cancel();
  const std::string zda = test::Sentence("GPZDA,201530.00,04,07,2002,00,00");
  const TDetection cancelled = Detect({zda, zda}, false, &progress);
  EXPECT_FALSE(cancelled.found);
  ASSERT_FALSE(cancelled.errors.empty());
  EXPECT_EQ(cancelled.errors.back().message, "Cancelled");
}

TEST(AutoDetectProtocol, ReportsTheFirstProtocolThatAnswers) {
  std::vector<std::unique_ptr<TGpsProtocol>> protocols;
  protocols.push_back(std::make_unique<TNmeaProtocol>(TNmeaReceiverSettings{}, 300));
  TAutoDetectProtocol autoDetect(std::move(protocols));
  EXPECT_EQ(autoDetect.LongName(), "Auto-Detect");
  EXPECT_EQ(autoDetect.ShortName(), "Auto");
  test::TPtyPair pty;
  const std::unique_ptr<TSerialPort> port = OpenSerialPort(pty.SlaveName(), 4800);
  test::TReceiver receiver(
      pty.Master(), {{20, test::Sentence("GPRMC,123519,A,4807.038,N,01131.000,E,022.4,084.4,230394,003.1,W")}});
  std::string result;
  TErrorSink errors;
  EXPECT_EQ(autoDetect.LastDetected(), -1);
  ASSERT_TRUE(autoDetect.Detect(*port, result, errors, nullptr, false));
  EXPECT_EQ(result, "NMEA");
  EXPECT_EQ(autoDetect.LastDetected(), 0);
}

}  // namespace
}  // namespace velantis
