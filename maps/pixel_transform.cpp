#include "maps/pixel_transform.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "app/log.h"

namespace velantis {

namespace {

using TMatrix = TPixelTransform::TMatrix;
using TRow = std::array<double, 3>;

// How far from singular a 3 × 3 matrix must be to be inverted. |det| is compared with the bound
// Hadamard's inequality puts on it once the columns are scaled to unit length: the ratio is 1
// for orthogonal columns, 0 for dependent ones, ignores the units of either coordinate set and
// behaves like the reciprocal of the condition number. Keeping it above 1e-10 keeps rounding
// (1e-16) below 1e-6 relative in the solution, a millimetre over a kilometre of map. For the
// normal matrix of the least-squares fit, whose pixels are centred, it falls like 1 − r², r
// being the correlation between the pixel x and y: it vanishes when all pixels are on one line,
// and with it the one direction the fit cannot tell apart from the others.
constexpr double kMinDeterminantRatio = 1e-10;

// Elimination stops on a pivot this small against the largest coefficient of the system: the
// equations are then dependent up to the rounding of the data. The coordinates are centred
// first, so that this compares their spread, not their distance from the origin.
constexpr double kMinPivotRatio = 1e-10;

// A homogeneous w this small against its terms is a point on the line a projective transform
// sends to infinity, up to rounding; the quotient would have no correct digit.
constexpr double kMinHomogeneousRatio = 1e-12;

// Two points are taken to share a column (a row) when the segment between them is within this
// sine of the y (x) axis, the same one-in-a-thousand angle below which three points count as
// collinear. Equality would be too strict: points placed on one grid line by hand differ by a
// fraction of a pixel, and the scale drawn from that fraction is noise. At the limit, points
// 4000 pixels apart are 4 pixels off the axis, and a tenth of a pixel moves the scale by 2.5%.
constexpr double kMinAxisSine = kMinUnitCross;

TMatrix Multiply(const TMatrix& a, const TMatrix& b) {
  TMatrix product{};
  for (size_t i = 0; i < 3; ++i) {
    for (size_t j = 0; j < 3; ++j) {
      for (size_t k = 0; k < 3; ++k) product[i][j] += a[i][k] * b[k][j];
    }
  }
  return product;
}

TRow Times(const TMatrix& m, const TRow& v) {
  TRow product{};
  for (size_t i = 0; i < 3; ++i) product[i] = m[i][0] * v[0] + m[i][1] * v[1] + m[i][2] * v[2];
  return product;
}

// a·b − c·d to within about an ulp (Kahan's algorithm). The cofactors of a transform in plane
// coordinates subtract products of millions of metres that nearly cancel; done plainly, the
// shift of a projective inverse keeps too few digits to undo the forward transform to 1e-9 of
// a pixel.
double DifferenceOfProducts(double a, double b, double c, double d) {
  const double cd = c * d;
  const double error = std::fma(-c, d, cd);
  return std::fma(a, b, -cd) + error;
}

double DeterminantRatio(const TMatrix& m, double det) {
  TRow column{};
  for (size_t j = 0; j < 3; ++j) {
    column[j] = std::hypot(m[0][j], m[1][j], m[2][j]);
    if (!(column[j] > 0)) return 0;
  }
  double bound = column[0] * column[1] * column[2];
  for (const TRow& row : m) {
    bound *= std::hypot(row[0] / column[0], row[1] / column[1], row[2] / column[2]);
  }
  return std::fabs(det) / bound;
}

bool Invert(const TMatrix& m, TMatrix& inverse) {
  TMatrix adjugate{};
  // Cyclic indices give the cofactors their signs.
  for (size_t i = 0; i < 3; ++i) {
    for (size_t j = 0; j < 3; ++j) {
      const size_t r0 = (j + 1) % 3, r1 = (j + 2) % 3, c0 = (i + 1) % 3, c1 = (i + 2) % 3;
      adjugate[i][j] = DifferenceOfProducts(m[r0][c0], m[r1][c1], m[r0][c1], m[r1][c0]);
    }
  }
  const double det = m[0][0] * adjugate[0][0] + m[0][1] * adjugate[1][0] + m[0][2] * adjugate[2][0];
  if (!(DeterminantRatio(m, det) >= kMinDeterminantRatio)) return false;
  for (size_t i = 0; i < 3; ++i) {
    for (size_t j = 0; j < 3; ++j) inverse[i][j] = adjugate[i][j] / det;
  }
  return true;
}

double Dot(const TRow& row, const TPlanePoint& p) { return row[0] * p.x + row[1] * p.y + row[2]; }

bool Apply(const TMatrix& m, const TPlanePoint& in, TPlanePoint& out) {
  const double w = Dot(m[2], in);
  const double wTerms = std::fabs(m[2][0] * in.x) + std::fabs(m[2][1] * in.y) + std::fabs(m[2][2]);
  if (!(std::fabs(w) > kMinHomogeneousRatio * wTerms)) return false;
  const TPlanePoint result{Dot(m[0], in) / w, Dot(m[1], in) / w};
  if (!std::isfinite(result.x) || !std::isfinite(result.y)) return false;
  out = result;
  return true;
}

// Plane coordinates run into millions of metres while they vary by thousands across a map, and
// products of such numbers in the solvers would leave few digits of the variation. The solvers
// therefore work on coordinates shifted to their centroid and, where the equations mix powers
// of the coordinates, scaled to a mean square distance of 1 (the usual conditioning of the
// direct linear transform); the transform found is then carried back.
struct TShift {
  double cx = 0;
  double cy = 0;
  double scale = 1;

  TPlanePoint Apply(const TPlanePoint& p) const { return {(p.x - cx) * scale, (p.y - cy) * scale}; }
  TMatrix Forward() const {
    return {{{scale, 0, -scale * cx}, {0, scale, -scale * cy}, {0, 0, 1}}};
  }
  TMatrix Backward() const { return {{{1 / scale, 0, cx}, {0, 1 / scale, cy}, {0, 0, 1}}}; }
};

using TSide = TPlanePoint TPointPair::*;

TShift ShiftOf(std::span<const TPointPair> pairs, TSide side, bool scaled) {
  const double n = static_cast<double>(pairs.size());
  TShift shift;
  for (const TPointPair& pair : pairs) {
    shift.cx += (pair.*side).x / n;
    shift.cy += (pair.*side).y / n;
  }
  if (!scaled) return shift;
  double squares = 0;
  for (const TPointPair& pair : pairs) {
    const TPlanePoint p = shift.Apply(pair.*side);
    squares += p.x * p.x + p.y * p.y;
  }
  const double scale = 1 / std::sqrt(squares / n);
  if (std::isfinite(scale)) shift.scale = scale;
  return shift;
}

struct TConditioning {
  TShift pixel;
  TShift plane;

  TPointPair Apply(const TPointPair& pair) const {
    return {pixel.Apply(pair.pixel), plane.Apply(pair.plane)};
  }
  TMatrix Undo(const TMatrix& conditioned) const {
    return Multiply(plane.Backward(), Multiply(conditioned, pixel.Forward()));
  }
};

TConditioning ConditioningOf(std::span<const TPointPair> pairs, bool scaled) {
  return {ShiftOf(pairs, &TPointPair::pixel, scaled), ShiftOf(pairs, &TPointPair::plane, scaled)};
}

// Each row ends with its right-hand side, so that pivoting swaps it along.
template <size_t N>
using TSystem = std::array<std::array<double, N + 1>, N>;

template <size_t N>
bool Eliminate(TSystem<N>& a) {
  double largest = 0;
  for (const auto& row : a) {
    for (size_t j = 0; j < N; ++j) largest = std::max(largest, std::fabs(row[j]));
  }
  for (size_t k = 0; k < N; ++k) {
    size_t pivot = k;
    for (size_t i = k + 1; i < N; ++i) {
      if (std::fabs(a[i][k]) > std::fabs(a[pivot][k])) pivot = i;
    }
    if (!(std::fabs(a[pivot][k]) > kMinPivotRatio * largest)) return false;
    std::swap(a[k], a[pivot]);
    for (size_t i = k + 1; i < N; ++i) {
      const double factor = a[i][k] / a[k][k];
      for (size_t j = k; j <= N; ++j) a[i][j] -= factor * a[k][j];
    }
  }
  return true;
}

template <size_t N>
bool Solve(TSystem<N> a, std::array<double, N>& solution) {
  if (!Eliminate<N>(a)) return false;
  for (size_t k = N; k-- > 0;) {
    double sum = a[k][N];
    for (size_t j = k + 1; j < N; ++j) sum -= a[k][j] * solution[j];
    solution[k] = sum / a[k][k];
  }
  return true;
}

TMatrix AffineOf(const TMatrix& inverse, const TRow& towardX, const TRow& towardY) {
  return {Times(inverse, towardX), Times(inverse, towardY), TRow{0, 0, 1}};
}

bool SolveProjective(std::span<const TPointPair> pairs, TPixelTransform& transform) {
  const TConditioning conditioning = ConditioningOf(pairs, true);
  TSystem<8> system{};
  for (size_t i = 0; i < 4; ++i) {
    const auto [p, q] = conditioning.Apply(pairs[i]);
    system[2 * i] = {p.x, p.y, 1, 0, 0, 0, -p.x * q.x, -p.y * q.x, q.x};
    system[2 * i + 1] = {0, 0, 0, p.x, p.y, 1, -p.x * q.y, -p.y * q.y, q.y};
  }
  std::array<double, 8> h{};
  if (!Solve<8>(system, h)) return false;
  TMatrix forward = conditioning.Undo({{{h[0], h[1], h[2]}, {h[3], h[4], h[5]}, {h[6], h[7], 1}}});
  // The conditioned solution fixes the scale at the centroid; the pixel origin is the usual
  // place to fix it, unless the origin is sent to infinity.
  const double h22 = forward[2][2];
  if (h22 != 0) {
    for (TRow& row : forward) {
      for (double& value : row) value /= h22;
    }
  }
  return transform.Set(forward, TTransformKind::Projective);
}

bool SolveLeastSquares(std::span<const TPointPair> pairs, TPixelTransform& transform) {
  const TConditioning conditioning = ConditioningOf(pairs, true);
  TMatrix normal{};
  TRow towardX{}, towardY{};
  for (const TPointPair& pair : pairs) {
    const auto [p, q] = conditioning.Apply(pair);
    const TRow design{p.x, p.y, 1};
    for (size_t i = 0; i < 3; ++i) {
      for (size_t j = 0; j < 3; ++j) normal[i][j] += design[i] * design[j];
      towardX[i] += design[i] * q.x;
      towardY[i] += design[i] * q.y;
    }
  }
  TMatrix inverse{};
  if (!Invert(normal, inverse)) return false;
  return transform.Set(conditioning.Undo(AffineOf(inverse, towardX, towardY)),
                       TTransformKind::LeastSquares);
}

bool SolveThreePoint(std::span<const TPointPair> pairs, TPixelTransform& transform) {
  if (!WellFormedTriangle(pairs[0].pixel, pairs[1].pixel, pairs[2].pixel) ||
      !WellFormedTriangle(pairs[0].plane, pairs[1].plane, pairs[2].plane)) {
    return false;
  }
  const TConditioning conditioning = ConditioningOf(pairs, true);
  TMatrix system{};
  TRow xs{}, ys{};
  for (size_t i = 0; i < 3; ++i) {
    const auto [p, q] = conditioning.Apply(pairs[i]);
    system[i] = {p.x, p.y, 1};
    xs[i] = q.x;
    ys[i] = q.y;
  }
  TMatrix inverse{};
  if (!Invert(system, inverse)) return false;
  return transform.Set(conditioning.Undo(AffineOf(inverse, xs, ys)), TTransformKind::ThreePoint);
}

// Centred but not scaled: the pivot test then weighs the pixels' separation against the unit
// coefficients of the shift, and pixels within 1e-10 of a pixel are one pixel. Scaled, any two
// distinct pixels would pass.
bool SolveSimilarity(std::span<const TPointPair> pairs, TPixelTransform& transform) {
  const TConditioning conditioning = ConditioningOf(pairs, false);
  TSystem<4> system{};
  for (size_t i = 0; i < 2; ++i) {
    const auto [p, q] = conditioning.Apply(pairs[i]);
    system[2 * i] = {p.x, -p.y, 1, 0, q.x};
    system[2 * i + 1] = {p.y, p.x, 0, 1, q.y};
  }
  std::array<double, 4> s{};
  if (!Solve<4>(system, s)) return false;
  return transform.Set(conditioning.Undo({{{s[0], -s[1], s[2]}, {s[1], s[0], s[3]}, {0, 0, 1}}}),
                       TTransformKind::Similarity);
}

bool OffBothAxes(const TPlanePoint& p0, const TPlanePoint& p1) {
  const double dx = std::fabs(p1.x - p0.x), dy = std::fabs(p1.y - p0.y);
  const double length = std::hypot(dx, dy);
  return length > 0 && std::min(dx, dy) >= kMinAxisSine * length;
}

bool SolveAxisScales(std::span<const TPointPair> pairs, TPixelTransform& transform) {
  const TPointPair& first = pairs[0];
  const TPointPair& second = pairs[1];
  if (!OffBothAxes(first.pixel, second.pixel) || !OffBothAxes(first.plane, second.plane)) {
    return false;
  }
  const double a = (second.plane.x - first.plane.x) / (second.pixel.x - first.pixel.x);
  const double b = (second.plane.y - first.plane.y) / (second.pixel.y - first.pixel.y);
  const TConditioning conditioning = ConditioningOf(pairs, false);
  return transform.Set(conditioning.Undo({{{a, 0, 0}, {0, b, 0}, {0, 0, 1}}}),
                       TTransformKind::AxisScales);
}

double Distance(const TPlanePoint& a, const TPlanePoint& b) {
  return std::hypot(b.x - a.x, b.y - a.y);
}

}  // namespace

bool TPixelTransform::Set(const TMatrix& forward, TTransformKind kind) {
  TMatrix inverse{};
  if (kind == TTransformKind::None || !Invert(forward, inverse)) {
    *this = TPixelTransform();
    return false;
  }
  m_forward = forward;
  m_inverse = inverse;
  m_kind = kind;
  return true;
}

bool TPixelTransform::ToPlane(const TPlanePoint& pixel, TPlanePoint& plane) const {
  return Valid() && Apply(m_forward, pixel, plane);
}

bool TPixelTransform::ToPixel(const TPlanePoint& plane, TPlanePoint& pixel) const {
  return Valid() && Apply(m_inverse, plane, pixel);
}

TPixelTransform ComputePixelTransform(std::span<const TPointPair> pairs, int calibrationMode) {
  TPixelTransform transform;
  const size_t n = pairs.size();
  if (n < 2) return transform;
  if (n == 4 && calibrationMode == kCalibrationModeProjective &&
      SolveProjective(pairs, transform)) {
    return transform;
  }
  if (n > 3) {
    if (SolveLeastSquares(pairs, transform)) return transform;
    TLog::Instance().Warning(kWarningCalibrationFallback, kLeastSquaresFallback);
  }
  if (n >= 3 && SolveThreePoint(pairs.first(3), transform)) return transform;
  const auto firstTwo = pairs.first(2);
  if (calibrationMode == kCalibrationModeSimilarity) {
    SolveSimilarity(firstTwo, transform);
  } else {
    SolveAxisScales(firstTwo, transform);
  }
  return transform;
}

bool WellFormedTriangle(const TPlanePoint& p0, const TPlanePoint& p1, const TPlanePoint& p2) {
  const double side01 = Distance(p0, p1), side12 = Distance(p1, p2);
  const double longest = std::max({side01, side12, Distance(p0, p2)});
  if (!(longest >= kMinTriangleSide)) return false;
  if (side01 < kMinSideShare * longest || side12 < kMinSideShare * longest) return false;
  const double cross = (p1.x - p0.x) * (p2.y - p1.y) - (p1.y - p0.y) * (p2.x - p1.x);
  return std::fabs(cross) / (side01 * side12) >= kMinUnitCross;
}

}  // namespace velantis
