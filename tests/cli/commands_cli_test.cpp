// The velantis program run as a user runs it: one row per command and per
// error path, and the coordinate forms against PROJ and published points.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <fstream>

#include "tests/cli/run_velantis.h"
#include "tests/support/proj_reference.h"
#include "tests/support/testdata.h"

namespace velantis::test {
namespace {

// Two points on the equator one degree apart (111319.491 m on WGS 84), and a
// third that starts a second segment.
constexpr const char* kTrack =
    "B  UTF-8\r\nG  WGS 84\r\nU  0\r\nN  Equator\r\n"
    "T  0.000000\xC2\xBAN 10.000000\xC2\xBA" "E 05-JUN-24 10:00:00 N 5.000000\r\n"
    "T  0.000000\xC2\xBAN 11.000000\xC2\xBA" "E 05-JUN-24 11:00:00 N 5.000000\r\n"
    "T  1.000000\xC2\xBAS 11.000000\xC2\xBA" "E 05-JUN-24 09:30:00 s 5.000000\r\n";
// A latitude/longitude map of 1000 x 1000 pixels over 2°E..3°E, 41°N..42°N.
constexpr const char* kMap =
    "Velantis MAP File\r\n<Header>\r\nProjection=1,Lat/Long,\r\nCoordinates=1\r\nDatum=WGS 84\r\n</Header>\r\n"
    "<Map>\r\nBitmap=square.png\r\nBitmapWidth=1000\r\nBitmapHeight=1000\r\n</Map>\r\n<Calibration>\r\n"
    "P0=0,0,A,2,42\r\nP1=1000,0,A,3,42\r\nP2=0,1000,A,2,41\r\n</Calibration>\r\n";
// A flight log: two fixes on the equator one degree apart an hour apart, and
// a fix whose minutes are past 60 (skipped and counted).
constexpr const char* kFlight =
    "AXVLtest\r\nHFDTE050624\r\nB1000000000000N01000000EA0010000120\r\n"
    "B1030000060001N01000000EA0010000120\r\nB1100000000000N01100000EA0010000120\r\n";

TEST(Commands, EveryCommandAndErrorPath) {
  const auto dir = ScratchDir("cli-commands");
  const auto path = [&dir](const char* name) { return (dir / name).string(); };
  const std::string track = path("equator.trk"), map = path("square.imp"), ed50 = path("ed50.trk");
  const std::string flight = path("flight.IGC"), flightTrack = path("flight.trk");
  std::ofstream(track, std::ios::binary) << kTrack;
  std::ofstream(map, std::ios::binary) << kMap;
  std::ofstream(flight, std::ios::binary) << kFlight;
  const std::string failing = path("failing.vs"), unloadable = path("unloadable.vs");
  std::ofstream(failing) << "Echo(\"before\\n\"); x = y;";
  std::ofstream(unloadable) << "Echo(\"never\"); n = 12ab;";
  const struct {
    std::vector<std::string> args;
    std::string input;
    int exitCode;
    std::string out;  // a prefix of the output when it ends in "..."
    std::string err;  // "*": any "velantis: " line
  } cases[] = {
      {{"datums", "--json"}, "", 0, "[\n{\"index\":0,\"name\":\"WGS 84\",\"short\":\"WGS84\",\"a\":6378137,"
       "\"inv_f\":298.257223563,\"dx\":0,\"dy\":0,\"dz\":0,\"grid\":null},\n{\"index\":1,...", ""},
      {{"datums", "--data-dir", "/nonexistent"}, "", 1, "",
       "velantis: Error reading file DATUMSB.DAT Error opening /nonexistent/datumsb.dat\n"},
      {{"coord", "--from", "geo:WGS 84", "--to", "geo:WGS84"}, "41.5 2.25\nnot a coordinate\n-33.9 -70.7\n", 0,
       "41.500000000 2.250000000\nerror: Bad coordinate: not a coordinate (LAT LON in degrees expected)\n"
       "-33.900000000 -70.700000000\n", ""},
      {{"coord", "--from", "utm:WGS 84", "--to", "utm:WGS84"}, "30 T 740000 4600000\n", 0, "30 T 740000.000 4600000.000\n", ""},
      // PROJ: +proj=utm +zone=56 +south +ellps=WGS84 gives 333568.9410 6247473.3368.
      {{"coord", "--from", "geo:WGS 84", "--to", "utm:WGS 84"}, "-33.9 151.2\n", 0, "56 H 333568.941 6247473.337\n", ""},
      {{"coord", "--from", "utm:WGS 84", "--to", "geo:WGS84"}, "31 t 500000 1000\n", 0,
       "error: Error in the UTM zome. It must be a value between 1 and 60\n", ""},
      {{"coord", "--from", "geo:WGS 84", "--to", "mgrs:WGS 84", "41.4", "2.17"}, "", 0, "31TDF...", ""},
      {{"coord", "--from", "geo:Atlantis 1900", "--to", "geo:WGS 84", "1", "2"}, "", 1, "",
       "velantis: Unknown datum: Atlantis 1900\n"},
      {{"coord", "--from", "proj:/nonexistent.prj", "--to", "geo:WGS 84", "1", "2"}, "", 1, "", "*"},
      {{"coord", "--from", "lambert:WGS 84", "--to", "geo:WGS 84", "1", "2"}, "", 2, "",
       "velantis: Unknown coordinate system: lambert:WGS 84\n"},
      {{"coord", "--to", "geo:WGS 84"}, "", 2, "", "velantis: --from is required\n"},
      {{"format", "--notation", "1", "-33.5", "-70.25"}, "", 0, "33º30.000'S 70º15.000'W\n", ""},
      {{"format", "--notation", "0", "91", "0"}, "", 1, "", "velantis: Latitude out of range: 91\n"},
      {{"format", "1", "2"}, "", 2, "", "velantis: --notation is required\n"},
      {{"parse", "41", "23.5'N"}, "", 0, "41.391666667 lat\n", ""},
      {{"parse", "-2 10'30W"}, "", 0, "1.825000000 lon\n", ""},
      {{"parse", "41.5"}, "", 1, "", "velantis: Error in format lat/lon NO quadrant leter found: (N,S,E,W)\n"},
      {{"parse"}, "", 2, "", "*"},
      {{"calib", map, "--coord", "41.25", "2.75"}, "", 0, "750.000 750.000\n", ""},
      {{"calib", map, "--pixel"}, "0 0\nnorth\n1000 1000\n", 0,
       "42.000000000 2.000000000\nerror: Bad coordinate: north (X Y in pixels expected)\n41.000000000 3.000000000\n",
       ""},
      {{"calib", "/no/such/map.map", "--pixel", "1", "2"}, "", 1, "", "velantis: Map file not found.\n"},
      {{"calib", map, "--pixel", "1", "2", "--datum", "Atlantis"}, "", 1, "", "velantis: Unknown datum: Atlantis\n"},
      {{"calib", map, "--pixel", "1"}, "", 2, "", "velantis: --pixel takes two values or none\n"},
      {{"info", map}, "", 0, "kind: map\nname: \ncount: 3\ndatum: WGS 84\nprojection: 1,Lat/Long,\n"
       "image: square.png 1000x1000\nbounds: 41.000000000 2.000000000 42.000000000 3.000000000\n", ""},
      {{"info", "--json", track}, "", 0, "{\"kind\":\"track\",\"name\":\"Equator\",\"count\":3,\"segments\":2,"
       "\"datum\":\"WGS 84\",\"notation\":0,\"bounds\":[-1.000000000,10.000000000,0.000000000,11.000000000],"
       "\"start\":\"2024-06-05T09:30:00Z\",\"end\":\"2024-06-05T11:00:00Z\",\"distance_m\":111319.491}\n", ""},
      {{"info", path("x.doc")}, "", 1, "", "velantis: Unknown file format: doc\n"},
      {{"convert", track, ed50, "--datum", "European 1950", "--notation", "1"}, "", 0, "", ""},
      {{"info", ed50}, "", 0, "kind: track\nname: Equator\ncount: 3\nsegments: 2\ndatum: European 1950\n"
       "notation: 1\n...", ""},
      {{"convert", track, path("x.wpt")}, "", 1, "", "velantis: Unknown file format: wpt\n"},
      {{"convert", path("none.trk"), ed50}, "", 1, "", "velantis: Error opening " + path("none.trk") + "\n"},
      {{"convert", track, ed50, "--notation", "4"}, "", 2, "", "*"},
      {{"info", flight}, "", 0, "kind: track\nname: \ncount: 2\nsegments: 1\nbad_records: 1\ndatum: WGS 84\n"
       "notation: 0\nbounds: 0.000000000 10.000000000 0.000000000 11.000000000\n"
       "start: 2024-06-05T10:00:00Z\nend: 2024-06-05T11:00:00Z\ndistance_m: 111319.491\n", ""},
      {{"info", "--json", flight}, "", 0, "{\"kind\":\"track\",\"name\":\"\",\"count\":2,\"segments\":1,"
       "\"bad_records\":1,\"datum\"...", ""},
      {{"convert", flight, path("copy.igc")}, "", 0, "", ""},
      {{"convert", flight, flightTrack}, "", 0, "", ""},
      {{"convert", flightTrack, path("back.igc")}, "", 0, "", ""},
      {{"script", failing}, "", 1, "before\n", "velantis: Unknown variable 'y'\n"},
      {{"script", unloadable}, "", 1, "", "velantis: Syntax Error\n"},
      {{"script", "/no/such.vs"}, "", 1, "", "velantis: Error opening /no/such.vs\n"},
      {{"script"}, "", 2, "", "*"},
  };
  for (const auto& c : cases) {
    const TRunResult run = RunVelantis(c.args, c.input);
    SCOPED_TRACE(testing::PrintToString(c.args) + "\n" + run.out + run.err);
    const std::string out = c.out.ends_with("...") ? run.out.substr(0, c.out.size() - 3) + "..." : run.out;
    const std::string err = c.err == "*" && run.err.starts_with("velantis: ") ? "*" : run.err;
    EXPECT_EQ(std::tie(run.exitCode, out, err), std::tie(c.exitCode, c.out, c.err));
  }
  // A flight log copied to a flight log keeps its bytes; through a track file
  // it keeps its fixes and gets our own header.
  EXPECT_EQ(FileBytes(dir / "copy.igc"), kFlight);
  EXPECT_EQ(FileBytes(dir / "back.igc"),
            "AXVLVelantis\r\nHFDTEDATE:050624,01\r\nB1000000000000N01000000EA0010000120\r\n"
            "B1100000000000N01100000EA0010000120\r\n");
  // Real OziExplorer waypoints become a native file, which saves over itself.
  VELANTIS_TESTDATA_OR_SKIP(ozi, "ozi/ozi1.wpt");
  const std::string native = path("native.wpt");
  ASSERT_EQ(RunVelantis({"convert", ozi.string(), native}).exitCode, 0);
  const TRunResult info = RunVelantis({"info", "--json", native});
  EXPECT_EQ(info.out.rfind("{\"kind\":\"waypoints\",\"name\":\"\",\"count\":11,\"datum\":\"WGS 84\",", 0), 0u)
      << info.out;
  EXPECT_EQ(RunVelantis({"convert", native, native}).exitCode, 0);
}

TEST(Commands, CoordinateFormsAgreeWithProjAndPublishedPoints) {
  const std::string prj = (ScratchDir("coord-proj-file") / "gk3.prj").string();
  std::ofstream(prj, std::ios::binary)
      << "VERSION=1\r\nNAME=Gauss-Kruger zone 3\r\nPROJECTION=Transversal Mercator\r\nLON_ORIGIN=9\r\n"
         "LAT_ORIGIN=0\r\nSCALE_FACTOR=1\r\nFE=3500000\r\nFN=0\r\nPREFERED_DATUM=Potsdam Rauenberg DHDN\r\n";
  // European 1979 (International 1924, dX -86 dY -98 dZ -119, TR8350.2) at
  // the equator, where the squared-latitude rule is moot: PROJ's Molodensky
  // to the last printed decimal.
  char molodensky[200];
  std::snprintf(molodensky, sizeof molodensky,
                "+proj=molodensky +a=6378388 +rf=297 +da=-251 +df=%.17g +dx=-86 +dy=-98 +dz=-119",
                1 / 298.257223563 - 1 / 297.0);
  const struct {
    std::string from, to, values;
    std::string proj;   // inverse (geographic output) when it starts with "+proj=molodensky"
    double x, y, tolerance;  // the published point when proj is empty
  } cases[] = {
      {"geo:Europeo 1979", "geo:WGS 84", "0.0001 10", molodensky, 10, 0.0001, 2e-9},
      {"geo:DHDN", "proj:" + prj, "50.1 8.7", "+proj=tmerc +lon_0=9 +k=1 +x_0=3500000 +ellps=bessel", 8.7, 50.1, 0.002},
      // Ordnance Survey's worked example (Caister water tower), OSGB36, by
      // the short and the catalogue name; the Swiss grid's origin at Bern.
      {"geo:Ord Srvy Grt Britn", "bng", "52.657570306 1.717921583", "", 651409.903, 313177.270, 0.002},
      {"geo:OSGB36", "BGN (British National Grid)", "52.657570306 1.717921583", "", 651409.903, 313177.270, 0.002},
      {"geo:CH-1903", "swiss", "46.952405556 7.439583333", "", 600000, 200000, 0.01},
  };
  for (const auto& c : cases) {
    const TRunResult run = RunVelantis({"coord", "--from", c.from, "--to", c.to}, c.values + "\n");
    ASSERT_EQ(run.exitCode, 0) << run.err;
    double x = NAN, y = NAN, lat = NAN, lon = NAN, refX = c.x, refY = c.y;
    ASSERT_EQ(std::sscanf(run.out.c_str(), "%lf %lf", &x, &y), 2) << run.out;
    if (c.proj.starts_with("+proj=molodensky")) {
      ASSERT_TRUE(TProjReference(c.proj).Apply(refX, refY));
      std::swap(x, y);  // the output is LAT LON
    } else if (!c.proj.empty()) {
      ASSERT_TRUE(TProjReference(c.proj).Forward(c.x, c.y, refX, refY));
      // Back within the 1 mm printed precision (about 1e-8 degrees).
      const std::string back = RunVelantis({"coord", "--from", c.to, "--to", c.from}, run.out).out;
      ASSERT_EQ(std::sscanf(back.c_str(), "%lf %lf", &lat, &lon), 2) << back;
      EXPECT_LE(std::max(std::fabs(lat - c.y), std::fabs(lon - c.x)), 1e-8) << back;
    }
    EXPECT_LE(std::max(std::fabs(x - refX), std::fabs(y - refY)), c.tolerance) << c.to << ": " << run.out;
  }
}

}  // namespace
}  // namespace velantis::test
