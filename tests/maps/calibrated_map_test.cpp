#include "maps/calibrated_map.h"

#include <gtest/gtest.h>

#include "geodesy/utm.h"
#include "maps/map_projection.h"
#include "tests/support/testdata.h"

namespace velantis {
namespace {

// Pixels to UTM 31T on a known affine map with a little rotation: 2.5 m a
// pixel, rows downwards.
TPlanePoint KnownPlane(double px, double py) {
  return {430000 + 2.5 * px + 0.01 * py, 4590000 - 0.01 * px - 2.5 * py};
}

class CalibratedMapTest : public ::testing::Test {
protected:
  void SetUp() override {
    if (!test::LoadBuiltInDatums(m_datums)) GTEST_SKIP() << "the build's datum file is missing";
    m_ed50 = m_datums.Find("European 1950");
    ASSERT_GE(m_ed50, 0);
  }

  TMapCalibration UtmMap(const std::string& datum) const {
    TMapCalibration map;
    map.bitmap = "utm.png";
    map.datum = datum;
    map.coordinates = TCoordinateMode::Utm;
    ParseMapProjection("0,UTM,", map.projection, m_error);
    for (const TPlanePoint pixel : {TPlanePoint{0, 0}, {4000, 0}, {4000, 3000}, {0, 3000}}) {
      const TPlanePoint plane = KnownPlane(pixel.x, pixel.y);
      map.points.push_back({pixel.x, pixel.y, "31T", plane.x, plane.y});
    }
    map.points.push_back({});  // a place holder is not a point
    return map;
  }

  TLonLat UtmGeo(const TPlanePoint& plane, int from, int to) {
    TLonLat geo;
    std::string message;
    EXPECT_TRUE(UtmToLatLon({{31, 'T'}, plane.x, plane.y}, from, to, m_datums, geo, message));
    return geo;
  }

  int m_configured = 0;
  TListaDatums m_datums{m_configured};
  int m_ed50 = -1;
  mutable std::string m_error;
};

// The calibration in the map's own UTM zone, in latitude/longitude and in
// the next zone's UTM gives the pixels the known plane gives, on the map's
// datum and through WGS 84.
TEST_F(CalibratedMapTest, PixelsFollowTheCalibrationInEveryForm) {
  const TMapCalibration utm = UtmMap("European 1950");
  TMapCalibration latLon = utm;
  TMapCalibration otherZone = utm;
  latLon.coordinates = TCoordinateMode::LatLon;
  for (size_t i = 0; i + 1 < utm.points.size(); ++i) {
    const TCalibrationPoint& p = utm.points[i];
    const TLonLat geo = UtmGeo({p.x, p.y}, m_ed50, m_ed50);
    latLon.points[i] = {p.pixelX, p.pixelY, "A", geo.lon, geo.lat};
    TUtmPosition shifted{{30, 'T'}, 0, 0};
    std::string message;
    ASSERT_TRUE(LatLonToUtm(geo, m_ed50, m_ed50, m_datums, shifted, message, true)) << message;
    otherZone.points[i] = {p.pixelX, p.pixelY, "30T", shifted.x, shifted.y};
  }
  // Both in the plane of zone 31, where the calibration is affine.
  latLon.projection.zone = TZonaUTM{31, 'T'};
  otherZone.projection.zone = TZonaUTM{31, 'T'};
  // Zone 30's series, 5° from its meridian, is good to a couple of centimetres.
  for (const auto& [calibration, tolerance] : {std::pair{&utm, 1e-9}, {&latLon, 1e-8}, {&otherZone, 1e-6}}) {
    TCalibratedMap map;
    std::string error;
    ASSERT_TRUE(map.Open(*calibration, m_datums, "", error)) << error;
    EXPECT_EQ(map.Transform().Kind(), TTransformKind::LeastSquares);
    for (const TPlanePoint pixel : {TPlanePoint{0, 0}, {1234.5, 987.25}, {-300, 5000}}) {
      for (const int datum : {m_ed50, 0}) {
        const TLonLat expected = UtmGeo(KnownPlane(pixel.x, pixel.y), m_ed50, datum);
        TLonLat geo;
        ASSERT_TRUE(map.PixelToCoord(pixel, datum, geo, error)) << error;
        EXPECT_NEAR(geo.lat, expected.lat, tolerance);
        EXPECT_NEAR(geo.lon, expected.lon, tolerance);
        // Back on the map's datum the chain inverts within the transverse
        // Mercator series (a tenth of a millimetre); through WGS 84 the
        // Molodensky shift there and back leaves a few millimetres.
        TPlanePoint back;
        ASSERT_TRUE(map.CoordToPixel(geo, datum, back, error)) << error;
        EXPECT_NEAR(back.x, pixel.x, datum == m_ed50 ? 1e-4 : 0.004);
        EXPECT_NEAR(back.y, pixel.y, datum == m_ed50 ? 1e-4 : 0.004);
      }
    }
  }
}

TEST_F(CalibratedMapTest, AnExplicitMatrixAndTheOffsetAreApplied) {
  TMapCalibration calibration = UtmMap("WGS 84");
  // A D B E C F of the known transform.
  calibration.matrix = std::array<double, 6>{2.5, -0.01, 0.01, -2.5, 430000, 4590000};
  calibration.points.resize(1);
  calibration.offset = TPlanePoint{100, 50};
  TCalibratedMap map;
  std::string error;
  ASSERT_TRUE(map.Open(calibration, m_datums, "", error)) << error;
  EXPECT_EQ(map.Transform().Kind(), TTransformKind::Matrix);
  TLonLat geo;
  ASSERT_TRUE(map.PixelToCoord({10, 20}, 0, geo, error)) << error;
  const TLonLat expected = UtmGeo(KnownPlane(110, 70), 0, 0);
  EXPECT_NEAR(geo.lat, expected.lat, 1e-10);
  EXPECT_NEAR(geo.lon, expected.lon, 1e-10);
}

TEST_F(CalibratedMapTest, ProjectionsNamedInProjectDatAreFound) {
  TMapCalibration calibration;
  calibration.bitmap = "itm.png";
  calibration.datum = "WGS 84";
  calibration.coordinates = TCoordinateMode::Plane;
  ASSERT_TRUE(ParseMapProjection("-1,Irish Transverse Mercator,", calibration.projection, m_error));
  calibration.points = {{0, 0, "A", 600000, 750000}, {1000, 1000, "A", 610000, 740000}};
  TCalibratedMap map;
  std::string error;
  const std::string dataDir = (test::BinaryDir() / "data").string();
  ASSERT_TRUE(map.Open(calibration, m_datums, dataDir, error)) << error;
  TLonLat geo;
  ASSERT_TRUE(map.PixelToCoord({0, 0}, 0, geo, error)) << error;
  // ITM's false origin 600000 750000 is at 53.5°N 8°W.
  EXPECT_NEAR(geo.lat, 53.5, 1e-7);
  EXPECT_NEAR(geo.lon, -8, 1e-7);
}

TEST_F(CalibratedMapTest, FailuresSayWhy) {
  const auto open = [&](TMapCalibration calibration) {
    TCalibratedMap map;
    std::string error;
    EXPECT_FALSE(map.Open(calibration, m_datums, "", error));
    return error;
  };
  TMapCalibration onePoint = UtmMap("WGS 84");
  onePoint.points.resize(1);
  EXPECT_EQ(open(onePoint), kWrongCalibrationPoints);

  TMapCalibration unknownDatum = UtmMap("Atlantis 2000");
  EXPECT_EQ(open(unknownDatum), "Unknown datum: Atlantis 2000");

  TMapCalibration badZone = UtmMap("WGS 84");
  badZone.projection.zone = TZonaUTM{31, 'T'};
  badZone.points[2].zone = "3t";
  EXPECT_EQ(open(badZone).rfind(kCoordinatePointError, 0), 0u);

  TMapCalibration pole = UtmMap("WGS 84");
  pole.coordinates = TCoordinateMode::LatLon;
  ParseMapProjection("-1,Mercator,0,0,0,0,1,", pole.projection, m_error);
  pole.points = {{0, 0, "A", 1, 41}, {4000, 0, "A", 2, 90}};
  const std::string poleError = open(pole);
  EXPECT_EQ(poleError.rfind(kProjectionPointError, 0), 0u) << poleError;
  EXPECT_NE(poleError.find("\n  Projection: Mercator\n  Point: 90.000000000 2.000000000"),
            std::string::npos)
      << poleError;

  // A plane point beyond what the projection covers has no coordinate.
  TMapCalibration beyond = UtmMap("WGS 84");
  beyond.coordinates = TCoordinateMode::Plane;
  ParseMapProjection("-1,Lambert AzimuthalEqualArea,40,0,0,0,", beyond.projection, m_error);
  TCalibratedMap map;
  std::string error;
  ASSERT_TRUE(map.Open(beyond, m_datums, "", error)) << error;
  TLonLat geo{1, 2};
  EXPECT_FALSE(map.PixelToCoord({0, -1e7}, 0, geo, error));
  EXPECT_EQ(error, kProjectionToCoordsError);
  EXPECT_EQ(geo.lon, 1);
}

}  // namespace
}  // namespace velantis
