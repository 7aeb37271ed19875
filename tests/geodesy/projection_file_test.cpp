// Projection definition files (both forms), project.dat and default.prj; the
// shipped project.dat checked against the EPSG dataset through PROJ.
#include "geodesy/projection_file.h"

#include <gtest/gtest.h>
#include <proj.h>

#include <cmath>
#include <filesystem>
#include <limits>
#include <map>
#include <tuple>
#include <ranges>

#include "app/file_io.h"
#include "geodesy/project_dat.h"
#include "tests/geodesy/builtin_datums.h"
#include "tests/support/testdata.h"

namespace velantis {
namespace {

namespace fs = std::filesystem;

class ProjectionFile : public testing::Test {
 protected:
  void SetUp() override {
    for (const auto& [name, aliases] : {std::pair{"WGS 84", ""}, {"European 1979", "ED79"}, {"Ord Srvy Grt Britn", "OSGB36"}}) {
      TDatum d;
      d.name = name;
      d.aliasText = aliases;
      m_datums.Add(d);
    }
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

// Every key read (angles in any notation, blanks trimmed, lists joined, the
// datum by a projection file's name) and written back in the definition form.
TEST_F(ProjectionFile, ReadsEveryKeyAndWritesItBack) {
  const TDatosProyeccion d = Read(
      "VERSION=1\r\nPROJECTION=Lambert 2SP\r\nNAME = Test Lambert \r\nLON_ORIGIN=2º1'52.5\"E\r\n"
      "LAT_ORIGIN=50GRN\r\nFN=-100000.5\r\nFE=400000\r\nSCALE_FACTOR=0.9996012717\r\nLAT1=49\r\nLAT2=44.5S\r\n"
      "OTHER_NAMES=First\r\nVERIF_POINT=1 2 3 4\r\nOTHER_NAMES=Second;Third\r\nVERIF_POINT=5 6 7 8\r\n\r\n"
      "PREFERED_DATUM=Datum_European_1979\r\nunit=Feet\r\n");
  std::string text, error;
  ASSERT_TRUE(ProjectionText(d, &m_datums, text, error)) << error;
  EXPECT_EQ(text,
            "VERSION=1\r\nPROJECTION=Lambert 2SP\r\nNAME=Test Lambert\r\nLON_ORIGIN=2.03125\r\nLAT_ORIGIN=45\r\n"
            "SCALE_FACTOR=0.9996012717\r\nFN=-100000.5\r\nFE=400000\r\nLAT1=49\r\nLAT2=-44.5\r\n"
            "OTHER_NAMES=First;Second;Third\r\nVERIF_POINT=1 2 3 4;5 6 7 8\r\nPREFERED_DATUM=European 1979\r\nUNIT=FEET\r\n");
  EXPECT_EQ(d.fieldsPresent, 1023u);
  EXPECT_EQ(Read("FE=1\r\nOTHER_NAMES=a").fieldsPresent, kFieldFalseEasting);
}

// The older transverse Mercator form: every key required, plain numbers.
TEST_F(ProjectionFile, OlderTransverseMercatorForm) {
  const std::string body = "NAME=Old grid\r\nLON_ORIGIN=-2\r\nLAT_ORIGIN=49\r\nSCALE_FACTOR=0.9996012717\r\n"
                           "FN=-100000\r\nFE=400000\r\nPREFERED_DATUM=OSGB36\r\nOTHER_NAMES=a\r\nOTHER_NAMES=b\r\n";
  for (const char* spelling : {"Transversal Mercator", "Transveral Mercator"}) {
    TDatosProyeccion d;
    std::string error;
    ASSERT_TRUE(ReadTransverseMercatorText(std::string("VERSION=1\r\nPROJECTION=") + spelling + "\r\n" + body,
                                           &m_datums, d, error)) << spelling << ": " << error;
    EXPECT_EQ(d, Read("VERSION=1\r\nPROJECTION=Transversal Mercator\r\n" + body)) << spelling;
  }
}

// Refusals of both forms leave the record as it was.
TEST_F(ProjectionFile, RefusalsLeaveTheRecordAsItWas) {
  const auto current = ReadProjectionText, older = ReadTransverseMercatorText;
  const std::string head = "VERSION=1\r\nPROJECTION=Transversal Mercator\r\n";
  const std::string rest = "NAME=x\r\nLON_ORIGIN=3\r\nLAT_ORIGIN=0\r\nSCALE_FACTOR=1\r\nFN=0\r\n";
  const std::tuple<decltype(current), std::string, std::string> cases[] = {
      {current, "\r\n  \r\n", "TDatosProyeccion Err 1"},
      {current, std::string("VERSION=1\r\nNAME=a\0b", 19), "TDatosProyeccion Err 1"},
      {current, "VERSION=1\r\nNAME x", "TDatosProyeccion Err 2"},
      {current, "=value", "TDatosProyeccion Err 2"},
      {current, "FN=inf", "TDatosProyeccion Err 2"},
      {current, "SCALE_FACTOR=0.9996N", "TDatosProyeccion Err 2"},  // only angles take notations
      {current, "LON_ORIGIN=east", "TDatosProyeccion Err 2"},
      {current, "VERSION=1.0", "TDatosProyeccion Err 3"},
      {current, "VERSION=1\nNAME=x\nZONE=31", "TDatosProyeccion Err 4"},
      {older, head + rest + "FE=abc\r\n", "Error in FE=abc"},
      {older, head + rest + "LAT1=40\r\n", "Error in LAT1=40"},       // not a key of this form
      {older, head + "LON_ORIGIN=3E\r\n", "Error in LON_ORIGIN=3E"},  // plain numbers only
      {older, head + std::string("NAME=a\0b\r\n", 10), "Error in " + std::string("NAME=a\0b", 8)},
      {older, "VERSION=2\r\n", "Error in 'VERSION'"},
      {older, "PROJECTION=transversal mercator\r\n", "Error in 'PROJECTION'"},
      {older, head + rest, "Error, some fields missing"},  // no FE
  };
  for (const auto& [read, text, message] : cases) {
    TDatosProyeccion d;
    d.name = "kept";
    std::string error;
    EXPECT_FALSE(read(text, &m_datums, d, error)) << text;
    EXPECT_EQ(error, message) << text;
    EXPECT_TRUE(d.name == "kept" && d.fieldsPresent == 0) << text;
  }
}

TEST_F(ProjectionFile, WrittenRecordsReadBackTheSame) {
  std::string error;
  std::vector<TDatosProyeccion> records = {
      Read("VERSION=1\nPROJECTION=Lambert 2SP\nNAME=L\nLAT1=51 10'00.00204\"N\nLAT2=49.8333339\nLAT_ORIGIN=90\n"
           "LON_ORIGIN=4 22'02.952\"E\nFE=150000.013\nFN=5400088.438\n"),
      Read("VERSION=1\nNAME=only a name\nOTHER_NAMES=a\nOTHER_NAMES=\nVERIF_POINT=;x\nUNIT=FEET\nPREFERED_DATUM=ED79\n")};
  TDatosProyeccion odd;  // values whose shortest text needs care
  odd.fieldsPresent = kFieldVersion | kFieldLonOrigin | kFieldLatOrigin | kFieldFalseEasting | kFieldFalseNorthing |
                      kFieldScaleFactor | kFieldLat1 | kFieldLat2;
  odd.lonOrigin = 0.1 + 0.2;
  odd.latOrigin = -1e-300;
  odd.falseEasting = 1e300;
  odd.falseNorthing = -0.0;
  odd.scaleFactor = std::numeric_limits<double>::denorm_min();
  odd.lat1 = 2.3372291666666667;
  odd.lat2 = -7e-6;
  records.push_back(odd);
  const std::string path = (test::ScratchDir("projection-file") / "written.prj").string();
  for (const TDatosProyeccion& record : records) {
    TDatosProyeccion back;
    ASSERT_TRUE(WriteProjectionFile(path, record, &m_datums, error)) << error;
    ASSERT_TRUE(ReadProjectionFile(path, &m_datums, back, error)) << error;
    EXPECT_EQ(back, record) << record.name;
    EXPECT_EQ(std::signbit(back.falseNorthing), std::signbit(record.falseNorthing));
  }
  const std::string missing = (test::ScratchDir("projection-missing") / "none.prj").string();
  TDatosProyeccion d;
  for (const auto read : {ReadProjectionFile, ReadTransverseMercatorFile}) {
    EXPECT_FALSE(read(missing, &m_datums, d, error));
    EXPECT_EQ(error, "Error opening " + missing);
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

constexpr const char* kSmallProjectDat =
    "# a comment\r\nVERSION=1\r\nNAME=Alpha Grid\r\nPROJECTION=Transversal Mercator\r\n"
    "OTHER_NAMES=First Alias; Second Alias\r\nFE=1\r\n-----\r\n\r\n   # NAME=Hidden\r\nVERSION=1\r\nNAME=Beta\r\n"
    "FE=2\r\n  ---  \r\nNAME=Alpha Grid\r\nFE=3\r\n---\nNAME=Broken\nVERSION=2\n---\nNAME=Dashes\n--\n";

// By name or other name, letter case ignored, the first block wins.
TEST(ProjectDat, LookupsInTheTextAndTheDataFolder) {
  struct TCase {
    const char* name;
    bool ok, found;
    double falseEasting;
    const char* error;
  };
  const TCase cases[] = {
      {"alpha grid", true, true, 1, ""},  {"  Second Alias ", true, true, 1, ""}, {"Beta", true, true, 2, ""},
      {"Hidden", false, false, 0, ""},  // commented out
      {"Broken", false, true, 0, "TDatosProyeccion Err 3"},
      {"Dashes", false, true, 0, "TDatosProyeccion Err 2"},  // "--" is no separator
      {"", false, false, 0, ""},
  };
  for (const TCase& c : cases) {
    TDatosProyeccion d;
    d.falseEasting = -1;
    bool found = !c.found;
    std::string error;
    EXPECT_EQ(FindInProjectDat(kSmallProjectDat, c.name, nullptr, d, found, error), c.ok) << c.name;
    EXPECT_EQ(found, c.found) << c.name;
    EXPECT_EQ(d.falseEasting, c.ok ? c.falseEasting : -1) << c.name;
    if (!c.ok && c.found) {
      EXPECT_EQ(error, c.error) << c.name;
    }
  }
  std::vector<TDatosProyeccion> definitions;
  std::string error;
  EXPECT_FALSE(ReadProjectDat(kSmallProjectDat, nullptr, definitions, error));
  EXPECT_EQ(error, "Definition at line 17: TDatosProyeccion Err 3");
  EXPECT_TRUE(definitions.empty());

  const fs::path dir = test::ScratchDir("project-dat-files");
  TDatosProyeccion d;
  EXPECT_FALSE(LookupEcwProjectDat(dir.string(), "Beta", nullptr, d, error));
  EXPECT_EQ(error, "File project.dat not found");
  ASSERT_TRUE(WriteFileAtomic((dir / "project.dat").string(), kSmallProjectDat, error)) << error;
  fs::create_directories(dir / "projections" / "ecw");
  ASSERT_TRUE(WriteFileAtomic((dir / "projections" / "ecw" / "ecw_project.dat").string(), "NAME=Ecw Only\r\nFE=7\r\n", error));
  const std::tuple<bool, const char*, const char*> lookups[] = {
      {false, "Beta", ""},
      {false, "Ecw Only", "Projection not found in the project.dat file"},
      {false, "Broken", "TDatosProyeccion Err 3"},
      {true, "Ecw Only", ""},
      {true, "Beta", "Projection not found in the ECW project.dat file"},
  };
  for (const auto& [ecw, name, message] : lookups) {
    const bool ok = ecw ? LookupEcwProjectDat(dir.string(), name, nullptr, d, error)
                        : LookupProjectDat(dir.string(), name, nullptr, d, error);
    EXPECT_EQ(ok, !*message) << name;
    EXPECT_EQ(ok ? d.name : error, ok ? name : message) << name;
  }
}

TEST(ProjectDat, DefaultProjectionOfANewMap) {
  const fs::path dir = test::ScratchDir("default-prj");
  const std::string data = (test::SourceDir() / "data").string();
  int configured = 0;
  TListaDatums datums(configured);
  TDatum wgs84;
  wgs84.name = "WGS 84";
  datums.Add(wgs84);
  TDatosProyeccion d;
  std::string error;
  ASSERT_TRUE(ReadDefaultProjection(dir.string(), data, &datums, d, error)) << error;
  EXPECT_EQ(d.projection, "Lat/Long");
  EXPECT_EQ(d.preferredDatum, 0);
  // The user's own file takes its place.
  ASSERT_TRUE(WriteFileAtomic((dir / kDefaultProjectionFile).string(), "VERSION=1\r\nNAME=Mine\r\n", error));
  ASSERT_TRUE(ReadDefaultProjection(dir.string(), data, &datums, d, error));
  EXPECT_EQ(d.name, "Mine");
  EXPECT_EQ(d.preferredDatum, -1);
  EXPECT_FALSE(ReadDefaultProjection("", dir.string() + "/none", &datums, d, error));
  EXPECT_EQ(error, "Error opening " + dir.string() + "/none/default.prj");
}

// ---- The shipped data/project.dat, checked against the EPSG dataset ----

// EPSG parameter codes: the record member each gives (none for the Swiss
// grid's azimuth and skew angle, fixed in its class) and whether it is an angle.
const std::map<std::string, std::pair<double TDatosProyeccion::*, bool>> kEpsgParameters = {
    {"8801", {&TDatosProyeccion::latOrigin, true}},    {"8802", {&TDatosProyeccion::lonOrigin, true}},
    {"8805", {&TDatosProyeccion::scaleFactor, false}}, {"8806", {&TDatosProyeccion::falseEasting, false}},
    {"8807", {&TDatosProyeccion::falseNorthing, false}}, {"8821", {&TDatosProyeccion::latOrigin, true}},
    {"8822", {&TDatosProyeccion::lonOrigin, true}},    {"8823", {&TDatosProyeccion::lat1, true}},
    {"8824", {&TDatosProyeccion::lat2, true}},         {"8826", {&TDatosProyeccion::falseEasting, false}},
    {"8827", {&TDatosProyeccion::falseNorthing, false}}, {"8811", {&TDatosProyeccion::latOrigin, true}},
    {"8812", {&TDatosProyeccion::lonOrigin, true}},    {"8815", {&TDatosProyeccion::scaleFactor, false}},
    {"8816", {&TDatosProyeccion::falseEasting, false}}, {"8817", {&TDatosProyeccion::falseNorthing, false}},
    {"8813", {nullptr, true}},                         {"8814", {nullptr, true}},
};
const std::map<std::string, std::string> kMethodToProjection = {
    {"Transverse Mercator", "Transversal Mercator"},       {"Lambert Conic Conformal (2SP)", "Lambert 2SP"},
    {"Lambert Conic Conformal (1SP)", "Lambert Conformal Conic"}, {"Oblique Stereographic", "Oblique Stereographic"},
    {"Hotine Oblique Mercator (variant B)", "CH-1903"},
};

// Every name and other name finds its own definition; every definition
// names an EPSG code whose method, parameters (angles to 1e-9 degrees, 0.1
// mm; lengths to 1e-6 m; scales to 1e-12) and ellipsoid it matches. The
// table holds ETRS89 and NZGD2000 on WGS 84, whose 1/f is GRS 80's to 1e-5.
TEST(ProjectDat, ShippedFileAgreesWithTheEpsgDataset) {
  const fs::path dir = test::MakeDataFolder("project-dat-datums", {});
  fs::create_directories(dir / "user");
  int configured = 0;
  TListaDatums datums(configured);
  std::string text, error;
  std::vector<TDatosProyeccion> definitions;
  ASSERT_TRUE(datums.Load(dir.string(), (dir / "user").string(), error)) << error;
  ASSERT_TRUE(ReadWholeFile((test::SourceDir() / "data" / kProjectDatFile).string(), text, error)) << error;
  ASSERT_TRUE(ReadProjectDat(text, &datums, definitions, error)) << error;
  PJ_CONTEXT* context = proj_context_create();
  int codes = 0;
  for (const TDatosProyeccion& d : definitions) {
    std::vector<std::string> names = {d.name};
    for (const auto other : std::views::split(d.otherNames, ';'))
      if (!other.empty()) names.emplace_back(other.begin(), other.end());
    for (const std::string& name : names) {
      TDatosProyeccion found;
      bool matched = false;
      ASSERT_TRUE(FindInProjectDat(text, name, &datums, found, matched, error)) << name << ": " << error;
      EXPECT_EQ(found, d) << name;
      if (name.rfind("EPSG:", 0) != 0) continue;
      SCOPED_TRACE(d.name + " " + name);
      ++codes;
      PJ* crs = proj_create(context, name.c_str());
      ASSERT_NE(crs, nullptr);
      PJ* operation = proj_crs_get_coordoperation(context, crs);
      PJ* ellipsoid = proj_get_ellipsoid(context, crs);
      PJ* meridian = proj_get_prime_meridian(context, crs);
      ASSERT_TRUE(operation && ellipsoid && meridian);
      const char* method = nullptr;
      proj_coordoperation_get_method_info(context, operation, &method, nullptr, nullptr);
      EXPECT_EQ(d.projection, kMethodToProjection.count(method) ? kMethodToProjection.at(method) : method);
      double meridianLon = 0, meridianFactor = 0, a = 0, invFlattening = 0;
      proj_prime_meridian_get_parameters(context, meridian, &meridianLon, &meridianFactor, nullptr);
      for (int i = 0; i < proj_coordoperation_get_param_count(context, operation); ++i) {
        const char *parameterName = nullptr, *code = nullptr;
        double value = 0, factor = 0;
        ASSERT_TRUE(proj_coordoperation_get_param(context, operation, i, &parameterName, nullptr, &code, &value,
                                                  nullptr, &factor, nullptr, nullptr, nullptr, nullptr));
        ASSERT_TRUE(kEpsgParameters.count(code)) << parameterName;
        const auto [member, angle] = kEpsgParameters.at(code);
        if (!member) continue;
        double expected = value * factor * (angle ? 180 / M_PI : 1);  // radians, metres or unity
        if (member == &TDatosProyeccion::lonOrigin) expected += meridianLon * meridianFactor * 180 / M_PI;
        EXPECT_NEAR(d.*member, expected, angle ? 1e-9 : member == &TDatosProyeccion::scaleFactor ? 1e-12 : 1e-6)
            << parameterName;
      }
      proj_ellipsoid_get_parameters(context, ellipsoid, &a, nullptr, nullptr, &invFlattening);
      const TDatum* datum = datums.Get(d.preferredDatum);
      ASSERT_NE(datum, nullptr);
      EXPECT_NEAR(datum->a, a, 1e-3) << datum->name;
      EXPECT_NEAR(datum->invFlattening, invFlattening, 1e-5) << datum->name;
      for (PJ* object : {crs, operation, ellipsoid, meridian}) proj_destroy(object);
    }
  }
  proj_context_destroy(context);
  EXPECT_GE(definitions.size(), 40u);
  EXPECT_GE(codes, 40);
}

}  // namespace
}  // namespace velantis
