#include "script/rect_proj.h"

#include <cmath>

#include "script/object_methods.h"
#include "script/object_properties.h"
#include "script/script_error.h"
#include "script/script_host.h"
#include "script/velan_script_base.h"

namespace velantis {

namespace {

TRectProjObject& Rect(TScriptObject& self) { return static_cast<TRectProjObject&>(self); }

void Width(TBuiltinCall& call, TScriptObject& self) {
  call.result.SetNumber(std::fabs(Rect(self).x2 - Rect(self).x1));
}

void Height(TBuiltinCall& call, TScriptObject& self) {
  call.result.SetNumber(std::fabs(Rect(self).y2 - Rect(self).y1));
}

// Outwards whichever corner is the lower one.
void Increase(TBuiltinCall& call, TScriptObject& self) {
  const double metres = call.Number(0);
  TRectProjObject& rect = Rect(self);
  double& left = rect.x1 <= rect.x2 ? rect.x1 : rect.x2;
  double& right = rect.x1 <= rect.x2 ? rect.x2 : rect.x1;
  double& bottom = rect.y1 <= rect.y2 ? rect.y1 : rect.y2;
  double& top = rect.y1 <= rect.y2 ? rect.y2 : rect.y1;
  left -= metres;
  right += metres;
  bottom -= metres;
  top += metres;
}

void SetValues(TBuiltinCall& call, TScriptObject& self) {
  TRectProjObject& rect = Rect(self);
  const double x1 = call.Number(0), y1 = call.Number(1), x2 = call.Number(2), y2 = call.Number(3);
  rect.x1 = x1;
  rect.y1 = y1;
  rect.x2 = x2;
  rect.y2 = y2;
}

void Start(TBuiltinCall& call, TScriptObject&) {
  call.script.Host().Monitor().Progress().SetTotal(ToInt64(call.Number(0)));
}

void Step(TBuiltinCall& call, TScriptObject&) {
  call.result.SetNumber(call.script.Host().Monitor().Progress().Step() ? 1 : 0);
}

constexpr TObjectBuiltin kRectProjMethods[] = {
    {"Width", 0, Width},         {"Height", 0, Height}, {"Increase", 1, Increase},
    {"SetValues", 4, SetValues}, {"Start", 1, Start},   {"Step", 0, Step},
};

[[noreturn]] void Fail(const TBuiltinCall& call, const char* message) { throw TScriptError(message, call.at); }

const TProjection& WorkingProjection(TBuiltinCall& call) {
  const TWorkingProjection& working = call.script.Host().Projection();
  if (!working.projection) Fail(call, kProjectionNotDefined);
  return *working.projection;
}

// A corner in degrees: corner 1 or 2.
TLonLat Corner(TBuiltinCall& call, const TRectProjObject& rect, int corner) {
  TLonLat geo{};
  std::string message;
  const TPlanePoint plane{corner == 1 ? rect.x1 : rect.x2, corner == 1 ? rect.y1 : rect.y2};
  if (!WorkingProjection(call).Inverse(plane, geo, message)) throw TScriptError(message, call.at);
  return geo;
}

void SetCorner(TBuiltinCall& call, TRectProjObject& rect, int corner, bool latitude, double degrees) {
  TLonLat geo = Corner(call, rect, corner);
  (latitude ? geo.lat : geo.lon) = degrees;
  TPlanePoint plane{};
  std::string message;
  if (!WorkingProjection(call).Forward(geo, plane, message)) throw TScriptError(message, call.at);
  (corner == 1 ? rect.x1 : rect.x2) = plane.x;
  (corner == 1 ? rect.y1 : rect.y2) = plane.y;
}

double* Plane(TRectProjObject& rect, int id) {
  switch (id) {
    case kPropX1: return &rect.x1;
    case kPropY1: return &rect.y1;
    case kPropX2: return &rect.x2;
    case kPropY2: return &rect.y2;
    default: return nullptr;
  }
}

bool IsGeographic(int id) { return id == kPropLat1 || id == kPropLon1 || id == kPropLat2 || id == kPropLon2; }

}  // namespace

std::span<const TObjectBuiltin> RectProjMethods() { return kRectProjMethods; }

void ReadRectProj(TBuiltinCall& call, TRectProjObject& rect, int id) {
  if (const double* value = Plane(rect, id)) return call.result.SetNumber(*value);
  if (!IsGeographic(id)) Fail(call, kWrongRectProjProperty);
  const TLonLat geo = Corner(call, rect, id == kPropLat1 || id == kPropLon1 ? 1 : 2);
  call.result.SetNumber(id == kPropLat1 || id == kPropLat2 ? geo.lat : geo.lon);
}

void AssignRectProj(TBuiltinCall& call, TRectProjObject& rect, int id, const TVarVelanScript& value) {
  double* plane = Plane(rect, id);
  if (!plane && !IsGeographic(id)) Fail(call, kWrongRectProjProperty);
  if (!value.IsNumber()) Fail(call, kNumericOrString);
  if (plane) {
    *plane = value.number;
    return;
  }
  SetCorner(call, rect, id == kPropLat1 || id == kPropLon1 ? 1 : 2, id == kPropLat1 || id == kPropLat2,
            value.number);
}

}  // namespace velantis
