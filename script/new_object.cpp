// Free functions on objects:
//   new(type)                 a new object of type "TWaypoints", "TCoord"
//                             (0, 0), "TArray", "TRectProj" (all 0) or
//                             "TBroadcast"; `new` is a function here, not a
//                             keyword: w = new("TWaypoints");
//   SetProjection(def, datum) the working projection: "UTM 30T" (zone and
//                             band) or a projection of the catalogue with its
//                             fixed parameters ("Irish Grid", "bng", ...), on
//                             the named datum of the datum list
//
// A TBroadcast stands for a live position broadcast, which this build does
// not have: it has no methods, and its properties fail with "Error in
// TBroadcast".
#include "geodesy/projection_catalogue.h"
#include "geodesy/utm.h"
#include "script/array_object.h"
#include "script/element_methods.h"
#include "script/object_functions.h"
#include "script/object_methods.h"
#include "script/rect_proj.h"
#include "script/script_error.h"
#include "script/velan_script_base.h"

namespace velantis {

namespace {

class TBroadcastObject : public TScriptObject {
public:
  TBroadcastObject() : TScriptObject(TObjectKind::Broadcast) {}
};

template <typename TObject>
TVarVelanScript Make(TVelanScriptBase& script) {
  return script.Reference(std::make_shared<TObject>());
}

TVarVelanScript MakeWaypoints(TVelanScriptBase& script) { return NewElement(script, TElementKind::Waypoints); }
TVarVelanScript MakeCoord(TVelanScriptBase& script) {
  return script.Reference(std::make_shared<TCoordObject>(0.0, 0.0));
}

struct TNewType {
  std::string_view name;
  TVarVelanScript (*make)(TVelanScriptBase& script);
};

constexpr TNewType kNewTypes[] = {
    {"TBroadcast", Make<TBroadcastObject>}, {"TWaypoints", MakeWaypoints}, {"TCoord", MakeCoord},
    {"TArray", Make<TArrayObject>},         {"TRectProj", Make<TRectProjObject>},
};

constexpr std::string_view kUtmPrefix = "UTM ";
constexpr std::string_view kTransverseMercator = "Transversal Mercator";

}  // namespace

void NewObject(TBuiltinCall& call) {
  const std::string& type = call.Text(0);
  for (const TNewType& entry : kNewTypes)
    if (entry.name == type) {
      call.result = entry.make(call.script);
      return;
    }
  throw TScriptError(WithName("Unknown type for new '%s'", type), call.at);
}

void SetProjection(TBuiltinCall& call) {
  const std::string& definition = call.Text(0);
  const std::string& datumName = call.Text(1);
  TScriptHost& host = call.script.Host();
  const int datum = host.Datums().Find(datumName);
  if (datum < 0) throw TScriptError("Unknown datum: " + datumName, call.at);
  std::string message;
  std::unique_ptr<TProjection> projection;
  if (definition.starts_with(kUtmPrefix)) {
    TZonaUTM zone;
    if (ParseUtmZone(std::string_view(definition).substr(kUtmPrefix.size()), zone, message))
      projection = CreateProjection(kTransverseMercator, *host.Datums().Get(datum), UtmZoneParams(zone), message);
  } else {
    projection = CreateProjection(definition, *host.Datums().Get(datum), TProjectionParams{}, message);
  }
  if (!projection) throw TScriptError(message, call.at);
  host.Projection() = {std::move(projection), datum};
}

std::span<const TObjectBuiltin> BroadcastMethods() { return {}; }

}  // namespace velantis
