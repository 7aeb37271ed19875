#include "comm/nmea_test_output.h"

#include <gtest/gtest.h>

#include <deque>
#include <string>
#include <vector>

#include "comm/nmea_sentence_tx.h"
#include "tests/comm/nmea_test_support.h"

namespace velantis {
namespace {

class TCollectingSink : public TNmeaLineSink {
public:
  void WriteLine(std::string_view line) override { lines.emplace_back(line); }
  std::vector<std::string> lines;
};

TTrack Track(int points, double startLat) {
  TTrack track;
  for (int i = 0; i < points; ++i) {
    TrkPnt point;
    point.lat = startLat + i * 0.001;
    point.lon = 2.0;
    point.time = TDateTime::FromCalendar(2024, 5, 17, 10, 0, i);
    point.altitude = 100;
    track.Anyade_Punt(point);
  }
  return track;
}

TEST(NmeaTestOutput, DamageByDraw) {
  TrkPnt point;
  point.lat = 41.5;
  point.time = TDateTime::FromCalendar(2024, 5, 17, 10, 0, 0);
  const std::string line = BuildNmeaSentence("GPRMC", point, 4);
  ASSERT_GT(line.size(), 30u);
  ASSERT_NE(line[line.size() - 4], 'A');

  std::string damaged = line;
  DamageNmeaLine(damaged, 23);
  EXPECT_EQ(damaged, "R" + line.substr(1));
  TComandaNMEA sentence;
  TErrorSink sink;
  EXPECT_FALSE(sentence.Parse(damaged, sink));
  EXPECT_EQ(sink.Records().at(0).message, kNmeaErrorNoDollar);

  damaged = line;
  DamageNmeaLine(damaged, 55);
  EXPECT_EQ(damaged, line.substr(0, 30));

  damaged = line;
  DamageNmeaLine(damaged, 93);
  EXPECT_EQ(damaged.substr(0, damaged.size() - 4), line.substr(0, line.size() - 4));
  EXPECT_EQ(damaged[damaged.size() - 4], 'A');
  ASSERT_TRUE(sentence.Parse(damaged, sink));
  EXPECT_FALSE(sentence.ChecksumMatches());

  for (const int draw : {0, 22, 24, 54, 56, 92, 94, 99}) {
    damaged = line;
    DamageNmeaLine(damaged, draw);
    EXPECT_EQ(damaged, line) << draw;
  }
}

TEST(NmeaTestOutput, SendsGgaAndRmcPerPointWithPausesBetween) {
  const TTrack first = Track(2, 41.0), second = Track(1, 42.0);
  TCollectingSink port;
  std::vector<std::chrono::milliseconds> pauses;
  TNmeaTestOutput output(port, {}, [](int) { return 0; },
                         [&](std::chrono::milliseconds wait) { pauses.push_back(wait); });
  TProgress progress;
  ASSERT_TRUE(output.Send({&first, &second}, &progress));
  std::vector<std::string> expected;
  for (const TTrack* track : {&first, &second}) {
    for (const TrkPnt& point : track->Points()) {
      expected.push_back(BuildNmeaSentence("GPGGA", point, 4));
      expected.push_back(BuildNmeaSentence("GPRMC", point, 4));
    }
  }
  EXPECT_EQ(port.lines, expected);
  EXPECT_EQ(pauses, std::vector<std::chrono::milliseconds>(2, std::chrono::milliseconds(2000)));
  EXPECT_EQ(progress.Total(), 3);
  EXPECT_EQ(progress.Steps(), 3);
}

TEST(NmeaTestOutput, ExtendedGalileoAndInjectedErrors) {
  const TTrack track = Track(2, 41.0);
  TCollectingSink port;
  std::deque<int> draws = {23, 7, 55, 93};
  TNmeaTestOutputOptions options;
  options.extendedGga = true;
  options.galileo = true;
  options.injectErrors = true;
  options.decimals = 3;
  TNmeaTestOutput output(port, options,
                         [&](int bound) {
                           EXPECT_EQ(bound, 100);
                           const int draw = draws.front();
                           draws.pop_front();
                           return draw;
                         },
                         [](std::chrono::milliseconds) {});
  ASSERT_TRUE(output.Send({&track}));
  ASSERT_EQ(port.lines.size(), 4u);
  TComandaNMEA_Tx_Galileo sentence;
  sentence.Build("GPGGAM", track.Point(0), 3);
  EXPECT_EQ(port.lines[0], "R" + sentence.Line().substr(1));
  sentence.Build("GPRMC", track.Point(0), 3);
  EXPECT_EQ(port.lines[1], sentence.Line());
  EXPECT_TRUE(port.lines[1].starts_with("$GNRMC,"));
  sentence.Build("GPGGAM", track.Point(1), 3);
  EXPECT_EQ(port.lines[2], sentence.Line().substr(0, 30));
  EXPECT_EQ(port.lines[3].size(), BuildNmeaSentence("GPRMC", track.Point(1), 3).size());
  EXPECT_EQ(port.lines[3][port.lines[3].size() - 4], 'A');
  EXPECT_TRUE(draws.empty());
}

TEST(NmeaTestOutput, CancelStops) {
  const TTrack track = Track(3, 41.0);
  TCollectingSink port;
  TProgress progress;
  TNmeaTestOutput output(port, {}, {}, [&](std::chrono::milliseconds) { progress.Cancel(); });
  EXPECT_FALSE(output.Send({&track}, &progress));
  EXPECT_EQ(port.lines.size(), 2u);  // the first point, then the cancel during the pause
}

}  // namespace
}  // namespace velantis
