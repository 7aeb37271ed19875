// Opening and saving by extension, and what every reader and writer shares:
// the refusal texts, a failed read or save that leaves things as they were,
// progress counted in records, cancels, and the saved state after a save;
// then the OziExplorer waypoint and route files: the third-party samples,
// the fields a record may leave out, the datum shift and the texts.
#include "formats/file_dispatch.h"

#include <gtest/gtest.h>

#include <cmath>
#include <tuple>

#include "app/file_io.h"
#include "formats/ozi_waypoint_file.h"
#include "geodesy/lista_datums.h"
#include "tests/formats/element_samples.h"
#include "tests/support/proj_sweep.h"
#include "tests/support/testdata.h"

namespace velantis {
namespace {

TEST(FileDispatch, ExtensionsEachElementTakes) {
  const auto dir = test::ScratchDir("dispatch-ext");
  TNativeOptions options;
  TWaypoints list;
  TBaliza b;
  b.SetName("Peak");
  list.Add(b);
  TRuta route;
  route.Add(b);
  TTrack track;
  track.Anyade_Punto_Temps(42, 1, 100, TDateTime());
  const struct {
    const char* file;
    bool waypoints, route, track;  // whether each kind saves and opens there
  } cases[] = {
      {"a.wpt", true, false, false}, {"b.WPT", true, false, false}, {"c.rte", false, true, false},
      {"d.Rte", false, true, false}, {"e.trk", false, false, true}, {"f.TRK", false, false, true},
      {"g.gpx", false, false, false}, {"i", false, false, false},
  };
  for (const auto& c : cases) {
    const std::string path = (dir / c.file).string();
    std::string errors[4];
    TElementFile file;
    // Evaluated in order: the saves make the file the open reads.
    const bool done[] = {SaveWaypoints(path, list, options, errors[0]), SaveRoute(path, route, options, "", errors[1]),
                         SaveTrack(path, track, options, errors[2]), OpenElementFile(path, options, file, errors[3])};
    const bool expected[] = {c.waypoints, c.route, c.track, c.waypoints || c.route || c.track};
    for (size_t k = 0; k < 4; ++k) {
      const std::string refusal = expected[k] ? "" : "Unknown file format: " + FileExtension(path);
      EXPECT_EQ(std::pair(done[k], errors[k]), std::pair(expected[k], refusal)) << c.file << " step " << k;
    }
  }
  // A waypoint file also opens as ".mrk"; it is never saved as one.
  std::filesystem::copy_file(dir / "a.wpt", dir / "a.mrk");
  TWaypoints marks;
  std::string error;
  EXPECT_TRUE(OpenWaypoints((dir / "a.mrk").string(), options, marks, error)) << error;
  EXPECT_EQ(marks.Count(), 1u);
  EXPECT_FALSE(SaveWaypoints((dir / "a.mrk").string(), marks, options, error));
  EXPECT_EQ(error, "Unknown file format: mrk");
}

using test::OziRoute;
using test::OziWaypoints;

// Every reader by its extension: a refusal gives the system's text and
// leaves the element as it was; a read counts one progress step per record
// (waypoint, route point, track point; an IGC line), as the writers do.
TEST(FileDispatch, ReadersRefuseOrCountTheirRecords) {
  const std::string w = "W  A_____ 1.0\xC2\xBAN 1.0\xC2\xBA" "E 27-MAR-62 00:00:00 0.0 x\r\n";
  // The file, its bytes, the refusal ("": the read succeeds) and the records.
  const std::tuple<const char*, std::string, std::string, int> cases[] = {
      {"a.wpt", "B  UTF-8\r\n" + w + "w  Flag\r\n" + w + "W  Wx_ 1.0\xC2\xBAN 1.0\xC2\xBA" "E\r\n", "Error in WPT file", 0},
      {"a.wpt", "G  Nowhere 1999\r\n", "Unknown datum: Nowhere 1999", 0},
      {"a.wpt", "U  9\r\n", "Unknown coordinate notation: 9", 0},
      {"a.wpt", "W  NAME 41.0 2.0 05-JUN-24 13:07:00 0 x\r\n",
       "Error in format lat/lon NO quadrant leter found: (N,S,E,W)", 0},
      {"a.wpt", "B  UTF-8\r\n" + w + "w Flag\r\n\r\n" + w + "w  Old,1\r\nt \"x\",1,2,3,4, 5\r\n", "", 2},
      {"a.rte", "G  WGS 84\r\n" + w, "No rte sections in this file!", 0},
      {"a.rte", "R  0,r,0,0\r\np  1.0\r\n" + w + "p  nowhere\r\n", "Error in WPT file", 0},
      {"a.rte", "R  0,r,0,0\r\n" + w + "p  1.0\xC2\xBAN 1.0\xC2\xBA" "E 5.0\r\n" + w + w, "", 3},
      {"a.trk", "G  WGS 84\r\nT  1.0\xC2\xBAN 1.0\xC2\xBA" "E 27-MAR-62\r\n", "Error in TRK file", 0},
      {"a.trk", "G  WGS 84\r\nT  1.0\xC2\xBAN 1.0\xC2\xBA" "E 27-MAR-62 00:00:00 N 5.0\r\n"
       "T  1.0\xC2\xBAN 1.0\xC2\xBA" "E 27-MAR-62 00:00:00 N 5.0", "", 2},
      {"a.wpt", OziWaypoints("1,A,1,2\r\n", "European 1950"), "Unknown datum: European 1950", 0},
      {"a.wpt", OziWaypoints("1,A,1,2\r\n2,B,3\r\n"), "Error in WPT file", 0},
      {"a.wpt", OziWaypoints("1,A,north,2\r\n"), "Error in WPT file", 0},
      {"a.wpt", OziWaypoints("1,A,1,2\r\n\r\n2,B,3,4\r\n3,C,5,6\r\n"), "", 3},
      {"a.rte", OziRoute("\r\n\r\nW,0,1,1,A,1,2\r\n"), "No rte sections in this file!", 0},
      {"a.rte", OziRoute("R,0,X\r\nW,0,1,1,A,1\r\n"), "Error in WPT file", 0},
      {"a.rte", OziRoute("R,0,X\r\nW,0,1\r\n"), "Error in WPT file", 0},
      {"a.rte", OziRoute("R,0,X\r\n", "Tokyo"), "Unknown datum: Tokyo", 0},
      {"a.rte", OziRoute("R,0,X,,0\r\nW,0,1,1,A,1,2\r\n"), "", 2},
      {"a.igc", "HFDTE160701\r\nB1000005107121N00249342WA0028000421\r\nLXXX\r\n", "", 3},  // one step a line
  };
  const auto dir = test::ScratchDir("dispatch-read");
  for (const auto& [name, bytes, refusal, records] : cases) {
    SCOPED_TRACE(bytes);
    const auto path = dir / name;
    std::string error;
    ASSERT_TRUE(WriteFileAtomic(path.string(), bytes, error));
    TElementFile file;
    file.waypoints.Add(TBaliza());
    file.route.SetName("kept");
    file.track.Anyade_Punto_Temps(1, 1, 1, TDateTime());
    TProgress progress;
    TNativeOptions options;
    options.progress = &progress;
    EXPECT_EQ(OpenElementFile(path.string(), options, file, error), refusal.empty());
    if (!refusal.empty()) {
      EXPECT_EQ(std::tuple(error, file.waypoints.Count(), file.route.Name(), file.track.Count(),
                           file.waypoints.FromOziExplorer()),
                std::tuple(refusal, 1u, "kept", 1u, false));
      continue;
    }
    EXPECT_EQ(std::pair(progress.Total(), progress.Steps()), (std::pair<int64_t, int64_t>(records, records)));
    progress.Cancel();
    EXPECT_FALSE(OpenElementFile(path.string(), options, file, error));
    EXPECT_EQ(error, kCancelledError);
  }
}

// Every writer: a refused or cancelled save, or one that fails half-way,
// leaves the old file and no temporary one; only a complete save clears the
// modified flag.
TEST(FileDispatch, FailedSavesLeaveTheOldFile) {
  const auto dir = test::ScratchDir("dispatch-saved");
  std::mt19937_64 random(3);
  TNativeOptions options = test::Utf8Options();
  TElementFile files[3];
  files[0].kind = TElementKind::Waypoints;
  files[0].waypoints = test::SampleWaypoints(random, 30, options.defaults);
  files[1].kind = TElementKind::Route;
  files[1].route = test::SampleRoute(random, 10, options.defaults);
  files[2].kind = TElementKind::Track;
  files[2].track = test::SampleTrack(random, 100);
  const char* names[] = {"keep.wpt", "keep.rte", "keep.trk"};
  std::string befores[3];
  for (size_t i = 0; i < 3; ++i) {
    TElementFile& file = files[i];
    const std::string path = (dir / names[i]).string();
    std::string error;
    TProgress counted;
    TNativeOptions withProgress = options;
    withProgress.progress = &counted;
    ASSERT_TRUE(SaveElementFile(path, file, withProgress, error)) << error;
    const int64_t records[] = {30, 10, 100};
    EXPECT_EQ(std::pair(counted.Total(), counted.Steps()), std::pair(records[i], records[i]))
        << "one step per waypoint, route point or track point";
    EXPECT_FALSE(file.waypoints.Modified() || file.route.Modified() || file.track.Modified());
    const std::string& before = befores[i] = test::FileBytes(path);
    const int64_t zLine = file.track.ZLinePosition();
    TProgress progress;
    progress.Cancel();
    TNativeOptions cancelled = options;
    cancelled.progress = &progress;
    file.waypoints.SetDescription("changed");
    file.route.SetName("changed");
    file.track.SetName("changed");
    EXPECT_FALSE(SaveElementFile(path, file, cancelled, error)) << names[i];
    EXPECT_EQ(error, kCancelledError);
    EXPECT_EQ(file.track.ZLinePosition(), zLine) << "a failed save keeps the file's offsets";
    file.waypoints.SetSaveProhibited(true);
    file.route.SetSaveProhibited(true);
    file.track.SetSaveProhibited(true);
    EXPECT_FALSE(SaveElementFile(path, file, options, error)) << names[i];
    EXPECT_EQ(error, kSaveProhibitedError);
    EXPECT_TRUE(file.waypoints.Modified() || file.route.Modified() || file.track.Modified());
    EXPECT_EQ(test::FileBytes(path), before);
  }
  files[0].waypoints.SetSaveProhibited(false);
  files[0].waypoints.Baliza(3).SetPosition(95, 0);  // no notation prints a latitude beyond the pole
  std::string error;
  EXPECT_FALSE(SaveElementFile((dir / names[0]).string(), files[0], options, error));
  EXPECT_EQ(test::FileBytes(dir / names[0]), befores[0]);
  EXPECT_FALSE(SaveRoute((dir / "x.rte").string(), files[1].route, options, "/mode=1 /subtipo=804", error));
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir), std::filesystem::directory_iterator()), 3)
      << "no temporary file is left behind";
}

TEST(FileDispatch, OziExplorerElementsAreNotSavedBackInTheirFormat) {
  VELANTIS_TESTDATA_OR_SKIP(waypoints, "ozi/ozi.wpt");
  VELANTIS_TESTDATA_OR_SKIP(routes, "ozi/ozi.rte");
  const auto dir = test::ScratchDir("dispatch-ozi");
  TNativeOptions options;
  TElementFile file;
  std::string error;
  ASSERT_TRUE(OpenElementFile(waypoints.string(), options, file, error)) << error;
  EXPECT_TRUE(file.waypoints.FromOziExplorer());
  EXPECT_FALSE(SaveElementFile((dir / "copy.wpt").string(), file, options, error));
  EXPECT_EQ(error, kOziWaypointsRefused);
  ASSERT_TRUE(OpenElementFile(routes.string(), options, file, error)) << error;
  EXPECT_FALSE(SaveElementFile((dir / "copy.rte").string(), file, options, error));
  EXPECT_EQ(error, kOziRouteRefused);
  EXPECT_TRUE(std::filesystem::is_empty(dir));
  // Saved under another name, they are written in the native formats.
  PrepareSaveAs(file);
  ASSERT_TRUE(SaveElementFile((dir / "copy.rte").string(), file, options, error)) << error;
  TRuta native;
  ASSERT_TRUE(OpenRoute((dir / "copy.rte").string(), options, native, error)) << error;
  EXPECT_FALSE(native.FromOziExplorer());
  EXPECT_EQ(native.Count(), file.route.Count());
}

constexpr double kDegreeTolerance = 1e-6;

TWaypoints ReadWaypoints(std::string_view bytes, const TNativeOptions& options = {}) {
  TWaypoints list;
  std::string error;
  EXPECT_TRUE(ReadOziWaypoints(bytes, options, list, error)) << error;
  return list;
}

TEST(OziFileKind, FirstLineDecides) {
  const std::tuple<std::string_view, bool, bool> cases[] = {
      {"OziExplorer Waypoint File Version 1.1\r\nWGS 84\r\n", true, false},
      {"OziExplorer Waypoint File Version 1.0  \nWGS 84\n", true, false},
      {"OziExplorer CE Waypoint File Version 1.0", true, false},
      {"OziExplorer Waypoint File Version 1.2\r\n", false, false},
      {"WGS 84\r\nOziExplorer Waypoint File Version 1.1\r\n", false, false},
      {"OziExplorer Route File Version 1.0\r\n", false, true},
      {"G  WGS 84\r\nW  NAME 1 2\r\n", false, false},
      {"", false, false},
  };
  for (const auto& [bytes, waypoints, route] : cases) {
    EXPECT_EQ(IsOziWaypointFile(bytes), waypoints) << bytes;
    EXPECT_EQ(IsOziRouteFile(bytes), route) << bytes;
  }
}

TEST(OziWaypoints, Samples) {
  struct Expected {
    size_t index;
    const char* name;
    double lat, lon;
    double metres;  // NAN: none
    double days;    // 0: none
    const char* description;
  };
  struct Sample {
    const char* file;
    size_t count;
    double metresTolerance;
    uint32_t colour2;  // 65535 in the files; euregio9 leaves the field blank
    double proximity;
    std::vector<Expected> points;
  };
  // waypoints_ozi.wpt: the published heights of the landmarks, which the
  // file holds in feet. The others: the file's own values, feet x 0.3048.
  const Sample samples[] = {
      {"ozi/waypoints_ozi.wpt", 5, 0.5, 0xFFFF00, 0,
       {{0, "Aconcagua", -32.653333, -70.011667, 6962, 40652.2883218, "Aconcagua"},
        {4, "Sydney Opera", -33.856950, 151.215267, 5, 40652.2883218, "Sydney Opera"}}},
      {"ozi/ozi.wpt", 9, 1e-3, 0xFFFF00, 0,
       {{0, "GCEBB", 35.972033, -87.134700, 0, 0, "Mountain Bike Heaven by susy1313"},
        {7, "GC317A", 36.057500, -86.892000, 0, 0, "GittyUp by JoGPS / Warner Parks"}}},
      {"ozi/ozi1.wpt", 11, 1e-3, 0xFFFF00, 0,
       {{0, "AVTOST", 59.084180, 42.281750, 135.9408, 40233.4347365, "23-FEB-10 16:15:59"},
        {4, "OBHOD-Y", 59.124833, 42.438184, NAN, 40233.4424097, ""},
        {6, "POLE-X", 59.165280, 42.576680, 203.9112, 40231.6599306, "TP - 24.02.2010 10:40:50"}}},
      {"ozi/euregio9_ozi.wpt", 99, 1e-3, 0xFFFFFF, 500,
       {{0, "AACHEN", 50.814167, 6.191389, 188.976, 39594.000006, "PUMPSTATION GAFOR=34"},
        {98, "ZLRWDK", 50.823056, 6.186389, 189.8904, 39594.000006, "ZIELLINIE EDKA GAFOR=34"}}},
  };
  for (const Sample& sample : samples) {
    VELANTIS_TESTDATA_OR_SKIP(path, sample.file);
    const TWaypoints list = ReadWaypoints(test::FileBytes(path));
    ASSERT_EQ(list.Count(), sample.count) << sample.file;
    EXPECT_TRUE(list.FromOziExplorer());
    EXPECT_FALSE(list.Modified());
    for (const Expected& e : sample.points) {
      SCOPED_TRACE(std::string(sample.file) + " " + e.name);
      const TBaliza& b = list.Baliza(e.index);
      EXPECT_EQ(std::tuple(b.Name(), b.Description(), b.HasAltitude(), b.Time().IsNull(), b.LabelColour1(),
                           b.LabelColour2()),
                std::tuple(e.name, e.description, !std::isnan(e.metres), e.days == 0, 0u, sample.colour2));
      EXPECT_NEAR(b.Latitude(), e.lat, kDegreeTolerance);
      EXPECT_NEAR(b.Longitude(), e.lon, kDegreeTolerance);
      if (b.HasAltitude()) {
        EXPECT_NEAR(b.Altitude(), e.metres, sample.metresTolerance);
      }
      if (e.days != 0) {
        EXPECT_NEAR(b.Time().Days(), e.days, 1e-9);
      }
      EXPECT_NEAR(b.ProximityRadius(), sample.proximity, sample.proximity * 0.0025);
    }
  }
}

TEST(OziWaypoints, TextsColoursAndOptionalFields) {
  TNativeOptions options;
  options.defaults.colour1 = PackLabelColour(0x0000FF);
  options.defaults.colour2 = PackLabelColour(0x00FFFF);
  options.defaults.displayFlag3 = true;
  // The record; name, description, colours and metres (NAN: none) read.
  // "\xD1" is the stored comma, "\xE9" an e acute and "\x80" the euro sign.
  const std::tuple<const char*, const char*, const char*, uint32_t, uint32_t, double> cases[] = {
      {"1,Caf\xE9\xD1 bar,1,2,0,0,1,3,255,16711680,Ni\xD1 \x80,0,0,0,100", "Café, bar", "Ni, €", 0xFF0000, 0x0000FF,
       30.48},
      {"2 , PADDED , 1 , 2 , , 0 , 1 , 3 , 65280 , 0 , text , 0 , 0 , 0 , -777 ", "PADDED", "text", 0x00FF00, 0, NAN},
      {"3,SHORT,1,2", "SHORT", "", 0x0000FF, 0x00FFFF, NAN},
      {"4,NEG,1,2,0,0,1,3,,,,0,0,0,-1.5", "NEG", "", 0x0000FF, 0x00FFFF, -0.4572},
  };
  for (const auto& [record, name, description, colour1, colour2, metres] : cases) {
    SCOPED_TRACE(name);
    const TWaypoints list = ReadWaypoints(OziWaypoints("\r\n" + std::string(record) + "\r\n \r\n"), options);
    ASSERT_EQ(list.Count(), 1u);  // blank lines skipped
    const TBaliza& b = list.Baliza(0);
    EXPECT_EQ(std::tuple(b.Name(), b.Description(), b.LabelColour1(), b.LabelColour2(), b.HasAltitude(),
                         b.Time().IsNull(), b.DisplayFlag3(), b.State() & kBalizaStateTransientBit, b.Latitude(),
                         b.Longitude()),
              std::tuple(name, description, colour1, colour2, !std::isnan(metres), true, true, 0, 1.0, 2.0));
    if (b.HasAltitude()) {
      EXPECT_NEAR(b.Altitude(), metres, 1e-4);
    }
  }
}

TEST(OziWaypoints, PositionsShiftFromTheFileDatum) {
  int configured = 0;
  TListaDatums datums(configured);
  datums.Add(test::MakeDatum("WGS 84", test::kWgs84A, test::kWgs84Rf, 0, 0, 0));
  datums.Add(test::MakeDatum("European 1950", test::kInternationalA, test::kInternationalRf, -87, -98, -121));
  TNativeOptions options;
  options.datums = &datums;
  const TWaypoints list = ReadWaypoints(OziWaypoints("1,MADRID,40.416775,-3.703790\r\n", "European 1950"), options);
  ASSERT_EQ(list.Count(), 1u);
  TLonLat expected{-3.703790, 40.416775};
  std::string error;
  ASSERT_TRUE(datums.Transforma_Grados_Datum(expected, 1, 0, error)) << error;
  // ED50 lies a hundred metres or more off WGS 84 in Spain.
  ASSERT_GT(std::abs(expected.lat - 40.416775) + std::abs(expected.lon + 3.703790), 5e-4);
  EXPECT_NEAR(list.Baliza(0).Latitude(), expected.lat, 1e-9);
  EXPECT_NEAR(list.Baliza(0).Longitude(), expected.lon, 1e-9);
}

TEST(OziRoute, FirstRouteAsGpsBabelDecodesIt) {
  VELANTIS_TESTDATA_OR_SKIP(path, "ozi/ozi.rte");
  // The first <rte> of ozi/ozi~gpx.gpx. GPSBabel's milliseconds stray from
  // the stored day count by up to a second; the whole seconds agree.
  struct Expected {
    const char* name;
    double lat, lon;
    TDateTime time;
    const char* description;
  };
  const Expected expected[] = {
      {"MPCHIC", -34.445850, -58.523720, TDateTime::FromCalendar(2010, 11, 25, 20, 26, 0.851), "MARINA PUNTA CHICA"},
      {"JA12", -34.447380, -58.507270, TDateTime::FromCalendar(2013, 3, 11, 19, 52, 36.828), ""},
  };
  TRuta route;
  std::string error;
  ASSERT_TRUE(ReadOziRoute(test::FileBytes(path), {}, route, error)) << error;
  EXPECT_EQ(std::tuple(route.Name(), route.Description(), route.FromOziExplorer(), route.Modified()),
            std::tuple("1 COSTANERO JA", "", true, false));
  ASSERT_EQ(route.Count(), std::size(expected));
  for (size_t i = 0; i < route.Count(); ++i) {
    const TBaliza& b = route.Point(i).baliza;
    EXPECT_EQ(std::tuple(b.Name(), b.Description()), std::tuple(expected[i].name, expected[i].description));
    EXPECT_NEAR(b.Latitude(), expected[i].lat, kDegreeTolerance);
    EXPECT_NEAR(b.Longitude(), expected[i].lon, kDegreeTolerance);
    EXPECT_NEAR(b.Time().Days(), expected[i].time.Days(), 1 / kSecondsPerDay) << b.Name();
  }
}

TEST(OziRoute, OnlyTheFirstRouteIsRead) {
  // The lines after the header, and the route read: name|description|points.
  const std::pair<const char*, const char*> cases[] = {
      {"\r\nW,9,1,1,EARLY,1,2\r\nR,0,FIRST,About it,255\r\n\r\nW,0,1,7,A,1,2\r\n  \r\nW,0,2,8,B,3,4\r\n"
       "R,1,SECOND,,0\r\nW,1,1,9,C,5,6\r\n",
       "FIRST|About it|A B "},
      {"R,0,Ni\xD1o\r\n", "Ni,o||"},
      {"R , 3 , PADDED , text \r\nW, 3, 1, 1, P , 1 , 2\r\n", "PADDED|text|P "},
  };
  for (const auto& [lines, expected] : cases) {
    TRuta route;
    std::string error;
    ASSERT_TRUE(ReadOziRoute(OziRoute(lines), {}, route, error)) << error;
    std::string read = route.Name() + "|" + route.Description() + "|";
    for (size_t i = 0; i < route.Count(); ++i) read += route.Point(i).baliza.Name() + " ";
    EXPECT_EQ(read, expected);
  }
}

}  // namespace
}  // namespace velantis
