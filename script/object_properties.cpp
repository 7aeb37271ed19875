#include "script/object_properties.h"

#include "script/element_objects.h"
#include "script/rect_proj.h"
#include "script/script_error.h"
#include "script/velan_script_base.h"

namespace velantis {

namespace {

struct TNamed {
  std::string_view name;
  int id;
};

constexpr TNamed kProperties[] = {
    {"Name", kPropName},           {"Description", kPropDescription},
    {"shortname", kPropShortName}, {"symbol", kPropSymbol},
    {"visible", kPropVisible},     {"Associated", kPropAssociated},
    {"AllChilds", kPropAllChilds}, {"Layer", kPropLayer},
    {"LayerId", kPropLayerId},     {"ShapeType", kPropShapeType},
    {"FillColor", kPropFillColor}, {"ImageName", kPropImageName},
    {"BottomAltitude", kPropBottomAltitude}, {"TopAltitude", kPropTopAltitude},
    {"MaximunZoom", kPropMaximunZoom},       {"MinimumZoom", kPropMinimumZoom},
    {"Projection", kPropProjection},         {"Coord", kPropCoord},
    {"Rect", kPropRect},
    {"lat", kPropLat}, {"lon", kPropLon},
    {"lat1", kPropLat1}, {"lon1", kPropLon1}, {"lat2", kPropLat2}, {"lon2", kPropLon2},
    {"x1", kPropX1},   {"y1", kPropY1},   {"x2", kPropX2},   {"y2", kPropY2},
};

constexpr TNamed kRectParts[] = {
    {"lat1", kPropLat1}, {"lon1", kPropLon1},   {"lat2", kPropLat2},
    {"lon2", kPropLon2}, {"width", kPropWidth}, {"height", kPropHeight},
};

int Find(std::span<const TNamed> table, std::string_view name) {
  for (const TNamed& entry : table)
    if (entry.name == name) return entry.id;
  return -1;
}

[[noreturn]] void Fail(const TBuiltinCall& call, const char* message, const std::string& name = {}) {
  throw TScriptError(WithName(message, name), call.at);
}

// The extent as the rectangle's parts: north-west corner, south-east corner.
bool RectPart(const TBoundingBox& box, int part, double& value) {
  switch (part) {
    case kPropLat1: value = box.maxLat; return true;
    case kPropLon1: value = box.minLon; return true;
    case kPropLat2: value = box.minLat; return true;
    case kPropLon2: value = box.maxLon; return true;
    case kPropWidth: value = box.maxLon - box.minLon; return true;
    case kPropHeight: value = box.maxLat - box.minLat; return true;
    default: return false;
  }
}

TBoundingBox ExtentOf(TElementObject& object) {
  switch (object.Kind()) {
    case TObjectKind::Route: return object.file->element.route.Extent();
    case TObjectKind::Track: {
      TBoundingBox box;
      for (const TrkPnt& point : object.file->element.track.Points()) box.Add(point.lat, point.lon);
      return box;
    }
    default: return object.file->element.waypoints.Extent();
  }
}

std::string TextOf(TBuiltinCall& call, const TVarVelanScript& value) {
  if (!value.IsString() && !value.IsNumber()) Fail(call, kNumericOrString);
  return value.AsText();
}

// Lists, routes and tracks.
void ReadElement(TBuiltinCall& call, TElementObject& object, int id, const std::string& name) {
  TElementoGPS& element = object.Element();
  if (id == kPropName) return call.result.SetString(element.Name());
  if (id == kPropDescription) return call.result.SetString(element.Description());
  if (id == kPropCoord) Fail(call, kNoCoordinate);
  double value = 0;
  if (id >= kViaRect && RectPart(ExtentOf(object), id - kViaRect, value)) return call.result.SetNumber(value);
  Fail(call, kNoProperty, name);
}

void AssignElement(TBuiltinCall& call, TElementObject& object, int id, const std::string& name,
                   const TVarVelanScript& assigned) {
  if (id == kPropName) return object.Element().SetName(TextOf(call, assigned));
  if (id == kPropDescription) return object.Element().SetDescription(TextOf(call, assigned));
  if (id == kPropCoord) Fail(call, kNoCoordinate);
  Fail(call, kNoProperty, name);
}

TBaliza& Live(TBuiltinCall& call, TWaypointObject& object) {
  TBaliza* baliza = object.Get();
  if (!baliza) Fail(call, kErrorReadingProperty);
  return *baliza;
}

void ReadWaypoint(TBuiltinCall& call, TWaypointObject& object, int id, const std::string& name) {
  TBaliza& baliza = Live(call, object);
  switch (id) {
    case kPropName: return call.result.SetString(baliza.Name());
    case kPropDescription: return call.result.SetString(baliza.Description());
    case kPropSymbol: return call.result.SetString(baliza.Symbol());
    case kPropCoord: call.result = CoordReference(call.script, object.ref); return;
    default: Fail(call, kNoProperty, name);
  }
}

void AssignWaypoint(TBuiltinCall& call, TWaypointObject& object, int id, const std::string& name,
                    const TVarVelanScript& assigned) {
  TBaliza& baliza = Live(call, object);
  switch (id) {
    case kPropName: return baliza.SetName(TextOf(call, assigned));
    case kPropDescription: return baliza.SetDescription(TextOf(call, assigned));
    case kPropSymbol: return baliza.SetSymbol(TextOf(call, assigned));
    case kPropCoord: {
      TScriptObject* from = assigned.IsObject() ? call.script.Objects().At(assigned.number) : nullptr;
      double lat = 0, lon = 0;
      if (!from || from->Kind() != TObjectKind::Coord || !static_cast<TCoordObject*>(from)->Read(lat, lon))
        Fail(call, kErrorInCoord);
      return baliza.SetPosition(lat, lon);
    }
    default: Fail(call, kNoProperty, name);
  }
}

void ReadCoord(TBuiltinCall& call, TCoordObject& object, int id) {
  double lat = 0, lon = 0;
  if (id != kPropLat && id != kPropLon) Fail(call, kInvalidInCoord);
  if (!object.Read(lat, lon)) Fail(call, kErrorReadingProperty);
  call.result.SetNumber(id == kPropLat ? lat : lon);
}

void AssignCoord(TBuiltinCall& call, TCoordObject& object, int id, const TVarVelanScript& assigned) {
  double lat = 0, lon = 0;
  if (id != kPropLat && id != kPropLon) Fail(call, kInvalidInCoord);
  if (!assigned.IsNumber()) Fail(call, kErrorInCoord);
  if (!object.Read(lat, lon)) Fail(call, kErrorReadingProperty);
  (id == kPropLat ? lat : lon) = assigned.number;
  object.Write(lat, lon);
}

TScriptObject* ObjectOf(TBuiltinCall& call, const TVarVelanScript& value, const std::string& name) {
  if (!value.IsObject()) Fail(call, kNoProperty, name);
  TScriptObject* object = call.script.Objects().At(value.number);
  if (!object) Fail(call, kWrongPtr);
  return object;
}

// A known name that no kind reads that way.
void CheckKnown(TBuiltinCall& call, int id, const std::string& name) {
  if (id < 0) Fail(call, kUnknownProperty, name);
  if (id == kPropRect) Fail(call, kCannotReadRect);
}

}  // namespace

void ReadProperty(TBuiltinCall& call, const TVarVelanScript& value, int id, const std::string& name) {
  TScriptObject* object = ObjectOf(call, value, name);
  switch (object->Kind()) {
    case TObjectKind::Coord: return ReadCoord(call, *static_cast<TCoordObject*>(object), id);
    case TObjectKind::RectProj: return ReadRectProj(call, *static_cast<TRectProjObject*>(object), id);
    case TObjectKind::Broadcast: Fail(call, kErrorInBroadcast);
    default: break;
  }
  CheckKnown(call, id, name);
  switch (object->Kind()) {
    case TObjectKind::Waypoint: return ReadWaypoint(call, *static_cast<TWaypointObject*>(object), id, name);
    case TObjectKind::Array: Fail(call, kNoProperty, name);
    default: return ReadElement(call, *static_cast<TElementObject*>(object), id, name);
  }
}

void AssignProperty(TBuiltinCall& call, const TVarVelanScript& value, int id, const std::string& name,
                    const TVarVelanScript& assigned) {
  TScriptObject* object = ObjectOf(call, value, name);
  switch (object->Kind()) {
    case TObjectKind::Coord: return AssignCoord(call, *static_cast<TCoordObject*>(object), id, assigned);
    case TObjectKind::RectProj:
      return AssignRectProj(call, *static_cast<TRectProjObject*>(object), id, assigned);
    case TObjectKind::Broadcast: Fail(call, kErrorInBroadcast);
    default: break;
  }
  CheckKnown(call, id, name);
  switch (object->Kind()) {
    case TObjectKind::Waypoint:
      return AssignWaypoint(call, *static_cast<TWaypointObject*>(object), id, name, assigned);
    case TObjectKind::Array: Fail(call, kNoProperty, name);
    default: return AssignElement(call, *static_cast<TElementObject*>(object), id, name, assigned);
  }
}


int FindProperty(std::string_view name) { return Find(kProperties, name); }
int FindRectPart(std::string_view name) { return Find(kRectParts, name); }

}  // namespace velantis
