// The native waypoint file: the exact lines, the edge cases of names,
// altitudes and times, round trips in every notation and code page, and
// saves that fail without touching the old file.
#include "formats/wpt_file.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <thread>
#include <tuple>

#include "app/file_io.h"
#include "formats/native_text.h"
#include "tests/formats/element_samples.h"
#include "tests/support/testdata.h"

namespace velantis {
namespace {

using test::Utf8Options;

std::string Written(const TWaypoints& list, const TNativeOptions& options) {
  return test::WrittenBytes(list, options, "list.wpt", WriteWptFile);
}

TEST(WptFile, WritesTheDocumentedLines) {
  TWaypoints list;
  TBaliza plain;
  plain.SetName("A B");
  plain.SetPosition(41.391667, -2.175);
  plain.SetDescription("Font, 100% fresca\r\n");
  TBaliza styled;
  styled.SetName("Refugi");
  styled.SetPosition(-33.5, 151.25);
  styled.SetAltitude(1234.5f);
  styled.SetTime(TDateTime::FromCalendar(2024, 6, 5, 13, 7, 0));
  styled.SetSymbol("Fl,ag");  // the comma is dropped: the line splits at commas
  styled.SetSizeByte(kSizeByteUnset);
  styled.SetProximityRadius(50);
  styled.SetLabel(TTextLabel{"hut", 1, 2, 3, 4, 5, 0, {}});
  list.Add(plain);
  list.Add(styled);
  EXPECT_EQ(Written(list, Utf8Options()),
            "B  UTF-8\r\nG  WGS 84\r\n"
            "z  -33.500000,-2.175000,41.391667,151.250000\r\n"
            "W  A_B___ 41.391667\xC2\xBAN 2.175000\xC2\xBAW 27-MAR-62 00:00:00 -9999.000000 Font 100 fresca\r\n"
            "W  Refugi 33.500000\xC2\xBAS 151.250000\xC2\xBA" "E 05-JUN-24 13:07:00 1234.500000 \r\n"
            "w Flag,0,0.000000,0,16777215,0,39,,50.000000,0,-1,0,0\r\n"
            "t \"hut\",1,2,3,4, 5\r\n"
            "\r\n\r\n");
}

TEST(WptFile, EdgeCasesOfTheWaypointLine) {
  struct Case {
    const char* name;
    float altitude;
    const char* expectedName;       // as written
    const char* expectedAltitude;   // as written
    const char* readName;           // as read back
    bool altitudeKnown;
  };
  const Case cases[] = {
      {"A B", 10, "A_B___", "10.000000", "A B   ", true},
      {"AB", -999.5f, "AB____", "-999.500000", "AB    ", true},
      {"", -1000, "______", "-9999.000000", "      ", false},
      {"Long name", -20000, "Long_name", "-9999.000000", "Long name", false},
      {"a,b%c\r\n", 0, "abc___", "0.000000", "abc   ", true},
      {"a\tb", 0, "a_b___", "0.000000", "a b   ", true},
  };
  for (const Case& c : cases) {
    TWaypoints list;
    TBaliza b;
    b.SetName(c.name);
    b.SetAltitude(c.altitude);
    list.Add(b);
    const std::string bytes = Written(list, Utf8Options());
    const std::string expected = std::string("W  ") + c.expectedName + " 0.000000\xC2\xBAN 0.000000\xC2\xBA" "E " +
                                 std::string(kNullDateText) + " " + c.expectedAltitude + " \r\n";
    EXPECT_NE(bytes.find(expected), std::string::npos) << c.name << "\n" << bytes;
    EXPECT_EQ(bytes.find("\r\nw "), std::string::npos) << "default extension values need no w line";
    TWaypoints back;
    std::string error;
    ASSERT_TRUE(ReadWpt(bytes, Utf8Options(), back, error)) << error;
    ASSERT_EQ(back.Count(), 1u);
    EXPECT_EQ(back.Baliza(0).Name(), c.readName);
    EXPECT_EQ(back.Baliza(0).HasAltitude(), c.altitudeKnown) << c.name;
    EXPECT_TRUE(back.Baliza(0).Time().IsNull());
  }
}

TEST(WptFile, ReadsLinesOfOtherWriters) {
  const std::string file =
      "G  WGS 84\r\nU  1\r\n"
      "W  VOID 41\xBA" "23.500'N 2\xBA" "10.500'W 5-jun-24 13:07:00 -1000.0\r\n"
      "W  Pic_del_Pla 41\xBA" "00.000'N 1\xBA" "00.000'E 05-JUN-24 13:07:00 2000.25 two  words\tand\r\n"
      "w  ,3,,,,1,255,,12.5,9,-1,20,2\r\n"
      "w  late line for the same waypoint\r\n"
      "t  too,few,fields\r\n";
  TWaypoints list;
  std::string error;
  ASSERT_TRUE(ReadWpt(file, TNativeOptions{}, list, error)) << error;
  ASSERT_EQ(list.Count(), 2u);
  const TBaliza& a = list.Baliza(0);
  EXPECT_NEAR(a.Latitude(), 41.391667, 1e-6);
  EXPECT_NEAR(a.Longitude(), -2.175, 1e-9);
  EXPECT_EQ(std::tuple(a.Name(), a.HasAltitude(), a.Description()), std::tuple("", false, ""));
  const TBaliza& b = list.Baliza(1);
  EXPECT_EQ(std::tuple(b.Name(), b.Description(), b.Altitude(), b.DisplayMode(), b.DisplayFlag3(), b.State(),
                       b.ProximityRadius(), b.SizeByte(), b.LabelFontStep(), b.LabelPlacement(), b.Symbol(),
                       b.Label() == nullptr),
            std::tuple("Pic del Pla", "two words and", 2000.25f, 3, true, 255 & ~kBalizaStateTransientBit, 12.5,
                       kSizeByteUnset, 2, 2, "late line for the same waypoint", true));
  EXPECT_FALSE(list.Modified());
}

TEST(WptFile, RoundTripsInEveryNotationDatumAndCodePage) {
  int configured = 0;
  TListaDatums datums(configured);
  if (!test::LoadBuiltInDatums(datums)) GTEST_SKIP() << "the build's data folder has no datum list";
  const int ed50 = datums.Find("European 1950");
  ASSERT_GT(ed50, 0);
  // The last printed unit of each notation, in degrees: the positions read
  // back within half of it (the reader inverts the writer's datum shift).
  const double unit[] = {1e-6, 0.001 / 60, 0.1 / 3600, 1e-6 * 0.9};
  std::mt19937_64 random(42);
  for (int notation = 0; notation < 4; ++notation) {
    for (const char* codePage : {"UTF-8", "Windows-1252", ""}) {
      for (const int datum : {0, ed50}) {
        TNativeOptions options;
        options.datums = &datums;
        options.datum = datum;
        options.notation = notation;
        options.codePage = codePage;
        options.defaults.displayFlag3 = notation % 2 == 1;
        const TWaypoints list = test::SampleWaypoints(random, 25, options.defaults);
        const std::string first = Written(list, options);
        TWaypoints back;
        std::string error;
        ASSERT_TRUE(ReadWpt(first, options, back, error)) << error;
        ASSERT_EQ(back.Count(), list.Count());
        EXPECT_EQ(back.Description(), list.Description());
        ASSERT_NE(back.Properties(), nullptr);
        EXPECT_EQ(*back.Properties(), *list.Properties());
        const double tolerance = unit[notation] / 2 + 1e-12;
        for (size_t i = 0; i < list.Count(); ++i) {
          const TBaliza& a = list.Baliza(i);
          const TBaliza& b = back.Baliza(i);
          const std::string where = std::string(codePage) + " notation " + std::to_string(notation) + " #" + std::to_string(i);
          EXPECT_NEAR(b.Latitude(), a.Latitude(), tolerance) << where;
          EXPECT_NEAR(b.Longitude(), a.Longitude(), tolerance) << where;
          EXPECT_EQ(test::KeptFields(b), test::KeptFields(a)) << where;
        }
        EXPECT_EQ(Written(back, options), first) << "writing what was read gives the same bytes";
      }
    }
  }
}

TEST(WptFile, ForcedExtensionLinesAndDefaultColours) {
  TNativeOptions options = Utf8Options();
  options.defaults.colour1 = PackLabelColour(0x123456);  // off the 5-6-5 palette
  TWaypoints list;
  list.Add(TBaliza(options.defaults));
  EXPECT_EQ(Written(list, options).find("\r\nw "), std::string::npos);
  TWaypoints back;
  std::string error;
  ASSERT_TRUE(ReadWpt(Written(list, options), options, back, error));
  EXPECT_TRUE(back.Baliza(0).HasDefaultExtension(options.defaults));
  options.forceExtensionLines = true;
  EXPECT_NE(Written(list, options).find("\r\nw ,0,0.000000,"), std::string::npos);
}

}  // namespace
}  // namespace velantis
