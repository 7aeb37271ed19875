#include "maps/pixel_transform.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <span>
#include <vector>

#include "app/log.h"

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

double Miss(const TPixelTransform& t, const TPointPair& pair) {
  TPlanePoint plane{NAN, NAN};
  EXPECT_TRUE(t.ToPlane(pair.pixel, plane));
  return std::hypot(plane.x - pair.plane.x, plane.y - pair.plane.y);
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
              {pairs, 1, LeastSquares, true, 0},
              {std::span(pairs).first(4), 0, LeastSquares, true, 0},
              {std::span(pairs).first(5), 2, LeastSquares, true, 0},
              {std::span(pairs).first(4), 2, Projective, true, 0},
              {rowPairs, 2, LeastSquares, true, 0},
              {kQuad, 2, Projective, false, 0},
              {std::span(pairs).first(2), 0, Similarity, false, 0},
              {std::span(pairs).first(2), 1, AxisScales, false, 0},
              {std::span(linePairs).first(3), 0, Similarity, false, 0},
              {std::span(linePairs).first(3), 1, AxisScales, false, 0},
              {linePairs, 0, Similarity, false, 1},
              {linePairs, 1, AxisScales, false, 1}};
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
    for (const TPointPair& pair : row.pairs) EXPECT_LT(Miss(t, pair), 1e-6);
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
        EXPECT_NEAR(pixel.x, x, 1e-9);
        EXPECT_NEAR(pixel.y, y, 1e-9);
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
  const struct {
    const char* name;
    TTriangle (*shape)(double f);
  } limits[] = {
      {"longest side", LongestSide}, {"p0p1", FirstSide}, {"p1p2", SecondSide}, {"turn", Turn}};
  for (const auto& limit : limits) {
    for (double f : {1.01, 0.99}) {
      SCOPED_TRACE(testing::Message() << limit.name << " × " << f);
      const TTriangle tested = limit.shape(f);
      EXPECT_EQ(WellFormedTriangle(tested[0], tested[1], tested[2]), f > 1);
      TPairs onPixels, onPlane;
      for (size_t i = 0; i < 3; ++i) {
        onPixels.push_back({tested[i], sound[i]});
        onPlane.push_back({sound[i], tested[i]});
      }
      EXPECT_EQ(ComputePixelTransform(onPixels, 1).Kind() == ThreePoint, f > 1);
      EXPECT_EQ(ComputePixelTransform(onPlane, 1).Kind() == ThreePoint, f > 1);
    }
  }
}

// The second point of a pair starting at pixel (100, 100), plane (430000, 4580000).
TEST(PixelTransform, TwoPointsOnOneRowOrColumn) {
  const struct {
    const char* name;
    TPointPair second;
    int mode;
    bool valid;
  } rows[] = {
      {"apart", {{5000, 4000}, {442000, 4570000}}, 1, true},
      {"one column", {{100, 4000}, {442000, 4570000}}, 1, false},
      {"nearly one column", {{103.9, 4100}, {442000, 4570000}}, 1, false},
      {"just off a column", {{104.1, 4100}, {442000, 4570000}}, 1, true},
      {"one row", {{5000, 100}, {442000, 4570000}}, 1, false},
      {"nearly one easting", {{5000, 4000}, {430009.9, 4570000}}, 1, false},
      {"just off an easting", {{5000, 4000}, {430010.1, 4570000}}, 1, true},
      {"one northing", {{5000, 4000}, {442000, 4580000}}, 1, false},
      {"similarity on one column", {{100, 4000}, {442000, 4570000}}, 0, true},
      {"similarity on one pixel", {{100, 100}, {442000, 4570000}}, 0, false},
  };
  for (const auto& row : rows) {
    const TPairs pairs{{{100, 100}, {430000, 4580000}}, row.second};
    EXPECT_EQ(ComputePixelTransform(pairs, row.mode).Valid(), row.valid) << row.name;
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

}  // namespace
}  // namespace velantis
