// TArray: a.Add(value) appends; a.Count(); a.Elem(i) and a[i] (from 0);
// a.Contains(value) is 1 when an equal value is there (same kind, same
// number or text); a.Sort() orders numbers before strings, each ascending;
// a.Clear().
#include <algorithm>

#include "script/array_object.h"
#include "script/element_methods.h"
#include "script/object_methods.h"
#include "script/script_error.h"
#include "script/velan_script_base.h"

namespace velantis {

namespace {

std::vector<TVarVelanScript>& Values(TScriptObject& self) { return static_cast<TArrayObject&>(self).values; }

bool Same(const TVarVelanScript& a, const TVarVelanScript& b) {
  if (a.kind != b.kind) return false;
  return a.IsString() ? a.text == b.text : a.number == b.number;
}

void Add(TBuiltinCall& call, TScriptObject& self) { Values(self).push_back(call.args[0]); }

void Count(TBuiltinCall& call, TScriptObject& self) {
  call.result.SetNumber(static_cast<double>(Values(self).size()));
}

void Elem(TBuiltinCall& call, TScriptObject& self) {
  const std::vector<TVarVelanScript>& values = Values(self);
  call.result = values[IndexArgument(call, 0, values.size())];
}

void Contains(TBuiltinCall& call, TScriptObject& self) {
  const std::vector<TVarVelanScript>& values = Values(self);
  const bool found = std::any_of(values.begin(), values.end(),
                                 [&](const TVarVelanScript& value) { return Same(value, call.args[0]); });
  call.result.SetNumber(found ? 1 : 0);
}

void Sort(TBuiltinCall&, TScriptObject& self) {
  std::stable_sort(Values(self).begin(), Values(self).end(),
                   [](const TVarVelanScript& a, const TVarVelanScript& b) {
                     if (a.IsString() != b.IsString()) return b.IsString();
                     return a.IsString() ? a.text < b.text : a.number < b.number;
                   });
}

void Clear(TBuiltinCall&, TScriptObject& self) { Values(self).clear(); }

constexpr TObjectBuiltin kArrayMethods[] = {
    {"Add", 1, Add},           {"Count", 0, Count}, {"Elem", 1, Elem},
    {"Contains", 1, Contains}, {"Sort", 0, Sort},   {"Clear", 0, Clear},
};

}  // namespace

std::span<const TObjectBuiltin> ArrayMethods() { return kArrayMethods; }

}  // namespace velantis
