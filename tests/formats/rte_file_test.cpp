// The native route file: its lines, its refusals and round trips of routes
// with shape points.
#include "formats/rte_file.h"

#include <gtest/gtest.h>

#include "app/file_io.h"
#include "tests/formats/element_samples.h"
#include "tests/support/testdata.h"

namespace velantis {
namespace {

std::string WrittenAs(const TRuta& route, const TNativeOptions& options, const std::string& fileName) {
  return test::WrittenBytes(route, options, fileName, WriteRteFile);
}

TEST(RteFile, WritesTheDocumentedLines) {
  TRuta route;
  route.SetDisplayAttribute(0, 3);
  route.SetDisplayAttribute(1, -1);
  route.SetDisplayAttribute(2, 255);
  TBaliza start;
  start.SetName("Start");
  start.SetPosition(42.5, 1.5);
  start.SetAltitude(1000);
  TBaliza end;
  end.SetName("Cim");
  end.SetPosition(42.75, 1.25);
  route.Add(start, {{42.6, 1.4, 1200}, {42.7, 1.3, -9999}});
  route.Add(end);
  TNativeOptions options;
  options.codePage = "UTF-8";
  options.notation = 1;
  EXPECT_EQ(WrittenAs(route, options, "Volta.pel.llac.rte"),
            "B  UTF-8\r\nG  WGS 84\r\nU  1\r\n"
            "R  3,Volta.pel.llac,-1,255\r\n"
            "z  42.500000,1.250000,42.750000,1.500000\r\n"
            "W  Start_ 42\xC2\xBA" "30.000'N 1\xC2\xBA" "30.000'E 27-MAR-62 00:00:00 1000.000000 \r\n"
            "p  42\xC2\xBA" "36.000'N 1\xC2\xBA" "24.000'E 1200.000000\r\n"
            "p  42\xC2\xBA" "42.000'N 1\xC2\xBA" "18.000'E -9999.000000\r\n"
            "W  Cim___ 42\xC2\xBA" "45.000'N 1\xC2\xBA" "15.000'E 27-MAR-62 00:00:00 -9999.000000 \r\n"
            "\r\n\r\n");
}

TEST(RteFile, NameOfTheFile) {
  const std::pair<const char*, const char*> cases[] = {
      {"/a/b/route.rte", "route"}, {"route.backup.rte", "route.backup"}, {".hidden", ".hidden"}, {"plain", "plain"}};
  for (const auto& [path, name] : cases) EXPECT_EQ(RouteNameOfFile(path), name) << path;
}

TEST(RteFile, RoundTripsWithShapePoints) {
  int configured = 0;
  TListaDatums datums(configured);
  if (!test::LoadBuiltInDatums(datums)) GTEST_SKIP() << "the build's data folder has no datum list";
  std::mt19937_64 random(11);
  for (int notation = 0; notation < 4; ++notation) {
    TNativeOptions options;
    options.datums = &datums;
    options.datum = datums.Find("European 1950");  // routes are written as held, in WGS 84
    options.notation = notation;
    const TRuta route = test::SampleRoute(random, 12, options.defaults);
    const std::string first = WrittenAs(route, options, "sample.rte");
    EXPECT_NE(first.find("\r\nG  WGS 84\r\n"), std::string::npos);
    TRuta back;
    std::string error;
    ASSERT_TRUE(ReadRte(first, options, back, error)) << error;
    EXPECT_EQ(back.Name(), "sample");
    ASSERT_EQ(back.Count(), route.Count());
    for (int k = 0; k < 3; ++k) EXPECT_EQ(back.DisplayAttribute(k), route.DisplayAttribute(k));
    const double tolerance = 0.1 / 3600;  // the coarsest printed unit
    for (size_t i = 0; i < route.Count(); ++i) {
      const TRoutePoint& a = route.Point(i);
      const TRoutePoint& b = back.Point(i);
      EXPECT_NEAR(b.baliza.Latitude(), a.baliza.Latitude(), tolerance);
      EXPECT_EQ(test::KeptFields(b.baliza), test::KeptFields(a.baliza));
      ASSERT_EQ(b.shape.size(), a.shape.size()) << i;
      for (size_t k = 0; k < a.shape.size(); ++k) {
        EXPECT_NEAR(b.shape[k].lat, a.shape[k].lat, tolerance);
        EXPECT_NEAR(b.shape[k].lon, a.shape[k].lon, tolerance);
        EXPECT_EQ(b.shape[k].altitude, a.shape[k].altitude);
      }
    }
    EXPECT_FALSE(back.Modified());
    EXPECT_EQ(WrittenAs(back, options, "sample.rte"), first) << "notation " << notation;
  }
}

}  // namespace
}  // namespace velantis
