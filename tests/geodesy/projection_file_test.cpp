#include "geodesy/projection_file.h"

#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <limits>

#include "app/file_io.h"
#include "tests/support/testdata.h"

namespace velantis {
namespace {

TDatum Datum(std::string name, std::string aliases) {
  TDatum d;
  d.name = std::move(name);
  d.aliasText = std::move(aliases);
  d.a = 6378137;
  d.invFlattening = 298.257223563;
  return d;
}

class ProjectionFile : public testing::Test {
 protected:
  void SetUp() override {
    m_datums.Add(Datum("WGS 84", ""));
    m_datums.Add(Datum("European 1979", "ED79"));
    m_datums.Add(Datum("Ord Srvy Grt Britn", "OSGB36"));
  }
  TDatosProyeccion Read(const std::string& text) {
    TDatosProyeccion definition;
    std::string error;
    EXPECT_TRUE(ReadProjectionText(text, &m_datums, definition, error)) << text << ": " << error;
    return definition;
  }
  int m_configured = 0;
  TListaDatums m_datums{m_configured};
};

TEST_F(ProjectionFile, ReadsEveryKey) {
  const TDatosProyeccion d = Read(
      "VERSION=1\r\n"
      "PROJECTION=Lambert 2SP\r\n"
      "NAME = Test Lambert \r\n"
      "LON_ORIGIN=2º20'14.025\"E\r\n"
      "LAT_ORIGIN=52GRN\r\n"
      "FN=-100000.5\r\n"
      "FE=400000\r\n"
      "SCALE_FACTOR=0.9996012717\r\n"
      "LAT1=49\r\n"
      "LAT2=44.5S\r\n"
      "OTHER_NAMES=First\r\n"
      "VERIF_POINT=1 2 3 4\r\n"
      "OTHER_NAMES=Second;Third\r\n"
      "VERIF_POINT=5 6 7 8\r\n"
      "\r\n"
      "PREFERED_DATUM=Datum_European_1979\r\n"
      "unit=Feet\r\n");
  EXPECT_EQ(d.name, "Test Lambert");
  EXPECT_EQ(d.projection, "Lambert 2SP");
  EXPECT_NEAR(d.lonOrigin, 2 + 20.0 / 60 + 14.025 / 3600, 1e-12);
  EXPECT_NEAR(d.latOrigin, 46.8, 1e-12);
  EXPECT_EQ(d.falseNorthing, -100000.5);
  EXPECT_EQ(d.falseEasting, 400000);
  EXPECT_EQ(d.scaleFactor, 0.9996012717);
  EXPECT_EQ(d.lat1, 49);
  EXPECT_EQ(d.lat2, -44.5);
  EXPECT_EQ(d.otherNames, "First;Second;Third");
  EXPECT_EQ(d.verifPoints, "1 2 3 4;5 6 7 8");
  EXPECT_EQ(d.preferredDatum, 1);
  EXPECT_EQ(d.unit, kUnitCodeFeet);
  EXPECT_EQ(d.fieldsPresent, 1u + 2 + 4 + 8 + 16 + 32 + 64 + 128 + 256 + 512);
}

TEST_F(ProjectionFile, FieldBitsFollowTheKeysPresent) {
  const std::pair<const char*, uint32_t> cases[] = {
      {"VERSION=1", 1},
      {"PROJECTION=Mercator", 2},
      {"NAME=x", 4},
      {"LON_ORIGIN=1", 8},
      {"LAT_ORIGIN=1", 16},
      {"SCALE_FACTOR=1", 32},
      {"FN=1", 64},
      {"FE=1", 128},
      {"LAT1=1", 256},
      {"LAT2=1", 512},
      {"OTHER_NAMES=a", 0},
      {"VERIF_POINT=a", 0},
      {"PREFERED_DATUM=WGS 84", 0},
      {"UNIT=FEET", 0},
  };
  for (const auto& [text, bits] : cases) EXPECT_EQ(Read(text).fieldsPresent, bits) << text;
}

TEST_F(ProjectionFile, AnglesTakeAnyNotationThenAPlainNumber) {
  const std::pair<const char*, double> cases[] = {
      {"3", 3},         {"-3.5", -3.5},  {"3.5W", -3.5}, {"2º10'30.0\"W", -2.175},
      {"50GRS", -45},   {"1e-05", 1e-5},  // "E" makes it a longitude "1-05", which does not read
      {"-2.5E+1", -25},
  };
  for (const auto& [value, degrees] : cases) {
    EXPECT_NEAR(Read(std::string("LAT1=") + value).lat1, degrees, 1e-12) << value;
  }
}

TEST_F(ProjectionFile, UnitFeetAndOtherUnits) {
  const std::pair<const char*, int> cases[] = {
      {"UNIT=FEET", kUnitCodeFeet},
      {"UNIT=  feet ", kUnitCodeFeet},
      {"UNIT=METERS", kUnitCodeMetres},
      {"UNIT=", kUnitCodeMetres},
      {"UNIT=FEET\r\nUNIT=METERS", kUnitCodeFeet},  // another value leaves the unit as it is
  };
  for (const auto& [text, unit] : cases) EXPECT_EQ(Read(text).unit, unit) << text;
}

TEST_F(ProjectionFile, PreferredDatumByProjectionFileName) {
  const std::pair<const char*, int> cases[] = {
      {"WGS 84", 0},     {"Europeo 1979", 1},  {"D_European_1979", 1},
      {"GCS_OSGB36", 2}, {"Nowhere 1900", -1}, {"", -1},
  };
  for (const auto& [name, index] : cases) {
    EXPECT_EQ(Read(std::string("PREFERED_DATUM=") + name).preferredDatum, index) << name;
  }
  TDatosProyeccion d;
  std::string error;
  ASSERT_TRUE(ReadProjectionText("PREFERED_DATUM=WGS 84", nullptr, d, error));
  EXPECT_EQ(d.preferredDatum, -1);
}

TEST_F(ProjectionFile, RefusalsLeaveTheRecordAsItWas) {
  const std::pair<std::string, std::string> cases[] = {
      {"", "TDatosProyeccion Err 1"},
      {"\r\n  \r\n", "TDatosProyeccion Err 1"},
      {std::string("VERSION=1\r\nNAME=a\0b", 19), "TDatosProyeccion Err 1"},
      {"VERSION=1\r\nNAME x", "TDatosProyeccion Err 2"},
      {"=value", "TDatosProyeccion Err 2"},
      {"FE=abc", "TDatosProyeccion Err 2"},
      {"FN=inf", "TDatosProyeccion Err 2"},
      {"SCALE_FACTOR=0.9996N", "TDatosProyeccion Err 2"},  // only angles take notations
      {"LON_ORIGIN=east", "TDatosProyeccion Err 2"},
      {"FE=1e999", "TDatosProyeccion Err 2"},
      {"VERSION=2", "TDatosProyeccion Err 3"},
      {"VERSION=1.0", "TDatosProyeccion Err 3"},
      {"FOO=1", "TDatosProyeccion Err 4"},
      {"VERSION=1\r\nLAT3=5", "TDatosProyeccion Err 4"},
      {"VERSION=1\nNAME=x\nZONE=31", "TDatosProyeccion Err 4"},
  };
  for (const auto& [text, message] : cases) {
    TDatosProyeccion d;
    d.name = "kept";
    std::string error;
    EXPECT_FALSE(ReadProjectionText(text, &m_datums, d, error)) << text;
    EXPECT_EQ(error, message) << text;
    EXPECT_EQ(d.name, "kept") << text;
    EXPECT_EQ(d.fieldsPresent, 0u) << text;
  }
}

TEST_F(ProjectionFile, OlderTransverseMercatorForm) {
  const std::string body =
      "NAME=Old grid\r\n"
      "LON_ORIGIN=-2\r\n"
      "LAT_ORIGIN=49\r\n"
      "SCALE_FACTOR=0.9996012717\r\n"
      "FN=-100000\r\n"
      "FE=400000\r\n"
      "PREFERED_DATUM=OSGB36\r\n"
      "OTHER_NAMES=a\r\n"
      "OTHER_NAMES=b\r\n";
  for (const char* spelling : {"Transversal Mercator", "Transveral Mercator"}) {
    TDatosProyeccion d;
    std::string error;
    ASSERT_TRUE(ReadTransverseMercatorText(
        std::string("VERSION=1\r\nPROJECTION=") + spelling + "\r\n" + body, &m_datums, d, error))
        << spelling << ": " << error;
    EXPECT_EQ(d.projection, "Transversal Mercator");
    EXPECT_EQ(d.name, "Old grid");
    EXPECT_EQ(d.lonOrigin, -2);
    EXPECT_EQ(d.latOrigin, 49);
    EXPECT_EQ(d.scaleFactor, 0.9996012717);
    EXPECT_EQ(d.falseNorthing, -100000);
    EXPECT_EQ(d.falseEasting, 400000);
    EXPECT_EQ(d.preferredDatum, 2);
    EXPECT_EQ(d.otherNames, "a;b");
    EXPECT_EQ(d.fieldsPresent, 255u);
  }
}

TEST_F(ProjectionFile, OlderFormRefusals) {
  const std::string head = "VERSION=1\r\nPROJECTION=Transversal Mercator\r\n";
  const std::string rest = "NAME=x\r\nLON_ORIGIN=3\r\nLAT_ORIGIN=0\r\nSCALE_FACTOR=1\r\nFN=0\r\n";
  const std::pair<std::string, std::string> cases[] = {
      {head + rest + "FE=abc\r\n", "Error in FE=abc"},
      {head + rest + "LAT1=40\r\n", "Error in LAT1=40"},       // not a key of this form
      {head + "LON_ORIGIN=3E\r\n", "Error in LON_ORIGIN=3E"},  // plain numbers only
      {head + std::string("NAME=a\0b\r\n", 10), "Error in " + std::string("NAME=a\0b", 8)},
      {"VERSION=2\r\n", "Error in 'VERSION'"},
      {"PROJECTION=Lambert 2SP\r\n", "Error in 'PROJECTION'"},
      {"PROJECTION=transversal mercator\r\n", "Error in 'PROJECTION'"},
      {head + rest, "Error, some fields missing"},  // no FE
      {"", "Error, some fields missing"},
  };
  for (const auto& [text, message] : cases) {
    TDatosProyeccion d;
    d.name = "kept";
    std::string error;
    EXPECT_FALSE(ReadTransverseMercatorText(text, &m_datums, d, error)) << text;
    EXPECT_EQ(error, message) << text;
    EXPECT_EQ(d.name, "kept");
  }
}

TEST_F(ProjectionFile, WritesTheDefinitionForm) {
  const TDatosProyeccion d = Read(
      "NAME=British National Grid\r\n"
      "PROJECTION=Transversal Mercator\r\n"
      "LAT_ORIGIN=49N\r\n"
      "LON_ORIGIN=2W\r\n"
      "SCALE_FACTOR=0.9996012717\r\n"
      "FE=400000\r\n"
      "FN=-100000\r\n"
      "PREFERED_DATUM=OSGB36\r\n"
      "OTHER_NAMES=OSGB 1936 / British National Grid;EPSG:27700\r\n"
      "UNIT=feet\r\n");
  std::string text, error;
  ASSERT_TRUE(ProjectionText(d, &m_datums, text, error)) << error;
  EXPECT_EQ(text,
            "VERSION=1\r\n"
            "PROJECTION=Transversal Mercator\r\n"
            "NAME=British National Grid\r\n"
            "LON_ORIGIN=-2\r\n"
            "LAT_ORIGIN=49\r\n"
            "SCALE_FACTOR=0.9996012717\r\n"
            "FN=-100000\r\n"
            "FE=400000\r\n"
            "OTHER_NAMES=OSGB 1936 / British National Grid;EPSG:27700\r\n"
            "PREFERED_DATUM=Ord Srvy Grt Britn\r\n"
            "UNIT=FEET\r\n");
}

TEST_F(ProjectionFile, AWrittenFileReadsBackToTheSameRecord) {
  std::vector<TDatosProyeccion> records;
  for (const char* text : {
           "VERSION=1\n"
           "PROJECTION=Lambert 2SP\n"
           "NAME=L\n"
           "LAT1=51 10'00.00204\"N\n"
           "LAT2=49.8333339\n"
           "LAT_ORIGIN=90\n"
           "LON_ORIGIN=4 22'02.952\"E\n"
           "FE=150000.013\n"
           "FN=5400088.438\n",
           "VERSION=1\nNAME=only a name\nOTHER_NAMES=a\nOTHER_NAMES=\nVERIF_POINT=;x\nUNIT=FEET\n",
           "VERSION=1\n"
           "PROJECTION=Oblique Stereographic\n"
           "LAT_ORIGIN=52GRN\n"
           "LON_ORIGIN=2.5969213GRE\n"
           "SCALE_FACTOR=0.99987742\n"
           "PREFERED_DATUM=ED79\n",
       }) {
    records.push_back(Read(text));
  }
  TDatosProyeccion odd;  // values whose shortest text needs care
  odd.fieldsPresent = kFieldVersion | kFieldLonOrigin | kFieldLatOrigin | kFieldFalseEasting |
                      kFieldFalseNorthing | kFieldScaleFactor | kFieldLat1 | kFieldLat2;
  odd.lonOrigin = 0.1 + 0.2;
  odd.latOrigin = -1e-300;
  odd.falseEasting = 1e300;
  odd.falseNorthing = -0.0;
  odd.scaleFactor = std::numeric_limits<double>::denorm_min();
  odd.lat1 = 2.3372291666666667;
  odd.lat2 = -7e-6;
  records.push_back(odd);

  const auto dir = test::ScratchDir("projection-file");
  for (const TDatosProyeccion& record : records) {
    const std::string path = (dir / "written.prj").string();
    std::string error;
    ASSERT_TRUE(WriteProjectionFile(path, record, &m_datums, error)) << error;
    TDatosProyeccion back;
    ASSERT_TRUE(ReadProjectionFile(path, &m_datums, back, error)) << error;
    EXPECT_EQ(back, record) << record.name;
    EXPECT_EQ(std::signbit(back.falseNorthing), std::signbit(record.falseNorthing));
  }
}

TEST_F(ProjectionFile, WriterRefusals) {
  TDatosProyeccion d;
  d.fieldsPresent = kFieldName;
  d.name = "two\r\nlines";
  std::string text = "unchanged", error;
  EXPECT_FALSE(ProjectionText(d, &m_datums, text, error));
  EXPECT_EQ(error, "Line break in the value of NAME");
  d.name = "one line";
  d.preferredDatum = 99;
  EXPECT_FALSE(ProjectionText(d, &m_datums, text, error));
  EXPECT_EQ(error, "Unknown datum index 99");
  d.preferredDatum = 1;
  EXPECT_FALSE(ProjectionText(d, nullptr, text, error));
  EXPECT_EQ(text, "unchanged");
}

TEST_F(ProjectionFile, MissingFile) {
  const std::string path = (test::ScratchDir("projection-missing") / "none.prj").string();
  TDatosProyeccion d;
  std::string error;
  EXPECT_FALSE(ReadProjectionFile(path, &m_datums, d, error));
  EXPECT_EQ(error, "Error opening " + path);
  EXPECT_FALSE(ReadTransverseMercatorFile(path, &m_datums, d, error));
  EXPECT_EQ(error, "Error opening " + path);
}

}  // namespace
}  // namespace velantis
