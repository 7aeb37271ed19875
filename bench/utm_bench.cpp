// UTM round trips on 1,000,000 points spread over Europe (zones 29 to 35,
// 36°N..70°N, each point in its own zone): latitude/longitude -> UTM ->
// latitude/longitude on WGS 84, by Velantis (LatLonToUtm/UtmToLatLon, which
// find the zone and build the zone's projection per point, and the bare
// TTransverseMercator of each zone) and by PROJ's proj_trans_generic on
// "unitconvert deg->rad + utm" pipelines, with its default (Poder/Engsager)
// transverse Mercator and with +approx.
//
// Each run also measures the agreement: the largest distance between the
// Velantis and the PROJ default UTM coordinates ("fwd_diff_mm") and the
// largest round-trip error ("roundtrip_mm"). At the end the Velantis/PROJ
// time ratios are printed.
#include <benchmark/benchmark.h>
#include <proj.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <map>
#include <numbers>
#include <random>
#include <string>
#include <vector>

#include "bench/bench_run.h"
#include "geodesy/transverse_mercator.h"
#include "geodesy/utm.h"

namespace {

using velantis::TLonLat;
using velantis::TPlanePoint;

constexpr size_t kPoints = 1'000'000;
constexpr int kFirstZone = 29, kLastZone = 35;
constexpr int kZones = kLastZone - kFirstZone + 1;
constexpr double kWgs84A = 6378137, kWgs84Rf = 298.257223563;  // NIMA TR8350.2
constexpr double kRadiansPerDegree = std::numbers::pi / 180;

struct TZoneSpan {
  int zone;
  size_t first, count;
};

struct TPoints {
  std::vector<TLonLat> geo;
  std::vector<TZoneSpan> spans;
};

const TPoints& EuropePoints() {
  static const TPoints points = [] {
    TPoints p;
    std::mt19937_64 random(20261124);
    std::uniform_real_distribution<double> inside(0.0005, 5.9995), lat(36, 70);
    for (int zone = kFirstZone; zone <= kLastZone; ++zone) {
      const size_t count = kPoints / kZones + (zone == kLastZone ? kPoints % kZones : 0);
      p.spans.push_back({zone, p.geo.size(), count});
      const double west = 6.0 * zone - 186;
      for (size_t i = 0; i < count; ++i) p.geo.push_back({west + inside(random), lat(random)});
    }
    return p;
  }();
  return points;
}

struct TResults {
  std::vector<TPlanePoint> plane;
  std::vector<TLonLat> back;
};

std::map<std::string, double>& SecondsPerRun() {
  static std::map<std::string, double> seconds;
  return seconds;
}
std::map<std::string, TResults>& Results() {
  static std::map<std::string, TResults> results;
  return results;
}

// Times the loop body itself in CPU time of this thread, so that the ratios
// printed at the end compare like with like on a machine busy with other work.
template <class TBody>
void Measure(benchmark::State& state, const std::string& name, TBody body) {
  double total = 0;
  for (auto _ : state) {
    const double start = velantis::bench::ThreadCpuSeconds();
    body();
    total += velantis::bench::ThreadCpuSeconds() - start;
  }
  SecondsPerRun()[name] = total / static_cast<double>(state.iterations());
  state.SetItemsProcessed(static_cast<int64_t>(state.iterations() * kPoints));
}

void Agreement(benchmark::State& state, const TResults& ours) {
  const auto found = Results().find("proj");
  if (found == Results().end()) return;
  const auto& geo = EuropePoints().geo;
  double forward = 0, roundTrip = 0;
  for (size_t i = 0; i < kPoints; ++i) {
    forward = std::max(forward, std::hypot(ours.plane[i].x - found->second.plane[i].x,
                                           ours.plane[i].y - found->second.plane[i].y));
    const double dLat = (ours.back[i].lat - geo[i].lat) * kRadiansPerDegree * kWgs84A;
    const double dLon = (ours.back[i].lon - geo[i].lon) * kRadiansPerDegree * kWgs84A * std::cos(geo[i].lat * kRadiansPerDegree);
    roundTrip = std::max(roundTrip, std::hypot(dLat, dLon));
  }
  state.counters["fwd_diff_mm"] = forward * 1000;
  state.counters["roundtrip_mm"] = roundTrip * 1000;
}

void BM_Utm_Velantis(benchmark::State& state) {
  int configured = 0;
  velantis::TListaDatums list(configured);
  velantis::TDatum wgs84;
  wgs84.name = "WGS 84";
  wgs84.a = kWgs84A;
  wgs84.invFlattening = kWgs84Rf;
  list.Add(wgs84);
  const auto& geo = EuropePoints().geo;
  TResults out{std::vector<TPlanePoint>(kPoints), std::vector<TLonLat>(kPoints)};
  bool ok = true;
  Measure(state, "velantis", [&] {
    std::string message;
    for (size_t i = 0; i < kPoints; ++i) {
      velantis::TUtmPosition utm;
      ok &= velantis::LatLonToUtm(geo[i], 0, 0, list, utm, message);
      ok &= velantis::UtmToLatLon(utm, 0, 0, list, out.back[i], message);
      out.plane[i] = {utm.x, utm.y};
    }
    benchmark::DoNotOptimize(out.back.data());
  });
  if (!ok) state.SkipWithError("a conversion failed");
  Agreement(state, out);
}

void BM_Utm_VelantisZoneProjection(benchmark::State& state) {
  velantis::TDatum wgs84;
  wgs84.a = kWgs84A;
  wgs84.invFlattening = kWgs84Rf;
  wgs84.ComputeDerived();
  const auto& points = EuropePoints();
  TResults out{std::vector<TPlanePoint>(kPoints), std::vector<TLonLat>(kPoints)};
  bool ok = true;
  Measure(state, "velantis_tm", [&] {
    std::string message;
    for (const auto& span : points.spans) {
      const velantis::TTransverseMercator tm(wgs84, velantis::UtmZoneParams({static_cast<int8_t>(span.zone), 'T'}));
      for (size_t i = span.first; i < span.first + span.count; ++i) {
        ok &= tm.Forward(points.geo[i], out.plane[i], message);
        ok &= tm.Inverse(out.plane[i], out.back[i], message);
      }
    }
    benchmark::DoNotOptimize(out.back.data());
  });
  if (!ok) state.SkipWithError("a conversion failed");
  Agreement(state, out);
}

void RunProj(benchmark::State& state, const std::string& name, const char* variant) {
  PJ_CONTEXT* context = proj_context_create();
  std::vector<PJ*> zones;
  for (int zone = kFirstZone; zone <= kLastZone; ++zone) {
    const std::string pipeline =
        "+proj=pipeline +step +proj=unitconvert +xy_in=deg +xy_out=rad +step +proj=utm +zone=" +
        std::to_string(zone) + " " + variant + " +ellps=WGS84";
    PJ* pj = proj_create(context, pipeline.c_str());
    if (!pj) {
      state.SkipWithError(("PROJ refused " + pipeline).c_str());
      for (PJ* p : zones) proj_destroy(p);
      proj_context_destroy(context);
      return;
    }
    zones.push_back(pj);
  }
  const auto& points = EuropePoints();
  TResults out{std::vector<TPlanePoint>(kPoints), std::vector<TLonLat>(kPoints)};
  Measure(state, name, [&] {
    out.back = points.geo;
    for (size_t z = 0; z < zones.size(); ++z) {
      const auto& span = points.spans[z];
      double* x = &out.back[span.first].lon;
      double* y = &out.back[span.first].lat;
      proj_trans_generic(zones[z], PJ_FWD, x, sizeof(TLonLat), span.count, y, sizeof(TLonLat), span.count,
                         nullptr, 0, 0, nullptr, 0, 0);
      for (size_t i = span.first; i < span.first + span.count; ++i)
        out.plane[i] = {out.back[i].lon, out.back[i].lat};
      proj_trans_generic(zones[z], PJ_INV, x, sizeof(TLonLat), span.count, y, sizeof(TLonLat), span.count,
                         nullptr, 0, 0, nullptr, 0, 0);
    }
    benchmark::DoNotOptimize(out.back.data());
  });
  if (name == "proj") Results()["proj"] = out;
  Agreement(state, out);
  for (PJ* p : zones) proj_destroy(p);
  proj_context_destroy(context);
}

void BM_Utm_Proj(benchmark::State& state) { RunProj(state, "proj", ""); }
void BM_Utm_ProjApprox(benchmark::State& state) { RunProj(state, "proj_approx", "+approx"); }

// PROJ first: the Velantis runs compare their coordinates with its results.
BENCHMARK(BM_Utm_Proj)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Utm_ProjApprox)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Utm_Velantis)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Utm_VelantisZoneProjection)->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) {
  if (!velantis::bench::RunBenchmarks(argc, argv)) return 1;
  const auto& seconds = SecondsPerRun();
  for (const char* ours : {"velantis", "velantis_tm"}) {
    for (const char* theirs : {"proj", "proj_approx"}) {
      if (seconds.count(ours) && seconds.count(theirs))
        std::printf("%s is %.2fx faster than %s\n", ours, seconds.at(theirs) / seconds.at(ours), theirs);
    }
  }
  return 0;
}
