// Waypoint lists and waypoints.
//
//   list.CreateWpt(name, lat, lon)  appends a waypoint (degrees, WGS 84) and
//                                   returns it
//   list.Elem(i), list[i]           the waypoint at index i (from 0)
//   list.Contains(name)             1 when a waypoint has that name, else 0
//   list.Sort()                     orders the waypoints by name (references
//                                   by index then see the new order)
//   waypoint.GetPropertyStr(key)
// and the methods every element has (element_methods.h).
#include <algorithm>

#include "script/element_methods.h"
#include "script/object_methods.h"
#include "script/velan_script_base.h"

namespace velantis {

namespace {

TElementObject& List(TScriptObject& self) { return static_cast<TElementObject&>(self); }

TVarVelanScript WaypointAt(TBuiltinCall& call, TElementObject& list, size_t index) {
  return WaypointReference(call.script, TWaypointRef{list.file, index});
}

void CreateWpt(TBuiltinCall& call, TScriptObject& self) {
  TElementObject& list = List(self);
  const std::string& name = call.Text(0);
  const double lat = call.Number(1), lon = call.Number(2);
  TBaliza baliza(NativeOptions(call.script.Host()).defaults);
  baliza.SetName(name);
  baliza.SetPosition(lat, lon);
  TWaypoints& waypoints = list.file->element.waypoints;
  waypoints.Add(std::move(baliza));
  call.result = WaypointAt(call, list, waypoints.Count() - 1);
}

void Elem(TBuiltinCall& call, TScriptObject& self) {
  TElementObject& list = List(self);
  call.result = WaypointAt(call, list, IndexArgument(call, 0, list.file->element.waypoints.Count()));
}

void Contains(TBuiltinCall& call, TScriptObject& self) {
  const std::string& name = call.Text(0);
  const auto& balizas = List(self).file->element.waypoints.Balizas();
  const bool found =
      std::any_of(balizas.begin(), balizas.end(), [&](const TBaliza& baliza) { return baliza.Name() == name; });
  call.result.SetNumber(found ? 1 : 0);
}

void Sort(TBuiltinCall&, TScriptObject& self) {
  TWaypoints& waypoints = List(self).file->element.waypoints;
  std::vector<TBaliza> sorted = waypoints.Balizas();
  std::stable_sort(sorted.begin(), sorted.end(),
                   [](const TBaliza& a, const TBaliza& b) { return a.Name() < b.Name(); });
  waypoints.Clear();
  for (TBaliza& baliza : sorted) waypoints.Add(std::move(baliza));
}

constexpr TObjectBuiltin kWaypointListMethods[] = {
    {"CreateWpt", 3, CreateWpt},    {"Elem", 1, Elem},
    {"Contains", 1, Contains},      {"Sort", 0, Sort},
    {"Save", 0, ElementSave},       {"SaveAs", 1, ElementSaveAs},
    {"Untouch", 0, ElementUntouch}, {"Load", 1, ElementLoad},
    {"Count", 0, ElementCount},     {"Clear", 0, ElementClear},
    {"Close", 0, ElementClose},     {"GetPropertyStr", 1, GetPropertyStr},
    {"Reproject", 1, Reproject},
};

constexpr TObjectBuiltin kWaypointMethods[] = {
    {"GetPropertyStr", 1, GetPropertyStr},
};

}  // namespace

std::span<const TObjectBuiltin> WaypointListMethods() { return kWaypointListMethods; }
std::span<const TObjectBuiltin> WaypointMethods() { return kWaypointMethods; }

}  // namespace velantis
