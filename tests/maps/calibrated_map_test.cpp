// The transforms fitted to calibration points, and the calibrated map that
// chains them with the projection and the datum.
#include "maps/calibrated_map.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <span>
#include <vector>

#include "app/log.h"
#include "geodesy/utm.h"
#include "maps/map_projection.h"
#include "tests/support/testdata.h"

namespace velantis {
namespace {

using TMatrix = TPixelTransform::TMatrix;
using TPairs = std::vector<TPointPair>;
using enum TTransformKind;

// A scan at about 2.5 m a pixel, turned by 3°, image y running south, in UTM coordinates.
const TMatrix kAffine{{{2.49, 0.13, 430000.0}, {0.12, -2.51, 4580000.0}, {0, 0, 1}}};
const TPlanePoint kPixels[] = {{120, 340},  {7650, 410},  {3900, 5870}, {7010, 6120},
                               {560, 5400}, {4100, 2900}, {2200, 1500}};
// The image frame onto a quadrilateral that no affine transform reaches.
const TPointPair kQuad[] = {{{0, 0}, {430000, 4580000}},
                            {{8000, 0}, {450000, 4580500}},
                            {{8000, 6000}, {446000, 4595000}},
                            {{0, 6000}, {433000, 4594000}}};

TPlanePoint Map(const TMatrix& m, const TPlanePoint& p) {
  return {m[0][0] * p.x + m[0][1] * p.y + m[0][2], m[1][0] * p.x + m[1][1] * p.y + m[1][2]};
}

TPairs Through(std::span<const TPlanePoint> pixels) {
  TPairs pairs;
  for (const TPlanePoint& p : pixels) pairs.push_back({p, Map(kAffine, p)});
  return pairs;
}

// Each kind fits its own points exactly, recovers the affine map when the
// points lie on one, and its plane-to-pixel inverts its pixel-to-plane.
// Points on one line fall back to the first two, with a warning when a
// least-squares fit was asked for.
TEST(PixelTransform, EachKindFitsItsPointsAndInverts) {
  const TPairs pairs = Through(kPixels);
  // Three pixels on one row leave the projective transform undetermined.
  const TPlanePoint onRow[] = {{0, 0}, {3000, 0}, {8000, 0}, {4000, 6000}};
  const TPairs rowPairs = Through(onRow);
  // A slope of 1/3 leaves the points off their line by rounding.
  TPlanePoint line[5];
  for (size_t i = 0; i < 5; ++i) line[i] = {100 + 1450.0 * i, 150 + (100 + 1450.0 * i) / 3};
  const TPairs linePairs = Through(line);
  const struct {
    std::span<const TPointPair> pairs;
    int mode;
    TTransformKind kind;
    bool affine;  // the pairs lie on kAffine
    int warnings;
  } rows[] = {{std::span(pairs).first(3), 1, ThreePoint, true, 0},
              {std::span(pairs).first(4), 1, LeastSquares, true, 0},
              {std::span(pairs).first(4), 0, LeastSquares, true, 0},
              {std::span(pairs).first(5), 2, LeastSquares, true, 0},
              {std::span(pairs).first(4), 2, Projective, true, 0},
              {rowPairs, 2, LeastSquares, true, 0},         {kQuad, 2, Projective, false, 0},
              {std::span(pairs).first(2), 0, Similarity, false, 0},
              {std::span(pairs).first(2), 1, AxisScales, false, 0},
              {std::span(linePairs).first(3), 0, Similarity, false, 0},
              {std::span(linePairs).first(3), 1, AxisScales, false, 0},
              {linePairs, 0, Similarity, false, 1},         {linePairs, 1, AxisScales, false, 1}};
  for (const auto& row : rows) {
    SCOPED_TRACE(testing::Message() << row.pairs.size() << " points, mode " << row.mode);
    TLog::Instance().ClearEntries();
    const TPixelTransform t = ComputePixelTransform(row.pairs, row.mode);
    ASSERT_EQ(t.Kind(), row.kind);
    int warnings = 0;
    for (const TLogEntry& entry : TLog::Instance().Entries()) {
      warnings += entry.kind == TLogKind::Warning && entry.code == kWarningCalibrationFallback &&
                  entry.text == kLeastSquaresFallback;
    }
    EXPECT_EQ(warnings, row.warnings);
    for (const TPointPair& pair : row.pairs) {
      TPlanePoint plane{NAN, NAN};
      EXPECT_TRUE(t.ToPlane(pair.pixel, plane));
      EXPECT_LT(std::hypot(plane.x - pair.plane.x, plane.y - pair.plane.y), 1e-6);
    }
    for (size_t i = 0; row.affine && i < 3; ++i) {
      for (size_t j = 0; j < 3; ++j) {
        EXPECT_NEAR(t.Forward()[i][j], kAffine[i][j], j == 2 ? 1e-6 : 1e-11) << i << j;
      }
    }
    for (double x = -500; x <= 9000; x += 950) {
      for (double y = -500; y <= 7000; y += 750) {
        TPlanePoint plane, pixel;
        ASSERT_TRUE(t.ToPlane({x, y}, plane));
        ASSERT_TRUE(t.ToPixel(plane, pixel));
        EXPECT_LT(std::hypot(pixel.x - x, pixel.y - y), 1e-9);
      }
    }
  }
}

// Triangles on one limit of WellFormedTriangle when f is 1, inside it when f is above.
using TTriangle = std::array<TPlanePoint, 3>;
TTriangle LongestSide(double f) {
  const double s = f * kMinTriangleSide / std::sqrt(2.0);
  return {{{0, 0}, {s, 0}, {s, s}}};
}
TTriangle FirstSide(double f) { return {{{0, 0}, {0, f * kMinSideShare}, {1, f * kMinSideShare}}}; }
TTriangle SecondSide(double f) { return {{{0, 0}, {1, 0}, {1, f * kMinSideShare}}}; }
TTriangle Turn(double f) { return {{{0, 0}, {1, 0}, {2, f * kMinUnitCross}}}; }

TEST(PixelTransform, TrianglesAtTheLimits) {
  const TTriangle sound{{{0, 0}, {5000, 200}, {2500, 4000}}};
  const std::pair<const char*, TTriangle (*)(double)> limits[] = {
      {"longest side", LongestSide}, {"p0p1", FirstSide}, {"p1p2", SecondSide}, {"turn", Turn}};
  for (const auto& [name, shape] : limits) {
    for (double f : {1.01, 0.99}) {
      SCOPED_TRACE(testing::Message() << name << " × " << f);
      const TTriangle tested = shape(f);
      EXPECT_EQ(WellFormedTriangle(tested[0], tested[1], tested[2]), f > 1);
      const TPairs onPixels{{tested[0], sound[0]}, {tested[1], sound[1]}, {tested[2], sound[2]}};
      const TPairs onPlane{{sound[0], tested[0]}, {sound[1], tested[1]}, {sound[2], tested[2]}};
      EXPECT_EQ(std::pair(ComputePixelTransform(onPixels, 1).Kind() == ThreePoint,
                          ComputePixelTransform(onPlane, 1).Kind() == ThreePoint),
                std::pair(f > 1, f > 1));
    }
  }
}

// The second point of a pair starting at pixel (100, 100), plane (430000, 4580000).
TEST(PixelTransform, TwoPointsOnOneRowOrColumn) {
  const std::tuple<const char*, TPointPair, int, bool> rows[] = {
      {"apart", {{5000, 4000}, {442000, 4570000}}, 1, true},
      {"nearly one column", {{103.9, 4100}, {442000, 4570000}}, 1, false},
      {"just off a column", {{104.1, 4100}, {442000, 4570000}}, 1, true},
      {"one row", {{5000, 100}, {442000, 4570000}}, 1, false},
      {"nearly one easting", {{5000, 4000}, {430009.9, 4570000}}, 1, false},
      {"just off an easting", {{5000, 4000}, {430010.1, 4570000}}, 1, true},
      {"one northing", {{5000, 4000}, {442000, 4580000}}, 1, false},
      {"similarity on one column", {{100, 4000}, {442000, 4570000}}, 0, true},
      {"similarity on one pixel", {{100, 100}, {442000, 4570000}}, 0, false},
  };
  for (const auto& [name, second, mode, valid] : rows) {
    const TPairs pairs{{{100, 100}, {430000, 4580000}}, second};
    EXPECT_EQ(ComputePixelTransform(pairs, mode).Valid(), valid) << name;
  }
}

TEST(PixelTransform, NoAnswerLeavesTheOutputAlone) {
  const TPairs pairs = Through(kPixels);
  TPlanePoint out{7, 8};
  for (size_t count : {0, 1}) {
    const TPixelTransform t = ComputePixelTransform(std::span(pairs).first(count), 1);
    EXPECT_FALSE(t.Valid());
    EXPECT_FALSE(t.ToPlane({1, 2}, out));
    EXPECT_FALSE(t.ToPixel({1, 2}, out));
  }
  // Pixels on, or an ulp off, the line the projective transform sends to infinity.
  const TPixelTransform projective = ComputePixelTransform(kQuad, 2);
  const TMatrix& h = projective.Forward();
  ASSERT_NE(h[2][1], 0);
  const double y = -(h[2][0] * 4000 + h[2][2]) / h[2][1];
  for (double onLine : {y, std::nextafter(y, -INFINITY), std::nextafter(y, INFINITY)}) {
    EXPECT_FALSE(projective.ToPlane({4000, onLine}, out)) << onLine;
  }
  EXPECT_EQ(out.x, 7);
  EXPECT_EQ(out.y, 8);
  TPixelTransform singular;
  EXPECT_FALSE(singular.Set({{{1, 2, 3}, {2, 4, 6}, {0, 0, 1}}}, LeastSquares));
  EXPECT_FALSE(singular.Valid());
}


// Pixels to UTM 31T on a known affine map: 2.5 m a pixel, rows downwards.
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
        EXPECT_LT(std::hypot(geo.lat - expected.lat, geo.lon - expected.lon), tolerance);
        // Back on the map's datum within the transverse Mercator series (0.1 mm);
        // through WGS 84 the Molodensky shift there and back leaves a few mm.
        TPlanePoint back;
        ASSERT_TRUE(map.CoordToPixel(geo, datum, back, error)) << error;
        EXPECT_LT(std::hypot(back.x - pixel.x, back.y - pixel.y), datum == m_ed50 ? 1e-4 : 0.004);
      }
    }
  }
}

// An explicit matrix (A D B E C F of the known transform) with the offset;
// a projection named in project.dat (ITM's false origin 600000 750000 is at
// 53.5°N 8°W).
TEST_F(CalibratedMapTest, AnExplicitMatrixAndAProjectionOfProjectDat) {
  TMapCalibration matrix = UtmMap("WGS 84"), itm = UtmMap("WGS 84");
  matrix.matrix = std::array<double, 6>{2.5, -0.01, 0.01, -2.5, 430000, 4590000};
  matrix.points.resize(1);
  matrix.offset = TPlanePoint{100, 50};
  itm.coordinates = TCoordinateMode::Plane;
  ASSERT_TRUE(ParseMapProjection("-1,Irish Transverse Mercator,", itm.projection, m_error));
  itm.points = {{0, 0, "A", 600000, 750000}, {1000, 1000, "A", 610000, 740000}};
  TCalibratedMap map, named;
  std::string error;
  TLonLat geo;
  ASSERT_TRUE(map.Open(matrix, m_datums, "", error)) << error;
  EXPECT_EQ(map.Transform().Kind(), TTransformKind::Matrix);
  ASSERT_TRUE(map.PixelToCoord({10, 20}, 0, geo, error)) << error;
  const TLonLat expected = UtmGeo(KnownPlane(110, 70), 0, 0);
  EXPECT_LT(std::hypot(geo.lat - expected.lat, geo.lon - expected.lon), 1e-10);
  ASSERT_TRUE(named.Open(itm, m_datums, (test::BinaryDir() / "data").string(), error)) << error;
  ASSERT_TRUE(named.PixelToCoord({0, 0}, 0, geo, error)) << error;
  EXPECT_LT(std::hypot(geo.lat - 53.5, geo.lon + 8), 1e-7);
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

  EXPECT_EQ(open(UtmMap("Atlantis 2000")), "Unknown datum: Atlantis 2000");

  TMapCalibration badZone = UtmMap("WGS 84");
  badZone.projection.zone = TZonaUTM{31, 'T'};
  badZone.points[2].zone = "3t";
  EXPECT_EQ(open(badZone).rfind(kCoordinatePointError, 0), 0u);

  TMapCalibration pole = UtmMap("WGS 84");
  pole.coordinates = TCoordinateMode::LatLon;
  ParseMapProjection("-1,Mercator,0,0,0,0,1,", pole.projection, m_error);
  pole.points = {{0, 0, "A", 1, 41}, {4000, 0, "A", 2, 90}};
  const std::string poleError = open(pole);
  EXPECT_TRUE(poleError.starts_with(kProjectionPointError) &&
              poleError.find("\n  Projection: Mercator\n  Point: 90.000000000 2.000000000") != std::string::npos)
      << poleError;

  // A plane point beyond what the projection covers has no coordinate.
  TMapCalibration beyond = UtmMap("WGS 84");
  beyond.coordinates = TCoordinateMode::Plane;
  ParseMapProjection("-1,Lambert AzimuthalEqualArea,40,0,0,0,", beyond.projection, m_error);
  TCalibratedMap map;
  std::string error;
  ASSERT_TRUE(map.Open(beyond, m_datums, "", error)) << error;
  TLonLat geo{1, 2};
  const bool converted = map.PixelToCoord({0, -1e7}, 0, geo, error);
  EXPECT_EQ(std::tuple(converted, error, geo.lon), std::tuple(false, std::string(kProjectionToCoordsError), 1.0));
}

}  // namespace
}  // namespace velantis
