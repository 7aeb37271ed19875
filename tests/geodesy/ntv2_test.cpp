#include "geodesy/ntv2.h"

#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <tuple>

#include "tests/support/proj_reference.h"
#include "tests/support/testdata.h"

namespace velantis {
namespace {

namespace fs = std::filesystem;

constexpr double kForwardToleranceDeg = 1e-8;
constexpr double kMetresPerDegree = 111320;

// The largest change of the shift per arc-second between neighbouring nodes.
double MaxShiftGradient(const TDatumSubRejilla& g) {
  double gradient = 0;
  for (int r = 0; r < g.rows; ++r) {
    for (int c = 0; c < g.columns; ++c) {
      const float* here = &g.nodes[(size_t(r) * g.columns + c) * 4];
      for (int k = 0; k < 2; ++k) {
        if (c + 1 < g.columns) gradient = std::max<double>(gradient, std::fabs(here[4 + k] - here[k]) / g.longInc);
        if (r + 1 < g.rows)
          gradient = std::max<double>(gradient, std::fabs(here[4 * g.columns + k] - here[k]) / g.latInc);
      }
    }
  }
  return gradient;
}

class Ntv2AgainstProj : public testing::TestWithParam<const char*> {};

// Over the first sub-grid. Our inverse subtracts the shift found at the point where
// PROJ iterates; they differ by at most 2·|shift|·(steepest node gradient).
TEST_P(Ntv2AgainstProj, ForwardAgreesAndInverseStaysWithinTheOneStepBound) {
  VELANTIS_TESTDATA_OR_SKIP(path, fs::path("ntv2") / GetParam());
  TDatumFileNTV2 grid;
  std::string error;
  ASSERT_TRUE(grid.Open(path.string(), error)) << error;
  test::TProjReference proj("+proj=hgridshift +grids=" + path.string());
  ASSERT_TRUE(proj.Valid());
  const TDatumSubRejilla& g = grid.SubGrids().at(0);
  const double gradient = MaxShiftGradient(g);
  int compared = 0;
  for (double u = 0.013; u < 1; u += 0.0731) {
    for (double v = 0.017; v < 1; v += 0.0693) {
      const double lon0 = -(g.eLong + (g.wLong - g.eLong) * u) / 3600, lat0 = (g.sLat + (g.nLat - g.sLat) * v) / 3600;
      double lon = lon0, lat = lat0, refLon = lon0, refLat = lat0;
      double invLon = lon0, invLat = lat0, refInvLon = lon0, refInvLat = lat0;
      ASSERT_TRUE(grid.Shift(lon, lat, false) && grid.Shift(invLon, invLat, true));
      if (!proj.Apply(refLon, refLat) || !proj.Apply(refInvLon, refInvLat, true)) continue;
      EXPECT_NEAR(lon, refLon, kForwardToleranceDeg) << lon0 << " " << lat0;
      EXPECT_NEAR(lat, refLat, kForwardToleranceDeg) << lon0 << " " << lat0;
      const double bound = 2 * std::hypot(lon - lon0, lat - lat0) * gradient + kForwardToleranceDeg;
      EXPECT_LE(std::fabs(invLon - refInvLon), bound) << lon0 << " " << lat0;
      EXPECT_LE(std::fabs(invLat - refInvLat), bound) << lon0 << " " << lat0;
      ++compared;
    }
  }
  EXPECT_GT(compared, 150);
}

INSTANTIATE_TEST_SUITE_P(RealGrids, Ntv2AgainstProj,
                         testing::Values("BETA2007.gsb", "ntf_r93.gsb", "nzgd2kgrid0005.gsb", "100800401.gsb",
                                         "CHENyx06a.gsb"));

// The official BeTA2007 control points (PROJ's DHDN_ETRS89.gie, first block), 1 mm;
// those given in ETRS89 go back through the one-step inverse, held to its bound.
TEST(Ntv2, Beta2007ControlPoints) {
  VELANTIS_TESTDATA_OR_SKIP(vectors, "gie/DHDN_ETRS89.gie");
  VELANTIS_TESTDATA_OR_SKIP(gridPath, "ntv2/BETA2007.gsb");
  TDatumFileNTV2 grid;
  std::string error;
  ASSERT_TRUE(grid.Open(gridPath.string(), error)) << error;
  std::ifstream in(vectors);
  std::string line;
  double acceptLon = 0, acceptLat = 0;
  bool fromDhdn = false;
  int checked = 0, operations = 0;
  const double gradient = MaxShiftGradient(grid.SubGrids().at(0));
  while (std::getline(in, line)) {
    if (line.rfind("operation", 0) == 0 && ++operations > 1) break;
    std::istringstream words(line);
    std::string keyword;
    double lon, lat;
    if (!(words >> keyword >> lon >> lat)) continue;
    if (keyword == "accept") {
      acceptLon = lon, acceptLat = lat;
      fromDhdn = line.find("DE_DHDN") != std::string::npos;
    } else if (keyword == "expect") {
      double x = acceptLon, y = acceptLat;
      ASSERT_TRUE(grid.Shift(x, y, !fromDhdn));
      const double shiftM = std::hypot(x - acceptLon, y - acceptLat) * kMetresPerDegree;
      const double toleranceM = 0.001 + (fromDhdn ? 0 : 2 * shiftM * gradient);
      EXPECT_LE(std::fabs(y - lat) * kMetresPerDegree, toleranceM) << line;
      EXPECT_LE(std::fabs(x - lon) * kMetresPerDegree * std::cos(lat * M_PI / 180), toleranceM) << line;
      ++checked;
    }
  }
  EXPECT_GE(checked, 30);
}

// Published cs2cs vectors (NTF -> RGF93; Canada outside the child sub-grids); the
// edges of ntf_r93: the northern and western ones have no nodes beyond and fail.
TEST(Ntv2, PublishedVectorsAndTheGridsEdges) {
  const std::tuple<const char*, double, double, double, double, double> cases[] = {
      {"ntf_r93.gsb", -5.4999, 51.9999, -5.501006458305, 51.999790470257, 1e-11},
      {"ntv2_0_downsampled.gsb", -84, 42, -(83 + 59 / 60.0 + 59.8623 / 3600), 42 + 0.1807 / 3600, 1e-4 / 3600},
  };
  for (const auto& [file, lon0, lat0, expectLon, expectLat, toleranceDeg] : cases) {
    VELANTIS_TESTDATA_OR_SKIP(path, fs::path("ntv2") / file);
    TDatumFileNTV2 grid;
    std::string error;
    double lon = lon0, lat = lat0;
    ASSERT_TRUE(grid.Open(path.string(), error) && grid.Shift(lon, lat, false)) << file;
    EXPECT_NEAR(lon, expectLon, toleranceDeg) << file;
    EXPECT_NEAR(lat, expectLat, toleranceDeg) << file;
  }
  VELANTIS_TESTDATA_OR_SKIP(path, "ntv2/ntf_r93.gsb");
  TDatumFileNTV2 grid;
  std::string error;
  ASSERT_TRUE(grid.Open(path.string(), error));
  for (const auto& [lon0, lat0] : {std::pair{2.0, 52.0}, {-5.5, 45.0}, {-5.5, 52.0}, {2.0, 52.0001}, {10.0001, 45.0}}) {
    double lon = lon0, lat = lat0;
    EXPECT_FALSE(grid.Shift(lon, lat, false)) << lon0 << " " << lat0;
    EXPECT_EQ(std::tie(lon, lat), std::tie(lon0, lat0));
  }
  double lon = 10.0, lat = 41.0;  // the southern and eastern edges have nodes beyond
  EXPECT_TRUE(grid.Shift(lon, lat, false));
}

// A grid whose header reads but whose nodes do not is marked unusable and
// never read again.
TEST(Ntv2, AFileThatFailsToLoadStaysUnusable) {
  VELANTIS_TESTDATA_OR_SKIP(source, "ntv2/ntf_r93.gsb");
  const fs::path copy = test::ScratchDir("ntv2-unusable") / "cut.gsb";
  fs::copy_file(source, copy);
  fs::resize_file(copy, 4000);
  TDatumFileNTV2 grid;
  std::string error;
  ASSERT_TRUE(grid.Open(copy.string(), error)) << "the header alone reads";
  double lon = 2, lat = 45;
  EXPECT_FALSE(grid.Shift(lon, lat, false));
  EXPECT_TRUE(grid.Unusable());
  fs::copy_file(source, copy, fs::copy_options::overwrite_existing);
  EXPECT_FALSE(grid.Shift(lon, lat, false)) << "a failed grid is never read again";
}

}  // namespace
}  // namespace velantis
