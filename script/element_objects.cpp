#include "script/element_objects.h"

#include "script/velan_script_base.h"

namespace velantis {

TElementoGPS& TElementObject::Element() {
  switch (Kind()) {
    case TObjectKind::Route: return file->element.route;
    case TObjectKind::Track: return file->element.track;
    default: return file->element.waypoints;
  }
}

TObjectKind ObjectKindOf(TElementKind kind) {
  switch (kind) {
    case TElementKind::Route: return TObjectKind::Route;
    case TElementKind::Track: return TObjectKind::Track;
    default: return TObjectKind::Waypoints;
  }
}

TBaliza* TWaypointRef::Get() const {
  if (!file) return nullptr;
  TElementFile& element = file->element;
  if (element.kind == TElementKind::Route)
    return index < element.route.Count() ? &element.route.Point(index).baliza : nullptr;
  return index < element.waypoints.Count() ? &element.waypoints.Baliza(index) : nullptr;
}

TVarVelanScript WaypointReference(TVelanScriptBase& script, const TWaypointRef& ref) {
  TVarVelanScript value;
  value.SetObject(script.Objects().View(ref.file.get(), ref.index, TObjectKind::Waypoint,
                                        [&] { return std::make_shared<TWaypointObject>(ref); }));
  return value;
}

TVarVelanScript CoordReference(TVelanScriptBase& script, const TWaypointRef& ref) {
  TVarVelanScript value;
  value.SetObject(script.Objects().View(ref.file.get(), ref.index, TObjectKind::Coord,
                                        [&] { return std::make_shared<TCoordObject>(ref); }));
  return value;
}

bool TCoordObject::Read(double& latDeg, double& lonDeg) const {
  if (!waypoint.file) {
    latDeg = lat;
    lonDeg = lon;
    return true;
  }
  const TBaliza* baliza = waypoint.Get();
  if (!baliza) return false;
  latDeg = baliza->Latitude();
  lonDeg = baliza->Longitude();
  return true;
}

bool TCoordObject::Write(double latDeg, double lonDeg) {
  if (!waypoint.file) {
    lat = latDeg;
    lon = lonDeg;
    return true;
  }
  TBaliza* baliza = waypoint.Get();
  if (!baliza) return false;
  baliza->SetPosition(latDeg, lonDeg);
  return true;
}

}  // namespace velantis
