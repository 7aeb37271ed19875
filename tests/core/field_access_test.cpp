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

// Every entry point over every element: G the element's Global2, C a point's
// field, B a route waypoint's own, E the extremes over the points. Times are
// day counts: seconds carry about a microsecond of rounding, hence the
// tolerances on values divided by a time.
TEST(FieldAccess, ValuesExtremesAndRefusals) {
  const int latitude = Code(TFieldCode::Latitude);
  const struct {
    const char* element;
    char entry;
    int code;
    int index;
    double value, high, tolerance;
    const char* message;  // nullptr: answered
  } cases[] = {
      {"wpt", 'G', 999, 0, 0, 0, 0, "Undef. error in TBaliza::Retorna_Val_Campo_Global2"},
      {"wpt", 'C', Code(TFieldCode::TotalDistance), 0, 0, 0, 0, "Undef. error in TBaliza::Retorna_Val_Campo_Global2"},
      {"list", 'C', 999, 0, 0, 0, 0, "Undef. error in TBaliza::Retorna_Val_Campo_Global2"},
      {"list", 'G', 999, 0, 0, 0, 0, "Undef. error in TWaypoints::Retorna_Val_Campo_Global2"},
      {"route", 'G', latitude, 0, 0, 0, 0, "Undef. error in TRuta::Retorna_Val_Campo_Global2"},
      {"route", 'B', 999, 0, 0, 0, 0, "Undef. error in TRuta::Retorna_Val_Campo_Baliza"},
      {"route", 'C', Code(TFieldCode::HeartRate), 0, 0, 0, 0, "Undef. error in TRuta::Retorna_Val_Campo_Baliza"},
      {"route", 'E', 999, 0, 0, 0, 0, "Undef. error in TRuta::Retorna_Val_Campo_Global2"},
      {"track", 'G', latitude, 0, 0, 0, 0, "Undef. error in TTrack::Retorna_Val_Campo_Global2"},
      {"track", 'C', Code(TFieldCode::ProximityRadius), 0, 0, 0, 0, "Undef. error in TTrack::Retorna_Val_Campo_Global2"},
      {"track", 'E', -1, 0, 0, 0, 0, "Undef. error in TTrack::Retorna_Val_Campo_Global2"},
      {"track", 'C', latitude, 3, 0, 0, 0, kFieldIndexOutOfRange},
      {"route", 'C', latitude, 3, 0, 0, 0, kFieldIndexOutOfRange},
      {"list", 'C', latitude, 3, 0, 0, 0, kFieldIndexOutOfRange},
      {"track", 'C', Code(TFieldCode::Altitude), 2, 540, 0, 0, nullptr},
      {"track", 'C', Code(TFieldCode::DistanceFromStart), 2, 200, 0, 1e-6, nullptr},
      {"track", 'C', Code(TFieldCode::Speed), 0, 0, 0, 0, nullptr},
      {"track", 'C', Code(TFieldCode::Speed), 2, 36, 0, 1e-4, nullptr},  // 100 m in the last 10 s
      {"track", 'C', Code(TFieldCode::ClimbRate), 2, 2, 0, 1e-5, nullptr},
      {"track", 'C', Code(TFieldCode::Course), 1, 90, 0, 1e-9, nullptr},
      {"track", 'C', Code(TFieldCode::HeartRate), 1, 140, 0, 0, nullptr},
      {"track", 'C', Code(TFieldCode::HeartRate), 0, -1, 0, 0, nullptr},
      {"track", 'C', Code(TFieldCode::Temperature), 0, 273.15, 0, 1e-9, nullptr},
      {"track", 'C', Code(TFieldCode::AltitudeBarometric), 0, -9999, 0, 0, nullptr},
      {"track", 'C', Code(TFieldCode::ElapsedTime), 2, 20, 0, 1e-5, nullptr},
      // An element code with an index, and in the extremes its value twice.
      {"track", 'C', Code(TFieldCode::TotalDistance), 1, 200, 0, 1e-6, nullptr},
      {"track", 'G', Code(TFieldCode::Duration), 0, 20, 0, 1e-5, nullptr},
      {"track", 'G', Code(TFieldCode::Ascent), 0, 40, 0, 0, nullptr},
      {"route", 'C', Code(TFieldCode::DistanceFromStart), 1, 500, 0, 1e-6, nullptr},  // through the shape point
      {"route", 'C', Code(TFieldCode::LegDistance), 2, 0, 0, 0, nullptr},
      {"route", 'C', Code(TFieldCode::Altitude), 1, -9999, 0, 0, nullptr},
      {"route", 'G', Code(TFieldCode::TotalDistance), 0, 600, 0, 1e-6, nullptr},
      {"route", 'G', Code(TFieldCode::MinAltitude), 0, 100, 0, 0, nullptr},
      {"list", 'C', Code(TFieldCode::Time), 0, -1, 0, 0, nullptr},
      {"list", 'C', Code(TFieldCode::SizeByte), 0, -1, 0, 0, nullptr},
      {"list", 'G', Code(TFieldCode::MaxAltitude), 0, 2900, 0, 0, nullptr},
      {"track", 'E', Code(TFieldCode::HeartRate), 0, 140, 140, 0, nullptr},
      {"track", 'E', Code(TFieldCode::Temperature), 0, 273.15, 274.15, 1e-9, nullptr},
      {"track", 'E', Code(TFieldCode::TotalDistance), 0, 200, 200, 1e-6, nullptr},
      {"track", 'E', Code(TFieldCode::Cadence), 0, 0, 0, 0, kFieldNoValues},
      {"list", 'E', Code(TFieldCode::Altitude), 0, 800, 2900, 0, nullptr},  // the unknown altitude is skipped
      {"route", 'E', Code(TFieldCode::DistanceFromStart), 0, 0, 600, 1e-6, nullptr},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::Message() << c.element << " " << c.entry << " " << c.code << " " << c.index);
    std::unique_ptr<TElementoGPS> e = std::string(c.element) == "wpt" ? std::make_unique<TBaliza>() : Make(c.element);
    std::string error;
    double value = 0, high = 0;
    const size_t index = static_cast<size_t>(c.index);
    const bool ok = c.entry == 'G'   ? e->Retorna_Val_Campo_Global2(c.code, value, error)
                    : c.entry == 'C' ? e->Retorna_Val_Campo(c.code, index, value, error)
                    : c.entry == 'B' ? static_cast<TRuta&>(*e).Retorna_Val_Campo_Baliza(c.code, index, value, error)
                                     : e->Retorna_Extremos_Campo(c.code, value, high, error);
    EXPECT_EQ(ok, c.message == nullptr);
    EXPECT_EQ(error, c.message ? c.message : "");
    EXPECT_NEAR(value, c.value, c.tolerance);
    EXPECT_NEAR(high, c.high, c.tolerance);
  }
}

}  // namespace
}  // namespace velantis
