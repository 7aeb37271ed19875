#include "geodesy/projection_catalogue.h"

#include <gtest/gtest.h>

#include <set>

#include "tests/geodesy/builtin_datums.h"

namespace velantis {
namespace {

// The program's own names and captions, a few kinds each way of writing.
TEST(ProjectionCatalogue, NamesAndCaptionsAreTheProgramsOwn) {
  using V = std::vector<std::string_view>;
  const std::pair<const char*, V> cases[] = {
      {"Transveral Mercator", {"Lon Origin", "Lat Origin", "False Northing", "False Easting", "Scale Factor"}},
      {"Lambert Conformal Conic",
       {"Latitude of Origin", "Longitud of Origin", "False Easting", "False Northing", "Scale Factor"}},
      {"lambert 2sp", {"Lat Standard 1", "Lat Standard 2", "Origin Lat:", "Origin Lon:", "False Easting", "False Northing"}},
      {"(A)Lambert Azimuthual Equal Area", {"Latitude of Origin", "Longitud of Origin", "False Easting", "False Northing"}},
      {"Polyconic", {"Lon Origin"}},
      {"Swiss Grid", {}},
  };
  for (const auto& [name, captions] : cases) {
    const TProjectionKind* kind = FindProjectionKind(name);
    ASSERT_NE(kind, nullptr) << name;
    V texts;
    for (const auto& caption : kind->captions) texts.push_back(caption.text);
    EXPECT_EQ(texts, captions) << name;
  }
  EXPECT_EQ(FindProjectionKind("Robinson"), nullptr);
  std::string message;
  EXPECT_EQ(CreateProjection("UTM", TDatum{}, {}, message), nullptr);
  EXPECT_EQ(message, "Projection not supported: UTM");
}

// The fixed grids, and only they, name a datum, which the built-in list holds;
// every plane kind is checked against PROJ in projections_test.cpp.
TEST(ProjectionCatalogue, FixedGridsNameABuiltInDatum) {
  const auto dir = test::MakeDataFolder("projection-catalogue", {});
  int configured = 0;
  TListaDatums datums(configured);
  std::string error;
  ASSERT_TRUE(datums.Load(dir.string(), (dir / "user").string(), error)) << error;
  const std::set<std::string_view> fixedGrids = {"France Lambert II", "France Lambert III", "France Lambert IV",
                                                 "Lambert 93", "CH-1903", "New Zealand Map Grid", "TOP50",
                                                 "BGN (British National Grid)", "Irish Grid"};
  int creatable = 0;
  for (const TProjectionKind& kind : ProjectionCatalogue()) {
    creatable += kind.create != nullptr;
    EXPECT_EQ(fixedGrids.count(kind.name), kind.fixedDatum.empty() ? 0u : 1u) << kind.name;
    EXPECT_TRUE(kind.fixedDatum.empty() || datums.Find(kind.fixedDatum) >= 0) << kind.name;
  }
  EXPECT_EQ(creatable, 19);
}

}  // namespace
}  // namespace velantis
