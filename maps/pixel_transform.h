// The transform between image pixels and the plane coordinates of a map's
// projection, computed from calibration points.
//
// A transform is a 3 × 3 matrix acting on (px, py, 1): the affine transforms
// have the bottom row (0, 0, 1), so that X = a·px + b·py + c and
// Y = d·px + e·py + f; only the four-point solution uses the bottom row (a
// projective transform through four point pairs). It is kept together with
// its inverse (plane → pixel).
//
// Choosing the transform from n point pairs (ComputePixelTransform):
//   n < 2   no transform.
//   n = 4 with calibration mode 2: the projective transform through the four
//           pairs; when it cannot be solved, the least-squares fit below.
//   n > 3   the affine transform fitted by least squares over all n pairs
//           (normal equations, one solve for X and one for Y). When that
//           fails, warning 37001 "Error Calculando Transf. Matrix punts>=4 "
//           is logged and the first three pairs are used.
//   n = 3   the exact affine transform through the three pairs, provided both
//           triangles (pixels and plane) are well formed; otherwise the first
//           two pairs.
//   n = 2   mode 0: similarity (uniform scale, rotation, shift),
//           X = a·px − b·py + c, Y = b·px + a·py + d; any other mode:
//           independent axis scales without rotation, X = a·px + c,
//           Y = b·py + d, refused when the two pixels (or the two plane
//           points) share a column or a row.
// Calibration modes: 0 similarity for two points, 2 projective for four,
// any other value (1 is the default) the affine fits.
#pragma once

#include <array>
#include <span>

#include "geodesy/projection.h"

namespace velantis {

inline constexpr int kCalibrationModeSimilarity = 0;
inline constexpr int kCalibrationModeAffine = 1;
inline constexpr int kCalibrationModeProjective = 2;

inline constexpr const char* kLeastSquaresFallback = "Error Calculando Transf. Matrix punts>=4 ";

// A triangle is well formed when its longest side p0p1, p1p2 or p0p2 is at
// least kMinTriangleSide, p0p1 and p1p2 are each at least kMinSideShare of the
// longest side, and the unit vectors along p0→p1 and p1→p2 have an absolute
// cross product of at least kMinUnitCross (the points are not nearly
// collinear).
inline constexpr double kMinTriangleSide = 1e-9;
inline constexpr double kMinSideShare = 0.001;
inline constexpr double kMinUnitCross = 0.001;

// Which solution produced a transform; Matrix for one a file gave explicitly.
enum class TTransformKind {
  None,
  Projective,
  LeastSquares,
  ThreePoint,
  Similarity,
  AxisScales,
  Matrix,
};

struct TPointPair {
  TPlanePoint pixel;
  TPlanePoint plane;
};

class TPixelTransform {
public:
  using TMatrix = std::array<std::array<double, 3>, 3>;

  TPixelTransform() = default;
  // False when the matrix cannot be inverted; the transform is then unset.
  bool Set(const TMatrix& forward, TTransformKind kind);

  bool Valid() const { return m_kind != TTransformKind::None; }
  TTransformKind Kind() const { return m_kind; }
  const TMatrix& Forward() const { return m_forward; }
  const TMatrix& Inverse() const { return m_inverse; }

  // Pixel → plane and plane → pixel; false (output untouched) when the
  // transform is unset or the point maps to infinity (projective only).
  bool ToPlane(const TPlanePoint& pixel, TPlanePoint& plane) const;
  bool ToPixel(const TPlanePoint& plane, TPlanePoint& pixel) const;

private:
  TMatrix m_forward{};
  TMatrix m_inverse{};
  TTransformKind m_kind = TTransformKind::None;
};

// The transform chosen for the pairs as described above; unset when none can
// be found.
TPixelTransform ComputePixelTransform(std::span<const TPointPair> pairs, int calibrationMode);

// Whether three points form a well-formed triangle (see above).
bool WellFormedTriangle(const TPlanePoint& p0, const TPlanePoint& p1, const TPlanePoint& p2);

}  // namespace velantis
