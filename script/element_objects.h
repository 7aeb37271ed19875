// The objects that stand for elements of core/: a waypoint list, a route or
// a track (the loaded file that holds it), a waypoint of a list or route (by
// index), and a coordinate (its own, or a live view of a waypoint's
// position: moving the coordinate moves the waypoint).
#pragma once

#include <memory>

#include "core/baliza.h"
#include "script/script_host.h"
#include "script/script_objects.h"
#include "script/var_velan_script.h"

namespace velantis {

class TElementObject : public TScriptObject {
public:
  TElementObject(TObjectKind kind, std::shared_ptr<TLoadedFile> loaded)
      : TScriptObject(kind), file(std::move(loaded)) {}
  // The list, route or track by the object's kind.
  TElementoGPS& Element();
  std::shared_ptr<TLoadedFile> file;
};

// The object kind of what a file holds.
TObjectKind ObjectKindOf(TElementKind kind);

// A waypoint of a list or route by its index: the reference stays valid
// while the element has a waypoint there.
struct TWaypointRef {
  std::shared_ptr<TLoadedFile> file;
  size_t index = 0;
  // nullptr once the element has no waypoint at the index.
  TBaliza* Get() const;
};

class TVelanScriptBase;

// The script's reference to the waypoint, and to its coordinate view.
TVarVelanScript WaypointReference(TVelanScriptBase& script, const TWaypointRef& ref);
TVarVelanScript CoordReference(TVelanScriptBase& script, const TWaypointRef& ref);

class TWaypointObject : public TScriptObject {
public:
  explicit TWaypointObject(TWaypointRef at) : TScriptObject(TObjectKind::Waypoint), ref(std::move(at)) {}
  TBaliza* Get() const { return ref.Get(); }
  TWaypointRef ref;
};

class TCoordObject : public TScriptObject {
public:
  TCoordObject(double latDeg, double lonDeg) : TScriptObject(TObjectKind::Coord), lat(latDeg), lon(lonDeg) {}
  explicit TCoordObject(TWaypointRef of) : TScriptObject(TObjectKind::Coord), waypoint(std::move(of)) {}
  // Degrees on WGS 84; false when the waypoint viewed is gone.
  bool Read(double& latDeg, double& lonDeg) const;
  bool Write(double latDeg, double lonDeg);

  double lat = 0, lon = 0;
  TWaypointRef waypoint;  // no file: the coordinate is its own
};

}  // namespace velantis
