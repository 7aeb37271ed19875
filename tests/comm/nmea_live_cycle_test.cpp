#include "comm/nmea_live_cycle.h"

#include <gtest/gtest.h>

#include <deque>
#include <string>
#include <vector>

#include "tests/comm/nmea_test_support.h"

namespace velantis {
namespace {

using test::Nmea;

// Lines in memory; an empty one stands for a read that brought nothing.
class TMemorySource : public TNmeaLineSource {
public:
  explicit TMemorySource(std::vector<std::string> lines) : m_lines(lines.begin(), lines.end()) {}
  int ReadLine(std::string& line, bool wait) override {
    waits.push_back(wait);
    if (m_lines.empty()) return -1;
    line = m_lines.front();
    m_lines.pop_front();
    return static_cast<int>(line.size());
  }
  size_t Left() const { return m_lines.size(); }
  std::vector<bool> waits;

private:
  std::deque<std::string> m_lines;
};

class TCollectingSink : public TNmeaLineSink {
public:
  void WriteLine(std::string_view line) override { lines.emplace_back(line); }
  std::vector<std::string> lines;
};

const std::string kGga = Nmea("GPGGA,123519,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,");
const std::string kGsa = Nmea("GPGSA,A,3,04,05,,09,12,,,24,,,,,2.5,1.3,2.1");
const std::string kZda = Nmea("GPZDA,123519,17,05,2024,00,00");

TEST(NmeaLiveCycle, SucceedsOnTheFirstPosition) {
  TMemorySource port({kGsa, kZda, kGga, kGsa});
  TNmeaLiveHandler handler;
  TNmeaLiveCycle cycle(handler, port);
  TPosicionNMEA record = test::RecordAtTestNow();
  TErrorSink sink;
  EXPECT_TRUE(cycle.ReadCurrent(record, sink));
  EXPECT_TRUE(record.newData);
  EXPECT_EQ(port.Left(), 1u);
  EXPECT_EQ(port.waits, std::vector<bool>(3, true));
  EXPECT_TRUE(sink.Records().empty());
}

TEST(NmeaLiveCycle, NothingArrivingFailsAtOnce) {
  TMemorySource port({});
  TNmeaLiveHandler handler;
  TNmeaLiveCycle cycle(handler, port);
  TPosicionNMEA record = test::RecordAtTestNow();
  TErrorSink sink;
  EXPECT_FALSE(cycle.ReadCurrent(record, sink));
  EXPECT_EQ(port.waits.size(), 1u);
  EXPECT_TRUE(sink.Records().empty());  // the reader has said why
}

TEST(NmeaLiveCycle, LinesWithoutPositionEndTheCall) {
  TNmeaReceiverSettings settings;
  settings.linesWithoutPosition = 5;
  std::vector<std::string> lines = {kGga};
  for (int i = 0; i < 6; ++i) lines.push_back(i % 2 ? kZda : kGsa);
  TMemorySource port(lines);
  TNmeaLiveHandler handler(settings);
  TNmeaLiveCycle cycle(handler, port);
  TPosicionNMEA record = test::RecordAtTestNow();
  TErrorSink sink;
  ASSERT_TRUE(cycle.ReadCurrent(record, sink));
  ASSERT_TRUE(record.valid);
  ASSERT_FALSE(handler.GllFallback());
  EXPECT_FALSE(cycle.ReadCurrent(record, sink));
  EXPECT_EQ(port.Left(), 1u);  // five lines read
  ASSERT_EQ(sink.Records().size(), 1u);
  EXPECT_EQ(sink.Records()[0].message, "No se reciben mensajes NMEA de posicion");
  EXPECT_FALSE(record.valid);
  EXPECT_TRUE(handler.GllFallback());
}

TEST(NmeaLiveCycle, CancelReportsTheCancelMessage) {
  TMemorySource port({kGsa, kGsa});
  TNmeaLiveHandler handler;
  TNmeaLiveCycle cycle(handler, port);
  cycle.SetCancelMessage("Operacion cancelada");
  TProgress progress;
  progress.Cancel();
  TPosicionNMEA record = test::RecordAtTestNow();
  TErrorSink sink;
  EXPECT_FALSE(cycle.ReadCurrent(record, sink, &progress));
  ASSERT_EQ(sink.Records().size(), 1u);
  EXPECT_EQ(sink.Records()[0].message, "Operacion cancelada");
  EXPECT_EQ(port.Left(), 2u);
}

// The auxiliary input is drained without waiting after the receiver's line,
// up to the first read that brings nothing; the auxiliary output repeats the
// receiver's line, not the auxiliary ones.
TEST(NmeaLiveCycle, AuxiliaryPorts) {
  const std::string depth = Nmea("SDDBT,32.8,f,10.0,M,5.5,F");
  const std::string wind = Nmea("IIVWR,045.0,R,12.6,N,6.5,M,23.3,K");
  TMemorySource port({kGga});
  TMemorySource sensors({depth, wind, "", Nmea("SDMTW,17.5,C")});
  TCollectingSink repeater;
  TNmeaLiveHandler handler;
  TNmeaLiveCycle cycle(handler, port);
  cycle.SetAuxiliaryInput(&sensors);
  cycle.SetAuxiliaryOutput(&repeater);
  TPosicionNMEA record = test::RecordAtTestNow();
  TErrorSink sink;
  ASSERT_TRUE(cycle.ReadCurrent(record, sink));
  EXPECT_TRUE(record.dbtReceived);
  EXPECT_TRUE(record.vwrReceived);
  EXPECT_FALSE(record.mtwReceived);  // after the empty read
  EXPECT_EQ(sensors.Left(), 1u);
  EXPECT_NEAR(record.depthM, 32.8 * 0.3048, 1e-5);
  EXPECT_EQ(sensors.waits, std::vector<bool>({false, false, false}));
  EXPECT_EQ(repeater.lines, std::vector<std::string>({kGga}));
}

TEST(NmeaLiveCycle, AuxiliaryInputAloneDoesNotEndTheWait) {
  std::vector<std::string> many(150, Nmea("SDMTW,17.5,C"));
  TMemorySource port({kGsa, kGsa});
  TMemorySource sensors(many);
  TNmeaReceiverSettings settings;
  settings.linesWithoutPosition = 2;
  TNmeaLiveHandler handler(settings);
  TNmeaLiveCycle cycle(handler, port);
  cycle.SetAuxiliaryInput(&sensors);
  TPosicionNMEA record = test::RecordAtTestNow();
  TErrorSink sink;
  EXPECT_FALSE(cycle.ReadCurrent(record, sink));
  EXPECT_TRUE(record.mtwReceived);
  EXPECT_EQ(sensors.Left(), 0u);  // 100 after the first line, 50 after the second
  EXPECT_EQ(sensors.waits.size(), 151u);
}

TEST(NmeaLiveCycle, ZeroBytesBecomeBlanks) {
  std::string line = kGsa;
  line.insert(line.size() - 2, std::string("\0\0", 2));  // "*39\0\0\r\n"
  TMemorySource port({line, kGga});
  TCollectingSink repeater;
  TNmeaLiveHandler handler;
  TNmeaLiveCycle cycle(handler, port);
  cycle.SetAuxiliaryOutput(&repeater);
  TPosicionNMEA record = test::RecordAtTestNow();
  TErrorSink sink;
  ASSERT_TRUE(cycle.ReadCurrent(record, sink));
  ASSERT_EQ(repeater.lines.size(), 2u);
  std::string blanked = kGsa;
  blanked.insert(blanked.size() - 2, "  ");
  EXPECT_EQ(repeater.lines[0], blanked);
  EXPECT_FLOAT_EQ(record.pdop, 2.5f);
}

}  // namespace
}  // namespace velantis
