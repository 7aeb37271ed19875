// The real OziExplorer maps against GDAL's reading of the same files
// (gdaltransform -order 1, a least-squares affine fit like ours; without it
// GDAL fits a second-order polynomial to six or more points): pixel → WGS 84
// at the corners, the centre and the calibration points.
// GDAL's MAP driver opens the image the file names, so a blank PNG of the
// map's size is written there. For a map on another datum than WGS 84, PROJ
// would choose its own transformation (for Pulkovo 1942 a seven-parameter
// Helmert about 8 m from our three-parameter shift), so GDAL is handed the
// map's projection with our datum's shifts (+towgs84): the comparison is of
// the calibration itself.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <sstream>

#include "geodesy/projection_file.h"
#include "maps/calibrated_map.h"
#include "maps/ozi_map_file.h"
#include "tests/support/testdata.h"

namespace velantis {
namespace {

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

// GDAL's longitude and latitude of each pixel.
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
  // Files without an IWH line: the image holds the main polygon.
  int& w = calibration.bitmapWidth;
  int& h = calibration.bitmapHeight;
  if (w <= 0 || h <= 0) {
    for (const TPlanePoint& point : calibration.polygonBitmap) {
      w = std::max(w, static_cast<int>(point.x) + 1);
      h = std::max(h, static_cast<int>(point.y) + 1);
    }
  }
  const std::filesystem::path folder = test::ScratchDir("ozi-gdal");
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
      GdalCoordinates(mapFile, SourceSrs(calibration, *datums.Get(map.Datum())), pixels);
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

INSTANTIATE_TEST_SUITE_P(RealMaps, OziMapGdalTest,
                         ::testing::Values("ozi1.map", "ozi2.map", "ozi3.map", "o37-122.map", "m47-022.map",
                                           "9410_4633_14.map"),
                         test::TFileParamName());

}  // namespace
}  // namespace velantis
