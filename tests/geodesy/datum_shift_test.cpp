#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstring>
#include <numbers>

#include "geodesy/lista_datums.h"
#include "geodesy/molodensky.h"
#include "tests/support/proj_reference.h"
#include "tests/support/proj_sweep.h"

namespace velantis {
namespace {

constexpr double kDegree = std::numbers::pi / 180;

using test::MakeDatum;

// Published NIMA TR8350.2 parameters (mean values) of a few datums.
const TDatum kWgs84 = MakeDatum("WGS 84", 6378137, 298.257223563, 0, 0, 0);
const TDatum kEuropean1950 = MakeDatum("European 1950", 6378388, 297, -87, -98, -121);
const TDatum kNad27 = MakeDatum("NAD27 CONUS", 6378206.4, 294.9786982, -8, 160, 176);
const TDatum kOsgb36 = MakeDatum("Ord Srvy Grt Britn", 6377563.396, 299.3249646, 375, -111, 431);
const TDatum kTokyo = MakeDatum("Tokyo", 6377397.155, 299.1528128, -148, 507, 685);

std::string MolodenskyDefinition(const TDatum& from, const TDatum& to) {
  char text[256];
  std::snprintf(text, sizeof text,
                "+proj=molodensky +a=%.17g +rf=%.17g +da=%.17g +df=%.17g +dx=%.17g +dy=%.17g "
                "+dz=%.17g",
                from.a, from.invFlattening, to.a - from.a, 1 / to.invFlattening - 1 / from.invFlattening,
                from.dX - to.dX, from.dY - to.dY, from.dZ - to.dZ);
  return text;
}

// PROJ's Molodensky takes W² = 1 − e²·sin²φ; ours takes sin(φ²). With
// ε = e²·|sin(φ²) − sin²φ| / (1 − e²), N moves by at most ε/2 of itself and
// M by 3ε/2, so the latitude shift moves by at most 3ε of the size its terms
// can reach, (|ΔX| + |ΔY| + |ΔZ| + |Δa| + a·|Δf|) / M, and the longitude
// shift by ε of (|ΔX| + |ΔY|) / (N·cos φ). A tenth is added for the second
// order, and 1e-12 rad for rounding.
void ExpectWithinTheRuleBound(const TDatum& from, const TDatum& to, double latDeg, double lonDeg) {
  TLonLat ours{lonDeg, latDeg};
  std::string message;
  ASSERT_TRUE(MolodenskyShift(ours, from, to, message));
  double lon = lonDeg, lat = latDeg;
  test::TProjReference proj(MolodenskyDefinition(from, to));
  ASSERT_TRUE(proj.Valid());
  ASSERT_TRUE(proj.Apply(lon, lat));

  const double phi = latDeg * kDegree;
  const double epsilon = from.e2 * std::fabs(std::sin(phi * phi) - std::pow(std::sin(phi), 2)) / (1 - from.e2);
  const double translation = std::fabs(from.dX - to.dX) + std::fabs(from.dY - to.dY);
  const double terms = translation + std::fabs(from.dZ - to.dZ) + std::fabs(to.a - from.a) +
                       from.a * std::fabs(to.f - from.f);
  const double latBound = 1.1 * 3 * epsilon * terms / (from.a * (1 - from.e2)) + 1e-12;
  const double lonBound = 1.1 * epsilon * translation / (from.a * std::cos(phi)) + 1e-12;
  EXPECT_LE(std::fabs(ours.lat - lat) * kDegree, latBound) << from.name << " " << latDeg << " " << lonDeg;
  EXPECT_LE(std::fabs(ours.lon - lon) * kDegree, lonBound) << from.name << " " << latDeg << " " << lonDeg;
}

TEST(Molodensky, AgreesWithProjWithinWhatTheSquaredLatitudeRuleExplains) {
  const std::pair<const TDatum*, const TDatum*> pairs[] = {
      {&kEuropean1950, &kWgs84}, {&kWgs84, &kEuropean1950}, {&kNad27, &kWgs84},
      {&kOsgb36, &kWgs84},       {&kTokyo, &kEuropean1950},
  };
  for (const auto& [from, to] : pairs) {
    for (double lat = -85; lat <= 85; lat += 8.5) {
      for (double lon = -175; lon <= 175; lon += 17.5) ExpectWithinTheRuleBound(*from, *to, lat, lon);
    }
  }
}

TEST(Molodensky, TheSquaredLatitudeRuleIsKept) {
  // At 60° sin(φ²) and sin²φ differ by 0.14: the result must differ from the
  // textbook formula by a measurable amount, and agree at the equator.
  TLonLat ours{10, 60};
  std::string message;
  ASSERT_TRUE(MolodenskyShift(ours, kTokyo, kWgs84, message));
  double lon = 10, lat = 60;
  ASSERT_TRUE(test::TProjReference(MolodenskyDefinition(kTokyo, kWgs84)).Apply(lon, lat));
  EXPECT_GT(std::fabs(ours.lat - lat), 1e-7);

  TLonLat equator{10, 0};
  ASSERT_TRUE(MolodenskyShift(equator, kTokyo, kWgs84, message));
  lon = 10, lat = 0;
  ASSERT_TRUE(test::TProjReference(MolodenskyDefinition(kTokyo, kWgs84)).Apply(lon, lat));
  EXPECT_NEAR(equator.lat, lat, 1e-11);
  EXPECT_NEAR(equator.lon, lon, 1e-11);
}

class DatumShift : public testing::Test {
protected:
  void SetUp() override {
    for (const TDatum* d : {&kWgs84, &kEuropean1950, &kNad27}) m_list.Add(*d);
  }
  static bool BitEqual(const TLonLat& x, const TLonLat& y) { return std::memcmp(&x, &y, sizeof x) == 0; }

  int m_configured = 1;
  TListaDatums m_list{m_configured};
};

TEST_F(DatumShift, EqualIndexesAndPolesAreLeftBitForBit) {
  const TLonLat start{2.123456789012345, 41.98765432109876};
  const std::tuple<TLonLat, int, int> untouched[] = {
      {start, 1, 1},
      {start, -1, 1},  // -1 is the configured datum, 1 here
      {{2.5, 89.99995}, 1, 0},
      {{-2.5, -89.99995}, 0, 2},
  };
  for (auto [position, from, to] : untouched) {
    const TLonLat before = position;
    std::string message;
    EXPECT_TRUE(m_list.Transforma_Grados_Datum(position, from, to, message));
    EXPECT_TRUE(BitEqual(position, before)) << position.lat << " " << from << "->" << to;
  }
  TLonLat edge{2.5, 89.9999};
  std::string message;
  EXPECT_TRUE(m_list.Transforma_Grados_Datum(edge, 1, 0, message));
  EXPECT_NE(edge.lat, 89.9999);
}

TEST_F(DatumShift, MinusOneFollowsTheConfigurationAndABadChoiceResetsIt) {
  TLonLat viaConfigured{2, 41}, viaIndex{2, 41};
  std::string message;
  ASSERT_TRUE(m_list.Transforma_Grados_Datum(viaConfigured, -1, 0, message));
  ASSERT_TRUE(m_list.Transforma_Grados_Datum(viaIndex, 1, 0, message));
  EXPECT_TRUE(BitEqual(viaConfigured, viaIndex));

  m_configured = 17;
  TLonLat position{2, 41};
  EXPECT_TRUE(m_list.Transforma_Grados_Datum(position, -1, 0, message));
  EXPECT_EQ(m_configured, 0);
  EXPECT_EQ(position.lat, 41);

  EXPECT_FALSE(m_list.Transforma_Grados_Datum(position, 0, 9, message));
}

TEST_F(DatumShift, ShiftsBetweenTwoLocalDatumsGoThroughTheirDifference) {
  TLonLat direct{-100, 40};
  std::string message;
  ASSERT_TRUE(m_list.Transforma_Grados_Datum(direct, 2, 1, message));
  TLonLat expected{-100, 40};
  ASSERT_TRUE(MolodenskyShift(expected, kNad27, kEuropean1950, message));
  EXPECT_TRUE(BitEqual(direct, expected));
}

}  // namespace
}  // namespace velantis
