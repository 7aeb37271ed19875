// The native waypoint, route and track files and the number, date and field
// forms they share: the exact lines, the edge cases of names, altitudes and
// times, round trips in every notation, datum and code page, routes with
// shape points, tracks read in pieces and appended in place; and Magellan
// "$PMG" route files through the route entry: a file GPSBabel writes read as
// GPSBabel itself reads it back, and the sentence rules.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <random>
#include <regex>
#include <tuple>
#include <vector>

#include "app/file_io.h"
#include "formats/magellan_route_file.h"
#include "formats/native_text.h"
#include "formats/rte_file.h"
#include "formats/trk_file.h"
#include "formats/wpt_file.h"
#include "tests/formats/element_samples.h"
#include "tests/support/testdata.h"

namespace velantis {
namespace {

using test::Utf8Options;

std::string Written(TTrack& track, const TNativeOptions& options) {
  return test::WrittenBytes(track, options, "track.trk", WriteTrkFile);
}
// The track's own fields but its time offset, which is compared in days.
auto Header(const TTrack& t) {
  std::string texts;
  for (const char letter : kTrackTextLetters) texts += t.Text(letter) + '\n';
  return std::tuple(t.Name(), t.Description(), texts, t.Colour(), t.Drawing(), t.EValues(), t.HasTimeOffset(),
                    t.MarkedPairs(), *t.Properties());
}
std::string WrittenAs(const TRuta& route, const TNativeOptions& options, const std::string& fileName) {
  return test::WrittenBytes(route, options, fileName, WriteRteFile);
}
std::string Written(const TWaypoints& list, const TNativeOptions& options) {
  return test::WrittenBytes(list, options, "list.wpt", WriteWptFile);
}

// Two waypoints with every field the line holds, then names and altitudes
// at their edges, which need no "w" line: the lines written, and the names
// and altitudes read back.
TEST(WptFile, WritesTheDocumentedLinesAndReadsThemBack) {
  TWaypoints list;
  TBaliza plain;
  plain.SetName("A B");
  plain.SetPosition(41.391667, -2.175);
  plain.SetDescription("Font, 100% fresca\r\n");
  TBaliza styled;
  styled.SetName("Refugi");
  styled.SetPosition(-33.5, 151.25);
  styled.SetAltitude(1234.5f);
  styled.SetTime(TDateTime::FromCalendar(2024, 6, 5, 13, 7, 0));
  styled.SetSymbol("Fl,ag");  // the comma is dropped: the line splits at commas
  styled.SetSizeByte(kSizeByteUnset);
  styled.SetProximityRadius(50);
  styled.SetLabel(TTextLabel{"hut", 1, 2, 3, 4, 5, 0, {}});
  list.Add(plain);
  list.Add(styled);
  // The name and altitude set; the name read back and whether the altitude is known.
  const std::tuple<const char*, float, const char*, bool> edges[] = {
      {"AB", -999.5f, "AB    ", true},          {"", -1000, "      ", false}, {"Long name", -20000, "Long name", false},
      {"a,b%c\r\n", 0, "abc   ", true}, {"a\tb", 10, "a b   ", true},
  };
  for (const auto& [name, altitude, readName, known] : edges) {
    TBaliza b;
    b.SetName(name);
    b.SetAltitude(altitude);
    list.Add(b);
  }
  const std::string bytes = Written(list, Utf8Options());
  const std::string origin = " 0.000000\xC2\xBAN 0.000000\xC2\xBA" "E 27-MAR-62 00:00:00 ";
  EXPECT_EQ(bytes,
            "B  UTF-8\r\nG  WGS 84\r\n"
            "z  -33.500000,-2.175000,41.391667,151.250000\r\n"
            "W  A_B___ 41.391667\xC2\xBAN 2.175000\xC2\xBAW 27-MAR-62 00:00:00 -9999.000000 Font 100 fresca\r\n"
            "W  Refugi 33.500000\xC2\xBAS 151.250000\xC2\xBA" "E 05-JUN-24 13:07:00 1234.500000 \r\n"
            "w Flag,0,0.000000,0,16777215,0,39,,50.000000,0,-1,0,0\r\n"
            "t \"hut\",1,2,3,4, 5\r\n"
            "W  AB____" + origin + "-999.500000 \r\nW  ______" + origin + "-9999.000000 \r\n"
            "W  Long_name" + origin + "-9999.000000 \r\nW  abc___" + origin + "0.000000 \r\n"
            "W  a_b___" + origin + "10.000000 \r\n\r\n\r\n");
  TWaypoints back;
  std::string error;
  ASSERT_TRUE(ReadWpt(bytes, Utf8Options(), back, error)) << error;
  ASSERT_EQ(back.Count(), 2 + std::size(edges));
  for (size_t i = 0; i < std::size(edges); ++i) {
    const TBaliza& b = back.Baliza(i + 2);
    EXPECT_EQ(std::tuple(b.Name(), b.HasAltitude(), b.Time().IsNull()),
              std::tuple(std::get<2>(edges[i]), std::get<3>(edges[i]), true));
  }
}

TEST(WptFile, ReadsLinesOfOtherWriters) {
  const std::string file =
      "G  WGS 84\r\nU  1\r\n"
      "W  VOID 41\xBA" "23.500'N 2\xBA" "10.500'W 5-jun-24 13:07:00 -1000.0\r\n"
      "W  Pic_del_Pla 41\xBA" "00.000'N 1\xBA" "00.000'E 05-JUN-24 13:07:00 2000.25 two  words\tand\r\n"
      "w  ,3,,,,1,255,,12.5,9,-1,20,2\r\n"
      "w  late line for the same waypoint\r\n"
      "t  too,few,fields\r\n";
  TWaypoints list;
  std::string error;
  ASSERT_TRUE(ReadWpt(file, TNativeOptions{}, list, error)) << error;
  ASSERT_EQ(list.Count(), 2u);
  const TBaliza& a = list.Baliza(0);
  EXPECT_NEAR(a.Latitude(), 41.391667, 1e-6);
  EXPECT_NEAR(a.Longitude(), -2.175, 1e-9);
  EXPECT_EQ(std::tuple(a.Name(), a.HasAltitude(), a.Description()), std::tuple("", false, ""));
  const TBaliza& b = list.Baliza(1);
  EXPECT_EQ(std::tuple(b.Name(), b.Description(), b.Altitude(), b.DisplayMode(), b.DisplayFlag3(), b.State(),
                       b.ProximityRadius(), b.SizeByte(), b.LabelFontStep(), b.LabelPlacement(), b.Symbol(),
                       b.Label() == nullptr),
            std::tuple("Pic del Pla", "two words and", 2000.25f, 3, true, 255 & ~kBalizaStateTransientBit, 12.5,
                       kSizeByteUnset, 2, 2, "late line for the same waypoint", true));
  EXPECT_FALSE(list.Modified());
}

TEST(NativeFiles, RoundTripsInEveryNotationDatumAndCodePage) {
  int configured = 0;
  TListaDatums datums(configured);
  if (!test::LoadBuiltInDatums(datums)) GTEST_SKIP() << "the build's data folder has no datum list";
  const int ed50 = datums.Find("European 1950");
  ASSERT_GT(ed50, 0);
  // The last printed unit of each notation, in degrees: the positions read
  // back within half of it (the reader inverts the writer's datum shift).
  const double unit[] = {1e-6, 0.001 / 60, 0.1 / 3600, 1e-6 * 0.9};
  std::mt19937_64 random(42);
  for (int notation = 0; notation < 4; ++notation) {
    for (const char* codePage : {"UTF-8", "Windows-1252", ""}) {
      for (const int datum : {0, ed50}) {
        TNativeOptions options;
        options.datums = &datums;
        options.datum = datum;
        options.notation = notation;
        options.codePage = codePage;
        options.defaults.displayFlag3 = notation % 2 == 1;
        const TWaypoints list = test::SampleWaypoints(random, 25, options.defaults);
        const std::string first = Written(list, options);
        TWaypoints back;
        std::string error;
        ASSERT_TRUE(ReadWpt(first, options, back, error)) << error;
        ASSERT_EQ(back.Count(), list.Count());
        EXPECT_EQ(back.Description(), list.Description());
        ASSERT_NE(back.Properties(), nullptr);
        EXPECT_EQ(*back.Properties(), *list.Properties());
        SCOPED_TRACE(std::string(codePage) + " notation " + std::to_string(notation));
        const double tolerance = unit[notation] / 2 + 1e-12;
        const auto same = [tolerance](const TBaliza& a, const TBaliza& b) {
          EXPECT_NEAR(b.Latitude(), a.Latitude(), tolerance) << a.Name();
          EXPECT_NEAR(b.Longitude(), a.Longitude(), tolerance) << a.Name();
          EXPECT_EQ(test::KeptFields(b), test::KeptFields(a));
        };
        for (size_t i = 0; i < list.Count(); ++i) same(list.Baliza(i), back.Baliza(i));
        EXPECT_EQ(Written(back, options), first) << "writing what was read gives the same bytes";
        // A route of such waypoints with shape points, written as held, in WGS 84.
        const TRuta route = test::SampleRoute(random, 6, options.defaults);
        const std::string routeBytes = WrittenAs(route, options, "sample.rte");
        EXPECT_NE(routeBytes.find("G  WGS 84\r\n"), std::string::npos);
        TRuta routeBack;
        ASSERT_TRUE(ReadRte(routeBytes, options, routeBack, error)) << error;
        EXPECT_EQ(std::tuple(routeBack.Name(), routeBack.Modified()), std::tuple("sample", false));
        ASSERT_EQ(routeBack.Count(), route.Count());
        for (size_t i = 0; i < route.Count(); ++i) {
          const TRoutePoint& a = route.Point(i);
          const TRoutePoint& b = routeBack.Point(i);
          same(a.baliza, b.baliza);
          ASSERT_EQ(b.shape.size(), a.shape.size()) << i;
          for (size_t k = 0; k < a.shape.size(); ++k) {
            EXPECT_NEAR(b.shape[k].lat, a.shape[k].lat, tolerance);
            EXPECT_NEAR(b.shape[k].lon, a.shape[k].lon, tolerance);
            EXPECT_EQ(b.shape[k].altitude, a.shape[k].altitude);
          }
        }
        EXPECT_EQ(WrittenAs(routeBack, options, "sample.rte"), routeBytes);
        // A track with every header value and point field.
        TTrack track = test::SampleTrack(random, 40);
        const std::string trackBytes = Written(track, options);
        TTrack trackBack;
        ASSERT_TRUE(ReadTrk(trackBytes, options, trackBack, error)) << error;
        EXPECT_EQ(static_cast<size_t>(trackBack.ZLinePosition()), trackBytes.find("z  ") + 3);
        ASSERT_NE(trackBack.Properties(), nullptr);
        EXPECT_TRUE(Header(trackBack) == Header(track));
        EXPECT_DOUBLE_EQ(trackBack.TimeOffsetDays(), track.TimeOffsetDays());
        ASSERT_EQ(trackBack.Count(), track.Count());
        for (size_t i = 0; i < track.Count(); ++i) {
          const TrkPnt& a = track.Point(i);
          const TrkPnt& b = trackBack.Point(i);
          EXPECT_NEAR(b.lat, a.lat, tolerance);
          EXPECT_NEAR(b.lon, a.lon, tolerance);
          EXPECT_EQ(test::KeptFields(trackBack, i), test::KeptFields(track, i)) << i;
        }
        EXPECT_FALSE(trackBack.Modified());
        EXPECT_EQ(Written(trackBack, options), trackBytes);
      }
    }
  }
}

TEST(WptFile, ForcedExtensionLinesAndDefaultColours) {
  TNativeOptions options = Utf8Options();
  options.defaults.colour1 = PackLabelColour(0x123456);  // off the 5-6-5 palette
  TWaypoints list;
  list.Add(TBaliza(options.defaults));
  EXPECT_EQ(Written(list, options).find("\r\nw "), std::string::npos);
  TWaypoints back;
  std::string error;
  ASSERT_TRUE(ReadWpt(Written(list, options), options, back, error));
  EXPECT_TRUE(back.Baliza(0).HasDefaultExtension(options.defaults));
  options.forceExtensionLines = true;
  EXPECT_NE(Written(list, options).find("\r\nw ,0,0.000000,"), std::string::npos);
}

TEST(TrkFile, WritesTheDocumentedLines) {
  TTrack track;
  track.SetName("Ruta");
  TTrackDrawing drawing;
  drawing.style = 1;
  drawing.width = 2;
  drawing.pattern = "a b";
  drawing.text = "t";
  track.SetDrawing(drawing);
  track.SetMarkedPairs({{1, 2}});
  TrkPnt p;
  p.lat = 41.5;
  p.lon = 2.25;
  p.time = TDateTime::FromCalendar(2024, 6, 5, 13, 7, 0);
  p.altitude = -1000;
  p.SetHeartRate(120);
  track.Anyade_Punt(p);
  p.altitude = -1000.5f;
  p.time = TDateTime();
  p.size = 4;
  p.SetStartsSegment(true);
  p.SetTemperatureK(273.15);
  track.Anyade_Punt(p);
  const std::string bytes = Written(track, Utf8Options());
  EXPECT_EQ(bytes,
            "B  UTF-8\r\nG  WGS 84\r\nU  0\r\nN  Ruta\r\n"
            "C  255 0 0 1 2.000000 0 \"a*b\" t\r\n"
            "V  0.000000 0.000000 0 0 0 0 0.000000 0.000000 0\r\n"
            "E 0|0|27-MAR-62 00:00:00|27-MAR-62 00:00:00|0|2\r\n"
            "i 20240605130700\r\n"
            "c 1:2 \r\n"
            "z  0000000002,+041.500000,+0002.250000,+041.500000,+0002.250000\r\n"
            "m  2024-06-05 13:07:00|2024-06-05 13:07:00\r\n"
            "T  41.500000\xC2\xBAN 2.250000\xC2\xBA" "E 05-JUN-24 13:07:00 N -1000.000000 0.000000 0.000000 "
            "0.000000 0 0.000000 -1.000000 0 -9999.000000 -1 120 -1 -1.000000\r\n"
            "T  41.500000\xC2\xBAN 2.250000\xC2\xBA" "E 27-MAR-62 00:00:00 s -9999 0.000000 0.000000 "
            "0.000000 0 0.000000 273.150000 0 -9999.000000 8 120 -1 -1.000000\r\n");
  EXPECT_EQ(static_cast<size_t>(track.ZLinePosition()), bytes.find("0000000002"));
}

TEST(TrkFile, FilesReadPieceByPieceLikeTheirBytes) {
  // Several pieces of the file reader's buffer, labels and properties across
  // their joins, and a last line without its line end.
  std::mt19937_64 random(31);
  TTrack track = test::SampleTrack(random, 20000);
  TNativeOptions options = Utf8Options();
  std::string bytes = Written(track, options);
  ASSERT_GT(bytes.size(), 3u << 20) << "the reader takes files in pieces of 1 MiB";
  bytes.resize(bytes.size() - 2);
  const auto path = test::ScratchDir("trk-pieces") / "pieces.trk";
  std::string error;
  ASSERT_TRUE(WriteFileAtomic(path.string(), bytes, error));
  TTrack fromBytes, fromFile;
  ASSERT_TRUE(ReadTrk(bytes, options, fromBytes, error)) << error;
  TProgress progress;
  options.progress = &progress;
  ASSERT_TRUE(ReadTrkFile(path.string(), options, fromFile, error)) << error;
  const auto points = static_cast<int64_t>(track.Count());
  EXPECT_EQ(std::pair(progress.Total(), progress.Steps()), std::pair(points, points)) << "one step per point";
  EXPECT_EQ(fromFile.ZLinePosition(), fromBytes.ZLinePosition());
  ASSERT_EQ(fromFile.Count(), track.Count());
  EXPECT_EQ(Written(fromFile, Utf8Options()), Written(fromBytes, Utf8Options()));
}

TEST(TrkFile, AppendsInPlace) {
  const auto dir = test::ScratchDir("trk-append");
  const std::string path = (dir / "TrackMovingMap-20240605.trk").string();
  TNativeOptions options = Utf8Options();
  options.notation = 1;
  std::mt19937_64 random(23);
  TTrack full = test::SampleTrack(random, 30);
  TTrack live = full;
  live.Vacia();
  std::string error;
  ASSERT_TRUE(WriteTrkFile(path, live, options, error)) << error;
  for (size_t i = 0; i < full.Count(); i += 7) {
    const size_t first = live.Count();
    for (size_t k = i; k < std::min(i + 7, full.Count()); ++k) {
      live.Anyade_Punt(full.Point(k));
      if (full.PointLabel(k)) live.SetPointLabel(k, *full.PointLabel(k));
      if (full.PointProperties(k)) live.EditPointProperties(k) = *full.PointProperties(k);
    }
    ASSERT_TRUE(AppendTrkPoints(path, live, first, options, error)) << error;
  }
  // The file now reads as the whole track, and differs from a fresh save of
  // it only in the point count of the "E" line, which appends leave alone.
  std::string appended = test::FileBytes(path);
  TTrack back;
  ASSERT_TRUE(ReadTrk(appended, options, back, error)) << error;
  EXPECT_EQ(back.Count(), full.Count());
  const std::string fresh = Written(live, options);
  const size_t e = appended.find("\r\nE ");
  appended.replace(appended.find("|0\r\n", e), 4, "|" + std::to_string(full.Count()) + "\r\n");
  EXPECT_EQ(appended, fresh);

  TTrack unsaved;
  EXPECT_FALSE(AppendTrkPoints(path, unsaved, 0, options, error));
  std::string damaged = test::FileBytes(path);
  damaged.replace(static_cast<size_t>(back.ZLinePosition()), 3, "xyz");
  ASSERT_TRUE(WriteFileAtomic(path, damaged, error));
  EXPECT_FALSE(AppendTrkPoints(path, back, back.Count(), options, error));
  EXPECT_EQ(error, "The track file has changed since it was written: " + path);
}

TEST(RteFile, WritesTheDocumentedLines) {
  TRuta route;
  route.SetDisplayAttribute(0, 3);
  route.SetDisplayAttribute(1, -1);
  route.SetDisplayAttribute(2, 255);
  TBaliza start;
  start.SetName("Start");
  start.SetPosition(42.5, 1.5);
  start.SetAltitude(1000);
  TBaliza end;
  end.SetName("Cim");
  end.SetPosition(42.75, 1.25);
  route.Add(start, {{42.6, 1.4, 1200}, {42.7, 1.3, -9999}});
  route.Add(end);
  TNativeOptions options;
  options.codePage = "UTF-8";
  options.notation = 1;
  EXPECT_EQ(WrittenAs(route, options, "Volta.pel.llac.rte"),
            "B  UTF-8\r\nG  WGS 84\r\nU  1\r\n"
            "R  3,Volta.pel.llac,-1,255\r\n"
            "z  42.500000,1.250000,42.750000,1.500000\r\n"
            "W  Start_ 42\xC2\xBA" "30.000'N 1\xC2\xBA" "30.000'E 27-MAR-62 00:00:00 1000.000000 \r\n"
            "p  42\xC2\xBA" "36.000'N 1\xC2\xBA" "24.000'E 1200.000000\r\n"
            "p  42\xC2\xBA" "42.000'N 1\xC2\xBA" "18.000'E -9999.000000\r\n"
            "W  Cim___ 42\xC2\xBA" "45.000'N 1\xC2\xBA" "15.000'E 27-MAR-62 00:00:00 -9999.000000 \r\n"
            "\r\n\r\n");
  EXPECT_EQ(RouteNameOfFile(".hidden"), ".hidden");  // a leading dot starts no extension
  EXPECT_EQ(RouteNameOfFile("plain"), "plain");
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
  // The points of the first <rte>, as "lat lon name".
  const std::vector<std::string> expected = test::GpxCaptures(
      test::FileBytes(gpx), "<rte>", "</rte>",
      std::regex(R"re(<rtept lat="([-0-9.]+)" lon="([-0-9.]+)">[\s\S]*?<name>([^<]*)</name>)re"));
  ASSERT_EQ(expected.size(), 2u);
  TRuta route;
  std::string error;
  ASSERT_TRUE(ReadRteFile(magellan.string(), TNativeOptions{}, route, error)) << error;
  EXPECT_TRUE(route.FromOziExplorer());
  ASSERT_EQ(route.Count(), expected.size());
  for (size_t i = 0; i < expected.size(); ++i) {
    const TBaliza& b = route.Point(i).baliza;
    char ours[128];
    std::snprintf(ours, sizeof ours, "%.9f %.9f %s", b.Latitude(), b.Longitude(), b.Name().c_str());
    EXPECT_EQ(ours, expected[i]);
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

TEST(NativeText, RealsPrintLikePrintf) {
  std::mt19937_64 random(7);
  std::uniform_real_distribution<double> value(-1e7, 1e7);
  const double fixed[] = {0.0, -0.0, 0.5, 1.0000005, -9999.0, 123456789.125, 1e-7, 2.5e-6, 0.0000005};
  auto check = [](double v, int precision) {
    char expected[512];
    std::snprintf(expected, sizeof expected, "%.*f", precision, v);
    std::string text;
    AppendReal(text, v, precision);
    EXPECT_EQ(text, expected) << v;
  };
  for (const double v : fixed) check(v, 6);
  for (int i = 0; i < 20000; ++i) check(value(random), i % 2 ? 6 : 3);
}

TEST(NativeText, DateTextsAndTheirWindow) {
  const std::pair<TCalendarTime, const char*> cases[] = {
      {{2024, 6, 5, 13, 7, 0}, "05-JUN-24 13:07:00"},    {{1962, 3, 28, 0, 0, 0}, "28-MAR-62 00:00:00"},
      {{2061, 12, 31, 23, 59, 59}, "31-DEC-61 23:59:59"}, {{1999, 1, 1, 0, 0, 0.4}, "01-JAN-99 00:00:00"},
      {{2000, 2, 29, 23, 59, 59.6}, "01-MAR-00 00:00:00"},
  };
  TDateTime back;
  for (const auto& [time, expected] : cases) {
    std::string text;
    AppendDateTime(text, TDateTime::FromCalendar(time));
    EXPECT_EQ(text, expected);
    ASSERT_TRUE(ParseDateTime(text.substr(0, 9), text.substr(10), back)) << text;
    EXPECT_NEAR(back.Days(), TDateTime::FromCalendar(time).Days(), 0.6 / kSecondsPerDay) << text;
  }
  std::string null, whole;
  AppendDateTime(null, TDateTime());
  EXPECT_EQ(null, kNullDateText);
  ASSERT_TRUE(ParseDateTime("27-mar-62", "00:00:00", back));
  EXPECT_TRUE(back.IsNull());
  ASSERT_TRUE(ParseDateTime("5-Jun-2024", "13:07:30.5", back));
  EXPECT_EQ(back, TDateTime::FromCalendar(2024, 6, 5, 13, 7, 30.5));
  AppendDateTime(whole, TDateTime::FromDays(0.5), true);
  EXPECT_EQ(whole, "30-DEC-1899 12:00:00");
  for (const auto& [date, time] : {std::pair{"05-JUX-24", "13:07:00"}, {"05-JUN", "13:07:00"}, {"05-JUN-24", "13:07"},
                                   {"AA-JUN-24", "13:07:00"}, {"31-FEB-24", "25:00:00"}})
    EXPECT_FALSE(ParseDateTime(date, time, back)) << date << " " << time;
}

TEST(NativeText, FieldsAndNumbersWholeOrNothing) {
  std::string_view f[4];
  const auto fields = [&f](size_t count) { return std::vector<std::string_view>(f, f + count); };
  using TFields = std::vector<std::string_view>;
  EXPECT_EQ(fields(SplitBlanks("  a \t b   c d e", f, 4)), (TFields{"a", "b", "c", "d e"}));
  EXPECT_EQ(SplitBlanks(" \t ", f, 4), 0u);
  EXPECT_EQ(fields(SplitAt("a,,b,c,d", ',', f, 4)), (TFields{"a", "", "b", "c,d"}));
  EXPECT_EQ(fields(SplitAt("", ',', f, 4)), (TFields{""}));
  double real = 1;
  int whole = 1;
  EXPECT_TRUE(ParseReal(" +12.5 ", real) && real == 12.5);
  EXPECT_TRUE(ParseInt("-42", whole) && whole == -42);
  for (const char* bad : {"", "1.5x", "x", "1 2", "+"}) EXPECT_FALSE(ParseReal(bad, real) || ParseInt(bad, whole)) << bad;
  EXPECT_FALSE(ParseInt("99999999999", whole));
}

}  // namespace
}  // namespace velantis
