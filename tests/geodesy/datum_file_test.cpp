#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>

#include "app/binary_file.h"
#include "geodesy/datum_file.h"

namespace velantis {
namespace {

TDatum MakeDatum(std::string name, double invF, std::string shortName = "") {
  TDatum d;
  d.name = std::move(name);
  d.aliasText = "Alias One;Alias Two";
  d.ellipsoidCode = 7;
  d.invFlattening = invF;
  d.a = 6378388;
  d.dX = -87;
  d.dY = -98.25;
  d.dZ = -121.5;
  d.shortName = std::move(shortName);
  return d;
}

// A file of an older version, written field by field as those versions were.
std::string OldFile(int32_t version, const std::vector<std::string>& names, bool shortNames) {
  TBinaryWriter out;
  out.WriteInt32(version);
  out.WriteInt32(static_cast<int32_t>(names.size()));
  for (const auto& name : names) {
    out.WriteString(name);
    out.WriteInt32(3);
    out.WriteDouble(297);
    out.WriteDouble(6378388);
    out.WriteDouble(1);
    out.WriteDouble(2);
    out.WriteDouble(3);
    out.WriteString("");
    if (shortNames) out.WriteString("SHORT");
  }
  return out.Bytes();
}

TEST(DatumFile, WrittenFileReadsBackToTheSameRecords) {
  const std::vector<TDatum> written = {MakeDatum("European 1979", 297, "EUR79"),
                                       MakeDatum("Ñandú ümlaut datum", 299.1528128)};
  std::vector<TDatum> read;
  std::string error;
  ASSERT_TRUE(ReadDatumFile(WriteDatumFile(written), read, error)) << error;
  ASSERT_EQ(read.size(), 2u);
  for (size_t i = 0; i < read.size(); ++i) {
    EXPECT_EQ(read[i].name, written[i].name);
    EXPECT_EQ(read[i].aliasText, written[i].aliasText);
    EXPECT_EQ(read[i].aliases, (std::vector<std::string>{"Alias One", "Alias Two"}));
    EXPECT_EQ(read[i].ellipsoidCode, 7);
    EXPECT_EQ(read[i].invFlattening, written[i].invFlattening);
    EXPECT_EQ(read[i].dY, -98.25);
    EXPECT_EQ(read[i].shortName, written[i].shortName);
  }
  // The version written is always 3.
  int32_t version;
  std::memcpy(&version, WriteDatumFile(written).data(), 4);
  EXPECT_EQ(version, 3);
}

TEST(DatumFile, DerivedConstantsMatchTheEllipsoid) {
  std::vector<TDatum> read;
  std::string error;
  TDatum wgs = MakeDatum("WGS 84", 298.257223563);
  wgs.a = 6378137;
  ASSERT_TRUE(ReadDatumFile(WriteDatumFile({wgs}), read, error));
  // Published WGS 84 values (NIMA TR8350.2, table 3.3).
  EXPECT_NEAR(read[0].b, 6356752.3142, 1e-4);
  EXPECT_NEAR(read[0].e2, 6.69437999014e-3, 1e-14);
  EXPECT_NEAR(read[0].ep2, 6.73949674228e-3, 1e-14);
  EXPECT_NEAR(read[0].e, 8.1819190842622e-2, 1e-14);
  EXPECT_NEAR(read[0].a2OverB, 6399593.6258, 1e-4);
  EXPECT_NEAR(read[0].n, 1.679220386383705e-3, 1e-15);
}

TEST(DatumFile, OldVersionsConvertTheCodePageAndMayLackShortNames) {
  std::vector<TDatum> read;
  std::string error;
  // 0xC1 is "Á" and 0x80 the euro sign in the legacy code page.
  ASSERT_TRUE(ReadDatumFile(OldFile(1, {"\xC1rea 1234567890123456 \x80"}, false), read, error));
  EXPECT_EQ(read[0].name, "Área 1234567890123456 €");
  EXPECT_EQ(read[0].shortName, "");
  EXPECT_EQ(read[0].ShortLabel(), "Área 1234567890");  // 15 characters, not bytes
  ASSERT_TRUE(ReadDatumFile(OldFile(2, {"x"}, true), read, error));
  EXPECT_EQ(read[1].ShortLabel(), "SHORT");
}

TEST(DatumFile, RefusedFilesGiveTheirMessages) {
  struct TCase {
    std::string bytes;
    std::string message;
    size_t recordsKept;
  };
  TBinaryWriter negativeF;
  std::string twoThenBad = OldFile(2, {"good one", "good two"}, true);
  {
    // Make the count 3 and append a record whose 1/f is negative.
    const int32_t three = 3;
    std::memcpy(twoThenBad.data() + 4, &three, 4);
    std::string bad = OldFile(2, {"bad"}, true).substr(8);
    const double negative = -297;
    std::memcpy(bad.data() + 2 + 3 + 1 + 4, &negative, 8);
    twoThenBad += bad;
  }
  TBinaryWriter v4, nTooMany, nNegative;
  v4.WriteInt32(4);
  v4.WriteInt32(0);
  nTooMany.WriteInt32(3);
  nTooMany.WriteInt32(1001);
  nNegative.WriteInt32(3);
  nNegative.WriteInt32(-1);
  const std::string truncated = OldFile(3, {"cut"}, true).substr(0, 20);
  const TCase cases[] = {
      {v4.Bytes(), "Version error in datumsb.dat", 0},
      {nTooMany.Bytes(), "n error in datumsb.dat", 0},
      {nNegative.Bytes(), "n error in datumsb.dat", 0},
      {twoThenBad, "inv_v error in datumsb.dat", 2},
      {truncated, "Unexpected end of file at byte 18", 0},
  };
  for (const TCase& c : cases) {
    std::vector<TDatum> read;
    std::string error;
    EXPECT_FALSE(ReadDatumFile(c.bytes, read, error)) << c.message;
    EXPECT_EQ(error, c.message);
    EXPECT_EQ(read.size(), c.recordsKept) << c.message;
  }
}

TEST(DatumFile, ZeroAndNotANumberFlatteningPass) {
  for (const double invF : {std::numeric_limits<double>::infinity(), std::nan("")}) {
    std::vector<TDatum> read;
    std::string error;
    EXPECT_TRUE(ReadDatumFile(WriteDatumFile({MakeDatum("sphere", invF)}), read, error)) << invF;
  }
}

TEST(DatumFile, MissingFileSaysWhichFile) {
  std::vector<TDatum> read;
  std::string error;
  EXPECT_FALSE(LoadDatumFile("/nonexistent/datumsb.dat", read, error));
  EXPECT_EQ(error, "Error opening /nonexistent/datumsb.dat");
}

}  // namespace
}  // namespace velantis
