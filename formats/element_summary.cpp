#include "formats/element_summary.h"

namespace velantis {

namespace {

void AddTime(TElementSummary& summary, TDateTime time) {
  if (time.IsNull()) return;
  if (summary.start.IsNull() || time.Days() < summary.start.Days()) summary.start = time;
  if (summary.end.IsNull() || time.Days() > summary.end.Days()) summary.end = time;
}

void SummarizeWaypoints(const TWaypoints& list, TElementSummary& summary) {
  summary.kind = "waypoints";
  summary.name = list.Name();
  summary.count = list.Count();
  summary.bounds = list.Extent();
  for (const TBaliza& b : list.Balizas()) AddTime(summary, b.Time());
}

void SummarizeRoute(const TRuta& route, TElementSummary& summary) {
  summary.kind = "route";
  summary.name = route.Name();
  summary.count = route.Count();
  summary.bounds = route.Extent();
  for (size_t i = 0; i < route.Count(); ++i) AddTime(summary, route.Point(i).baliza.Time());
  summary.hasDistance = true;
  summary.distanceM = route.TotalDistance();
}

void SummarizeTrack(const TTrack& track, TElementSummary& summary) {
  summary.kind = "track";
  summary.name = track.Name();
  summary.count = track.Count();
  for (size_t i = 0; i < track.Count(); ++i) {
    const TrkPnt& p = track.Point(i);
    summary.bounds.Add(p.lat, p.lon);
    AddTime(summary, p.time);
    if (i == 0 || p.StartsSegment()) ++summary.segments;
  }
  summary.hasDistance = true;
  summary.distanceM = track.Statistics().distanceM;
}

}  // namespace

TElementSummary SummarizeElement(const TElementFile& file) {
  TElementSummary summary;
  switch (file.kind) {
    case TElementKind::Waypoints:
      SummarizeWaypoints(file.waypoints, summary);
      break;
    case TElementKind::Route:
      SummarizeRoute(file.route, summary);
      break;
    case TElementKind::Track:
      SummarizeTrack(file.track, summary);
      break;
    case TElementKind::Unknown:
      break;
  }
  return summary;
}

}  // namespace velantis
