#include <gtest/gtest.h>

#include "geodesy/lista_datums.h"

namespace velantis {
namespace {

TDatum Datum(std::string name, std::string aliases, std::string shortName, double dx = 0) {
  TDatum d;
  d.name = std::move(name);
  d.aliasText = std::move(aliases);
  d.shortName = std::move(shortName);
  d.a = 6378137;
  d.invFlattening = 298.257223563;
  d.dX = dx;
  return d;
}

class DatumLookup : public testing::Test {
protected:
  void SetUp() override {
    m_list.Add(Datum("WGS 84", "", "WGS84"));
    m_list.Add(Datum("European 1979", "ED79", "EUR79", -86));
    m_list.Add(Datum("Potsdam Rauenberg DHDN", "DHDN;DHDN90", "PotsdamDHDN", 582));
    // Its alias repeats the next datum's name: the earlier datum wins.
    m_list.Add(Datum("Alpha", "Beta", "", 1));
    m_list.Add(Datum("Beta", "", "", 2));
    // A short name equal to a later datum's alias: the name/alias pass wins.
    m_list.Add(Datum("Gamma", "", "Delta", 3));
    m_list.Add(Datum("Epsilon", "Delta", "", 4));
  }
  int m_configured = 1;
  TListaDatums m_list{m_configured};
};

TEST_F(DatumLookup, NamesAliasesShortNamesAndRewrites) {
  const std::pair<const char*, int> cases[] = {
      {"WGS 84", 0},
      {"WGS84", 0},
      {"WGS-84", 0},
      {"World Geodetic System 1984", 0},
      {"  wgs 84 ", 0},  // trimmed, letter case ignored
      {"European 1979", 1},
      {"Europeo 1979", 1},
      {"Europeo_1979", 1},
      {"EUR79", 1},
      {"DHDN90", 2},
      {"dhdn", 2},
      {"PotsdamDHDN", 2},
      {"Beta", 3},
      {"Delta", 6},
      {"Auto Shift", 1},
      {"Auto Shift (UTM)", 1},
      {"", -1},
      {"Nowhere 2000", -1},
  };
  for (const auto& [name, index] : cases) EXPECT_EQ(m_list.Find(name), index) << name;
}

TEST_F(DatumLookup, ProjectionFileNamesLoseTheirPrefixes) {
  const std::pair<const char*, int> cases[] = {
      {"Datum_European_1979", 1},
      {"D_Europeo_1979", 1},
      {"GCS_Datum_D_European_1979", 1},
      {"GCS_WGS_84", 0},
      {"D_GCS_WGS_84", -1},  // the prefixes are only stripped in their order
  };
  for (const auto& [name, index] : cases) EXPECT_EQ(m_list.FindProjectionName(name), index) << name;
  EXPECT_EQ(m_list.FindProjectionName("Datum_European_1979"), m_list.Find("Europeo 1979"));
}

TEST_F(DatumLookup, IndexMinusOneIsTheConfiguredDatum) {
  EXPECT_EQ(m_list.Get(-1)->name, "European 1979");
  EXPECT_EQ(m_list.Get(7), nullptr);
  EXPECT_TRUE(m_list.Exists(6));
  EXPECT_FALSE(m_list.Exists(-1));
}

TEST_F(DatumLookup, ChooserPutsResolvingRecentNamesFirst) {
  const TDatumChooser chooser = m_list.FillChooser({"Gone Datum", "EUR79", "WGS 84"}, 0);
  ASSERT_EQ(chooser.lines.size(), 2u + 1u + 7u);
  EXPECT_EQ(chooser.lines[0], "EUR79");
  EXPECT_EQ(chooser.lines[1], "WGS 84");
  EXPECT_EQ(chooser.lines[2], "-----------");
  EXPECT_EQ(chooser.lines[3], "WGS 84");
  EXPECT_EQ(chooser.selected, 1);

  const TDatumChooser plain = m_list.FillChooser({}, 2);
  ASSERT_EQ(plain.lines.size(), 7u);
  EXPECT_EQ(plain.lines[0], "WGS 84");
  EXPECT_EQ(plain.selected, 2);
}

TEST(DatumParameters, EqualWithinOneHundredThousandth) {
  TDatum a = Datum("A", "", "");
  TDatum b = a;
  EXPECT_TRUE(SameDatumParameters(a, b));
  b.dZ += 0.0000099;
  EXPECT_TRUE(SameDatumParameters(a, b));
  b.dZ = a.dZ + 0.00001;
  EXPECT_FALSE(SameDatumParameters(a, b));
  // GRS 80's 1/f is within 1.5e-6 of WGS 84's: by this test they are equal,
  // which is what lets grids to GRS 80 datums (ETRS89, RGF93) attach.
  b = a;
  b.invFlattening = 298.257222101;
  EXPECT_TRUE(SameDatumParameters(a, b));
  b.a = 6378137.00002;
  EXPECT_FALSE(SameDatumParameters(a, b));
}

}  // namespace
}  // namespace velantis
