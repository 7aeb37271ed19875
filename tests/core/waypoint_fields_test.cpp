// The waypoint's packed fields: label colours, effective proximity radius,
// and which edits make a waypoint differ from the defaults.
#include <gtest/gtest.h>

#include <tuple>

#include "app/config.h"
#include "core/baliza.h"

namespace velantis {
namespace {

// Worked by hand: 0x80 -> level 16 of 31 -> 0x84; 0x80 -> 32 of 63 -> 0x82.
// Every 24-bit colour, stored, written, read back and written again, gives
// the same number.
TEST(LabelColour, PacksAsRgb565AndIsStableAfterOneSave) {
  const struct {
    uint32_t rgb;
    TLabelColour packed;
    uint32_t written;
  } cases[] = {{0x000000, 0x0000, 0x000000}, {0xFFFFFF, 0xFFFF, 0xFFFFFF}, {0xFF0000, 0xF800, 0xFF0000},
               {0x00FF00, 0x07E0, 0x00FF00}, {0x808080, 0x8410, 0x848284}, {0x123456, 0x11AA, 0x103452}};
  for (const auto& c : cases) {
    EXPECT_EQ(PackLabelColour(c.rgb), c.packed) << c.rgb;
    EXPECT_EQ(UnpackLabelColour(c.packed), c.written) << c.rgb;
  }
  uint32_t failures = 0;
  for (uint32_t rgb = 0; rgb <= 0xFFFFFF; ++rgb) {
    const uint32_t written = UnpackLabelColour(PackLabelColour(rgb));
    const TLabelColour stored = PackLabelColour(written);
    failures += stored != PackLabelColour(rgb) || UnpackLabelColour(stored) != written;
  }
  EXPECT_EQ(failures, 0u);
}

// A new waypoint takes its label colours from the configuration. (That one
// off the 5-6-5 palette still reads back as the default is the waypoint
// file's test.)
TEST(LabelColour, NewWaypointsTakeTheConfiguredColours) {
  TConfig config;
  config.Default_Label_Color_Wpt = 0xFF0000;
  config.Default_Label_Back_Color_Wpt = 0xFFFF00;
  config.Wpt_Scale_Display = true;
  const TBalizaDefaults defaults = TBalizaDefaults::FromConfig(config);
  const TBaliza wpt(defaults);
  EXPECT_EQ(std::tuple(wpt.LabelColour1(), wpt.LabelColour2(), wpt.DisplayFlag3()),
            std::tuple(0xFF0000u, 0xFFFF00u, true));
  EXPECT_TRUE(wpt.HasDefaultExtension(defaults));
}

TEST(Baliza, EffectiveProximityRadius) {
  constexpr double kConfigured = 75;
  const struct {
    bool alarm;  // state bit 5
    double stored;
    bool properties;
    int mode;
    double expected;
  } cases[] = {
      {true, 0, false, 2, kConfigured},  // bit 5, radius 0, mode 2
      {false, 120, false, 2, 0},         // bit 5 clear: 0 whatever the radius
      {false, 0, true, 2, 0},
      {true, 120, true, 2, 120},         // its own radius wins
      {true, 0, false, 0, 0},
      {true, 0, false, 1, 0},
      {true, 0, true, 0, kConfigured},   // a property object brings the configured one
      {true, 0.1, false, 2, kConfigured},  // 0.1 is not above 0.1
      {true, 0.11, false, 0, 0.11},
      {true, -1, false, 0, 0},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::Message() << c.alarm << " " << c.stored << " " << c.properties << " " << c.mode);
    TConfig config;
    config.Proximity_Radius = static_cast<float>(kConfigured);
    config.Proximity_Mode = c.mode;
    TBaliza wpt;
    wpt.SetProximityAlarm(c.alarm);
    wpt.SetProximityRadius(c.stored);
    if (c.properties) wpt.EditProperties().Set("Alarm", "1");
    EXPECT_NEAR(wpt.EffectiveProximityRadius(config), c.expected, 1e-12);
  }
}

TEST(Baliza, EditsThatLeaveTheDefaults) {
  const struct {
    void (*edit)(TBaliza&);
    bool stillDefault;
  } cases[] = {
      {[](TBaliza&) {}, true},
      {[](TBaliza& w) { w.SetSymbol("Flag"); }, false},
      {[](TBaliza& w) { w.SetDisplayScale(5); }, false},
      {[](TBaliza& w) { w.SetDisplayMode(2); }, false},
      {[](TBaliza& w) { w.SetLabelColour1(0xFF0000); }, false},
      {[](TBaliza& w) { w.SetLabelColour2(0xFEFEFE); }, true},  // packs to white
      {[](TBaliza& w) { w.SetSizeByte(10); }, false},
      {[](TBaliza& w) { w.SetLabelFontStep(3); }, false},
      {[](TBaliza& w) { w.SetDisplayFlag3(true); }, false},
      {[](TBaliza& w) { w.SetLink("photo.jpg"); }, false},
      {[](TBaliza& w) { w.SetProximityAlarm(false); }, false},
      {[](TBaliza& w) { w.SetState(0x27 | 0x40); }, true},  // bits 6-7 of the state are not looked at
      {[](TBaliza& w) { w.SetLabelPlacement(1); }, false},  // bits 6-7 of the display flags are
      {[](TBaliza& w) { w.SetProximityRadius(0.001); }, false},
      {[](TBaliza& w) { w.SetProximityRadius(0.00005); }, true},
      {[](TBaliza& w) { w.SetAltitude(1200); }, true},
  };
  for (size_t i = 0; i < std::size(cases); ++i) {
    SCOPED_TRACE(i);
    TBaliza wpt;
    EXPECT_EQ(wpt.State(), 0x27);
    cases[i].edit(wpt);
    EXPECT_EQ(wpt.HasDefaultExtension(TBalizaDefaults{}), cases[i].stillDefault);
    EXPECT_EQ(wpt.Modified(), i > 0);
    wpt.MarkAsSaved();
    EXPECT_FALSE(wpt.Modified());
  }
}

}  // namespace
}  // namespace velantis
