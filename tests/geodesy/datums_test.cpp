// Datums: the binary datum file, lookups by name, the Molodensky shift
// against PROJ, and the built-in list as the program loads it, with the NTv2
// grids of the test data attached.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstring>
#include <limits>
#include <numbers>
#include <tuple>

#include "app/binary_file.h"
#include "app/log.h"
#include "geodesy/datum_file.h"
#include "geodesy/lista_datums.h"
#include "geodesy/molodensky.h"
#include "geodesy/ntv2.h"
#include "tests/geodesy/builtin_datums.h"
#include "tests/support/proj_reference.h"
#include "tests/support/proj_sweep.h"
#include "tests/support/testdata.h"

namespace velantis {
namespace {

namespace fs = std::filesystem;
using test::MakeDatum;

constexpr double kDegree = std::numbers::pi / 180;

TDatum Named(std::string name, std::string aliases, std::string shortName, double dx = 0) {
  TDatum d = MakeDatum("", 6378388, 297, dx, -98.25, -121.5);
  d.name = std::move(name);
  d.aliasText = std::move(aliases);
  d.shortName = std::move(shortName);
  d.ellipsoidCode = 7;
  return d;
}

// A file of an older version, written field by field as those versions were.
std::string OldFile(int32_t version, const std::vector<std::string>& names, bool shortNames, double invF = 297) {
  TBinaryWriter out;
  out.WriteInt32(version);
  out.WriteInt32(static_cast<int32_t>(names.size()));
  for (const auto& name : names) {
    out.WriteString(name);
    out.WriteInt32(3);
    for (const double value : {invF, 6378388.0, 1.0, 2.0, 3.0}) out.WriteDouble(value);
    out.WriteString("");
    if (shortNames) out.WriteString("SHORT");
  }
  return out.Bytes();
}

TEST(DatumFile, WrittenFileReadsBackWithTheEllipsoidsConstants) {
  std::vector<TDatum> written = {Named("European 1979", "Alias One;Alias Two", "EUR79"),
                                 Named("Ñandú ümlaut datum", "", "")};
  written[1].a = 6378137;
  written[1].invFlattening = 298.257223563;
  std::vector<TDatum> read;
  std::string error;
  const std::string bytes = WriteDatumFile(written);
  ASSERT_TRUE(ReadDatumFile(bytes, read, error)) << error;
  ASSERT_EQ(read.size(), 2u);
  EXPECT_EQ(bytes[0], 3);  // the version written is always 3
  EXPECT_EQ(read[0].aliases, (std::vector<std::string>{"Alias One", "Alias Two"}));
  const auto stored = [](const TDatum& d) {
    return std::tie(d.name, d.aliasText, d.ellipsoidCode, d.invFlattening, d.a, d.dX, d.dY, d.dZ, d.shortName);
  };
  for (size_t i = 0; i < read.size(); ++i) EXPECT_EQ(stored(read[i]), stored(written[i]));
  // Published WGS 84 values (NIMA TR8350.2, table 3.3).
  EXPECT_NEAR(read[1].b, 6356752.3142, 1e-4);
  EXPECT_NEAR(read[1].e2, 6.69437999014e-3, 1e-14);
  EXPECT_NEAR(read[1].ep2, 6.73949674228e-3, 1e-14);
  EXPECT_NEAR(read[1].e, 8.1819190842622e-2, 1e-14);
  EXPECT_NEAR(read[1].a2OverB, 6399593.6258, 1e-4);
  EXPECT_NEAR(read[1].n, 1.679220386383705e-3, 1e-15);
  // A sphere or a missing flattening passes.
  for (const double invF : {std::numeric_limits<double>::infinity(), std::nan("")}) {
    TDatum sphere = Named("sphere", "", "");
    sphere.invFlattening = invF;
    EXPECT_TRUE(ReadDatumFile(WriteDatumFile({sphere}), read, error)) << invF;
  }
}

TEST(DatumFile, OldVersionsAndRefusedFiles) {
  std::vector<TDatum> read;
  std::string error;
  // 0xC1 is "Á" and 0x80 the euro sign in the legacy code page.
  ASSERT_TRUE(ReadDatumFile(OldFile(1, {"\xC1rea 1234567890123456 \x80"}, false), read, error));
  EXPECT_EQ(read[0].name, "Área 1234567890123456 €");
  EXPECT_EQ(read[0].ShortLabel(), "Área 1234567890");  // 15 characters, not bytes
  ASSERT_TRUE(ReadDatumFile(OldFile(2, {"x"}, true), read, error));
  EXPECT_EQ(read[1].ShortLabel(), "SHORT");

  const auto header = [](int32_t version, int32_t count) {
    TBinaryWriter out;
    out.WriteInt32(version);
    out.WriteInt32(count);
    return out.Bytes();
  };
  // Two good records, then one whose 1/f is negative.
  const std::string twoThenBad = header(2, 3) + OldFile(2, {"good one", "good two"}, true).substr(8) +
                                 OldFile(2, {"bad"}, true, -297).substr(8);
  const std::tuple<std::string, std::string, size_t> cases[] = {
      {header(4, 0), "Version error in datumsb.dat", 0},
      {header(3, 1001), "n error in datumsb.dat", 0},
      {header(3, -1), "n error in datumsb.dat", 0},
      {twoThenBad, "inv_v error in datumsb.dat", 2},
      {OldFile(3, {"cut"}, true).substr(0, 20), "Unexpected end of file at byte 18", 0},
  };
  for (const auto& [bytes, message, kept] : cases) {
    read.clear();
    EXPECT_FALSE(ReadDatumFile(bytes, read, error)) << message;
    EXPECT_EQ(error, message);
    EXPECT_EQ(read.size(), kept) << message;
  }
  EXPECT_FALSE(LoadDatumFile("/nonexistent/datumsb.dat", read, error));
  EXPECT_EQ(error, "Error opening /nonexistent/datumsb.dat");
}

class DatumLookup : public testing::Test {
protected:
  void SetUp() override {
    for (TDatum d : {Named("WGS 84", "", "WGS84"), Named("European 1979", "ED79", "EUR79", -86),
                     Named("Potsdam Rauenberg DHDN", "DHDN;DHDN90", "PotsdamDHDN", 582),
                     Named("Alpha", "Beta", "", 1),  // its alias repeats the next name: the earlier wins
                     Named("Beta", "", "", 2),
                     Named("Gamma", "", "Delta", 3),  // a short name equal to a later alias: the alias wins
                     Named("Epsilon", "Delta", "", 4)})
      m_list.Add(d);
  }
  int m_configured = 1;
  TListaDatums m_list{m_configured};
};

TEST_F(DatumLookup, NamesAliasesShortNamesAndRewrites) {
  const std::pair<const char*, int> cases[] = {
      {"WGS-84", 0},      {"World Geodetic System 1984", 0}, {"  wgs 84 ", 0}, {"Europeo_1979", 1},
      {"EUR79", 1},       {"dhdn", 2},    {"PotsdamDHDN", 2}, {"Beta", 3},       {"Delta", 6},
      {"Auto Shift (UTM)", 1}, {"", -1},  {"Nowhere 2000", -1},
  };
  for (const auto& [name, index] : cases) EXPECT_EQ(m_list.Find(name), index) << name;
  const std::pair<const char*, int> projectionNames[] = {
      {"GCS_Datum_D_European_1979", 1}, {"GCS_WGS_84", 0}, {"D_GCS_WGS_84", -1}};  // prefixes in their order only
  for (const auto& [name, index] : projectionNames) EXPECT_EQ(m_list.FindProjectionName(name), index) << name;
  EXPECT_EQ(m_list.Get(-1)->name, "European 1979");
  EXPECT_EQ(m_list.Get(7), nullptr);
  EXPECT_TRUE(m_list.Exists(6));
  EXPECT_FALSE(m_list.Exists(-1));
  // The chooser: recent names that still resolve, a separator, then all.
  const TDatumChooser chooser = m_list.FillChooser({"Gone Datum", "EUR79", "WGS 84"}, 0);
  EXPECT_EQ(chooser.lines, (std::vector<std::string>{"EUR79", "WGS 84", "-----------", "WGS 84", "European 1979",
                                                     "Potsdam Rauenberg DHDN", "Alpha", "Beta", "Gamma", "Epsilon"}));
  EXPECT_EQ(chooser.selected, 1);
  EXPECT_EQ(m_list.FillChooser({}, 2).selected, 2);
}

TEST(DatumParameters, EqualWithinOneHundredThousandth) {
  // GRS 80's 1/f is within 1.5e-6 of WGS 84's: equal by this test, which is
  // what lets grids to GRS 80 datums (ETRS89, RGF93) attach.
  const TDatum a = Named("A", "", "");
  for (const auto& [dz, invF, da, same] : {std::tuple{0.0000099, 1.4e-6, 0.0, true}, {0.00001, 0.0, 0.0, false},
                                           {0.0, 2e-5, 0.0, false}, {0.0, 0.0, 0.00002, false}}) {
    TDatum b = a;
    b.dZ += dz;
    b.invFlattening += invF;
    b.a += da;
    EXPECT_EQ(SameDatumParameters(a, b), same) << dz << " " << invF << " " << da;
  }
}

// Published NIMA TR8350.2 parameters (mean values) of a few datums.
const TDatum kWgs84 = MakeDatum("WGS 84", 6378137, 298.257223563, 0, 0, 0);
const TDatum kEuropean1950 = MakeDatum("European 1950", 6378388, 297, -87, -98, -121);
const TDatum kNad27 = MakeDatum("NAD27 CONUS", 6378206.4, 294.9786982, -8, 160, 176);
const TDatum kTokyo = MakeDatum("Tokyo", 6377397.155, 299.1528128, -148, 507, 685);

bool ProjMolodensky(const TDatum& from, const TDatum& to, double& lon, double& lat) {
  char text[256];
  std::snprintf(text, sizeof text, "+proj=molodensky +a=%.17g +rf=%.17g +da=%.17g +df=%.17g +dx=%.17g +dy=%.17g +dz=%.17g",
                from.a, from.invFlattening, to.a - from.a, 1 / to.invFlattening - 1 / from.invFlattening,
                from.dX - to.dX, from.dY - to.dY, from.dZ - to.dZ);
  return test::TProjReference(text).Apply(lon, lat);
}

// PROJ takes W² = 1 − e²·sin²φ, ours sin(φ²): with ε = e²·|sin(φ²) − sin²φ| / (1 − e²)
// the latitude shift moves by at most 3ε of its terms' size over M, the longitude
// shift by ε of (|ΔX| + |ΔY|) / (N·cos φ), plus a tenth. At 60 degrees they differ.
TEST(Molodensky, AgreesWithProjWithinWhatTheSquaredLatitudeRuleExplains) {
  const std::pair<const TDatum*, const TDatum*> pairs[] = {
      {&kEuropean1950, &kWgs84}, {&kWgs84, &kEuropean1950}, {&kNad27, &kWgs84}, {&kTokyo, &kEuropean1950}};
  for (const auto& [from, to] : pairs) {
    for (double latDeg = -85; latDeg <= 85; latDeg += 8.5) {
      for (double lonDeg = -175; lonDeg <= 175; lonDeg += 17.5) {
        TLonLat ours{lonDeg, latDeg};
        double lon = lonDeg, lat = latDeg;
        std::string message;
        ASSERT_TRUE(MolodenskyShift(ours, *from, *to, message) && ProjMolodensky(*from, *to, lon, lat));
        const double phi = latDeg * kDegree;
        const double epsilon = from->e2 * std::fabs(std::sin(phi * phi) - std::pow(std::sin(phi), 2)) / (1 - from->e2);
        const double translation = std::fabs(from->dX - to->dX) + std::fabs(from->dY - to->dY);
        const double terms = translation + std::fabs(from->dZ - to->dZ) + std::fabs(to->a - from->a) +
                             from->a * std::fabs(to->f - from->f);
        EXPECT_LE(std::fabs(ours.lat - lat) * kDegree, 3.3 * epsilon * terms / (from->a * (1 - from->e2)) + 1e-12)
            << from->name << " " << latDeg << " " << lonDeg;
        EXPECT_LE(std::fabs(ours.lon - lon) * kDegree, 1.1 * epsilon * translation / (from->a * std::cos(phi)) + 1e-12)
            << from->name << " " << latDeg << " " << lonDeg;
      }
    }
  }
  TLonLat ours{10, 60};
  double lon = 10, lat = 60;
  std::string message;
  ASSERT_TRUE(MolodenskyShift(ours, kTokyo, kWgs84, message) && ProjMolodensky(kTokyo, kWgs84, lon, lat));
  EXPECT_GT(std::fabs(ours.lat - lat), 1e-7);
}

class DatumShift : public testing::Test {
protected:
  void SetUp() override {
    for (const TDatum* d : {&kWgs84, &kEuropean1950, &kNad27}) m_list.Add(*d);
  }
  int m_configured = 1;
  TListaDatums m_list{m_configured};
};

// Equal indexes and the poles are left bit for bit; -1 follows the
// configuration and a bad choice resets it; two local datums shift through
// their difference.
TEST_F(DatumShift, IndexesPolesAndTheConfiguredDatum) {
  const TLonLat start{2.123456789012345, 41.98765432109876};
  for (auto [position, from, to] : {std::tuple{start, 1, 1}, std::tuple{start, -1, 1},
                                    std::tuple{TLonLat{2.5, 89.99995}, 1, 0}, std::tuple{TLonLat{-2.5, -89.99995}, 0, 2}}) {
    const TLonLat before = position;
    std::string message;
    EXPECT_TRUE(m_list.Transforma_Grados_Datum(position, from, to, message));
    EXPECT_EQ(std::memcmp(&position, &before, sizeof before), 0) << position.lat << " " << from << "->" << to;
  }
  TLonLat edge{2.5, 89.9999}, viaConfigured{2, 41}, viaIndex{2, 41}, direct{-100, 40}, expected{-100, 40};
  std::string message;
  EXPECT_TRUE(m_list.Transforma_Grados_Datum(edge, 1, 0, message));
  EXPECT_NE(edge.lat, 89.9999);
  ASSERT_TRUE(m_list.Transforma_Grados_Datum(viaConfigured, -1, 0, message));
  ASSERT_TRUE(m_list.Transforma_Grados_Datum(viaIndex, 1, 0, message));
  EXPECT_EQ(viaConfigured.lat, viaIndex.lat);
  ASSERT_TRUE(m_list.Transforma_Grados_Datum(direct, 2, 1, message));
  ASSERT_TRUE(MolodenskyShift(expected, kNad27, kEuropean1950, message));
  EXPECT_EQ(std::memcmp(&direct, &expected, sizeof direct), 0);
  m_configured = 17;
  TLonLat position{2, 41};
  EXPECT_TRUE(m_list.Transforma_Grados_Datum(position, -1, 0, message));
  EXPECT_EQ(m_configured, 0);
  EXPECT_EQ(position.lat, 41);
  EXPECT_FALSE(m_list.Transforma_Grados_Datum(position, 0, 9, message));
}

class BuiltInDatums : public testing::Test {
protected:
  void Load(const std::vector<fs::path>& grids) {
    m_dir = test::MakeDataFolder("builtin-datums", grids);
    fs::create_directories(m_dir / "user");
    TLog::Instance().ClearEntries();
    std::string error;
    ASSERT_TRUE(m_list.Load(m_dir.string(), (m_dir / "user").string(), error)) << error;
  }
  // Each grid attached to the datum named, or dropped with the warning (and its text when given).
  void ExpectOutcomes(const std::vector<std::tuple<const char*, const char*, int, const char*>>& outcomes) {
    const auto entries = TLog::Instance().Entries();
    for (const auto& [file, attachedTo, warning, text] : outcomes) {
      if (attachedTo) {
        const TDatum* datum = m_list.Get(m_list.Find(attachedTo));
        ASSERT_TRUE(datum && datum->grid) << file << " did not attach to " << attachedTo;
        EXPECT_EQ(fs::path(datum->grid->Path()).filename(), file);
        continue;
      }
      bool logged = false;
      for (const TLogEntry& e : entries) {
        if (e.code != warning || e.text.find(file) == std::string::npos) continue;
        logged = true;
        EXPECT_TRUE(!text || e.text == text) << e.text;
      }
      EXPECT_TRUE(logged) << file << " should be dropped with warning " << warning;
    }
  }
  fs::path m_dir;
  int m_configured = 0;
  TListaDatums m_list{m_configured};
};

TEST_F(BuiltInDatums, TestDataGridsAttachOrAreDroppedWithTheirWarning) {
  const fs::path dir = test::TestDataDir() / "ntv2";
  if (!fs::exists(dir)) GTEST_SKIP() << "test data not found: " << dir;
  std::vector<fs::path> grids;
  for (const auto& entry : fs::directory_iterator(dir)) grids.push_back(entry.path());
  Load(grids);
  ExpectOutcomes({
      {"BETA2007.gsb", "DHDN90", 0, nullptr},
      {"ntf_r93.gsb", "NTF", 0, nullptr},
      {"nzgd2kgrid0005.gsb", "NZGD49", 0, nullptr},
      {"100800401.gsb", nullptr, kWarningGridUnusable, "File 100800401.gsb not usefull, first datum INTER not found in the list."},
      {"CHENyx06a.gsb", nullptr, kWarningGridUnusable, "File CHENyx06a.gsb not usefull, first datum  not found in the list."},
      {"test_hgrid_big_endian.gsb", nullptr, kWarningGridHeader, nullptr},
  });
}

TEST_F(BuiltInDatums, SwissGridsToCh1903PlusAreDroppedAndToEtrs89Attach) {
  const fs::path dir = "/usr/share/proj";
  if (!fs::exists(dir / "CHENYX06.gsb")) GTEST_SKIP() << "Debian's proj-data grids are not installed";
  Load({dir / "CHENYX06.gsb", dir / "CHENYX06_etrs.gsb"});
  ExpectOutcomes({{"CHENYX06.gsb", nullptr, kWarningGridUnusable, "File CHENYX06.gsb not usefull, second datum CH1903+ not WGS84."},
                  {"CHENYX06_etrs.gsb", "CH1903", 0, nullptr}});
}

// Inside the grid: exactly the grid's step, and its inverse the other way;
// outside it and on its northern edge (55.3 N): three parameters.
TEST_F(BuiltInDatums, ShiftsGoThroughTheGridInsideItAndFallBackOutside) {
  VELANTIS_TESTDATA_OR_SKIP(grid, "ntv2/BETA2007.gsb");
  Load({grid});
  const int dhdn = m_list.Find("DHDN90");
  TDatumFileNTV2 reference;
  std::string error;
  ASSERT_TRUE(dhdn > 0 && reference.Open(grid.string(), error)) << error;
  TLonLat p{10.333333333333, 48.833333333333};
  double lon = p.lon, lat = p.lat;
  ASSERT_TRUE(m_list.Transforma_Grados_Datum(p, dhdn, 0, error) && reference.Shift(lon, lat, false));
  EXPECT_EQ(std::tie(p.lon, p.lat), std::tie(lon, lat));
  ASSERT_TRUE(m_list.Transforma_Grados_Datum(p, 0, dhdn, error) && reference.Shift(lon, lat, true));
  EXPECT_EQ(p.lon, lon);
  for (TLonLat outside : {TLonLat{2.35, 48.85}, TLonLat{10, 55.3}}) {
    TLonLat expected = outside;
    ASSERT_TRUE(MolodenskyShift(expected, *m_list.Get(dhdn), *m_list.Get(0), error));
    ASSERT_TRUE(m_list.Transforma_Grados_Datum(outside, dhdn, 0, error));
    EXPECT_EQ(std::tie(outside.lon, outside.lat), std::tie(expected.lon, expected.lat));
  }
}

TEST_F(BuiltInDatums, UserDatumsAreSavedAndReadBackAfterTheBuiltInOnes) {
  Load({});
  const int builtIn = m_list.Count();
  std::string error;
  ASSERT_TRUE(m_list.SaveUserDatums(error)) << "none yet: " << error;
  TDatum mine = *m_list.Get(m_list.Find("European 1950"));
  mine.name = "My Local Datum";
  mine.aliasText = "MLD";
  mine.dX = -84.5;
  m_list.Add(mine);
  ASSERT_TRUE(m_list.SaveUserDatums(error)) << error;
  int configured = 0;
  TListaDatums reloaded(configured);
  ASSERT_TRUE(reloaded.Load(m_dir.string(), (m_dir / "user").string(), error)) << error;
  EXPECT_EQ(reloaded.BuiltInCount(), builtIn);
  ASSERT_EQ(reloaded.Find("MLD"), builtIn);
  EXPECT_EQ(reloaded.Get(builtIn)->dX, -84.5);
}

}  // namespace
}  // namespace velantis
