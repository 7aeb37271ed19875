// The real OziExplorer maps against GDAL's reading of the same files
// (gdaltransform -order 1, a least-squares affine fit like ours): pixel →
// WGS 84 at the corners, the centre and the calibration points.
//
// Where the two would differ by design, the test makes them meet:
// - GDAL's MAP driver opens the image the file names, so a blank PNG of the
//   size on the IWH line is written where the file says it is.
// - For a map on another datum than WGS 84, PROJ would choose its own
//   transformation (for Pulkovo 1942 EPSG:15865, a seven-parameter Helmert,
//   about 8 m away from our three-parameter shift); the test hands GDAL the
//   map's projection with our datum's shifts (-s_srs … +towgs84), so that
//   both sides shift with the same parameters and the comparison is of the
//   calibration itself.
// - Without -order 1, GDAL fits a second-order polynomial to six or more
//   points, which is not our transform.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <sstream>

#include "geodesy/projection_file.h"
#include "maps/calibrated_map.h"
#include "maps/ozi_map_file.h"
#include "tests/support/testdata.h"

namespace velantis {
namespace {

constexpr double kMetresPerDegree = 111320;
// Agreement asked of the two: 1 m and half a pixel would do for a map; they
// agree far better (under a millimetre on the WGS 84 maps; about 6 cm and a
// hundredth of a pixel on the Pulkovo maps, which is what Molodensky's
// formulas leave against PROJ's geocentric shift), so the bounds are set
// close enough to catch a real slip.
constexpr double kToleranceM = 0.1;
constexpr double kTolerancePixels = 0.05;

std::string Quoted(const std::string& text) {
  std::string quoted = "'";
  for (const char c : text) quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
  return quoted + "'";
}

std::string Run(const std::string& command) {
  std::string output;
  if (FILE* pipe = popen(command.c_str(), "r")) {
    char buffer[4096];
    for (size_t n; (n = fread(buffer, 1, sizeof buffer, pipe)) > 0;) output.append(buffer, n);
    pclose(pipe);
  }
  return output;
}

// The source system GDAL is told to use: the map's transverse Mercator with
// our datum's ellipsoid and shifts. Empty for WGS 84 maps, which need none.
std::string SourceSrs(const TMapCalibration& map, const TDatum& datum) {
  if (datum.name == "WGS 84") return "";
  EXPECT_EQ(map.projection.name, kTransverseMercatorName) << "only needed for these maps";
  const TProjectionParams& p = map.projection.params;
  std::ostringstream srs;
  srs.precision(17);
  srs << "+proj=tmerc +lat_0=" << p.latOrigin << " +lon_0=" << p.lonOrigin
      << " +k=" << p.scaleFactor << " +x_0=" << p.falseEasting << " +y_0=" << p.falseNorthing
      << " +a=" << datum.a << " +rf=" << datum.invFlattening << " +towgs84=" << datum.dX << ","
      << datum.dY << "," << datum.dZ << ",0,0,0,0 +units=m +no_defs";
  return srs.str();
}

// The image size: the IWH line's, else (files without one) the extent of the
// main polygon, which lies on the image.
void FillImageSize(TMapCalibration& map) {
  if (map.bitmapWidth > 0 && map.bitmapHeight > 0) return;
  for (const TPlanePoint& point : map.polygonBitmap) {
    map.bitmapWidth = std::max(map.bitmapWidth, static_cast<int>(point.x) + 1);
    map.bitmapHeight = std::max(map.bitmapHeight, static_cast<int>(point.y) + 1);
  }
}

// A blank image of the map's size where the file names it.
void WriteBlankImage(const std::filesystem::path& folder, const TMapCalibration& map) {
  const std::filesystem::path image = folder / map.bitmap;
  std::filesystem::create_directories(image.parent_path());
  const std::string command = "gdal_create -q -of PNG -ot Byte -bands 1 -outsize " +
                              std::to_string(map.bitmapWidth) + " " +
                              std::to_string(map.bitmapHeight) + " " + Quoted(image.string());
  ASSERT_EQ(std::system(command.c_str()), 0) << command;
}

std::vector<TPlanePoint> SamplePixels(const TMapCalibration& map) {
  const double w = map.bitmapWidth;
  const double h = map.bitmapHeight;
  std::vector<TPlanePoint> pixels = {{0, 0}, {w, 0}, {0, h}, {w, h}, {w / 2, h / 2}};
  for (const TCalibrationPoint& point : map.points) pixels.push_back({point.pixelX, point.pixelY});
  return pixels;
}

// GDAL's longitude and latitude of each pixel.
std::vector<TLonLat> GdalCoordinates(const std::filesystem::path& mapFile,
                                     const std::string& sourceSrs,
                                     const std::vector<TPlanePoint>& pixels) {
  const std::filesystem::path input = mapFile.parent_path() / "pixels.txt";
  {
    std::ofstream out(input);
    out.precision(17);
    for (const TPlanePoint& pixel : pixels) out << pixel.x << " " << pixel.y << "\n";
  }
  std::string command = "gdaltransform -order 1 -t_srs EPSG:4326 ";
  if (!sourceSrs.empty()) command += "-s_srs " + Quoted(sourceSrs) + " ";
  command += Quoted(mapFile.string()) + " < " + Quoted(input.string()) + " 2>&1";
  std::istringstream output(Run(command));
  std::vector<TLonLat> result;
  for (TLonLat geo; output >> geo.lon >> geo.lat;) {
    double height;
    output >> height;
    result.push_back(geo);
  }
  return result;
}

class OziMapGdalTest : public ::testing::TestWithParam<const char*> {};

TEST_P(OziMapGdalTest, PixelsGiveTheCoordinatesGdalGives) {
  if (std::system("command -v gdaltransform > /dev/null && command -v gdal_create > /dev/null") != 0)
    GTEST_SKIP() << "gdal-bin is not installed";
  VELANTIS_TESTDATA_OR_SKIP(source, std::string("ozi/map/") + GetParam());
  int configured = 0;
  TListaDatums datums(configured);
  ASSERT_TRUE(test::LoadBuiltInDatums(datums));
  TMapCalibration calibration;
  std::string error;
  ASSERT_TRUE(ReadOziMapFile(source.string(), datums, calibration, error)) << error;
  TCalibratedMap map;
  ASSERT_TRUE(map.Open(calibration, datums, "", error)) << error;
  FillImageSize(calibration);

  const std::filesystem::path folder = test::ScratchDir("ozi-gdal");
  const std::filesystem::path mapFile = folder / source.filename();
  std::filesystem::copy_file(source, mapFile);
  WriteBlankImage(folder, calibration);
  const std::vector<TPlanePoint> pixels = SamplePixels(calibration);
  const std::vector<TLonLat> gdal =
      GdalCoordinates(mapFile, SourceSrs(calibration, *datums.Get(map.Datum())), pixels);
  ASSERT_EQ(gdal.size(), pixels.size()) << "gdaltransform gave no answer for each pixel";

  for (size_t i = 0; i < pixels.size(); ++i) {
    TLonLat ours;
    ASSERT_TRUE(map.PixelToCoord(pixels[i], 0, ours, error)) << error;
    const double northM = (ours.lat - gdal[i].lat) * kMetresPerDegree;
    const double eastM =
        (ours.lon - gdal[i].lon) * kMetresPerDegree * std::cos(ours.lat * M_PI / 180);
    EXPECT_LT(std::hypot(northM, eastM), kToleranceM)
        << "pixel " << pixels[i].x << " " << pixels[i].y;
    TPlanePoint back;
    ASSERT_TRUE(map.CoordToPixel(gdal[i], 0, back, error)) << error;
    EXPECT_LT(std::hypot(back.x - pixels[i].x, back.y - pixels[i].y), kTolerancePixels)
        << "pixel " << pixels[i].x << " " << pixels[i].y;
  }
}

INSTANTIATE_TEST_SUITE_P(RealMaps, OziMapGdalTest,
                         ::testing::Values("ozi1.map", "ozi2.map", "ozi3.map", "o37-122.map",
                                           "m47-022.map", "9410_4633_14.map"), test::TFileParamName());

}  // namespace
}  // namespace velantis
