// Routes and tracks.
//
//   route.Elem(i), route[i]     the route's waypoint at index i (from 0)
//   track.Elem(i), track[i]     a TCoord with the position of point i
//   track.CreateNewTrackPoint(lat, lon, alt)  appends a point (degrees,
//                               WGS 84; altitude in metres, -9999 unknown)
//   track.Recalculate()         recomputes distances and statistics
// and the methods every element has (element_methods.h).
#include <cmath>

#include "core/altitude.h"
#include "script/element_methods.h"
#include "script/object_methods.h"
#include "script/velan_script_base.h"

namespace velantis {

namespace {

// Beyond any altitude a track holds (and within a float): larger is unknown.
constexpr double kLargestAltitudeM = 1e7;

TElementObject& Element(TScriptObject& self) { return static_cast<TElementObject&>(self); }

void RouteElem(TBuiltinCall& call, TScriptObject& self) {
  TElementObject& route = Element(self);
  const size_t index = IndexArgument(call, 0, route.file->element.route.Count());
  call.result = WaypointReference(call.script, TWaypointRef{route.file, index});
}

void TrackElem(TBuiltinCall& call, TScriptObject& self) {
  const TTrack& track = Element(self).file->element.track;
  const TrkPnt& point = track.Point(IndexArgument(call, 0, track.Count()));
  call.result = call.script.Reference(std::make_shared<TCoordObject>(point.lat, point.lon));
}

void CreateNewTrackPoint(TBuiltinCall& call, TScriptObject& self) {
  const double lat = call.Number(0), lon = call.Number(1), altitude = call.Number(2);
  TrkPnt point;
  point.lat = lat;
  point.lon = lon;
  point.altitude = std::fabs(altitude) < kLargestAltitudeM ? static_cast<float>(altitude) : kAltitudeUnknownM;
  if (!IsKnownAltitude(point.altitude)) point.altitude = kAltitudeUnknownM;
  Element(self).file->element.track.Anyade_Punt(point);
}

void Recalculate(TBuiltinCall&, TScriptObject& self) { Element(self).file->element.track.Recalculate(); }

constexpr TObjectBuiltin kRouteMethods[] = {
    {"Elem", 1, RouteElem},         {"Save", 0, ElementSave},
    {"SaveAs", 1, ElementSaveAs},   {"Untouch", 0, ElementUntouch},
    {"Load", 1, ElementLoad},       {"Count", 0, ElementCount},
    {"Clear", 0, ElementClear},     {"Close", 0, ElementClose},
    {"GetPropertyStr", 1, GetPropertyStr}, {"Reproject", 1, Reproject},
};

constexpr TObjectBuiltin kTrackMethods[] = {
    {"CreateNewTrackPoint", 3, CreateNewTrackPoint}, {"Recalculate", 0, Recalculate},
    {"Elem", 1, TrackElem},                          {"Save", 0, ElementSave},
    {"SaveAs", 1, ElementSaveAs},                    {"Untouch", 0, ElementUntouch},
    {"Load", 1, ElementLoad},                        {"Count", 0, ElementCount},
    {"Clear", 0, ElementClear},                      {"Close", 0, ElementClose},
    {"GetPropertyStr", 1, GetPropertyStr},           {"Reproject", 1, Reproject},
};

}  // namespace

std::span<const TObjectBuiltin> RouteMethods() { return kRouteMethods; }
std::span<const TObjectBuiltin> TrackMethods() { return kTrackMethods; }

}  // namespace velantis
