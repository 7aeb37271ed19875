#include "geodesy/project_dat.h"

#include <gtest/gtest.h>
#include <proj.h>

#include <cmath>
#include <filesystem>
#include <map>

#include "app/file_io.h"
#include "geodesy/projection_file.h"
#include "tests/geodesy/builtin_datums.h"
#include "tests/support/testdata.h"

namespace velantis {
namespace {

namespace fs = std::filesystem;

std::vector<std::string> Split(const std::string& list) {
  std::vector<std::string> entries;
  size_t start = 0;
  while (start <= list.size()) {
    const size_t end = std::min(list.find(';', start), list.size());
    if (end > start) entries.push_back(list.substr(start, end - start));
    start = end + 1;
  }
  return entries;
}

// ---- The shipped data/project.dat, checked against the EPSG dataset ----

class ShippedProjectDat : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    const fs::path dir = test::MakeDataFolder("project-dat-datums", {});
    fs::create_directories(dir / "user");
    std::string error;
    ASSERT_TRUE(s_datums.Load(dir.string(), (dir / "user").string(), error)) << error;
    ASSERT_TRUE(
        ReadWholeFile((test::SourceDir() / "data" / kProjectDatFile).string(), s_text, error))
        << error;
  }
  static inline int s_configured = 0;
  static inline TListaDatums s_datums{s_configured};
  static inline std::string s_text;
};

TEST_F(ShippedProjectDat, EveryNameAndOtherNameFindsItsOwnDefinition) {
  std::vector<TDatosProyeccion> definitions;
  std::string error;
  ASSERT_TRUE(ReadProjectDat(s_text, &s_datums, definitions, error)) << error;
  EXPECT_GE(definitions.size(), 40u);
  for (const TDatosProyeccion& d : definitions) {
    std::vector<std::string> names = Split(d.otherNames);
    names.push_back(d.name);
    for (const std::string& name : names) {
      TDatosProyeccion found;
      bool matched = false;
      ASSERT_TRUE(FindInProjectDat(s_text, name, &s_datums, found, matched, error))
          << name << ": " << error;
      EXPECT_EQ(found, d) << name;
    }
  }
}

// One EPSG parameter: the record field it gives (none for the Swiss grid's
// azimuth and skew angle, fixed in its class), and whether it is an angle.
struct TEpsgParameter {
  uint32_t field;
  double TDatosProyeccion::*member;
  bool angle;
};

const std::map<std::string, TEpsgParameter> kEpsgParameters = {
    {"8801", {kFieldLatOrigin, &TDatosProyeccion::latOrigin, true}},
    {"8802", {kFieldLonOrigin, &TDatosProyeccion::lonOrigin, true}},
    {"8805", {kFieldScaleFactor, &TDatosProyeccion::scaleFactor, false}},
    {"8806", {kFieldFalseEasting, &TDatosProyeccion::falseEasting, false}},
    {"8807", {kFieldFalseNorthing, &TDatosProyeccion::falseNorthing, false}},
    {"8821", {kFieldLatOrigin, &TDatosProyeccion::latOrigin, true}},
    {"8822", {kFieldLonOrigin, &TDatosProyeccion::lonOrigin, true}},
    {"8823", {kFieldLat1, &TDatosProyeccion::lat1, true}},
    {"8824", {kFieldLat2, &TDatosProyeccion::lat2, true}},
    {"8826", {kFieldFalseEasting, &TDatosProyeccion::falseEasting, false}},
    {"8827", {kFieldFalseNorthing, &TDatosProyeccion::falseNorthing, false}},
    {"8811", {kFieldLatOrigin, &TDatosProyeccion::latOrigin, true}},
    {"8812", {kFieldLonOrigin, &TDatosProyeccion::lonOrigin, true}},
    {"8815", {kFieldScaleFactor, &TDatosProyeccion::scaleFactor, false}},
    {"8816", {kFieldFalseEasting, &TDatosProyeccion::falseEasting, false}},
    {"8817", {kFieldFalseNorthing, &TDatosProyeccion::falseNorthing, false}},
    {"8813", {0, nullptr, true}},
    {"8814", {0, nullptr, true}},
};

const std::map<std::string, std::string> kMethodToProjection = {
    {"Transverse Mercator", "Transversal Mercator"},
    {"Lambert Conic Conformal (2SP)", "Lambert 2SP"},
    {"Lambert Conic Conformal (1SP)", "Lambert Conformal Conic"},
    {"Oblique Stereographic", "Oblique Stereographic"},
    {"Hotine Oblique Mercator (variant B)", "CH-1903"},
};

constexpr double kRadToDeg = 180 / M_PI;
// An angle written in degrees-minutes-seconds or grads matches EPSG's
// to rounding; 1e-9° is 0.1 mm on the ground.
constexpr double kAngleToleranceDeg = 1e-9;
constexpr double kLengthToleranceM = 1e-6;
constexpr double kScaleTolerance = 1e-12;
// The table holds ETRS89 and NZGD2000 on the WGS 84 ellipsoid; GRS 80's 1/f
// differs by 1.5e-6 (0.1 mm on the semi-minor axis).
constexpr double kInvFlatteningTolerance = 1e-5;

void CheckAgainstEpsg(PJ_CONTEXT* context, const TDatosProyeccion& d, const std::string& code,
                      const TListaDatums& datums) {
  SCOPED_TRACE(d.name + " " + code);
  PJ* crs = proj_create(context, code.c_str());
  ASSERT_NE(crs, nullptr);
  PJ* operation = proj_crs_get_coordoperation(context, crs);
  PJ* ellipsoid = proj_get_ellipsoid(context, crs);
  PJ* meridian = proj_get_prime_meridian(context, crs);
  ASSERT_TRUE(operation && ellipsoid && meridian);

  const char* method = nullptr;
  proj_coordoperation_get_method_info(context, operation, &method, nullptr, nullptr);
  ASSERT_TRUE(kMethodToProjection.count(method)) << method;
  EXPECT_EQ(d.projection, kMethodToProjection.at(method));

  double meridianLon = 0, meridianFactor = 0;
  proj_prime_meridian_get_parameters(context, meridian, &meridianLon, &meridianFactor, nullptr);
  uint32_t compared = 0;
  for (int i = 0; i < proj_coordoperation_get_param_count(context, operation); ++i) {
    const char *name = nullptr, *authCode = nullptr;
    double value = 0, factor = 0;
    ASSERT_TRUE(proj_coordoperation_get_param(context, operation, i, &name, nullptr, &authCode,
                                              &value, nullptr, &factor, nullptr, nullptr, nullptr,
                                              nullptr));
    ASSERT_TRUE(kEpsgParameters.count(authCode)) << name;
    const TEpsgParameter parameter = kEpsgParameters.at(authCode);
    if (!parameter.field) continue;
    double expected = value * factor;  // radians, metres or unity
    double tolerance = parameter.field == kFieldScaleFactor ? kScaleTolerance : kLengthToleranceM;
    if (parameter.angle) {
      expected *= kRadToDeg;
      if (parameter.field == kFieldLonOrigin) expected += meridianLon * meridianFactor * kRadToDeg;
      tolerance = kAngleToleranceDeg;
    }
    EXPECT_TRUE(d.Has(parameter.field)) << name;
    EXPECT_NEAR(d.*(parameter.member), expected, tolerance) << name;
    compared |= parameter.field;
  }
  // No numeric field of the definition goes unchecked.
  EXPECT_EQ(compared, d.fieldsPresent & ~(kFieldVersion | kFieldName | kFieldProjection));

  double a = 0, invFlattening = 0;
  proj_ellipsoid_get_parameters(context, ellipsoid, &a, nullptr, nullptr, &invFlattening);
  const TDatum* datum = datums.Get(d.preferredDatum);
  ASSERT_NE(datum, nullptr);
  EXPECT_NEAR(datum->a, a, 1e-3) << datum->name;
  EXPECT_NEAR(datum->invFlattening, invFlattening, kInvFlatteningTolerance) << datum->name;
  for (PJ* object : {crs, operation, ellipsoid, meridian}) proj_destroy(object);
}

TEST_F(ShippedProjectDat, ParametersAndEllipsoidsAgreeWithTheEpsgDataset) {
  std::vector<TDatosProyeccion> definitions;
  std::string error;
  ASSERT_TRUE(ReadProjectDat(s_text, &s_datums, definitions, error)) << error;
  PJ_CONTEXT* context = proj_context_create();
  int codes = 0;
  for (const TDatosProyeccion& d : definitions) {
    int own = 0;
    for (const std::string& name : Split(d.otherNames)) {
      if (name.rfind("EPSG:", 0) != 0) continue;
      CheckAgainstEpsg(context, d, name, s_datums);
      ++own;
    }
    EXPECT_GE(own, 1) << d.name << " names no EPSG code";
    codes += own;
  }
  proj_context_destroy(context);
  EXPECT_GE(codes, 40);
}

// ---- Lookups, on small texts ----

constexpr const char* kSmallProjectDat =
    "# a comment\r\n"
    "VERSION=1\r\n"
    "NAME=Alpha Grid\r\n"
    "PROJECTION=Transversal Mercator\r\n"
    "OTHER_NAMES=First Alias; Second Alias\r\n"
    "FE=1\r\n"
    "-----\r\n"
    "\r\n"
    "   # NAME=Hidden\r\n"
    "VERSION=1\r\n"
    "NAME=Beta\r\n"
    "FE=2\r\n"
    "  ---  \r\n"
    "NAME=Alpha Grid\r\n"
    "FE=3\r\n"
    "---\n"
    "NAME=Broken\n"
    "VERSION=2\n"
    "---\n"
    "NAME=Dashes\n"
    "--\n";

TEST(ProjectDatLookup, ByNameOrOtherNameFirstBlockWins) {
  struct TCase {
    const char* name;
    bool ok;
    bool found;
    double falseEasting;
    const char* error;
  };
  const TCase cases[] = {
      {"Alpha Grid", true, true, 1, ""},
      {"alpha grid", true, true, 1, ""},
      {"  Second Alias ", true, true, 1, ""},
      {"First Alias", true, true, 1, ""},
      {"Beta", true, true, 2, ""},
      {"Hidden", false, false, 0, ""},  // commented out
      {"Broken", false, true, 0, "TDatosProyeccion Err 3"},
      {"Dashes", false, true, 0, "TDatosProyeccion Err 2"},  // "--" is no separator
      {"Gamma", false, false, 0, ""},
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
}

TEST(ProjectDatLookup, ReadingAllBlocksStopsAtTheFirstBadOne) {
  std::vector<TDatosProyeccion> definitions;
  std::string error;
  EXPECT_FALSE(ReadProjectDat(kSmallProjectDat, nullptr, definitions, error));
  EXPECT_EQ(error, "Definition at line 17: TDatosProyeccion Err 3");
  EXPECT_TRUE(definitions.empty());
  ASSERT_TRUE(ReadProjectDat("NAME=a\r\n---\r\n# only a comment\r\n---\r\nNAME=b\r\n", nullptr,
                             definitions, error))
      << error;
  ASSERT_EQ(definitions.size(), 2u);
  EXPECT_EQ(definitions[1].name, "b");
}

TEST(ProjectDatLookup, FilesOfTheDataFolder) {
  const fs::path dir = test::ScratchDir("project-dat-files");
  struct TCase {
    bool ecw;
    const char* name;
    const char* error;  // empty: found
  };
  const auto lookup = [&](const TCase& c, TDatosProyeccion& d, std::string& error) {
    return c.ecw ? LookupEcwProjectDat(dir.string(), c.name, nullptr, d, error)
                 : LookupProjectDat(dir.string(), c.name, nullptr, d, error);
  };
  const TCase missing[] = {{false, "Beta", "File project.dat not found"},
                           {true, "Beta", "File project.dat not found"}};
  for (const TCase& c : missing) {
    TDatosProyeccion d;
    std::string error;
    EXPECT_FALSE(lookup(c, d, error));
    EXPECT_EQ(error, c.error);
  }
  std::string error;
  ASSERT_TRUE(WriteFileAtomic((dir / "project.dat").string(), kSmallProjectDat, error)) << error;
  fs::create_directories(dir / "projections" / "ecw");
  ASSERT_TRUE(WriteFileAtomic((dir / "projections" / "ecw" / "ecw_project.dat").string(),
                              "NAME=Ecw Only\r\nFE=7\r\n", error));
  const TCase cases[] = {
      {false, "Beta", ""},
      {false, "Ecw Only", "Projection not found in the project.dat file"},
      {false, "Broken", "TDatosProyeccion Err 3"},
      {true, "Ecw Only", ""},
      {true, "Beta", "Projection not found in the ECW project.dat file"},
  };
  for (const TCase& c : cases) {
    TDatosProyeccion d;
    EXPECT_EQ(lookup(c, d, error), std::string(c.error).empty()) << c.name;
    if (*c.error) {
      EXPECT_EQ(error, c.error) << c.name;
    } else {
      EXPECT_EQ(d.name, c.name);
    }
  }
}

TEST(ProjectDatLookup, DefaultProjectionOfANewMap) {
  const fs::path dir = test::ScratchDir("default-prj");
  int configured = 0;
  TListaDatums datums(configured);
  TDatum wgs84;
  wgs84.name = "WGS 84";
  datums.Add(wgs84);
  TDatosProyeccion d;
  std::string error;
  ASSERT_TRUE(
      ReadDefaultProjection(dir.string(), (test::SourceDir() / "data").string(), &datums, d, error))
      << error;
  EXPECT_EQ(d.projection, "Lat/Long");
  EXPECT_EQ(d.preferredDatum, 0);
  // The user's own file takes its place.
  ASSERT_TRUE(WriteFileAtomic((dir / kDefaultProjectionFile).string(),
                              "VERSION=1\r\nPROJECTION=Mercator\r\nNAME=Mine\r\n", error));
  ASSERT_TRUE(ReadDefaultProjection(dir.string(), (test::SourceDir() / "data").string(), &datums, d,
                                    error));
  EXPECT_EQ(d.name, "Mine");
  EXPECT_EQ(d.preferredDatum, -1);
  EXPECT_FALSE(ReadDefaultProjection("", dir.string() + "/none", &datums, d, error));
  EXPECT_EQ(error, "Error opening " + dir.string() + "/none/default.prj");
}

}  // namespace
}  // namespace velantis
