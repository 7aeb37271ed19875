#include "maps/imp_file.h"

#include <gtest/gtest.h>

#include <fstream>

#include "app/log.h"
#include "tests/support/testdata.h"

namespace velantis {
namespace {

using test::FileBytes;
using test::ScratchDir;

class ImpFileTest : public ::testing::Test {
protected:
  void SetUp() override {
    if (!test::LoadBuiltInDatums(m_datums)) GTEST_SKIP() << "the build's datum file is missing";
    TLog::Instance().ClearEntries();
  }

  bool Read(const std::string& text, TMapCalibration& map, std::string& error,
            const std::string& folder = ".") {
    return ReadImpText(text, folder, m_datums, map, error);
  }

  int m_configured = 0;
  TListaDatums m_datums{m_configured};
};

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

TEST_F(ImpFileTest, EverySectionReadsBackAndWritesTheSameBytes) {
  TMapCalibration map = FullCalibration();
  const std::string text = ImpText(map);
  TMapCalibration read;
  std::string error;
  ASSERT_TRUE(Read(text, read, error)) << error;
  EXPECT_EQ(read, map);
  EXPECT_EQ(ImpText(read), text);

  map.bitmap.clear();  // a multi-layer map needs no image of its own
  map.hipermapLayers = {{"relief.imp", "14", "8", true}, {"roads.map", "", "", false}};
  ASSERT_TRUE(Read(ImpText(map), read, error)) << error;
  EXPECT_EQ(read, map);
}

TEST_F(ImpFileTest, WritesTheDocumentedLines) {
  TMapCalibration map;
  map.bitmap = "a.png";
  map.points.resize(1);
  const std::string text = ImpText(map);
  EXPECT_EQ(text.rfind("Velantis MAP File\r\n<Header>\r\nVersion=2\r\nVerVelantis=", 0), 0u);
  for (const char* line :
       {"\r\nProjection=1,Lat/Long,\r\n", "\r\nCoordinates=1\r\n",
        "\r\nDatum=WGS 84\r\n", "\r\nBitmap=a.png\r\nBitmapWidth=-1\r\nBitmapHeight=-1\r\n",
        "\r\n<Calibration>\r\nP0=-1.00000000,-1.00000000,A,200.00000000,0.00000000\r\n"
        "</Calibration>\r\n"}) {
    EXPECT_NE(text.find(line), std::string::npos) << line;
  }
}

TEST_F(ImpFileTest, RefusalsGiveTheSystemsTexts) {
  const std::string head = "Velantis MAP File\r\n<Map>\r\nBitmap=a.png\r\n</Map>\r\n";
  struct TCase {
    std::string text;
    std::string error;
    int loggedCode;
  };
  const TCase cases[] = {
      {"", std::string(kImpNotImp), 0},
      {"Velantis MAP Fil\r\n", std::string(kImpNotImp), 0},
      {"Velantis MAP File\r\n<Header>\r\nName=x\r\n</Header>\r\n", std::string(kImpNoImage),
       kWarningEmptyMapName},
      {"Velantis MAP File\r\n<Layers>\r\nFile=\r\n</Layers>\r\n", std::string(kImpNoImage),
       kWarningEmptyLayerName},
      {head + "<Calibration>\r\nP0=1,2,A,3\r\n</Calibration>\r\n", std::string(kImpBadPoint), 0},
      {head + "<Calibration>\r\nP0=1,2,A,3,north\r\n</Calibration>\r\n", std::string(kImpBadPoint),
       0},
      {head + "<MainPolygonCoords>\r\nM0=36\r\n</MainPolygonCoords>\r\n",
       std::string(kImpBadPolygonCoords), 0},
      {head + "<BitmapData>\r\n</BitmapData>\r\n<BitmapData>\r\n</BitmapData>\r\n",
       std::string(kImpBitmapDataNotOne), 0},
      {head + "<HiperMapLayers>\r\n<HLayer>\r\nFile=relief.ecw\r\n</HLayer>\r\n</HiperMapLayers>\r\n",
       std::string(kImpHipermapLayerError) + "relief.ecw" + std::string(kImpHipermapUnknownType) +
           "ecw",
       0},
      {head + "<Layers>\r\nFile=missing.imp\r\n</Layers>\r\n",
       std::string(kImpSubmapError) + "missing.imp", 0},
  };
  for (const TCase& c : cases) {
    TLog::Instance().ClearEntries();
    TMapCalibration map;
    map.name = "untouched";
    std::string error;
    EXPECT_FALSE(Read(c.text, map, error)) << c.text;
    EXPECT_EQ(error, c.error) << c.text;
    EXPECT_EQ(map.name, "untouched");
    const std::vector<TLogEntry> entries = TLog::Instance().Entries();
    EXPECT_EQ(entries.empty() ? 0 : entries.back().code, c.loggedCode) << c.text;
  }
}

TEST_F(ImpFileTest, MatrixRowsCountedUpwardsAreTurnedTopDown) {
  struct TCase {
    const char* line;
    std::array<double, 6> expected;
  };
  // Image height 1000: F becomes F + 1000·E and E changes sign when E > 0.
  const TCase cases[] = {
      {"Matrix=2\t0\t0\t3\t100\t200", {2, 0, 0, -3, 100, 3200}},
      {"Matrix=2 0.5 0.25 -3 100 200", {2, 0.5, 0.25, -3, 100, 200}},
      {"Matrix=2 0 0 0 100 200", {2, 0, 0, 0, 100, 200}},
  };
  for (const TCase& c : cases) {
    const std::string text = "Velantis MAP File\r\n<Map>\r\nBitmap=a.png\r\nBitmapHeight=1000\r\n"
                             "</Map>\r\n<Calibration>\r\n" + std::string(c.line) +
                             "\r\n</Calibration>\r\n";
    TMapCalibration map;
    std::string error;
    ASSERT_TRUE(Read(text, map, error)) << error;
    ASSERT_TRUE(map.matrix.has_value());
    EXPECT_EQ(*map.matrix, c.expected) << c.line;
  }
}

TEST_F(ImpFileTest, SubMapsAreReadFromTheFilesFolder) {
  const auto folder = ScratchDir("imp-submaps");
  TMapCalibration sub;
  sub.bitmap = "tile.png";
  sub.points = {{0, 0, "A", 2, 42}, {100, 100, "A", 2.1, 41.9}};
  std::string error;
  ASSERT_TRUE(WriteImpFile((folder / "tile.imp").string(), sub, error)) << error;
  std::ofstream((folder / "self.imp").string())
      << "Velantis MAP File\r\n<Layers>\r\nFile=self.imp\r\n</Layers>\r\n";

  TMapCalibration map;
  ASSERT_TRUE(Read("Velantis MAP File\n<Layers>\nFile=tile.imp\n</Layers>\n", map, error,
                   folder.string()))
      << error;
  ASSERT_EQ(map.subMaps.size(), 1u);
  EXPECT_EQ(map.subMaps[0], sub);

  // A map that names itself ends at the depth limit instead of recursing.
  EXPECT_FALSE(ReadImpFile((folder / "self.imp").string(), m_datums, map, error));
  EXPECT_EQ(error, std::string(kImpSubmapError) + "self.imp");
}

TEST_F(ImpFileTest, OnlyAMultiLayerMapSavesAsMainfile) {
  const auto folder = ScratchDir("imp-hipermap");
  TMapCalibration map;
  map.bitmap = "a.png";
  std::string error;
  EXPECT_FALSE(WriteHipermapFile(folder.string(), map, error));
  EXPECT_EQ(error, kImpNotMultiLayer);
  EXPECT_FALSE(std::filesystem::exists(folder / kHipermapFileName));

  map.hipermapLayers = {{"relief.imp", "14", "8", true}};
  ASSERT_TRUE(WriteHipermapFile(folder.string(), map, error)) << error;
  EXPECT_EQ(FileBytes(folder / kHipermapFileName), ImpText(map));
}

}  // namespace
}  // namespace velantis
