// OziExplorer ".map" files and the system's own ".imp" calibration files:
// the published samples against GDAL and in exact round trips, the forms of
// points the samples lack, the refusals and the projection names and values.
#include "maps/ozi_map_file.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <functional>
#include <sstream>
#include <tuple>

#include "app/file_io.h"
#include "app/log.h"
#include "geodesy/projection_catalogue.h"
#include "geodesy/projection_file.h"
#include "maps/calibrated_map.h"
#include "maps/imp_file.h"
#include "maps/map_projection.h"
#include "maps/ozi_projection.h"
#include "tests/support/testdata.h"

namespace velantis {
namespace {

namespace fs = std::filesystem;
using namespace std::string_literals;

constexpr const char* kSampleFolder = "ozi/map";

class OziMapFile : public testing::Test {
protected:
  static void SetUpTestSuite() { s_loaded = test::LoadBuiltInDatums(s_datums); }
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
  static bool ReadImp(const std::string& text, TMapCalibration& map, std::string& error,
                      const std::string& folder = ".") {
    return ReadImpText(text, folder, s_datums, map, error);
  }

  static inline int s_configured = 0;
  static inline TListaDatums s_datums{s_configured};
  static inline bool s_loaded = false;
};

// The system's own calibration file shares the datum list.
class ImpFile : public OziMapFile {};

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
    EXPECT_EQ(std::pair(map.name, map.bitmap), std::pair(Lines(bytes)[1], Lines(bytes)[2]));
    EXPECT_TRUE(map.projection == (TMapProjection{std::string(s.projection), s.params, {}}))
        << map.projection.name;
    EXPECT_EQ(std::tuple(map.datum, map.coordinates, map.points.size(), map.bitmapWidth, map.bitmapHeight,
                         map.polygonBitmap.size(), map.polygonCoords.size()),
              std::tuple(s.datum, s.mode, s.points, s.width, s.height, s.polygon, s.mode == LatLon ? s.polygon : 0));
  }
}

// The samples against GDAL's reading of the same files (gdaltransform -order 1,
// a least-squares affine fit like ours): pixel → WGS 84 at the corners, the
// centre and the calibration points. GDAL opens the image the file names, so a
// blank PNG of the map's size is written there. For Pulkovo 1942 PROJ would pick
// a seven-parameter Helmert about 8 m from our three-parameter shift, so GDAL is
// handed the map's projection with our datum's shifts: the comparison is of the
// calibration itself.
constexpr double kMetresPerDegree = 111320;
// They agree under a millimetre on the WGS 84 maps and to about 6 cm and a
// hundredth of a pixel on the Pulkovo maps (Molodensky's formulas against
// PROJ's geocentric shift): bounds close enough to catch a real slip.
constexpr double kToleranceM = 0.1;
constexpr double kTolerancePixels = 0.05;

// The source system GDAL is told to use: the map's transverse Mercator with
// our datum's ellipsoid and shifts. Empty for WGS 84 maps, which need none.
std::string SourceSrs(const TMapCalibration& map, const TDatum& datum) {
  if (datum.name == "WGS 84") return "";
  EXPECT_EQ(map.projection.name, kTransverseMercatorName) << "only needed for these maps";
  const TProjectionParams& p = map.projection.params;
  std::ostringstream srs;
  srs.precision(17);
  srs << "-s_srs '+proj=tmerc +lat_0=" << p.latOrigin << " +lon_0=" << p.lonOrigin << " +k=" << p.scaleFactor
      << " +x_0=" << p.falseEasting << " +y_0=" << p.falseNorthing << " +a=" << datum.a
      << " +rf=" << datum.invFlattening << " +towgs84=" << datum.dX << "," << datum.dY << "," << datum.dZ
      << ",0,0,0,0 +units=m +no_defs' ";
  return srs.str();
}

std::vector<TLonLat> GdalCoordinates(const std::filesystem::path& mapFile, const std::string& sourceSrs,
                                     const std::vector<TPlanePoint>& pixels) {
  const std::string input = (mapFile.parent_path() / "pixels.txt").string(), output = input + ".out";
  {
    std::ofstream out(input);
    out.precision(17);
    for (const TPlanePoint& pixel : pixels) out << pixel.x << " " << pixel.y << "\n";
  }
  const std::string command = "gdaltransform -order 1 -t_srs EPSG:4326 " + sourceSrs + "'" + mapFile.string() +
                              "' < '" + input + "' > '" + output + "' 2>&1";
  EXPECT_EQ(std::system(command.c_str()), 0) << command;
  std::istringstream text(test::FileBytes(output));
  std::vector<TLonLat> result;
  double height;
  for (TLonLat geo; text >> geo.lon >> geo.lat >> height;) result.push_back(geo);
  return result;
}

TEST_F(OziMapFile, PixelsGiveTheCoordinatesGdalGives) {
  if (std::system("command -v gdaltransform > /dev/null && command -v gdal_create > /dev/null") != 0)
    GTEST_SKIP() << "gdal-bin is not installed";
  for (const char* file : {"ozi1.map", "ozi2.map", "ozi3.map", "o37-122.map", "m47-022.map", "9410_4633_14.map"}) {
    SCOPED_TRACE(file);
    VELANTIS_TESTDATA_OR_SKIP(source, fs::path(kSampleFolder) / file);
    TMapCalibration calibration;
    std::string error;
    ASSERT_TRUE(ReadOziMapFile(source.string(), s_datums, calibration, error)) << error;
    TCalibratedMap map;
    ASSERT_TRUE(map.Open(calibration, s_datums, "", error)) << error;
    // Files without an IWH line: the image holds the main polygon.
    int& w = calibration.bitmapWidth;
    int& h = calibration.bitmapHeight;
    if (w <= 0 || h <= 0) {
      for (const TPlanePoint& point : calibration.polygonBitmap) {
        w = std::max(w, static_cast<int>(point.x) + 1);
        h = std::max(h, static_cast<int>(point.y) + 1);
      }
    }
    const std::filesystem::path folder = test::ScratchDir(std::string("ozi-gdal-") + file);
    const std::filesystem::path mapFile = folder / source.filename();
    std::filesystem::copy_file(source, mapFile);
    const std::filesystem::path image = folder / calibration.bitmap;
    std::filesystem::create_directories(image.parent_path());
    const std::string blank = "gdal_create -q -of PNG -ot Byte -bands 1 -outsize " + std::to_string(w) + " " +
                              std::to_string(h) + " '" + image.string() + "'";
    ASSERT_EQ(std::system(blank.c_str()), 0) << blank;

    std::vector<TPlanePoint> pixels = {{0, 0}, {1.0 * w, 0}, {0, 1.0 * h}, {1.0 * w, 1.0 * h}, {w / 2.0, h / 2.0}};
    for (const TCalibrationPoint& point : calibration.points) pixels.push_back({point.pixelX, point.pixelY});
    const std::vector<TLonLat> gdal =
        GdalCoordinates(mapFile, SourceSrs(calibration, *s_datums.Get(map.Datum())), pixels);
    ASSERT_EQ(gdal.size(), pixels.size()) << "gdaltransform gave no answer for each pixel";
    for (size_t i = 0; i < pixels.size(); ++i) {
      SCOPED_TRACE(testing::Message() << "pixel " << pixels[i].x << " " << pixels[i].y);
      TLonLat ours;
      ASSERT_TRUE(map.PixelToCoord(pixels[i], 0, ours, error)) << error;
      const double northM = (ours.lat - gdal[i].lat) * kMetresPerDegree;
      const double eastM = (ours.lon - gdal[i].lon) * kMetresPerDegree * std::cos(ours.lat * M_PI / 180);
      EXPECT_LT(std::hypot(northM, eastM), kToleranceM);
      TPlanePoint back;
      ASSERT_TRUE(map.CoordToPixel(gdal[i], 0, back, error)) << error;
      EXPECT_LT(std::hypot(back.x - pixels[i].x, back.y - pixels[i].y), kTolerancePixels);
    }
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
        EXPECT_LE(std::max(std::fabs(plane.x - p.x), std::fabs(plane.y - p.y)), 0.6);  // whole metres
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
    const std::string bytes = test::FileBytes(entry.path());
    const TMapCalibration map = Read(bytes);
    const std::string text = Write(map);
    const TMapCalibration back = Read(text);
    EXPECT_TRUE(back == map) << text;
    EXPECT_EQ(Write(back), text);
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), std::count(text.begin(), text.end(), '\r'));
    // OziExplorer wrote ozi2.map: the lines that carry no values are written
    // as it wrote them (all but the title, image, datum, projection, the four
    // calibration points and the setup line).
    const std::vector<std::string> original = Lines(bytes), written = Lines(text);
    for (size_t line = 0; entry.path().filename() == "ozi2.map" && line < 49; ++line) {
      if (line != 1 && line != 2 && line != 4 && (line < 9 || line > 12) && line != 39) {
        EXPECT_EQ(written.at(line), original[line]) << line;
      }
    }
    // Through the system's own file, whose eight decimals keep a degree to
    // half of 1e-8 and a pixel or a metre exactly enough: the same
    // calibration but for that rounding.
    TMapCalibration viaImp;
    std::string error;
    ASSERT_TRUE(ReadImpText(ImpText(map), ".", s_datums, viaImp, error)) << error;
    ASSERT_EQ(viaImp.points.size(), map.points.size());
    for (size_t i = 0; i < map.points.size(); ++i) {
      TCalibrationPoint& p = viaImp.points[i];
      EXPECT_LE(std::max(std::fabs(p.x - map.points[i].x), std::fabs(p.y - map.points[i].y)), 5e-9);
      p.x = map.points[i].x;
      p.y = map.points[i].y;
    }
    EXPECT_TRUE(viaImp == map);
    EXPECT_EQ(Write(viaImp), text);
    ++files;
  }
  EXPECT_GE(files, 12u);
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
    std::optional<TZonaUTM> zone;
    const char* found;  // in the written text
  } cases[] = {
      {"(UTM) Universal Transverse Mercator",
       {"Point01,xy, 10, 20,in, deg, , ,N, , ,E, grid, 33, 500000, 6200000,S",
        "Point02,xy, 910, 20,in, deg, , ,N, , ,E, grid, 33, 509000.5, 6200000,S",
        "Point03,xy, 50, 60,in, deg, , ,N, , ,E, grid, , 400000, 6200000,S"},
       Utm, 2, TZonaUTM{33, 'M'}, " 33,     500000,    6200000,S\r\n"},
      {"(UTM) Universal Transverse Mercator",
       {"Point01,xy, 10, 20,in, deg, 41, 30,N, 2, 10,E, grid, 31, , ,N",
        "Point02,xy, 90, 20,in, deg, 41, 30,N, 2, 20,E, grid, , , ,N"},
       LatLon, 2, TZonaUTM{31, 'N'}, "Point02,xy,"},
      {"Transverse Mercator",
       {"Point01,xy, 1.5, 2,in, deg, 10, 30,N, 20, 0,W, grid, , 100, 200,N",
        "Point02,xy, 3, 4,in, deg, 11, 30,N, 21, 0,W, grid, , , ,N",
        "Point03,xy, 5, 6,in, deg, , ,N, , ,E, grid, , 300, 400,N",
        "Point04,xy, -1, -1,in, deg, , ,N, , ,E, grid, , 500, 600,N"},
       Plane, 2, {}, "Point01,xy,  1.5,    2,"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(*c.points.begin());
    std::string text = "OziExplorer Map Data File Version 2.2\r\nT\r\nt.png\r\n1 ,Map Code,\r\n"
                       "WGS 84,,   0.0000,   0.0000,WGS 84\r\nMap Projection," + std::string(c.projection) +
                       ",PolyCal,No,AutoCalOnly,No,BSBUseWPX,No\n";
    for (std::string_view point : c.points) text.append(point).append("\n");
    const TMapCalibration map = Read(text + "Projection Setup,,,,,,,,,,\n");
    EXPECT_EQ(std::tuple(map.coordinates, map.points.size(), map.projection.zone), std::tuple(c.mode, c.count, c.zone));
    const std::string written = Write(map);
    EXPECT_NE(written.find(c.found), std::string::npos) << written;
    EXPECT_TRUE(Read(written) == map);
  }
}

TEST_F(OziMapFile, UnreadableFilesAreRefused) {
  VELANTIS_TESTDATA_OR_SKIP(path, fs::path(kSampleFolder) / "ozi2.map");
  const std::string bytes = test::FileBytes(path);
  std::string onePoint;
  for (const std::string& line : Lines(bytes))
    if (!line.starts_with("Point0") || line.starts_with("Point01")) onePoint += line + "\r\n";
  const std::pair<std::string, std::string_view> cases[] = {
      {"", kOziMapNotOzi},
      {Replaced(bytes, "OziExplorer Map", "Other Map"), kOziMapNotOzi},
      {onePoint, kOziMapFewPoints},
      {Replaced(bytes, "Lambert Conformal Conic", "Sinusoidal"), "Projection not supported: Sinusoidal"},
      {Replaced(bytes, "WGS 84,,", "Nowhere 1900,,"), "Unknown datum: Nowhere 1900"},
  };
  for (const auto& [text, message] : cases) {
    TMapCalibration map;
    std::string error;
    EXPECT_FALSE(ReadOziMapText(text, s_datums, map, error));
    EXPECT_EQ(error, message);
  }
  TMapCalibration map;
  std::string error;
  EXPECT_FALSE(ReadOziMapFile((path.parent_path() / "absent.map").string(), s_datums, map, error));
  EXPECT_EQ(error, kOziMapNotFound);
}

// Each row changes a two-point calibration that the format can say.
TEST_F(OziMapFile, CalibrationsTheFormatCannotSayAreRefused) {
  const std::pair<std::function<void(TMapCalibration&)>, const char*> cases[] = {
      {[](TMapCalibration&) {}, nullptr},
      {[](TMapCalibration& m) { m.projection.name = "Oblique Stereographic"; },
       "no name for the projection Oblique Stereographic"},
      {[](TMapCalibration& m) { m.points.resize(31, TCalibrationPoint(m.points[0])); }, "at most 30"},
      {[](TMapCalibration& m) { m.points.resize(1); }, "at least 2"},
      {[](TMapCalibration& m) { m.points[1].y = INFINITY; }, "point 2 does not fit"},
      {[](TMapCalibration& m) { m.datum = "Ord Srvy Grt Britn (Scotland, Shetland)"; }, "datum name"},
      {[](TMapCalibration& m) {
         m.projection.name = "UTM";
         m.coordinates = TCoordinateMode::Utm;
         m.points[0].zone = "ZZ";
       },
       "point 1 does not fit"},
      {[](TMapCalibration& m) { m.coordinates = TCoordinateMode::Utm; }, "UTM projection"},
  };
  for (const auto& [change, fragment] : cases) {
    TMapCalibration map;
    map.points = {{0, 0, "A", 1, 2}, {10, 10, "A", 3, 4}};
    change(map);
    std::string text = "unchanged", error;
    EXPECT_EQ(OziMapText(map, text, error), fragment == nullptr) << error;
    if (fragment) {
      EXPECT_EQ(std::pair(error.find(fragment) != std::string::npos, text), std::pair(true, "unchanged"s));
    }
  }
}

// A calibration with every section and key set away from its default.
TMapCalibration FullCalibration() {
  TMapCalibration map;
  map.projection.name = "Transversal Mercator";
  map.projection.params = {39, 0, 1, 7500000, 0, 0, 0};
  map.coordinates = TCoordinateMode::Utm;
  map.datum = "Pulkovo 1942";
  map.calibrationMode = kCalibrationModeProjective;
  map.bitmap = "sheet.png";
  map.bitmapWidth = 3809;
  map.bitmapHeight = 4550;
  int n = 0;
  for (std::string TMapCalibration::*text :
       {&TMapCalibration::projectionToView, &TMapCalibration::copyright, &TMapCalibration::maxZoomLevel,
        &TMapCalibration::minZoomLevel, &TMapCalibration::mapScale, &TMapCalibration::reqVersion,
        &TMapCalibration::name, &TMapCalibration::description, &TMapCalibration::bitsPerPixel,
        &TMapCalibration::memoryUse, &TMapCalibration::remote, &TMapCalibration::vectorMap,
        &TMapCalibration::scaleMpix, &TMapCalibration::transparentColor, &TMapCalibration::tolTransparentColor,
        &TMapCalibration::reloadTime, &TMapCalibration::poiImages, &TMapCalibration::orientation,
        &TMapCalibration::orientationRange}) {
    map.*text = "value " + std::to_string(++n);
  }
  map.points = {{65, 66, "37U", 7312850.59538412, 6212735.20674023},
                {3771, 66, "37U", 7328441.68714263, 6212086.07652761},
                {3760.5, 4498.25, "37U", 7327703.75873312, 6193536.99125491},
                {},
                {37, 4499, "37U", 7312045.53037848, 6194187.63482614}};
  map.offset = TPlanePoint{12.5, -3};
  map.matrix = std::array<double, 6>{4.2, 0.001, -0.002, -4.2, 7312500.25, 6213000.5};
  // The last corner is far beyond any image: eight decimals of a huge real
  // still read back.
  map.polygonBitmap = {{0, 0}, {3808, 0}, {3808, 4549}, {1e300, -4549}};
  map.polygonCoords = {{36, 56}, {36.25, 56}, {36.25, 55.833333}};
  map.bitmapData = std::vector<std::string>{"Format=PNG", "  Tiles=4"};
  map.properties = {"Colour=red", "Alpha=0.5"};
  map.contextMenu = {"Item1=Open"};
  return map;
}

TEST_F(ImpFile, EverySectionReadsBackAndWritesTheSameBytes) {
  TMapCalibration map = FullCalibration();
  const std::string text = ImpText(map);
  TMapCalibration read;
  std::string error;
  ASSERT_TRUE(ReadImp(text, read, error)) << error;
  EXPECT_EQ(read, map);
  EXPECT_EQ(ImpText(read), text);

  // Only a multi-layer map, which needs no image of its own, saves as the
  // main file.
  const auto folder = test::ScratchDir("imp-hipermap");
  const bool saved = WriteHipermapFile(folder.string(), map, error);
  EXPECT_EQ(std::tuple(saved, error, fs::exists(folder / kHipermapFileName)), std::tuple(false, kImpNotMultiLayer, false));
  map.bitmap.clear();
  map.hipermapLayers = {{"relief.imp", "14", "8", true}, {"roads.map", "", "", false}};
  ASSERT_TRUE(ReadImp(ImpText(map), read, error)) << error;
  EXPECT_EQ(read, map);
  ASSERT_TRUE(WriteHipermapFile(folder.string(), map, error)) << error;
  EXPECT_EQ(test::FileBytes(folder / kHipermapFileName), ImpText(map));
}

TEST_F(ImpFile, WritesTheDocumentedLines) {
  TMapCalibration map;
  map.bitmap = "a.png";
  map.points.resize(1);
  const std::string text = ImpText(map);
  EXPECT_EQ(text.rfind("Velantis MAP File\r\n<Header>\r\nVersion=2\r\nVerVelantis=", 0), 0u);
  for (const char* line :
       {"\r\nProjection=1,Lat/Long,\r\n", "\r\nCoordinates=1\r\n",
        "\r\nDatum=WGS 84\r\n", "\r\nBitmap=a.png\r\nBitmapWidth=-1\r\nBitmapHeight=-1\r\n",
        "\r\n<Calibration>\r\nP0=-1.00000000,-1.00000000,A,200.00000000,0.00000000\r\n"
        "</Calibration>\r\n"})
    EXPECT_NE(text.find(line), std::string::npos) << line;
}

TEST_F(ImpFile, RefusalsGiveTheSystemsTexts) {
  const std::string head = "Velantis MAP File\r\n<Map>\r\nBitmap=a.png\r\n</Map>\r\n";
  // The text, the error and the code of the warning logged on the way.
  const std::tuple<std::string, std::vector<std::string_view>, int> cases[] = {
      {"", {kImpNotImp}, 0},
      {"Velantis MAP Fil\r\n", {kImpNotImp}, 0},
      {"Velantis MAP File\r\n<Header>\r\nName=x\r\n</Header>\r\n", {kImpNoImage}, kWarningEmptyMapName},
      {"Velantis MAP File\r\n<Layers>\r\nFile=\r\n</Layers>\r\n", {kImpNoImage}, kWarningEmptyLayerName},
      {head + "<Calibration>\r\nP0=1,2,A,3\r\n</Calibration>\r\n", {kImpBadPoint}, 0},
      {head + "<Calibration>\r\nP0=1,2,A,3,north\r\n</Calibration>\r\n", {kImpBadPoint}, 0},
      {head + "<MainPolygonCoords>\r\nM0=36\r\n</MainPolygonCoords>\r\n", {kImpBadPolygonCoords}, 0},
      {head + "<BitmapData>\r\n</BitmapData>\r\n<BitmapData>\r\n</BitmapData>\r\n", {kImpBitmapDataNotOne}, 0},
      {head + "<HiperMapLayers>\r\n<HLayer>\r\nFile=relief.ecw\r\n</HLayer>\r\n</HiperMapLayers>\r\n",
       {kImpHipermapLayerError, "relief.ecw", kImpHipermapUnknownType, "ecw"}, 0},
      {head + "<Layers>\r\nFile=missing.imp\r\n</Layers>\r\n", {kImpSubmapError, "missing.imp"}, 0},
  };
  for (const auto& [text, parts, loggedCode] : cases) {
    std::string expected;
    for (const std::string_view part : parts) expected += part;
    TLog::Instance().ClearEntries();
    TMapCalibration map;
    map.name = "untouched";
    std::string error;
    const bool read = ReadImp(text, map, error);
    EXPECT_EQ(std::tuple(read, error, map.name), std::tuple(false, expected, "untouched")) << text;
    const std::vector<TLogEntry> entries = TLog::Instance().Entries();
    EXPECT_EQ(entries.empty() ? 0 : entries.back().code, loggedCode) << text;
  }
}

TEST_F(ImpFile, MatrixRowsCountedUpwardsAreTurnedTopDown) {
  // Image height 1000: F becomes F + 1000·E and E changes sign when E > 0.
  const std::pair<const char*, std::array<double, 6>> cases[] = {
      {"Matrix=2\t0\t0\t3\t100\t200", {2, 0, 0, -3, 100, 3200}},
      {"Matrix=2 0.5 0.25 -3 100 200", {2, 0.5, 0.25, -3, 100, 200}},
      {"Matrix=2 0 0 0 100 200", {2, 0, 0, 0, 100, 200}},
  };
  for (const auto& [line, expected] : cases) {
    const std::string text = "Velantis MAP File\r\n<Map>\r\nBitmap=a.png\r\nBitmapHeight=1000\r\n</Map>\r\n"
                             "<Calibration>\r\n" + std::string(line) + "\r\n</Calibration>\r\n";
    TMapCalibration map;
    std::string error;
    ASSERT_TRUE(ReadImp(text, map, error)) << error;
    EXPECT_EQ(map.matrix, expected) << line;
  }
}

TEST_F(ImpFile, SubMapsAreReadFromTheFilesFolder) {
  const auto folder = test::ScratchDir("imp-submaps");
  TMapCalibration sub;
  sub.bitmap = "tile.png";
  sub.points = {{0, 0, "A", 2, 42}, {100, 100, "A", 2.1, 41.9}};
  std::string error;
  ASSERT_TRUE(WriteImpFile((folder / "tile.imp").string(), sub, error)) << error;
  std::ofstream((folder / "self.imp").string())
      << "Velantis MAP File\r\n<Layers>\r\nFile=self.imp\r\n</Layers>\r\n";

  TMapCalibration map;
  ASSERT_TRUE(ReadImp("Velantis MAP File\n<Layers>\nFile=tile.imp\n</Layers>\n", map, error, folder.string()))
      << error;
  EXPECT_EQ(map.subMaps, std::vector{sub});

  // A map that names itself ends at the depth limit instead of recursing.
  EXPECT_FALSE(ReadImpFile((folder / "self.imp").string(), s_datums, map, error));
  EXPECT_EQ(error, std::string(kImpSubmapError) + "self.imp");
}

TEST(OziProjection, EveryRowNamesACatalogueKindAndReadsBothWays) {
  for (const TOziProjectionName& row : OziProjectionNames()) {
    const TProjectionKind* kind = FindProjectionKind(row.catalogue);
    EXPECT_EQ(kind ? kind->name : "none", row.catalogue);
    EXPECT_EQ(std::pair(FindOziProjection(row.ozi), FindOziProjectionOfCatalogue(row.catalogue)), std::pair(&row, &row));
  }
}

TEST(OziProjection, SetupFieldsAndTheirDefaults) {
  const std::tuple<const char*, const char*, TProjectionParams> cases[] = {
      {"Transverse Mercator", "0.0,99,1.0,17500000,0.0", {99, 0, 1, 17500000}},
      {"Mercator", ",,,,,,,,,", {}},
      {"mercator", "45,x,,3", {0, 45, 1, 3}},
      {"Lambert Conformal Conic", "1,2,0.5,3,4,5,6,7,,", {2, 1, 0.5, 3, 4, 5, 6}},
      {"(BNG) British National Grid", "1,2,3,4,5,6,7", {}},
  };
  for (const auto& [ozi, setup, expected] : cases) {
    TMapProjection projection, back;
    std::string error;
    ASSERT_TRUE(ReadOziProjection(ozi, setup, projection, error)) << error;
    EXPECT_TRUE(projection == (TMapProjection{projection.name, expected, {}})) << setup;
    ASSERT_TRUE(ReadOziProjection(ozi, OziProjectionSetupFields(projection), back, error));
    EXPECT_TRUE(back == projection) << OziProjectionSetupFields(projection);
  }
}

TEST(MapProjection, ValuesReadInEitherFormAndWriteInTheFullOne) {
  // The value and how it is written (nullptr: refused).
  const std::pair<const char*, const char*> cases[] = {
      {"1,Lat/Long,", "1,Lat/Long,"}, {"1,Lat/Long", "1,Lat/Long,"},
      {"0,UTM,", "0,UTM,"},           {"0,UTM,31T,", "0,UTM,31T,"}, {"0,UTM,05M,", "0,UTM,05M,"},
      {"-1,Transversal Mercator,39,0,0,7500000,1,", "-1,Transversal Mercator,39,0,0,7500000,1,"},
      {"-1,Transveral Mercator,39,0,0,7500000,1,", "-1,Transversal Mercator,39,0,0,7500000,1,"},
      {"-1,Transversal Mercator", "-1,Transversal Mercator,0,0,0,0,1,"},
      // The name form: a name of project.dat, or a catalogue name whose code
      // does not match.
      {"2,British National Grid", "-1,British National Grid,"},
      {"5,UTM,,", "0,UTM,"},
      // A zone without its band letter would not write back as it read; a
      // full form that does not read is not a name.
      {"0,UTM,31 ,X", nullptr}, {"7,Transversal Mercator,39,0,0,7500000,1,", nullptr},
      {"Lat/Long", nullptr},    {"", nullptr},
  };
  for (const auto& [value, expected] : cases) {
    TMapProjection projection, again;
    std::string error;
    const bool read = ParseMapProjection(value, projection, error);
    EXPECT_EQ(read ? FormatMapProjection(projection) : error,
              expected ? expected : std::string("Unknown projection: ") + value);
    EXPECT_TRUE(!read || (ParseMapProjection(FormatMapProjection(projection), again, error) && again == projection))
        << value;
  }
}

}  // namespace
}  // namespace velantis
