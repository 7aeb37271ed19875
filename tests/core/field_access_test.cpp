#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <string>

#include "core/ruta.h"
#include "core/track.h"
#include "core/waypoints.h"

namespace velantis {
namespace {

constexpr double kMetresPerDegreeEquator = 6378137.0 * M_PI / 180.0;
const TDateTime kT0 = TDateTime::FromCalendar(2020, 7, 1, 12, 0, 0);

int Code(TFieldCode c) { return static_cast<int>(c); }

TBaliza Wpt(double lat, double lonMetres, float altitude) {
  TBaliza w;
  w.SetPosition(lat, lonMetres / kMetresPerDegreeEquator);
  w.SetAltitude(altitude);
  return w;
}

// Track: three points east along the equator, 100 m and 10 s apart,
// climbing 20 m a point, temperatures 60..62, one heart rate.
// Route: A (100 m) with a shape point at 300 m, B at 500 m (no altitude),
// C at 600 m (300 m). List: three waypoints, one without altitude.
std::unique_ptr<TElementoGPS> Make(const std::string& kind) {
  if (kind == "track") {
    auto t = std::make_unique<TTrack>();
    for (int i = 0; i < 3; ++i) {
      TrkPnt p;
      p.lon = i * 100.0 / kMetresPerDegreeEquator;
      p.time = kT0.PlusSeconds(i * 10.0);
      p.altitude = static_cast<float>(500 + 20 * i);
      p.temperatureByte = static_cast<uint8_t>(60 + i);
      if (i == 1) p.heartRateByte = 110;
      t->Anyade_Punt(p);
    }
    return t;
  }
  if (kind == "route") {
    auto r = std::make_unique<TRuta>();
    r->Add(Wpt(0, 0, 100), {TShapePoint{0, 300.0 / kMetresPerDegreeEquator, 0}});
    r->Add(Wpt(0, 500, -9999));
    r->Add(Wpt(0, 600, 300));
    return r;
  }
  auto w = std::make_unique<TWaypoints>();
  w->Add(Wpt(42.1, 1000, 800));
  w->Add(Wpt(42.3, 4000, 2900));
  w->Add(Wpt(42.2, 2000, -9999));
  return w;
}

TEST(FieldAccess, UnknownCodesReportTheirMessages) {
  const struct {
    const char* element;
    char entry;  // G Global2, C Campo (point 0), B Baliza, E Extremos
    int code;
    const char* message;
  } cases[] = {
      {"wpt", 'G', 999, "Undef. error in TBaliza::Retorna_Val_Campo_Global2"},
      {"wpt", 'C', Code(TFieldCode::TotalDistance), "Undef. error in TBaliza::Retorna_Val_Campo_Global2"},
      {"list", 'C', 999, "Undef. error in TBaliza::Retorna_Val_Campo_Global2"},
      {"list", 'G', 999, "Undef. error in TWaypoints::Retorna_Val_Campo_Global2"},
      {"route", 'G', Code(TFieldCode::Latitude), "Undef. error in TRuta::Retorna_Val_Campo_Global2"},
      {"route", 'B', 999, "Undef. error in TRuta::Retorna_Val_Campo_Baliza"},
      {"route", 'C', Code(TFieldCode::HeartRate), "Undef. error in TRuta::Retorna_Val_Campo_Baliza"},
      {"route", 'E', 999, "Undef. error in TRuta::Retorna_Val_Campo_Global2"},
      {"track", 'G', Code(TFieldCode::Latitude), "Undef. error in TTrack::Retorna_Val_Campo_Global2"},
      {"track", 'C', Code(TFieldCode::ProximityRadius), "Undef. error in TTrack::Retorna_Val_Campo_Global2"},
      {"track", 'E', -1, "Undef. error in TTrack::Retorna_Val_Campo_Global2"},
      {"track", 'C', Code(TFieldCode::Latitude), nullptr},  // known: answered
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::Message() << c.element << " " << c.entry << " " << c.code);
    std::unique_ptr<TElementoGPS> e = std::string(c.element) == "wpt" ? std::make_unique<TBaliza>() : Make(c.element);
    std::string error;
    double value = 0, high = 0;
    const bool ok = c.entry == 'G'   ? e->Retorna_Val_Campo_Global2(c.code, value, error)
                    : c.entry == 'C' ? e->Retorna_Val_Campo(c.code, 0, value, error)
                    : c.entry == 'B' ? static_cast<TRuta&>(*e).Retorna_Val_Campo_Baliza(c.code, 0, value, error)
                                     : e->Retorna_Extremos_Campo(c.code, value, high, error);
    EXPECT_EQ(ok, c.message == nullptr);
    EXPECT_EQ(error, c.message ? c.message : "");
  }
}

TEST(FieldAccess, ValuesOfKnownFields) {
  // Times are day counts: seconds carry about a microsecond of rounding,
  // hence the tolerances on values divided by a time.
  const struct {
    const char* element;
    TFieldCode code;
    int index;  // -1: the element's Global2
    double expected, tolerance;
  } cases[] = {
      {"track", TFieldCode::Altitude, 2, 540, 0},
      {"track", TFieldCode::DistanceFromStart, 2, 200, 1e-6},
      {"track", TFieldCode::Speed, 0, 0, 0},
      {"track", TFieldCode::Speed, 1, 36, 1e-4},  // 100 m in 10 s
      {"track", TFieldCode::ClimbRate, 2, 2, 1e-5},
      {"track", TFieldCode::Course, 1, 90, 1e-9},
      {"track", TFieldCode::HeartRate, 1, 140, 0},
      {"track", TFieldCode::HeartRate, 0, -1, 0},
      {"track", TFieldCode::Temperature, 0, 273.15, 1e-9},
      {"track", TFieldCode::AltitudeBarometric, 0, -9999, 0},
      {"track", TFieldCode::ElapsedTime, 2, 20, 1e-5},
      {"track", TFieldCode::TotalDistance, 1, 200, 1e-6},  // an element code with an index
      {"track", TFieldCode::Duration, -1, 20, 1e-5},
      {"track", TFieldCode::Ascent, -1, 40, 0},
      {"route", TFieldCode::DistanceFromStart, 1, 500, 1e-6},  // through the shape point
      {"route", TFieldCode::LegDistance, 2, 0, 0},
      {"route", TFieldCode::Altitude, 1, -9999, 0},
      {"route", TFieldCode::TotalDistance, -1, 600, 1e-6},
      {"route", TFieldCode::MinAltitude, -1, 100, 0},
      {"list", TFieldCode::Time, 0, -1, 0},
      {"list", TFieldCode::SizeByte, 0, -1, 0},
      {"list", TFieldCode::MaxAltitude, -1, 2900, 0},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::Message() << c.element << " " << static_cast<int>(c.code) << " " << c.index);
    const std::unique_ptr<TElementoGPS> e = Make(c.element);
    std::string error;
    double value = 12345;
    const bool ok = c.index < 0 ? e->Retorna_Val_Campo_Global2(Code(c.code), value, error)
                                : e->Retorna_Val_Campo(Code(c.code), static_cast<size_t>(c.index), value, error);
    ASSERT_TRUE(ok) << error;
    EXPECT_NEAR(value, c.expected, c.tolerance);
  }
}

TEST(FieldAccess, ExtremesSkipAbsentValues) {
  const struct {
    const char* element;
    TFieldCode code;
    double low, high;
    const char* error;
  } cases[] = {
      {"track", TFieldCode::HeartRate, 140, 140, ""},
      {"track", TFieldCode::Temperature, 273.15, 274.15, ""},
      {"track", TFieldCode::TotalDistance, 200, 200, ""},  // an element code: its value twice
      {"track", TFieldCode::Cadence, 0, 0, kFieldNoValues},
      {"list", TFieldCode::Altitude, 800, 2900, ""},  // the unknown altitude is skipped
      {"route", TFieldCode::DistanceFromStart, 0, 600, ""},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::Message() << c.element << " " << static_cast<int>(c.code));
    std::string error;
    double low = 0, high = 0;
    EXPECT_EQ(Make(c.element)->Retorna_Extremos_Campo(Code(c.code), low, high, error), *c.error == '\0');
    EXPECT_EQ(error, c.error);
    EXPECT_NEAR(low, c.low, 1e-6);
    EXPECT_NEAR(high, c.high, 1e-6);
    EXPECT_FALSE(Make(c.element)->Retorna_Val_Campo(Code(TFieldCode::Latitude), 3, low, error));
    EXPECT_EQ(error, kFieldIndexOutOfRange);
  }
}

}  // namespace
}  // namespace velantis
