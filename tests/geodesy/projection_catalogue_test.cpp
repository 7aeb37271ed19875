#include "geodesy/projection_catalogue.h"

#include <gtest/gtest.h>

#include <map>

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

// Every plane kind builds on its datum from the built-in list and round
// trips: the fixed grids at a point inside their area, the parametric kinds
// a little off an origin at 45 N 10 E.
TEST(ProjectionCatalogue, EveryPlaneKindBuildsOnItsDatumAndRoundTripsNearItsOrigin) {
  const auto dir = test::MakeDataFolder("projection-catalogue", {});
  int configured = 0;
  TListaDatums datums(configured);
  std::string error;
  ASSERT_TRUE(datums.Load(dir.string(), (dir / "user").string(), error)) << error;
  const std::map<std::string_view, TLonLat> fixedGridPoints = {
      {"France Lambert II", {2.5, 46.5}}, {"France Lambert III", {4, 44}}, {"France Lambert IV", {9, 42}},
      {"Lambert 93", {3, 46.5}},          {"CH-1903", {7.4, 46.9}},        {"New Zealand Map Grid", {174, -41}},
      {"TOP50", {174, -41}},              {"BGN (British National Grid)", {-1, 52}}, {"Irish Grid", {-7, 53.3}},
  };
  int built = 0;
  for (const TProjectionKind& kind : ProjectionCatalogue()) {
    if (!kind.create) continue;
    const int datum = kind.fixedDatum.empty() ? 0 : datums.Find(kind.fixedDatum);
    ASSERT_GE(datum, 0) << kind.fixedDatum;
    const auto projection = kind.create(*datums.Get(datum), {.lonOrigin = 10, .latOrigin = 45, .lat1 = 40, .lat2 = 50});
    const auto fixed = fixedGridPoints.find(kind.name);
    ASSERT_EQ(fixed != fixedGridPoints.end(), !kind.fixedDatum.empty()) << kind.name;
    const TLonLat geo = fixed != fixedGridPoints.end() ? fixed->second : TLonLat{10.3, 45.2};
    TLonLat back;
    TPlanePoint plane;
    ASSERT_TRUE(projection->Forward(geo, plane, error) && projection->Inverse(plane, back, error)) << kind.name << error;
    EXPECT_NEAR(back.lat, geo.lat, 1e-8) << kind.name;
    EXPECT_NEAR(back.lon, geo.lon, 1e-8) << kind.name;
    ++built;
  }
  EXPECT_EQ(built, 19);
}

}  // namespace
}  // namespace velantis
