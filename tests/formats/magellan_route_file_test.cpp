// Magellan "$PMG" route files through the RTE entry: a file GPSBabel writes
// read as GPSBabel itself reads it back, and the sentence rules.
#include "formats/magellan_route_file.h"

#include <gtest/gtest.h>

#include <tuple>

#include <cstdlib>
#include <fstream>
#include <regex>

#include "formats/rte_file.h"
#include "tests/support/testdata.h"

namespace velantis {
namespace {

struct TGpxPoint {
  double lat, lon;
  std::string name;
};

// The points of the first <rte> of a GPX file GPSBabel wrote.
std::vector<TGpxPoint> FirstGpxRoute(const std::filesystem::path& path) {
  std::ifstream in(path);
  const std::string text((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  const std::string route = text.substr(text.find("<rte>"), text.find("</rte>") - text.find("<rte>"));
  const std::regex point(R"re(<rtept lat="([-0-9.]+)" lon="([-0-9.]+)">[\s\S]*?<name>([^<]*)</name>)re");
  std::vector<TGpxPoint> points;
  for (std::sregex_iterator it(route.begin(), route.end(), point), end; it != end; ++it)
    points.push_back({std::stod((*it)[1]), std::stod((*it)[2]), (*it)[3]});
  return points;
}

TEST(MagellanRoute, ReadsWhatGpsBabelWritesAsGpsBabelReadsIt) {
  VELANTIS_TESTDATA_OR_SKIP(ozi, "ozi/ozi.rte");
  if (std::system("command -v gpsbabel > /dev/null 2>&1") != 0) GTEST_SKIP() << "gpsbabel is not installed";
  const auto dir = test::ScratchDir("magellan-gpsbabel");
  const auto magellan = dir / "route.rte", gpx = dir / "route.gpx";
  const std::string toMagellan = "gpsbabel -r -i ozi -f '" + ozi.string() + "' -o magellan -F '" + magellan.string() + "'";
  const std::string toGpx = "gpsbabel -r -i magellan -f '" + magellan.string() + "' -o gpx -F '" + gpx.string() + "'";
  ASSERT_EQ(std::system(toMagellan.c_str()), 0) << toMagellan;
  ASSERT_EQ(std::system(toGpx.c_str()), 0) << toGpx;
  const std::vector<TGpxPoint> expected = FirstGpxRoute(gpx);
  ASSERT_EQ(expected.size(), 2u);
  TRuta route;
  std::string error;
  ASSERT_TRUE(ReadRteFile(magellan.string(), TNativeOptions{}, route, error)) << error;
  EXPECT_TRUE(route.FromOziExplorer());
  ASSERT_EQ(route.Count(), expected.size());
  for (size_t i = 0; i < expected.size(); ++i) {
    EXPECT_EQ(route.Point(i).baliza.Name(), expected[i].name);
    EXPECT_NEAR(route.Point(i).baliza.Latitude(), expected[i].lat, 1e-9);
    EXPECT_NEAR(route.Point(i).baliza.Longitude(), expected[i].lon, 1e-9);
  }
}

// A route in two messages with its name and another route's message between
// them, a waypoint in feet, and a sentence whose checksum is wrong (its
// waypoint is then missing).
std::string Sentence(const std::string& body) {
  unsigned sum = 0;
  for (size_t i = 1; i < body.size(); ++i) sum ^= static_cast<unsigned char>(body[i]);
  char tail[8];
  std::snprintf(tail, sizeof tail, "*%02X\r\n", sum);
  return body + tail;
}

TEST(MagellanRoute, SentenceRules) {
  const std::string waypoints = Sentence("$PMGNWPL,4230.000,N,00130.000,E,0000100,F,ONE,first,a") +
                                Sentence("$PMGNWPL,4215.500,S,07000.600,W,0000250,M,TWO,,a");
  const std::string route = Sentence("$PMGNRTE,2,1,c,7,Ascent,ONE,a,TWO,b") +
                            Sentence("$PMGNRTE,1,1,c,8,Other,TWO,a") + Sentence("$PMGNRTE,2,2,c,7,ONE,a") +
                            Sentence("$PMGNRTE,1,1,c,7,Again,TWO,a");
  TRuta read;
  std::string error;
  ASSERT_TRUE(ReadRte(waypoints + route, TNativeOptions{}, read, error)) << error;
  ASSERT_EQ(read.Count(), 3u);
  const TBaliza& first = read.Point(0).baliza;
  EXPECT_EQ(std::tuple(read.Name(), first.Latitude(), first.Longitude(), first.Altitude(), first.Description()),
            std::tuple("Ascent", 42.5, 1.5, 30.48f, "first"));  // 100 feet
  EXPECT_NEAR(read.Point(1).baliza.Latitude(), -42.258333333, 1e-9);
  EXPECT_NEAR(read.Point(1).baliza.Longitude(), -70.01, 1e-9);
  EXPECT_EQ(read.Point(2).baliza.Name(), "ONE");

  std::string damaged = waypoints;
  damaged[damaged.find("*") + 1] ^= 1;  // the first waypoint's checksum
  EXPECT_FALSE(ReadRte(damaged + route, TNativeOptions{}, read, error));
  EXPECT_EQ(error, "Unknown waypoint in route: ONE");
  EXPECT_FALSE(ReadRte(waypoints, TNativeOptions{}, read, error));
  EXPECT_EQ(error, kNoRteSections);
  EXPECT_EQ(read.Count(), 3u) << "a failed read leaves the route as it was";
}

}  // namespace
}  // namespace velantis
