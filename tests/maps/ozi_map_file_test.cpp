// OziExplorer ".map" files: the published samples, their exact round trips,
// the forms of points the samples lack, the refusals, the projection names.
#include "maps/ozi_map_file.h"

#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <tuple>

#include "app/file_io.h"
#include "geodesy/projection_catalogue.h"
#include "maps/imp_file.h"
#include "maps/ozi_projection.h"
#include "tests/support/testdata.h"

namespace velantis {
namespace {

namespace fs = std::filesystem;

constexpr const char* kSampleFolder = "ozi/map";

class OziMapFile : public testing::Test {
protected:
  static void SetUpTestSuite() {
    s_loaded = test::LoadBuiltInDatums(s_datums);
  }
  void SetUp() override { ASSERT_TRUE(s_loaded) << "build the target velantis_data first"; }

  static TMapCalibration Read(std::string_view text) {
    TMapCalibration map;
    std::string error;
    EXPECT_TRUE(ReadOziMapText(text, s_datums, map, error)) << error;
    return map;
  }
  static std::string Write(const TMapCalibration& map) {
    std::string text, error;
    EXPECT_TRUE(OziMapText(map, text, error)) << error;
    return text;
  }
  static std::string ReadError(std::string_view text) {
    TMapCalibration map;
    std::string error;
    EXPECT_FALSE(ReadOziMapText(text, s_datums, map, error));
    return error;
  }

  static inline int s_configured = 0;
  static inline TListaDatums s_datums{s_configured};
  static inline bool s_loaded = false;
};

// The file's lines without their CR LF.
std::vector<std::string> Lines(const std::string& bytes) {
  std::vector<std::string> lines;
  for (size_t start = 0, end; start < bytes.size(); start = end + 2) {
    end = bytes.find("\r\n", start);
    if (end == std::string::npos) end = bytes.size();
    lines.push_back(bytes.substr(start, end - start));
  }
  return lines;
}

std::string Replaced(std::string text, const std::string& from, const std::string& to) {
  const size_t at = text.find(from);
  EXPECT_NE(at, std::string::npos) << from;
  return at == std::string::npos ? text : text.replace(at, from.size(), to);
}

// What GDAL's comparison cannot see: the texts, the form of the points, the
// image size, the polygons and the setup of maps calibrated in degrees.
TEST_F(OziMapFile, SampleFilesSayWhatTheirLinesSay) {
  using enum TCoordinateMode;
  const TProjectionParams lcc{90, 0, 1, 500000, 0, 30, 60};
  const struct {
    const char* file;
    const char* datum;  // the datum list's name for the file's datum
    std::string_view projection;
    TProjectionParams params;  // lonOrigin, latOrigin, k, FE, FN, lat1, lat2
    size_t points;
    TCoordinateMode mode;
    int width, height;
    size_t polygon;
  } samples[] = {
      {"ozi1.map", "Pulkovo 1942", "Transversal Mercator", {37.5, 0, 1, 38991, -6289575}, 4, Plane, 3894, 3363, 4},
      {"ozi2.map", "WGS 84", "Lambert 2SP", lcc, 4, LatLon, -1, -1, 4},
      {"ozi2b.map", "WGS 84", "Lambert 2SP", lcc, 4, Plane, 0, 0, 4},
      {"ozi3.map", "Pulkovo 1942", "Transversal Mercator", {39, 0, 1, 7500000}, 9, LatLon, 3809, 4550, 4},
      {"m47-022.map", "Pulkovo 1942", "Transversal Mercator", {99, 0, 1, 17500000}, 4, LatLon, 732, 775, 6},
      {"o37-122.map", "WGS 84", "Transversal Mercator", {39, 0, 1, 500000}, 4, LatLon, -1, -1, 5},
      {"9410_4633_14.map", "WGS 84", "Mercator", {}, 4, LatLon, 256, 256, 4},
  };
  for (const auto& s : samples) {
    SCOPED_TRACE(s.file);
    VELANTIS_TESTDATA_OR_SKIP(path, fs::path(kSampleFolder) / s.file);
    const std::string bytes = test::FileBytes(path);
    const TMapCalibration map = Read(bytes);
    // The title and the image name keep their bytes (ozi3's title is cp1251).
    EXPECT_EQ(map.name, Lines(bytes)[1]);
    EXPECT_EQ(map.bitmap, Lines(bytes)[2]);
    EXPECT_TRUE(map.projection == (TMapProjection{std::string(s.projection), s.params, {}}))
        << map.projection.name;
    EXPECT_EQ(std::tuple(map.datum, map.coordinates, map.points.size(), map.bitmapWidth, map.bitmapHeight,
                         map.polygonBitmap.size(), map.polygonCoords.size()),
              std::tuple(s.datum, s.mode, s.points, s.width, s.height, s.polygon, s.mode == LatLon ? s.polygon : 0));
  }
}

// mapsoft2 rewrote the same maps in the other form: projecting one file's
// latitudes and longitudes with the parameters read from the setup line
// lands on the other file's grid values for the same pixels.
TEST_F(OziMapFile, SetupParametersReproduceTheGridOfTheSameMap) {
  const std::pair<const char*, const char*> pairs[] = {{"ozi1a.map", "ozi1b.map"},
                                                       {"ozi2.map", "ozi2b.map"}};
  for (const auto& [geoFile, gridFile] : pairs) {
    SCOPED_TRACE(geoFile);
    VELANTIS_TESTDATA_OR_SKIP(geoPath, fs::path(kSampleFolder) / geoFile);
    VELANTIS_TESTDATA_OR_SKIP(gridPath, fs::path(kSampleFolder) / gridFile);
    const TMapCalibration geo = Read(test::FileBytes(geoPath)), grid = Read(test::FileBytes(gridPath));
    std::string message;
    const auto projection = CreateProjection(geo.projection.name,
                                             *s_datums.Get(s_datums.Find(geo.datum)),
                                             geo.projection.params, message);
    ASSERT_TRUE(projection) << message;
    size_t matched = 0;
    for (const TCalibrationPoint& g : geo.points) {
      for (const TCalibrationPoint& p : grid.points) {
        if (p.pixelX != g.pixelX || p.pixelY != g.pixelY) continue;
        TPlanePoint plane;
        ASSERT_TRUE(projection->Forward({g.x, g.y}, plane, message)) << message;
        EXPECT_NEAR(plane.x, p.x, 0.6);  // the grid files round to whole metres
        EXPECT_NEAR(plane.y, p.y, 0.6);
        ++matched;
      }
    }
    EXPECT_EQ(matched, 4u);
  }
}

TEST_F(OziMapFile, EverySampleRoundTripsExactly) {
  VELANTIS_TESTDATA_OR_SKIP(folder, kSampleFolder);
  size_t files = 0;
  for (const fs::directory_entry& entry : fs::directory_iterator(folder)) {
    SCOPED_TRACE(entry.path().filename().string());
    const TMapCalibration map = Read(test::FileBytes(entry.path()));
    const std::string text = Write(map);
    const TMapCalibration back = Read(text);
    EXPECT_TRUE(back == map) << text;
    EXPECT_EQ(Write(back), text);
    // Through the system's own file, whose eight decimals keep a degree to
    // half of 1e-8 and a pixel or a metre exactly enough: the same
    // calibration but for that rounding.
    TMapCalibration viaImp;
    std::string error;
    ASSERT_TRUE(ReadImpText(ImpText(map), ".", s_datums, viaImp, error)) << error;
    ASSERT_EQ(viaImp.points.size(), map.points.size());
    for (size_t i = 0; i < map.points.size(); ++i) {
      EXPECT_NEAR(viaImp.points[i].x, map.points[i].x, 5e-9);
      EXPECT_NEAR(viaImp.points[i].y, map.points[i].y, 5e-9);
      viaImp.points[i].x = map.points[i].x;
      viaImp.points[i].y = map.points[i].y;
    }
    EXPECT_TRUE(viaImp == map);
    EXPECT_EQ(Write(viaImp), text);
    ++files;
  }
  EXPECT_GE(files, 12u);
}

// The lines that carry no values are written as OziExplorer wrote them.
TEST_F(OziMapFile, FixedLinesMatchTheSampleFile) {
  VELANTIS_TESTDATA_OR_SKIP(path, fs::path(kSampleFolder) / "ozi2.map");
  const std::string bytes = test::FileBytes(path);
  const std::vector<std::string> original = Lines(bytes);
  const std::string text = Write(Read(bytes));
  const std::vector<std::string> written = Lines(text);
  EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), std::count(text.begin(), text.end(), '\r'));
  ASSERT_GE(written.size(), 50u);
  for (size_t line : {0, 3, 5, 6, 7, 8}) EXPECT_EQ(written[line], original[line]);
  // The empty point lines, then the markers and the MMPXY lines.
  for (size_t line = 13; line < 39; ++line) EXPECT_EQ(written[line], original[line]);
  for (size_t line = 40; line < 49; ++line) EXPECT_EQ(written[line], original[line]);
}

// ---- Forms the samples lack ------------------------------------------------

// A map text around the given point lines.
std::string MapText(std::string_view projection, std::initializer_list<std::string_view> points) {
  std::string text = "OziExplorer Map Data File Version 2.2\r\nT\r\nt.png\r\n1 ,Map Code,\r\n"
                     "WGS 84,,   0.0000,   0.0000,WGS 84\r\nMap Projection,";
  text.append(projection).append(",PolyCal,No,AutoCalOnly,No,BSBUseWPX,No\n");
  for (std::string_view point : points) text.append(point).append("\n");
  return text + "Projection Setup,,,,,,,,,,\n";
}

// UTM grid points take their zone and hemisphere (a point without a zone
// is dropped); a UTM map calibrated in degrees keeps its zone through the
// zone fields; on mixed points the grid ones are kept, and a place holder
// (-1, -1) is not a point.
TEST_F(OziMapFile, PointFormsTheSamplesLack) {
  using enum TCoordinateMode;
  const struct {
    const char* projection;
    std::initializer_list<std::string_view> points;
    TCoordinateMode mode;
    size_t count;
    int zone;           // 0: not looked at
    const char* found;  // in the written text
  } cases[] = {
      {"(UTM) Universal Transverse Mercator",
       {"Point01,xy, 10, 20,in, deg, , ,N, , ,E, grid, 33, 500000, 6200000,S",
        "Point02,xy, 910, 20,in, deg, , ,N, , ,E, grid, 33, 509000.5, 6200000,S",
        "Point03,xy, 50, 60,in, deg, , ,N, , ,E, grid, , 400000, 6200000,S"},
       Utm, 2, 33, " 33,     500000,    6200000,S\r\n"},
      {"(UTM) Universal Transverse Mercator",
       {"Point01,xy, 10, 20,in, deg, 41, 30,N, 2, 10,E, grid, 31, , ,N",
        "Point02,xy, 90, 20,in, deg, 41, 30,N, 2, 20,E, grid, , , ,N"},
       LatLon, 2, 31, "Point02,xy,"},
      {"Transverse Mercator",
       {"Point01,xy, 1.5, 2,in, deg, 10, 30,N, 20, 0,W, grid, , 100, 200,N",
        "Point02,xy, 3, 4,in, deg, 11, 30,N, 21, 0,W, grid, , , ,N",
        "Point03,xy, 5, 6,in, deg, , ,N, , ,E, grid, , 300, 400,N",
        "Point04,xy, -1, -1,in, deg, , ,N, , ,E, grid, , 500, 600,N"},
       Plane, 2, 0, "Point01,xy,  1.5,    2,"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(*c.points.begin());
    const TMapCalibration map = Read(MapText(c.projection, c.points));
    EXPECT_EQ(map.coordinates, c.mode);
    ASSERT_EQ(map.points.size(), c.count);
    if (c.zone) {
      ASSERT_TRUE(map.projection.zone.has_value());
      EXPECT_EQ(map.projection.zone->zone, c.zone);
      EXPECT_EQ(map.projection.zone->band, c.mode == Utm ? 'M' : 'N');
    }
    const std::string written = Write(map);
    EXPECT_NE(written.find(c.found), std::string::npos) << written;
    EXPECT_TRUE(Read(written) == map);
  }
}

// ---- Refusals --------------------------------------------------------------

TEST_F(OziMapFile, UnreadableFilesAreRefused) {
  VELANTIS_TESTDATA_OR_SKIP(path, fs::path(kSampleFolder) / "ozi2.map");
  const std::string bytes = test::FileBytes(path);
  std::string onePoint;
  for (const std::string& line : Lines(bytes)) {
    if (!line.starts_with("Point0") || line.starts_with("Point01")) onePoint += line + "\r\n";
  }
  const std::pair<std::string, std::string> cases[] = {
      {"", std::string(kOziMapNotOzi)},
      {Replaced(bytes, "OziExplorer Map", "Other Map"), std::string(kOziMapNotOzi)},
      {onePoint, std::string(kOziMapFewPoints)},
      {Replaced(bytes, "Lambert Conformal Conic", "Sinusoidal"),
       "Projection not supported: Sinusoidal"},
      {Replaced(bytes, "WGS 84,,", "Nowhere 1900,,"), "Unknown datum: Nowhere 1900"},
  };
  for (const auto& [text, message] : cases) EXPECT_EQ(ReadError(text), message);
  TMapCalibration map;
  std::string error;
  EXPECT_FALSE(ReadOziMapFile((path.parent_path() / "absent.map").string(), s_datums, map, error));
  EXPECT_EQ(error, kOziMapNotFound);
}

TEST_F(OziMapFile, CalibrationsTheFormatCannotSayAreRefused) {
  TMapCalibration base;
  base.points = {{0, 0, "A", 1, 2}, {10, 10, "A", 3, 4}};
  const auto with = [&base](auto change) {
    TMapCalibration map = base;
    change(map);
    return map;
  };
  const std::pair<TMapCalibration, const char*> cases[] = {
      {with([](TMapCalibration& m) { m.projection.name = "Oblique Stereographic"; }),
       "no name for the projection Oblique Stereographic"},
      {with([](TMapCalibration& m) {
         const TCalibrationPoint first = m.points[0];
         m.points.resize(31, first);
       }),
       "at most 30"},
      {with([](TMapCalibration& m) { m.points.resize(1); }), "at least 2"},
      {with([](TMapCalibration& m) { m.points[1].y = INFINITY; }), "point 2 does not fit"},
      {with([](TMapCalibration& m) { m.datum = "Ord Srvy Grt Britn (Scotland, Shetland)"; }),
       "datum name"},
      {with([](TMapCalibration& m) {
         m.projection.name = "UTM";
         m.coordinates = TCoordinateMode::Utm;
         m.points[0].zone = "ZZ";
       }),
       "point 1 does not fit"},
      {with([](TMapCalibration& m) { m.coordinates = TCoordinateMode::Utm; }), "UTM projection"},
  };
  for (const auto& [map, fragment] : cases) {
    std::string text = "unchanged", error;
    EXPECT_FALSE(OziMapText(map, text, error)) << fragment;
    EXPECT_NE(error.find(fragment), std::string::npos) << error;
    EXPECT_EQ(text, "unchanged");
  }
  std::string text, error;
  EXPECT_TRUE(OziMapText(base, text, error)) << error;
}

// ---- The projection table --------------------------------------------------

TEST(OziProjection, EveryRowNamesACatalogueKindAndReadsBothWays) {
  for (const TOziProjectionName& row : OziProjectionNames()) {
    const TProjectionKind* kind = FindProjectionKind(row.catalogue);
    ASSERT_NE(kind, nullptr) << row.catalogue;
    EXPECT_EQ(kind->name, row.catalogue);
    EXPECT_EQ(FindOziProjection(row.ozi), &row);
    EXPECT_EQ(FindOziProjectionOfCatalogue(row.catalogue), &row);
  }
}

TEST(OziProjection, SetupFieldsAndTheirDefaults) {
  struct Case {
    const char* ozi;
    const char* setup;
    TProjectionParams expected;
  };
  const Case cases[] = {
      {"Transverse Mercator", "0.0,99,1.0,17500000,0.0", {99, 0, 1, 17500000}},
      {"Mercator", ",,,,,,,,,", {}},
      {"mercator", "45,x,,3", {0, 45, 1, 3}},
      {"Lambert Conformal Conic", "1,2,0.5,3,4,5,6,7,,", {2, 1, 0.5, 3, 4, 5, 6}},
      {"(BNG) British National Grid", "1,2,3,4,5,6,7", {}},
  };
  for (const Case& c : cases) {
    TMapProjection projection;
    std::string error;
    ASSERT_TRUE(ReadOziProjection(c.ozi, c.setup, projection, error)) << error;
    EXPECT_TRUE(projection == (TMapProjection{projection.name, c.expected, {}})) << c.setup;
    TMapProjection back;
    ASSERT_TRUE(ReadOziProjection(c.ozi, OziProjectionSetupFields(projection), back, error));
    EXPECT_TRUE(back == projection) << OziProjectionSetupFields(projection);
  }
  TMapProjection projection;
  std::string error;
  EXPECT_FALSE(ReadOziProjection("(WIV) Wagner IV", "", projection, error));
  EXPECT_EQ(error, "Projection not supported: (WIV) Wagner IV");
}

}  // namespace
}  // namespace velantis
