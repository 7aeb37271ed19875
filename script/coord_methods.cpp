// TCoord: c.SetCoord_UTM(zone, easting, northing) places the coordinate at
// a UTM position ("30T": zone and band; metres) on the working projection's
// datum (WGS 84 until SetProjection names another). A coordinate that views
// a waypoint moves the waypoint.
#include "geodesy/utm.h"
#include "script/element_objects.h"
#include "script/object_methods.h"
#include "script/script_error.h"
#include "script/velan_script_base.h"

namespace velantis {

namespace {

constexpr int kWgs84 = 0;  // the datum list's first entry

void SetCoordUtm(TBuiltinCall& call, TScriptObject& self) {
  TUtmPosition utm;
  std::string message;
  if (!ParseUtmZone(call.Text(0), utm.zone, message)) throw TScriptError(message, call.at);
  utm.x = call.Number(1);
  utm.y = call.Number(2);
  TScriptHost& host = call.script.Host();
  TLonLat geo;
  if (!UtmToLatLon(utm, host.Projection().datum, kWgs84, host.Datums(), geo, message))
    throw TScriptError(message, call.at);
  if (!static_cast<TCoordObject&>(self).Write(geo.lat, geo.lon))
    throw TScriptError("Error in Coord property", call.at);
}

constexpr TObjectBuiltin kCoordMethods[] = {
    {"SetCoord_UTM", 3, SetCoordUtm},
};

}  // namespace

std::span<const TObjectBuiltin> CoordMethods() { return kCoordMethods; }

}  // namespace velantis
