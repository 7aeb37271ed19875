// The methods of the object kinds, one table per kind. A method name is
// turned into an id when the expression is resolved; at the call the
// receiver's kind picks its entry for that id in one indexed step.
#pragma once

#include <span>
#include <string_view>

#include "script/builtins.h"
#include "script/script_objects.h"

namespace velantis {

using TObjectMethod = void (*)(TBuiltinCall& call, TScriptObject& self);

struct TObjectBuiltin {
  std::string_view name;
  size_t argCount;
  TObjectMethod method;
};

inline constexpr const char* kShouldBeRectProj = "Object should be TRectProj";

std::span<const TObjectBuiltin> WaypointListMethods();  // waypoint_list_methods.cpp
std::span<const TObjectBuiltin> WaypointMethods();      // waypoint_list_methods.cpp
std::span<const TObjectBuiltin> CoordMethods();         // coord_methods.cpp
std::span<const TObjectBuiltin> RouteMethods();         // route_track_methods.cpp
std::span<const TObjectBuiltin> TrackMethods();         // route_track_methods.cpp
std::span<const TObjectBuiltin> ArrayMethods();         // array_methods.cpp
std::span<const TObjectBuiltin> BroadcastMethods();     // new_object.cpp
std::span<const TObjectBuiltin> RectProjMethods();      // rect_proj.cpp

// The id of a name that some kind has as a method; -1 when none has it.
int FindObjectMethodName(std::string_view name);
// The kind's method of that id; nullptr when the kind has none of the name.
const TObjectBuiltin* ObjectMethod(TObjectKind kind, int id);
// Whether the name is a method of TRectProj only (so that another receiver
// is told it should be one).
bool IsRectProjOnlyMethod(int id);

}  // namespace velantis
