#include <gtest/gtest.h>

#include "app/log.h"
#include "geodesy/molodensky.h"
#include "geodesy/ntv2.h"
#include "tests/geodesy/builtin_datums.h"
#include "tests/support/testdata.h"

namespace velantis {
namespace {

namespace fs = std::filesystem;

class BuiltInDatums : public testing::Test {
protected:
  void Load(const std::vector<fs::path>& grids) {
    m_dir = test::MakeDataFolder("builtin-datums", grids);
    fs::create_directories(m_dir / "user");
    TLog::Instance().ClearEntries();
    std::string error;
    ASSERT_TRUE(m_list.Load(m_dir.string(), (m_dir / "user").string(), error)) << error;
  }
  fs::path m_dir;
  int m_configured = 0;
  TListaDatums m_list{m_configured};
};

TEST_F(BuiltInDatums, EveryNameAliasAndShortNameFindsItsOwnDatum) {
  Load({});
  ASSERT_GE(m_list.Count(), 150);
  EXPECT_EQ(m_list.Get(0)->name, "WGS 84");
  for (int i = 0; i < m_list.Count(); ++i) {
    const TDatum& d = *m_list.Get(i);
    EXPECT_EQ(m_list.Find(d.name), i) << d.name;
    for (const auto& alias : d.aliases) EXPECT_EQ(m_list.Find(alias), i) << alias;
    if (!d.shortName.empty()) {
      EXPECT_EQ(m_list.Find(d.shortName), i) << d.shortName;
    }
    EXPECT_FALSE(d.ShortLabel().empty());
    EXPECT_GT(d.a, 6370000) << d.name;
    EXPECT_LT(d.a, 6380000) << d.name;
  }
}

TEST_F(BuiltInDatums, NamesOtherPartsOfTheSystemUseResolve) {
  Load({});
  for (const char* name : {"European 1979", "Europeo 1979", "Ord Srvy Grt Britn", "Ireland 1965", "CH-1903",
                           "NTF", "NZGD49", "ED50", "RGF93", "ETRS89", "NZGD2000", "DHDN90", "CH1903",
                           "CH1903+"}) {
    EXPECT_GE(m_list.Find(name), 0) << name;
  }
  EXPECT_EQ(m_list.FindProjectionName("Datum_European_1979"), m_list.Find("Europeo 1979"));
  for (const char* sameAsWgs84 : {"ETRS89", "RGF93", "NZGD2000"}) {
    const TDatum* datum = m_list.Get(m_list.Find(sameAsWgs84));
    ASSERT_NE(datum, nullptr) << sameAsWgs84;
    EXPECT_TRUE(SameDatumParameters(*datum, *m_list.Get(0))) << sameAsWgs84;
  }
}

struct TGridOutcome {
  const char* file;
  const char* attachedTo;  // a name of the datum it attaches to, or nullptr
  int warning;             // the warning code when dropped
  const char* message;     // the warning's text, or nullptr to skip comparing it
};

void ExpectOutcomes(const TListaDatums& list, const std::vector<TGridOutcome>& outcomes) {
  const auto entries = TLog::Instance().Entries();
  for (const TGridOutcome& o : outcomes) {
    if (o.attachedTo) {
      const TDatum* datum = list.Get(list.Find(o.attachedTo));
      ASSERT_NE(datum, nullptr) << o.attachedTo;
      ASSERT_TRUE(datum->grid) << o.file << " did not attach to " << o.attachedTo;
      EXPECT_EQ(fs::path(datum->grid->Path()).filename(), o.file);
      continue;
    }
    bool logged = false;
    for (const TLogEntry& e : entries) {
      if (e.code == o.warning && e.text.find(o.file) != std::string::npos) {
        logged = true;
        if (o.message) {
          EXPECT_EQ(e.text, o.message);
        }
      }
    }
    EXPECT_TRUE(logged) << o.file << " should be dropped with warning " << o.warning;
  }
}

TEST_F(BuiltInDatums, TestDataGridsAttachOrAreDroppedWithTheirWarning) {
  const fs::path dir = test::TestDataDir() / "ntv2";
  if (!fs::exists(dir)) GTEST_SKIP() << "test data not found: " << dir;
  std::vector<fs::path> grids;
  for (const auto& entry : fs::directory_iterator(dir)) grids.push_back(entry.path());
  Load(grids);
  ExpectOutcomes(m_list, {
      {"BETA2007.gsb", "DHDN90", 0, nullptr},
      {"ntf_r93.gsb", "NTF", 0, nullptr},
      {"nzgd2kgrid0005.gsb", "NZGD49", 0, nullptr},
      {"100800401.gsb", nullptr, kWarningGridUnusable,
       "File 100800401.gsb not usefull, first datum INTER not found in the list."},
      {"CHENyx06a.gsb", nullptr, kWarningGridUnusable,
       "File CHENyx06a.gsb not usefull, first datum  not found in the list."},
      {"ntv2_0_downsampled.gsb", nullptr, kWarningGridUnusable, nullptr},
      {"test_hgrid_little_endian.gsb", nullptr, kWarningGridUnusable, nullptr},
      {"test_hgrid_big_endian.gsb", nullptr, kWarningGridHeader, nullptr},
  });
}

TEST_F(BuiltInDatums, SwissGridsToCh1903PlusAreDroppedAndToEtrs89Attach) {
  const fs::path dir = "/usr/share/proj";
  if (!fs::exists(dir / "CHENYX06.gsb")) GTEST_SKIP() << "Debian's proj-data grids are not installed";
  Load({dir / "CHENYX06.gsb", dir / "CHENYX06_etrs.gsb"});
  ExpectOutcomes(m_list, {
      {"CHENYX06.gsb", nullptr, kWarningGridUnusable,
       "File CHENYX06.gsb not usefull, second datum CH1903+ not WGS84."},
      {"CHENYX06_etrs.gsb", "CH1903", 0, nullptr},
  });
}

TEST_F(BuiltInDatums, ShiftsGoThroughTheGridInsideItAndFallBackOutside) {
  VELANTIS_TESTDATA_OR_SKIP(grid, "ntv2/BETA2007.gsb");
  Load({grid});
  const int dhdn = m_list.Find("DHDN90");
  ASSERT_GT(dhdn, 0);
  TDatumFileNTV2 reference;
  std::string error;
  ASSERT_TRUE(reference.Open(grid.string(), error));

  // Inside: exactly the grid's forward step, and its inverse the other way.
  TLonLat p{10.333333333333, 48.833333333333};
  double lon = p.lon, lat = p.lat;
  ASSERT_TRUE(m_list.Transforma_Grados_Datum(p, dhdn, 0, error));
  ASSERT_TRUE(reference.Shift(lon, lat, false));
  EXPECT_EQ(p.lon, lon);
  EXPECT_EQ(p.lat, lat);
  TLonLat back{lon, lat};
  ASSERT_TRUE(m_list.Transforma_Grados_Datum(back, 0, dhdn, error));
  ASSERT_TRUE(reference.Shift(lon, lat, true));
  EXPECT_EQ(back.lon, lon);

  // Outside the grid and on its northern edge (55.3 N): three parameters.
  for (TLonLat outside : {TLonLat{2.35, 48.85}, TLonLat{10, 55.3}}) {
    TLonLat expected = outside;
    ASSERT_TRUE(MolodenskyShift(expected, *m_list.Get(dhdn), *m_list.Get(0), error));
    ASSERT_TRUE(m_list.Transforma_Grados_Datum(outside, dhdn, 0, error));
    EXPECT_EQ(outside.lat, expected.lat);
    EXPECT_EQ(outside.lon, expected.lon);
  }
}

TEST_F(BuiltInDatums, UserDatumsAreSavedAndReadBackAfterTheBuiltInOnes) {
  Load({});
  const int builtIn = m_list.Count();
  ASSERT_GT(m_list.Find("European 1950"), 0);
  TDatum mine = *m_list.Get(m_list.Find("European 1950"));
  mine.name = "My Local Datum";
  mine.aliasText = "MLD";
  mine.shortName = "MyLD";
  mine.dX = -84.5;
  m_list.Add(mine);
  std::string error;
  ASSERT_TRUE(m_list.SaveUserDatums(error)) << error;

  int configured = 0;
  TListaDatums reloaded(configured);
  ASSERT_TRUE(reloaded.Load(m_dir.string(), (m_dir / "user").string(), error)) << error;
  EXPECT_EQ(reloaded.BuiltInCount(), builtIn);
  ASSERT_EQ(reloaded.Count(), builtIn + 1);
  EXPECT_EQ(reloaded.Find("MLD"), builtIn);
  EXPECT_EQ(reloaded.Get(builtIn)->dX, -84.5);
}

}  // namespace
}  // namespace velantis
